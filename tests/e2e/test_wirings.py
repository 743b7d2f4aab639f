"""The example's groups, filter sources, managers and searches: what they give is what a statement by hand gives, on both
databases, and nobody sees a unit that is not his."""

import csv
import io
import json

import pytest
from example_school import UNITS_OF, definition_elements, mariadb_escola, sqlite_escola  # noqa: F401
from test_terminal import STYLE, shown
from test_unit_restriction import DEFAULT_UNIT, HEAD_OFFICE, WITHOUT_UNITS, output, seen_units

# Definition, filters, and the statement that gives the codes of the rows in their order. {u} is a list of units, {h}
# their head office.
COURSES = "select c.id from escola_cursos c where coalesce(c.id_unidadematriz, {h}) = {h}"
CLASSES = f"select t.id from escola_turmas t where t.id_unidade in ({{u}}) and t.id_curso in ({COURSES}"
ENROLMENTS = (
    "select m.id from escola_matriculas m inner join escola_turmas t on t.id = m.id_turma where m.id_unidade in ({u}) and "
)
INVOICES = (
    "select f.id from escola_faturas f where f.id_unidade in ({u}) and f.situacao in ('vencida', 'parcial') and "
    "f.id_matricula in (select m.id from escola_matriculas m where m.id_unidade in ({u}) and m.bolsa_percentual > 0"
)
MARKS = (
    "select n.id from escola_notas n inner join escola_disciplinas d on d.id = n.id_disciplina where n.id_unidade in ({u}) "
    "and n.id_matricula in (select q.id_matricula from escola_frequencias q where q.id_unidade in ({u})"
)
CASES = [
    ("Turmas por curso", [], CLASSES + ") order by t.ano desc, t.id"),
    ("Turmas por curso", ["id=1,4"], CLASSES + " and c.id in (1, 4)) order by t.ano desc, t.id"),
    ("Turmas por curso", ["curso=Ensino Médio"], CLASSES + " and c.nome = 'Ensino Médio') order by t.ano desc, t.id"),
    (
        "Turmas por curso",
        ["nivel=médio,fundamental", "serie=1,6", "Turmas:anoLetivo=2018"],
        CLASSES + " and c.nivel in ('médio', 'fundamental')) and t.serie in (1, 6) and t.ano = 2018 order by t.id",
    ),
    ("Boletins do período", [], MARKS + " and q.faltas >= 1) order by n.id"),
    (
        "Boletins do período",
        ["periodo=2021-03-01..2021-06-30"],
        MARKS + " and q.faltas >= 1 and q.mes between '2021-03-01' and '2021-06-30') "
        "and n.lancada_em between '2021-03-01' and '2021-06-30' order by n.id",
    ),
    (
        "Boletins do período",
        ["minimo=3", "disciplina=MAT,POR"],
        MARKS + " and q.faltas >= 3) and d.sigla in ('MAT', 'POR') order by n.id",
    ),
    ("Faturas dos bolsistas", [], INVOICES + ") order by f.vencimento, f.id"),
    ("Faturas dos bolsistas", ["bolsa=20..100"], INVOICES + " and m.bolsa_percentual >= 20) order by f.vencimento, f.id"),
    ("Faturas dos bolsistas", ["valor=600.."], INVOICES + ") and f.valor >= 600 order by f.vencimento, f.id"),
    (
        "Bolsistas do ensino médio",
        [],
        ENROLMENTS + "t.id_curso in (2, 5) and m.bolsa_percentual > 0 order by m.bolsa_percentual desc, m.id",
    ),
    (
        "Bolsistas do ensino médio",
        ["ano=2019,2024"],
        ENROLMENTS + "t.id_curso in (2, 5) and m.bolsa_percentual > 0 and t.ano in (2019, 2024) "
        "order by m.bolsa_percentual desc, m.id",
    ),
    (
        "Alunos por curso",
        [],
        ENROLMENTS + f"m.situacao = 'cursando' and m.id_turma in ({CLASSES})) order by t.ano desc, m.id",
    ),
    (
        "Alunos por curso",
        ["nivel=médio,técnico,fundamental", "numero=..10"],
        ENROLMENTS + f"m.situacao = 'cursando' and m.numero <= 10 and m.id_turma in ({CLASSES} "
        "and c.nivel in ('médio', 'técnico', 'fundamental'))) order by t.ano desc, m.id",
    ),
]

