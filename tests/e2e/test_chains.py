"""The example's chains of sources: every one runs, gives the same rows on both databases and none of a foreign unit, and
some give cell by cell what a statement by hand gives."""

import csv
import io
import itertools
import json

import pytest
from example_school import UNITS_OF, definition_elements, mariadb_escola, sqlite_escola  # noqa: F401
from test_terminal import STYLE, shown
from test_unit_restriction import DEFAULT_UNIT, WITHOUT_UNITS, output, seen_units

CLASSES = {
    "moxAggregationDataSource",
    "moxSorterDataSource",
    "moxUnionDataSource",
    "moxExpressionDataSource",
    "moxDataSourcePivoting",
    "moxJoinDataSource",
}

# The sources that read others, and ways to run each.
RUNS = {
    "Médias dos alunos": [[], ["id_turma=26"]],
    "Médias por disciplina e aluno": [[], ["ano=2022..2024", "bimestre=1,2"]],
    "Boletim cruzado": [["id_turma=26"]],
    "Boletim da turma": [["id_turma=26"], ["id_turma=26", "bimestre=1"]],
    "Médias das turmas": [[], ["ano=2024"]],
    "Turmas da melhor à pior média": [[]],
    "Classificação das turmas": [[], ["ano=2019..2021"]],
    "Turmas na ordem escolhida": [[]],
    "Pagamentos por fatura": [[], ["forma=pix,dinheiro"]],
    "Faturas com pagamentos": [[], ["forma=pix", "vencimento=2021-01-01..2021-12-31"]],
    "Saldos das faturas": [["situacao=parcial"]],
    "Faturas por saldo": [[], ["situacao=parcial,vencida"]],
    "Movimento financeiro": [[], ["vencimento=2021-01-01..", "forma=boleto"]],
    "Notas de dois anos": [[]],
    "Médias de dois anos": [[]],
    "Médias por ano e bimestre": [[]],
    "Evolução das disciplinas": [[]],
    "Anos com turmas": [[], ["turno=matutino"]],
    "Cursos por ano": [[], ["mensalidade=..900"]],
}


@pytest.fixture(params=["sqlite_escola", "mariadb_escola"])
def escola(request):
    return request.getfixturevalue(request.param)


def as_options(filters):
    return [part for text in filters for part in ("--filter", text)]


def run(school, user, name, filters=(), *options, units=None, command="run"):
    """For all units that the user may work in, unless units are named."""
    asked = sorted(UNITS_OF[user]) if units is None else units
    return output(school, user, asked, command, name, *as_options(filters), *options)


def table_of(text):
    return list(csv.reader(io.StringIO(text)))


def rows_of(text):
    return list(csv.DictReader(io.StringIO(text)))


def by_hand(school, statement, user="rosangela"):
    units = ", ".join(map(str, sorted(UNITS_OF[user])))
    return rows_of(school.rows("--quiet", "sql", statement.format(u=units), "--format", "csv"))


def number(text):
    """A null, which is written as nothing, counts as 0."""
    return float(text or 0)


def cases():
    return [pytest.param(name, filters, id=f"{name}: {' '.join(filters)}") for name in RUNS for filters in RUNS[name]]


def derived():
    return [element for element in definition_elements() if element.tag in CLASSES]


def test_every_chain_of_the_example_is_run_here():
    assert sorted(RUNS) == sorted(element.get("name") for element in derived())


def test_each_kind_of_source_stands_in_two_definitions():
    tags = [element.tag for element in definition_elements()]
    assert {tag for tag in CLASSES | {"moxObjectDataSource"} if tags.count(tag) < 2} == set()


@pytest.mark.parametrize(("name", "filters"), cases())
def test_chain_gives_rows(sqlite_escola, name, filters):
    header, *rows = table_of(run(sqlite_escola, "rosangela", name, filters))
    assert len(header) == len(set(header)) and rows


@pytest.mark.parametrize(("name", "filters"), cases())
def test_both_databases_give_equal_tables(sqlite_escola, mariadb_escola, name, filters):
    for user, options in (("rosangela", []), ("rosangela", ["--formatted"]), ("iara", [])):
        one = run(sqlite_escola, user, name, filters, *options)
        assert one == run(mariadb_escola, user, name, filters, *options), (user, options)