SEARCHES = {
    "Pesquisa de alunos": [[], ["nome=%ana%"]],
    "Pesquisa de cobrança": [["valor=600.."], ["vencidasAte=2021-12-31"]],
    "Pesquisa de turmas": [[], ["nivel=médio,fundamental"], ["serie=1,6"]],
    "Pesquisa de matrículas": [[], ["ano=2024"], ["id_turma=26,14"], ["situacao=cursando", "nome=%Silva%"]],
    "moxPesqUnidades": [[], ["uf=PB,SC"]],
}
GROUPS = [name for name, filters, _ in CASES if not filters] + ["Resumo das matrículas"]


def units_asked(user):
    return sorted(UNITS_OF[user])


def as_options(filters):
    return [part for text in filters for part in ("--filter", text)]


def run(school, user, command, name, filters, *options):
    return output(school, user, units_asked(user), command, name, *as_options(filters), *options)


def rows_of(text):
    return list(csv.DictReader(io.StringIO(text)))


def listed_filters(school, user, name):
    """With all values that there are to choose from."""
    done = school.zyn("--user", user, "search", name, "--filters", "--choices", 1000, "--format", "json")
    needs = "zyn: note: the search runs with a filter only\n" if name == "Pesquisa de cobrança" else ""
    assert (done.returncode, done.stderr) == (0, needs), name
    return done.stdout


def codes_by_hand(school, user, statement):
    text = statement.format(u=", ".join(map(str, units_asked(user))), h=HEAD_OFFICE[user])
    return [row["id"] for row in rows_of(school.rows("sql", text, "--quiet"))]


def both(request):
    return [request.getfixturevalue("sqlite_escola"), request.getfixturevalue("mariadb_escola")]


def elements_of(tag):
    return [element for element in definition_elements() if element.tag == tag]


def test_every_group_and_every_search_is_run_here():
    assert sorted(GROUPS) == sorted(element.get("name") for element in elements_of("moxGroupDataSource"))
    assert sorted(SEARCHES) == sorted(element.get("InternalName") for element in elements_of("moxSearch"))


def test_every_filter_of_a_manager_is_used_here():
    used = {text.split("=")[0] for _, filters, _ in CASES for text in filters}
    for manager in elements_of("moxManageFilterDataSource"):
        assert {specification.get("columnName") for specification in manager.iterfind("Filters/*")} <= used


def test_each_way_of_changing_a_statement_is_shown():
    changes = [source for element in definition_elements() for source in element.iter("moxFilterDataSource")]
    conditions = {condition.tag for source in changes for condition in source.find("Filters")}
    kinds = {source.find("selectColumns").get("tipo") for source in changes}
    assert (conditions, kinds) == ({"Valor", "Sql", "SemFiltro"}, {"0", "1"})


@pytest.fixture(params=["sqlite_escola", "mariadb_escola"])
def escola(request):
    return request.getfixturevalue(request.param)


@pytest.mark.parametrize(("name", "filters", "statement"), CASES, ids=[f"{n}: {' '.join(f)}" for n, f, _ in CASES])
def test_group_gives_what_a_statement_by_hand_gives(escola, name, filters, statement):
    counts = []
    for user in ("rosangela", "iara", "joaquim"):
        found = [row["id"] for row in rows_of(run(escola, user, "run", name, filters))]
        assert found == codes_by_hand(escola, user, statement), user
        counts.append(len(found))
    assert counts[0] > 0, "so that the test can fail"


def test_columns_are_added_to_those_of_the_changed_source(escola):
    rows = rows_of(run(escola, "rosangela", "run", "Bolsistas do ensino médio", []))
    assert list(rows[0])[-2:] == ["curso", "sem_bolsa"] and list(rows[0])[0] == "id"
    assert {row["curso"] for row in rows} == {"Ensino Médio"}
    assert all(int(row["bolsa"]) + int(row["sem_bolsa"]) == 100 for row in rows)


def test_columns_are_replaced_by_figures(escola):
    statement = (
        "select t.ano, m.situacao, count(*) as alunos, count(m.bolsa_percentual) as bolsistas, u.observacao as sigla "
        "from escola_matriculas m inner join escola_turmas t on t.id = m.id_turma "
        "inner join escola_cursos c on c.id = t.id_curso inner join ambiente_unidades u on u.id = m.id_unidade "
        "where c.nivel <> 'livre' and m.id_unidade in ({}) group by t.ano, m.situacao, u.observacao "
        "order by t.ano desc, m.situacao, u.observacao"
    )
    for user in ("rosangela", "iara"):
        by_hand = escola.rows("sql", statement.format(", ".join(map(str, units_asked(user)))), "--quiet")
        assert run(escola, user, "run", "Resumo das matrículas", []) == by_hand
    assert len(by_hand.splitlines()) > 10


def test_a_condition_without_a_filter_takes_the_question_away(sqlite_escola):
    line = sqlite_escola.refusal("--user", "joaquim", "run", "Resumo das matrículas", "--filter", "id_turma=26", status=2)
    assert line.startswith("filter 'id_turma=26': there is no filter on 'id_turma'; offered: ano=NUMBER,...; numero=")


def test_a_relation_without_values_lets_no_row_through(escola):
    assert rows_of(run(escola, "joaquim", "run", "Turmas por curso", ["id=-1"])) == []
    assert rows_of(run(escola, "joaquim", "run", "Alunos por curso", ["id=-1"])) == []


@pytest.mark.parametrize("name", GROUPS)
def test_both_databases_give_equal_rows(request, name):
    for user in UNITS_OF:
        for options in ([], ["--formatted"]):
            one, other = (run(school, user, "run", name, [], *options) for school in both(request))
            assert one == other, (user, options)


def sort_key(column):
    return lambda row: row[column].encode()


ORDERS = {
    "Pesquisa de alunos": ("nascimento", True),
    "Pesquisa de turmas": ("ano", True),
    "Pesquisa de matrículas": ("nome", False),
    "moxPesqUnidades": ("nome", False),
}


@pytest.mark.parametrize("name", SEARCHES)
def test_search_gives_the_rows_of_its_source_in_its_own_order(escola, name):
    for filters in SEARCHES[name]:
        for user in ("rosangela", "iara"):
            found = rows_of(run(escola, user, "search", name, filters))
            source = rows_of(run(escola, user, "run", name, filters))
            assert sorted(map(str, found)) == sorted(map(str, source)), (filters, user)
            if name in ORDERS:
                column, descending = ORDERS[name]
                assert found == sorted(source, key=sort_key(column), reverse=descending), (filters, user)
            else:
                values = [float(row["valor"]) for row in found]
                assert values == sorted(values, reverse=True)
        assert rows_of(run(escola, "admin", "search", name, filters)), filters


@pytest.mark.parametrize("name", SEARCHES)
def test_both_databases_give_equal_screens(request, name):
    schools = both(request)
    for filters in SEARCHES[name]:
        for user in ("rosangela", "iara"):
            for options in (["--format", "table"], ["--format", "json"], ["--page", "2", "--page-size", "10", "--formatted"]):
                one, other = (run(school, user, "search", name, filters, *options) for school in schools)
                assert one == other, (filters, user, options)
    one, other = (listed_filters(school, "marilia", name) for school in schools)
    assert json.loads(one) == json.loads(other)


def test_the_search_of_units_is_for_all_units_of_the_user(escola):
    for user, units in UNITS_OF.items():
        found = rows_of(output(escola, user, [], "search", "moxPesqUnidades"))
        assert sorted(int(row["id"]) for row in found) == sorted(units), user
    assert [row["id"] for row in rows_of(output(escola, "marilia", [], "run", "moxPesqUnidades"))] == ["3"]


def test_a_search_without_its_required_filter_is_not_run(sqlite_escola):
    line = sqlite_escola.refusal("--user", "joaquim", "search", "Pesquisa de cobrança", status=2)
    assert line.startswith("the search 'Pesquisa de cobrança' runs only with a filter")


def test_icon_and_key_stand_with_the_name(escola):
    text = run(escola, "joaquim", "search", "Pesquisa de matrículas", ["id_aluno=284", "ano=2023.."], "--format", "table")
    heading, _, first, second = text.splitlines()
    assert heading.split()[:6] == ["Aluno", "Código", "do", "aluno", "Turma", "Código"]
    assert first.startswith("[✓] Ana Clara Neves Gonçalves do Nascimento ") and " 284 " in first
    assert second.startswith("[•] Ana Clara Neves Gonçalves do Nascimento ") and second.endswith("cursando   null")