@pytest.mark.parametrize(("name", "filters"), cases())
def test_each_statement_of_a_chain_is_kept_to_its_units(escola, name, filters):
    for user, unit in DEFAULT_UNIT.items():
        assert seen_units(run(escola, user, name, filters, units=[])) <= {unit}
        report = json.loads(run(escola, user, name, filters, "--format", "json", units=[], command="explain"))
        statements = [statement for source in report["sources"] for statement in source["statements"]]
        rules = [[c["origin"] for c in statement["conditions"]].count("unit-rule") for statement in statements]
        assert rules and set(rules) == {1}, user


@pytest.mark.parametrize("name", RUNS)
def test_user_without_units_gets_nothing(escola, name):
    settings = escola.folder / "sem_unidade.toml"
    settings.write_text(escola.settings.read_text(encoding="utf-8") + WITHOUT_UNITS, encoding="utf-8")
    done = escola.zyn("--config", settings, "--user", "sem_unidade", "run", name)
    assert (done.returncode, done.stdout) == (1, "")
    assert done.stderr.startswith("zyn: Não foi identificado a unidade matriz para processamento")


def explained(school, name, filters=()):
    return json.loads(run(school, "rosangela", name, filters, "--format", "json", command="explain"))["sources"]


FIVE_STEPS = {
    "Boletim da turma": [
        "Notas das turmas",
        "Médias dos alunos",
        "Médias por disciplina e aluno",
        "Boletim cruzado",
        "Boletim da turma",
    ],
    "Turmas na ordem escolhida": [
        "Notas das turmas",
        "Médias das turmas",
        "Turmas da melhor à pior média",
        "Classificação das turmas",
        "Turmas na ordem escolhida",
    ],
    "Faturas por saldo": [
        "Faturas emitidas",
        "Pagamentos recebidos",
        "Pagamentos por fatura",
        "Faturas com pagamentos",
        "Saldos das faturas",
        "Faturas por saldo",
    ],
    "Evolução das disciplinas": [
        "Notas do ano passado",
        "Notas deste ano",
        "Notas de dois anos",
        "Médias de dois anos",
        "Médias por ano e bimestre",
        "Evolução das disciplinas",
    ],
}


@pytest.mark.parametrize("name", FIVE_STEPS)
def test_explain_tells_rows_and_time_of_each_step(escola, name):
    steps = explained(escola, name)
    assert [step["name"] for step in steps] == FIVE_STEPS[name]
    for step in steps:
        assert step["executed"] and step["rows"] > 0
    rows = len(rows_of(run(escola, "rosangela", name)))
    assert steps[-1]["rows"] == rows


# The report card

AVERAGES = """select t.id as id_turma, m.numero, a.nome as aluno, d.sigla, avg(n.nota) as media, sum(n.faltas) as faltas
from escola_notas n
inner join escola_matriculas m on m.id = n.id_matricula
inner join escola_turmas t on t.id = m.id_turma
inner join escola_alunos a on a.id = m.id_aluno
inner join escola_disciplinas d on d.id = n.id_disciplina
where n.id_unidade in ({u}) {more}
group by t.id, m.numero, a.nome, d.sigla
order by min(n.id)"""


def averages(school, more=""):
    return by_hand(school, AVERAGES.replace("{more}", more))


def same_average(one, other):
    """A group without marks has none, on either side."""
    return (one == "") == (other == "") and abs(number(one) - number(other)) < 1e-9


def same_averages(rows, wanted):
    keys = ("id_turma", "numero", "aluno", "sigla", "faltas")
    assert [[row[key] for key in keys] for row in rows] == [[row[key] for key in keys] for row in wanted]
    return all(same_average(row["media"], other["media"]) for row, other in zip(rows, wanted))


@pytest.mark.parametrize(
    ("filters", "more"),
    [([], ""), (["id_turma=26"], "and t.id = 26"), (["ano=2022..", "bimestre=1,2"], "and t.ano >= 2022 and n.bimestre in (1, 2)")],
)
def test_averages_are_those_of_group_by(escola, filters, more):
    rows = rows_of(run(escola, "rosangela", "Médias dos alunos", filters))
    assert len(rows) > 200 and same_averages(rows, averages(escola, more))