@pytest.mark.parametrize("width", [80, 160])
@pytest.mark.parametrize("name", SEARCHES)
def test_screens_keep_to_the_terminal(sqlite_escola, width, name):
    filters = as_options(SEARCHES[name][0])
    text = shown(sqlite_escola, width, "--user", "rosangela", "search", name, *filters, "--page-size", "20")
    *lines, end = STYLE.sub("", text).splitlines()
    assert len(lines) > 2 and max(map(len, lines)) <= width
    assert width == 80 or "no room" not in end


def choices(school, user, name, filter_name):
    entries = json.loads(listed_filters(school, user, name))
    return next(entry["values"] for entry in entries if entry["filter"] == filter_name)


def test_keys_can_be_chosen_from_the_searches_that_they_belong_to(escola):
    classes = choices(escola, "joaquim", "Pesquisa de matrículas", "id_turma")
    assert classes["source"] == "Pesquisa de turmas" and classes["problem"] == ""
    by_hand = rows_of(escola.rows("sql", "select id from escola_turmas where id_unidade = 3", "--quiet"))
    assert sorted(choice["value"] for choice in classes["choices"]) == sorted(row["id"] for row in by_hand)
    students = choices(escola, "joaquim", "Pesquisa de matrículas", "id_aluno")
    statement = "select id, nome from escola_alunos where id_unidade = 3 order by registro"
    by_hand = rows_of(escola.rows("sql", statement, "--quiet"))
    assert students["source"] == "Pesquisa de alunos"
    assert [(c["value"], c["label"]) for c in students["choices"]] == [(row["id"], row["nome"]) for row in by_hand]


def test_only_own_values_are_there_to_choose_from(escola):
    for user, unit in DEFAULT_UNIT.items():
        for table, filter_name in (("escola_turmas", "id_turma"), ("escola_alunos", "id_aluno")):
            own = rows_of(escola.rows("sql", f"select id from {table} where id_unidade = {unit}", "--quiet"))
            offered = choices(escola, user, "Pesquisa de matrículas", filter_name)
            assert {choice["value"] for choice in offered["choices"]} <= {row["id"] for row in own}, user
            assert offered["total"] == len(offered["choices"]), user


def runs_of_all():
    for name in GROUPS:
        yield "run", name, []
    for name, runs in SEARCHES.items():
        yield "search", name, runs[0]


@pytest.mark.parametrize(("command", "name", "filters"), runs_of_all())
def test_nobody_sees_a_unit_that_is_not_his(escola, command, name, filters):
    forms = ["csv", "table", "json", "ndjson"] if escola.is_sqlite else ["csv"]
    for user, unit in DEFAULT_UNIT.items():
        allowed = UNITS_OF[user] if name == "moxPesqUnidades" else {unit}
        for form in forms:
            assert seen_units(output(escola, user, [], command, name, *as_options(filters), "--format", form)) <= allowed
        for form in ("text", "json"):
            text = output(escola, user, [], "explain", name, *as_options(filters), "--format", form)
            assert seen_units(text) <= {unit}, (user, form)
        if command == "search":
            assert seen_units(listed_filters(escola, user, name)) <= allowed, user
        wide = run(escola, user, command, name, filters)
        assert seen_units(wide) <= UNITS_OF[user], user
        assert {int(row["id_unidade"]) for row in rows_of(wide) if "id_unidade" in row} <= UNITS_OF[user], user


def unit_rules(statement):
    return [condition for condition in statement["conditions"] if condition["origin"] == "unit-rule"]


@pytest.mark.parametrize(("command", "name", "filters"), runs_of_all())
def test_each_statement_of_a_run_is_kept_to_its_units(escola, command, name, filters):
    """Also those whose rows only restrict others."""
    for user, unit in DEFAULT_UNIT.items():
        report = json.loads(output(escola, user, [], "explain", name, *as_options(filters), "--format", "json"))
        statements = [statement for source in report["sources"] for statement in source["statements"]]
        assert statements and all(len(unit_rules(statement)) == 1 for statement in statements), user
        values = {int(v["value"]) for statement in statements for rule in unit_rules(statement) for v in rule["values"]}
        assert values <= {unit, HEAD_OFFICE[user]}, user


@pytest.mark.parametrize(("command", "name", "filters"), runs_of_all())
def test_witnesses_are_seen_where_they_may_be(escola, command, name, filters):
    """So that the test above can fail."""
    assert len(seen_units(run(escola, "admin", command, name, filters))) >= 2


@pytest.mark.parametrize(("command", "name", "filters"), runs_of_all())
def test_user_without_units_gets_nothing(escola, command, name, filters):
    settings = escola.folder / "sem_unidade.toml"
    settings.write_text(escola.settings.read_text(encoding="utf-8") + WITHOUT_UNITS, encoding="utf-8")
    done = escola.zyn("--config", settings, "--user", "sem_unidade", command, name, *as_options(filters))
    assert done.returncode == 1 and done.stdout == ""
    assert done.stderr.startswith("zyn: Não foi identificado a unidade matriz para processamento")


def show(school, name):
    return json.loads(school.rows("show", name, "--format", "json"))


def test_groups_show_their_wiring_without_a_defect(sqlite_escola):
    for name in GROUPS:
        text = json.dumps(show(sqlite_escola, name))
        assert json.loads(text)["group"]["members"]
        assert '"defect": ""' in text or '"defect"' not in text
        assert not [part for part in text.split('"defect": "')[1:] if not part.startswith('"')], name


def test_group_shows_where_a_filter_source_ends(sqlite_escola):
    members = {member["name"]: member for member in show(sqlite_escola, "Bolsistas do ensino médio")["group"]["members"]}
    assert [wire["target"] for wire in members["Com bolsa"]["wires"]] == ["Matrículas"]
    tree = sqlite_escola.rows("show", "Bolsistas do ensino médio")
    assert "├─ changes Ensino médio and so Matrículas" in tree
    tree = sqlite_escola.rows("show", "Boletins do período")
    assert "│  ├─ n.id_matricula (escola_notas.id_matricula) refers to id_matricula of Faltas" in tree
    assert "      ├─ what it calls Notas lançadas is Notas" in tree


MANY = """<moxZYNCollection parentLibraryName="ZYNC">
<moxGroupDataSource name="Notas de muitos" outputSource="Notas" filterSource="Notas"><DataSources>
  <moxDadoDataSource name="Códigos"><moxSQLDataSource name="C">
    <Command type="0">select (x.id - 1) * 292 + y.id as id from escola_alunos x cross join escola_alunos y</Command>
    <Columns><Column columnName="id" Type="2"/></Columns></moxSQLDataSource></moxDadoDataSource>
  <moxDadoDataSource name="Notas" dataSource="Notas lançadas">
    <Relation columnNameOrigin="id" tableNameOrigin="escola_notas" columnName="id" tableName="n">
      <DataSourceOrigin dataSource="Códigos" columnName="id"/></Relation></moxDadoDataSource>
</DataSources></moxGroupDataSource></moxZYNCollection>"""


def test_more_values_than_a_statement_has_marks(escola):
    """85,264 codes: every mark of the school is among them, and a few thousand that no mark has."""
    (escola.folder / "muitos.xml").write_text(MANY, encoding="utf-8")
    escola.rows("pack", "muitos.xml", "--out", "collections/zz-muitos.zcf")
    try:
        found = run(escola, "rosangela", "run", "Notas de muitos", [])
        assert found == run(escola, "rosangela", "run", "Notas lançadas", []) and len(found.splitlines()) > 10000
        few = run(escola, "rosangela", "run", "Notas de muitos", ["sigla=MAT"])
        assert few == run(escola, "rosangela", "run", "Notas lançadas", ["sigla=MAT"])
        text = run(escola, "rosangela", "explain", "Notas de muitos", [])
    finally:
        (escola.folder / "collections/zz-muitos.zcf").unlink()
    told = [line.strip() for line in text.splitlines() if " are more than the " in line]
    if escola.is_sqlite:
        assert told == [
            "85269 values are more than the 32766 marks that the database takes: 85264 are bound as 1 list of one mark, "
            "5 are bound to marks of their own"
        ]
    else:
        assert len(told) == 1 and told[0].startswith("85269 values are more than the 65535 marks that the database takes: ")