def test_averages_stand_in_the_order_of_the_sorter(escola):
    rows = rows_of(run(escola, "rosangela", "Médias por disciplina e aluno"))
    wanted = sorted(averages(escola), key=lambda row: (row["sigla"].encode(), int(row["numero"])))
    assert same_averages(rows, wanted)


def test_report_card_has_the_average_of_each_student_and_subject(escola):
    header, *rows = table_of(run(escola, "rosangela", "Boletim da turma", ["id_turma=26"]))
    wanted = averages(escola, "and t.id = 26")
    assert header == ["numero", "aluno", *sorted({row["sigla"] for row in wanted})]
    students = sorted({(int(row["numero"]), row["aluno"]) for row in wanted})
    assert [(int(row[0]), row[1]) for row in rows] == students and len(students) > 20
    marks = {(row["aluno"], row["sigla"]): row["media"] for row in wanted}
    for row in rows:
        for subject, shown_average in zip(header[2:], row[2:]):
            assert same_average(shown_average, marks.get((row[1], subject), "")), (row[1], subject)


# Ranks

CLASS_AVERAGES = """select t.ano, t.id as id_turma, t.nome as turma, avg(n.nota) as media, min(n.nota) as menor,
  max(n.nota) as maior, sum(n.faltas) as faltas, count(*) as data_count
from escola_notas n
inner join escola_matriculas m on m.id = n.id_matricula
inner join escola_turmas t on t.id = m.id_turma
where n.id_unidade in ({u})
group by t.id, t.ano, t.nome
order by min(n.id)"""


def test_figures_of_classes_are_those_of_group_by(escola):
    rows = rows_of(run(escola, "rosangela", "Médias das turmas"))
    wanted = by_hand(escola, CLASS_AVERAGES)
    assert [list(row) for row in rows] == [list(row) for row in wanted] and len(rows) > 10
    for row, other in zip(rows, wanted):
        assert (row.pop("turma"), row.pop("ano")) == (other.pop("turma"), other.pop("ano"))
        assert {key: number(value) for key, value in row.items()} == pytest.approx(
            {key: number(value) for key, value in other.items()}
        )


def rounded(value):
    """To two places, halves away from zero."""
    return int(abs(value) * 100 + 0.5) / 100 * (1 if value >= 0 else -1)


def test_place_is_one_more_than_the_better_classes(escola):
    rows = rows_of(run(escola, "rosangela", "Classificação das turmas"))
    wanted = {row["id_turma"]: row for row in by_hand(escola, CLASS_AVERAGES)}
    order = {key: (-number(row["media"]), int(key)) for key, row in wanted.items()}
    best = max(number(row["media"]) for row in wanted.values())
    assert [row["id_turma"] for row in rows] == sorted(order, key=order.get)
    for row in rows:
        other = wanted[row["id_turma"]]
        assert int(row["colocacao"]) == 1 + sum(better < order[row["id_turma"]] for better in order.values())
        assert number(row["abaixo"]) == pytest.approx(rounded(best - number(other["media"])), abs=1e-9)
        assert number(row["faltas_por_nota"]) == pytest.approx(rounded(number(other["faltas"]) / number(other["data_count"])))


# Invoices with payments

PAID = """select g.id_fatura, sum(g.valor) as pago, sum(g.encargos) as encargos, max(g.pago_em) as ultimo_pagamento,
  count(*) as data_count from escola_pagamentos g where g.id_unidade in ({u}) group by g.id_fatura"""

INVOICES = f"""select f.id as id_fatura, a.nome as aluno, f.descricao as fatura, f.vencimento, f.valor, f.desconto,
  p.data_count as pagamentos, p.pago, p.encargos, p.ultimo_pagamento,
  f.valor * 1.0 - coalesce(f.desconto, 0) - p.pago + coalesce(p.encargos, 0) as saldo
from escola_faturas f
inner join escola_matriculas m on m.id = f.id_matricula
inner join escola_alunos a on a.id = m.id_aluno
inner join ({PAID}) p on p.id_fatura = f.id
where f.id_unidade in ({{u}})
order by f.id"""

MONEY = ("valor", "desconto", "pago", "encargos", "saldo")


def comparable(rows):
    """Sums of money are the same to the cent, whether they were added as decimals or as doubles."""
    return [
        {key: (value and f"{float(value):.2f}") if key in MONEY else value for key, value in row.items()} for row in rows
    ]


def without(row, *names):
    return {key: value for key, value in row.items() if key not in names}


def test_join_is_that_of_a_statement(escola):
    rows = comparable(rows_of(run(escola, "rosangela", "Faturas com pagamentos")))
    assert len(rows) > 1000
    assert rows == [without(row, "saldo") for row in comparable(by_hand(escola, INVOICES))]


def test_what_is_left_to_pay_is_worked_out_and_sorted(escola):
    rows = rows_of(run(escola, "rosangela", "Faturas por saldo"))
    wanted = {row["id_fatura"]: row for row in comparable(by_hand(escola, INVOICES))}
    assert [number(row["saldo"]) for row in rows] == sorted((number(row["saldo"]) for row in rows), reverse=True)
    assert len(rows) == len(wanted)
    for row in comparable(rows):
        other = wanted[row["id_fatura"]]
        assert without(row, "saldo") == without(other, "saldo")
        assert number(row["saldo"]) == pytest.approx(number(other["saldo"]), abs=0.005), row


def test_invoices_that_are_paid_leave_nothing(escola):
    rows = rows_of(run(escola, "rosangela", "Faturas por saldo", ["situacao=paga"]))
    assert len(rows) > 1000 and {number(row["saldo"]) for row in rows} == {0}


def test_payments_of_an_invoice_are_added_up(escola):
    rows = rows_of(run(escola, "rosangela", "Pagamentos por fatura"))
    wanted = {row["id_fatura"]: row for row in comparable(by_hand(escola, PAID))}
    assert {row["id_fatura"] for row in rows} == set(wanted) and max(int(row["data_count"]) for row in rows) > 1
    last = {row["id_fatura"]: row["forma"] for row in rows_of(run(escola, "rosangela", "Pagamentos recebidos"))}
    for row in comparable(rows):
        assert row.pop("ultima_forma") == last[row["id_fatura"]]
        assert row == wanted[row["id_fatura"]]


def test_union_is_union_all(escola):
    rows = table_of(run(escola, "rosangela", "Movimento financeiro"))
    wanted = by_hand(
        escola,
        """select descricao, dia, valor, nota from (
             select 1 as parte, f.id, f.descricao, f.vencimento as dia, f.valor, f.situacao as nota
             from escola_faturas f where f.id_unidade in ({u})
             union all
             select 2, g.id, f.descricao, g.pago_em, g.valor, g.forma
             from escola_pagamentos g inner join escola_faturas f on f.id = g.id_fatura where g.id_unidade in ({u})) x
           order by parte, id""",
    )
    assert rows[0] == ["descricao", "vencimento", "valor", "situacao"] and len(rows) > 9000
    for row, other in zip(rows[1:], wanted, strict=True):
        assert [row[0], row[3]] == [other["descricao"], other["nota"]]
        assert row[1].removesuffix(" 00:00:00") == other["dia"].removesuffix(" 00:00:00")
        assert number(row[2]) == number(other["valor"])


# Two years

TWO_YEARS = """select t.ano, d.sigla, n.bimestre, n.nota
from escola_notas n
inner join escola_matriculas m on m.id = n.id_matricula
inner join escola_turmas t on t.id = m.id_turma
inner join escola_disciplinas d on d.id = n.id_disciplina
where n.id_unidade in ({u}) and t.ano in (2023, 2024)
order by t.ano, n.id"""


def test_two_years_stand_below_each_other(escola):
    rows = rows_of(run(escola, "admin", "Notas de dois anos"))
    assert {row["ano"] for row in rows} == {"2023", "2024"}
    assert rows == by_hand(escola, TWO_YEARS, "admin")


def averages_of_two_years(school):
    groups = {}
    for row in by_hand(school, TWO_YEARS, "admin"):
        marks = groups.setdefault((row["sigla"], int(row["ano"]), int(row["bimestre"])), [])
        marks += [float(row["nota"])] if row["nota"] else []
    return {key: sum(marks) / len(marks) if marks else None for key, marks in groups.items()}


def test_years_and_bimesters_stand_side_by_side(escola):
    header, *rows = table_of(run(escola, "admin", "Evolução das disciplinas"))
    wanted = averages_of_two_years(escola)
    terms = sorted({key[1:] for key, average in wanted.items()})
    assert header[0] == "sigla" and len(header) == 1 + len(terms)
    for name, (year, term) in zip(header[1:], terms):
        assert name == f"{year} {term}º bim"
    for row in rows:
        for cell, (year, term) in zip(row[1:], terms):
            average = wanted.get((row[0], year, term))
            assert cell == "" if average is None else float(cell) == pytest.approx(average), (row[0], year, term)


# Each with each

def test_each_year_meets_each_course(escola):
    rows = rows_of(run(escola, "rosangela", "Cursos por ano"))
    years = by_hand(
        escola, "select ano, count(*) as turmas from escola_turmas where id_unidade in ({u}) group by ano order by ano desc"
    )
    assert [tuple(row.values()) for row in rows_of(run(escola, "rosangela", "Anos com turmas"))] == [
        tuple(row.values()) for row in years
    ]
    courses = rows_of(run(escola, "rosangela", "Cursos da rede"))
    wanted = [(y["ano"], y["turmas"], c["nome"], c["nivel"]) for y, c in itertools.product(years, courses)]
    assert sorted(tuple(row.values()) for row in rows) == sorted(wanted) and len(courses) > 2 < len(years)


# Statements that change data

ROOM = "Definir sala da turma"


def room(school, number):
    return by_hand(school, f"select sala from escola_turmas where id = {number}")[0]["sala"]


def set_room(school, *filters):
    done = school.zyn("--user", "joaquim", "run", ROOM, *as_options(filters), "--yes")
    assert (done.returncode, done.stdout) == (0, ""), done


def test_routine_changes_the_row_that_it_is_told(escola):
    before = {number: room(escola, number) for number in (25, 26)}
    assert before[26] and before[26] != "77 B"
    set_room(escola, "sala=77 B", "turma=26", "unidade=3")
    assert {number: room(escola, number) for number in (25, 26)} == {25: before[25], 26: "77 B"}
    set_room(escola, f"sala={before[26]}", "turma=26", "unidade=3")
    assert room(escola, 26) == before[26]


@pytest.mark.parametrize("filters", [["sala=99"], ["sala=99", "turma=26"], ["sala=99", "turma=26", "unidade=2"]])
def test_routine_without_its_unit_changes_nothing(escola, filters):
    before = by_hand(escola, "select id, sala from escola_turmas order by id")
    set_room(escola, *filters)
    assert by_hand(escola, "select id, sala from escola_turmas order by id") == before


# On a terminal

@pytest.mark.parametrize("width", [80, 120, 160])
@pytest.mark.parametrize("name", FIVE_STEPS)
def test_tables_keep_to_the_terminal(sqlite_escola, width, name):
    units = [part for unit in sorted(UNITS_OF["rosangela"]) for part in ("--unit", str(unit))]
    text = shown(sqlite_escola, width, "--user", "rosangela", *units, "run", name, "--limit", "20")
    *lines, end = STYLE.sub("", text).splitlines()
    assert len(lines) > 2 and max(map(len, lines)) <= width
    assert width == 80 or "no room" not in end


@pytest.mark.parametrize("width", [80, 120, 160])
def test_report_card_fits_the_terminal(sqlite_escola, width):
    options = ["--user", "joaquim", "run", "Boletim da turma", "--filter", "id_turma=26"]
    heading, line, *students, end = STYLE.sub("", shown(sqlite_escola, width, *options)).splitlines()
    assert "MAT" in heading.split() and "no room" not in end
    assert max(map(len, [heading, line, *students])) <= width
