"""Chains of sources: runs, orders, explanations, drawings, refusals, units."""

import concurrent.futures
import csv
import io
import json
import subprocess

import jsonschema
import pytest
from collection_files import use_collections
from conftest import ROOT

SCHEMA = json.loads((ROOT / "docs/reference/explain.schema.json").read_text(encoding="utf-8"))

TABLES = """
create table notas (id int primary key, aluno varchar(40), turma varchar(10), bimestre int, nota double,
                    sinal varchar(20), id_unidade int);
create table turmas (turma varchar(10), sala varchar(40))
"""

# Every row bears its unit's mark, so that a row of another unit is seen wherever it ends up.
NOTAS = [
    (1, "Ana", "A", 1, 8, 3),
    (2, "Ana", "A", 2, 6, 3),
    (3, "Bia, a outra", "A", 1, 4, 3),
    (4, "Caio", "B", 1, 10, 3),
    (5, "Davi", "C", 1, 2, 4),
    (6, "Eva", "A", 1, 0, 4),
    (7, "Ian", "B", 2, 1, 5),
]


def mark(unit):
    return f"[U{unit}]"


def column(name, kind, table="n"):
    return (
        f'<Column tableName="{table}" columnName="{name}" columnNameOrigin="{name}" Visible="1" Type="{kind}">'
        f'<sql alias="{name}" index="0">{table}.{name}</sql></Column>'
    )


COLUMNS = column("id", 2) + column("aluno", 1) + column("turma", 1) + column("bimestre", 2) + column("nota", 4)
UNIT = '<unidadeColumn tableName="n" columnName="id_unidade" allownull="0"/>'


def grades(name, condition=""):
    return f"""<moxSQLDataSource name="{name}">
  <Command type="1"><from>notas n</from>{condition}</Command>{UNIT}
  <Columns>{COLUMNS}{column("sinal", 1)}{column("id_unidade", 2)}</Columns>
  <Order><By tableName="n" columnName="id"/></Order>
  <Filters><column>
    <moxTextUniqueFilter tableName="n" columnName="turma" description="Turma"/>
    <moxIntegralInFilter tableName="n" columnName="id_unidade" description="Unidade"/>
    <moxIntegralRangeFilter tableName="n" columnName="id_unidade" description="Unidades"/>
  </column></Filters>
</moxSQLDataSource>"""


def aggregation(name, source, keys, functions, more=""):
    indexes = "".join(f'<Index name="{key}"/>' for key in keys)
    texts = "".join(f'<{kind} source="{given}" target="{target}"/>' for kind, given, target in functions)
    return (
        f'<moxAggregationDataSource name="{name}" dataSource="{source}" {more}><moxDataMatrixAggregator>'
        f"<Indexes>{indexes}</Indexes><Functions>{texts}</Functions></moxDataMatrixAggregator></moxAggregationDataSource>"
    )


def pivot(name, source, rows, cell, formatter="Bimestre"):
    texts = "".join(f'<row source="{row}"/>' for row in rows)
    return (
        f'<moxDataSourcePivoting name="{name}" source="{source}">'
        f'<columns><column source="bimestre" formatter="{formatter}"/></columns><rows>{texts}</rows>'
        f'<cells><cell source="{cell[0]}" aggregation="{cell[1]}"/></cells></moxDataSourcePivoting>'
    )


def union(name, *sources):
    texts = "".join(
        f'<source name="{source}"><moxDataMatrixTextColumn name="aluno"/><moxDataMatrixTextColumn name="sinal"/></source>'
        for source in sources
    )
    return f'<moxUnionDataSource name="{name}" generateTempTable="0"><sources>{texts}</sources></moxUnionDataSource>'


def sorter(name, source, columns, more):
    return f'<moxSorterDataSource name="{name}" source="{source}" replace="no" {more}>{columns}</moxSorterDataSource>'


MEANS = aggregation("Médias", "Notas", ["turma"], [("moxDoubleAvg", "nota", "media")], 'countColumn="1"')
DOUBLES = """<moxExpressionDataSource name="Dobros" source="Médias" convertZeroToNull="0"><expressions>
  <moxColumnExpression name="dobro" type="1" decimalPrecision="1" decimalOperation="0">media(0)*2</moxColumnExpression>
</expressions></moxExpressionDataSource>"""
JOINED = """<moxJoinDataSource name="Com sala"><sources>
  <source name="Dobros"><columns>
    <moxDataMatrixTextColumn columnName="turma" acolumnAlias="turma"/>
    <moxDataMatrixDoubleColumn columnName="media" acolumnAlias="media"/>
    <moxDataMatrixDoubleColumn columnName="dobro" acolumnAlias="dobro"/></columns><joins/></source>
  <source name="Turmas"><columns><moxDataMatrixTextColumn columnName="sala" acolumnAlias="onde"/></columns>
    <joins><join columnNameOrigin="turma" sourceNameRelac="Dobros" columnNameRelac="turma" columnNameJoin="turma"/></joins>
  </source>
</sources></moxJoinDataSource>"""
CHOOSABLE = '<column name="turma" desc="Turma"/><column name="media" desc="Média" dir="desc"/>'
ROOMS = f"""<moxSQLDataSource name="Turmas"><Command type="1"><from>turmas t</from></Command>
  <Columns>{column("turma", 1, "t")}{column("sala", 1, "t")}</Columns></moxSQLDataSource>"""
CHANGE = """<moxObjectDataSource name="Corrigir nota">
  <Sql>update notas set nota = {{nota}} where id = {{id}} and id &lt; 100</Sql>
  <Binds><moxDoubleUniqueFilter columnName="nota" description="Nota"/>
    <moxIntegralUniqueFilter columnName="id" description="Id"/></Binds></moxObjectDataSource>"""

CHAINS = f"""<moxZYNCollection parentLibraryName="escola">
<moxFormatterZYNItem><moxIntegralFormatter description="Bimestre" suffix="º bim."/></moxFormatterZYNItem>
{grades("Notas")}{grades("Segundas", "<where>n.bimestre = 2</where>")}{ROOMS}{MEANS}{DOUBLES}{JOINED}{CHANGE}
{sorter("Boletim", "Com sala", CHOOSABLE, 'userDefined="yes" description="Ordem"')}
{sorter("Por turma", "Médias", '<column name="turma"/>', 'userDefined="no"')}
{sorter("Duas vezes", "Boletim", '<column name="onde" dir="asc"/>', 'userDefined="yes" description="Fim"')}
{pivot("Cruzada", "Notas", ["aluno"], ("nota", "moxDoubleSum"))}
{pivot("Cruzada simples", "Notas", ["aluno"], ("nota", "moxDoubleSum"), "moxTextFormatter")}
{pivot("Cruzada sem", "Notas", ["aluno"], ("nota", "moxDoubleSum"), "Nenhum")}
{union("União", "Notas", "Segundas")}
{sorter("Anel", "Elo", '<column name="a"/>', 'userDefined="no"')}
{sorter("Elo", "Anel", '<column name="a"/>', 'userDefined="no"')}
{aggregation("Órfã", "Nenhuma", ["turma"], [])}
{sorter("Ordem da órfã", "Órfã", '<column name="turma"/>', 'userDefined="no"')}
{pivot("Coluna errada", "Notas", ["nada"], ("nota", "moxDoubleSum"))}
{sorter("Oferta vazia", "Médias", '<column name="nada" dir="asc"/>', 'userDefined="yes" description="Ordem"')}
{sorter("De nada", "Corrigir nota", '<column name="a"/>', 'userDefined="no"')}
{sorter("Anônima", "", '<column name="a"/>', 'userDefined="no"')}
{aggregation("Trocada", "Notas", ["série"], [("moxDoubleAvg", "bimestre", "media")])}
<moxSQLDataSource name="Sem tabela"><Command type="0">select turma from nenhuma</Command></moxSQLDataSource>
{sorter("Sobre nada", "Sem tabela", '<column name="turma"/>', 'userDefined="no"')}
{union("Terceira", "Notas", "Sobre nada")}
<moxGroupDataSource name="Grupo" outputSource="soma" filterSource="notas"><DataSources>
  <moxDadoDataSource name="notas" dataSource="Notas"/>
  <moxDadoDataSource name="soma"><moxExpressionDataSource name="soma" source="notas"><expressions>
    <moxColumnExpression name="x">nada(0)</moxColumnExpression></expressions></moxExpressionDataSource></moxDadoDataSource>
</DataSources></moxGroupDataSource>
<moxSearch VisibleName="Somas" InternalName="Busca"><General dataSource="Grupo"><AutoFill atStartup="1"/></General></moxSearch>
</moxZYNCollection>"""


@pytest.fixture
def chains(school):
    school.rows("sql", TABLES)
    for key, student, group, term, grade, unit in NOTAS:
        school.rows("sql", f"insert into notas values ({key}, '{student}', '{group}', {term}, {grade}, '{mark(unit)}', {unit})")
    school.rows("sql", "insert into turmas values ('A', 'Sala \"1\"'), ('B', 'Sala 2'), ('C', 'Sala 3')")
    use_collections(school, more=USERS, a=CHAINS)
    return school


USERS = """
[users.maria]
id = 7
default_unit = 3
head_office = 1
units = [3, 4]
works_by_units = true
"""


def table(school, name, *arguments):
    return list(csv.reader(io.StringIO(school.rows("--unit", "3", "run", name, *arguments), newline="")))


def explained(school, name, *arguments):
    document = json.loads(school.rows("--unit", "3", "explain", name, "--format", "json", *arguments))
    jsonschema.validate(document, SCHEMA)
    return document


def shown(school, name):
    return json.loads(school.rows("show", name, "--format", "json"))


def test_chain_runs_with_all_that_it_reads(chains):
    assert table(chains, "Boletim") == [
        ["turma", "media", "dobro", "onde"],
        ["B", "10", "20", "Sala 2"],
        ["A", "6", "12", 'Sala "1"'],
    ]


def test_cross_table_takes_its_labels_from_a_formatter(chains):
    rows = [["Ana", "8", "6"], ["Bia, a outra", "4", ""], ["Caio", "10", ""]]
    assert table(chains, "Cruzada") == [["aluno", "1º bim.", "2º bim."], *rows]
    assert table(chains, "Cruzada sem") == [["aluno", "1", "2"], *rows]


def test_cross_table_runs_with_a_registered_formatter(chains):
    assert len(table(chains, "Cruzada simples")) > 1


def test_filters_reach_the_query_at_the_bottom(chains):
    assert [row[0] for row in table(chains, "Boletim", "--filter", "turma=B")] == ["turma", "B"]
    assert [row[0] for row in table(chains, "Boletim", "--filter", "Notas:Turma=A")] == ["turma", "A"]


def test_sort_answers_the_sorter_of_the_chain(chains):
    def first_cells(*arguments):
        return [row[0] for row in table(chains, "Boletim", *arguments)[1:]]

    assert first_cells() == ["B", "A"]
    assert first_cells("--sort", "media") == ["A", "B"]
    assert first_cells("--sort", "Média:desc") == ["B", "A"]
    assert first_cells("--sort", "Boletim:turma:asc") == ["A", "B"]
    assert first_cells("--sort", "turma,media:desc") == ["A", "B"]


def test_sort_of_several_sorters_aims_at_the_nearest(chains):
    assert [s["does"] for s in explained(chains, "Duas vezes", "--sort", "onde:desc")["sources"]][-1] == (
        "sorts by onde, descending, as its user asks"
    )
    document = explained(chains, "Duas vezes", "--sort", "media")
    assert document["sort"] == [{"source": "Boletim", "column": "media", "descending": False}]
    refused = chains.refusal("--unit", "3", "run", "Duas vezes", "--sort", "x", status=2)
    assert "on offer: Duas vezes:onde, Boletim:turma, Boletim:media" in refused


def test_sort_that_nobody_offers_is_refused_with_what_is(chains):
    assert chains.refusal("--unit", "3", "run", "Boletim", "--sort", "nota", status=2) == (
        "--sort: there is no column 'nota' to sort by; on offer: turma, media (see zyn run --help)"
    )
    assert chains.refusal("--unit", "3", "explain", "Por turma", "--sort", "turma", status=2) == (
        "--sort: the definition 'Por turma' has no order to choose: no sorter in it leaves it to its user "
        "(see zyn explain --help)"
    )
    assert "--sort turma,: a column has no name" in chains.refusal("run", "Boletim", "--unit", "3", "--sort", "turma,", status=2)


def test_explanation_tells_every_source_with_rows_and_time(chains):
    document = explained(chains, "Boletim")
    assert [(s["name"], s["rows"], s["reads"]) for s in document["sources"]] == [
        ("Notas", 4, []), ("Médias", 2, ["Notas"]), ("Dobros", 2, ["Médias"]), ("Turmas", 3, []),
        ("Com sala", 2, ["Dobros", "Turmas"]), ("Boletim", 2, ["Com sala"]),
    ]  # fmt: skip
    assert document["sort"] == [] and document["chainProblems"] == [] and document["wiringProblems"] == []
    text = chains.rows("--unit", "3", "explain", "Boletim", "--sort", "turma")
    assert "order        turma\n" in text
    assert "\n2. Médias: 2 rows, " in text
    assert " ms\n  reads Notas\n  groups by turma, computes media\n" in text
    assert "\n  reads Dobros, Turmas\n  joins the rows\n" in text
    assert text.endswith("\n  reads Com sala\n  sorts by turma, as its user asks\n")


def test_dry_run_of_a_chain_sends_nothing(chains):
    document = explained(chains, "Boletim", "--dry-run")
    assert [s["executed"] for s in document["sources"]] == [False] * 6
    assert [len(s["statements"]) for s in document["sources"]] == [1, 0, 0, 1, 0, 0]


def test_show_draws_a_chain_down_to_the_queries(chains):
    text = chains.rows("show", "Boletim")
    assert text.startswith("Boletim\n├─ kind: data-source\n├─ class: moxSorterDataSource\n├─ library: escola\n")
    tree = text.split("library: escola\n")[1]
    assert tree == (
        '├─ lets its user sort "Ordem" by\n'
        '│  ├─ turma "Turma"\n'
        '│  └─ media "Média", descending, the default\n'
        "└─ reads\n"
        "   └─ Com sala (moxJoinDataSource)\n"
        "      ├─ joins\n"
        "      │  ├─ Dobros\n"
        "      │  │  ├─ turma: text\n"
        "      │  │  ├─ media: double\n"
        "      │  │  └─ dobro: double\n"
        "      │  └─ Turmas\n"
        "      │     ├─ where its turma is turma\n"
        "      │     └─ sala as onde: text\n"
        "      ├─ columns\n"
        "      │  ├─ turma: text\n"
        "      │  ├─ media: double\n"
        "      │  ├─ dobro: double\n"
        "      │  └─ onde: text\n"
        "      └─ reads\n"
        "         ├─ Dobros (moxExpressionDataSource)\n"
        "         │  ├─ computes\n"
        "         │  │  └─ dobro: double = media(0)*2, rounded to 1 decimal\n"
        "         │  ├─ columns\n"
        "         │  │  └─ dobro: double\n"
        "         │  └─ reads\n"
        "         │     └─ Médias (moxAggregationDataSource)\n"
        "         │        ├─ groups by turma\n"
        "         │        ├─ computes\n"
        "         │        │  └─ media is moxDoubleAvg of nota\n"
        "         │        ├─ counts the rows of each group\n"
        "         │        ├─ columns\n"
        "         │        │  ├─ turma: text\n"
        "         │        │  ├─ media: double\n"
        "         │        │  └─ data_count: int\n"
        "         │        └─ reads\n"
        "         │           └─ Notas (moxSQLDataSource)\n"
        "         └─ Turmas (moxSQLDataSource)\n"
    )


def test_show_draws_the_other_kinds(chains):
    assert (
        '├─ rows by aluno\n├─ columns by bimestre as Bimestre\n├─ cells: nota by moxDoubleSum\n' in chains.rows("show", "Cruzada")
    )
    assert "├─ puts one below the other\n│  ├─ Notas\n│  │  ├─ aluno: text\n" in chains.rows("show", "União")
    assert "├─ runs update notas set nota = {{nota}} where id = {{id}} and id < 100\n└─ filters\n" in chains.rows(
        "show", "Corrigir nota"
    )
    assert "├─ sorts by\n│  └─ turma\n" in chains.rows("show", "Por turma")


def test_show_tells_what_a_source_computes_as_json(chains):
    computes = shown(chains, "Médias")["computes"]
    assert (computes["operation"], computes["keys"], computes["counts_rows"]) == ("aggregation", ["turma"], True)
    assert computes["inputs"] == [{"source": "Notas", "columns": [], "meetings": []}]
    assert computes["functions"] == [{"kind": "moxDoubleAvg", "source": "nota", "target": "media"}]
    sort = shown(chains, "Boletim")["computes"]
    assert (sort["user_sorts"], sort["heading"]) == (True, "Ordem")
    assert sort["sort"][1] == {"column": "media", "description": "Média", "direction": "descending", "default": True}
    join = shown(chains, "Com sala")["computes"]["inputs"][1]
    assert join["meetings"] == [{"column": "turma", "result_column": "turma"}]
    assert join["columns"] == [{"name": "sala", "alias": "onde", "type": "text"}]
    assert shown(chains, "Dobros")["computes"]["expressions"] == [
        {"column": "dobro", "expression": "media(0)*2", "type": "double", "decimals": 1, "cut": False}
    ]
    assert shown(chains, "Cruzada")["computes"]["across"] == [{"column": "bimestre", "means": "Bimestre"}]
    assert shown(chains, "Corrigir nota")["computes"]["statement"].startswith("update notas")


def test_show_draws_a_source_that_is_read_twice_once(chains):
    use_collections(chains, more=USERS, a=CHAINS.replace("</moxZYNCollection>", union("Ambas", "Boletim", "Médias") + "</moxZYNCollection>"))
    text = chains.rows("show", "Ambas")
    assert text.count("groups by turma") == 1 and "   └─ Médias (moxAggregationDataSource), see above\n" in text


def test_show_tells_rings_and_missing_inputs(chains):
    assert "Anel (moxSorterDataSource), see above: a ring" in chains.rows("show", "Anel")
    assert "\n└─ reads\n   └─ Nenhuma: there is no such source\n" in chains.rows("show", "Órfã")
    assert "\n└─ reads\n   └─ no source is named\n" in chains.rows("show", "Anônima")
    (missing,) = shown(chains, "Órfã")["reads"]
    assert missing == {
        "name": "Nenhuma", "class": "", "repeated": False, "ring": False, "missing": True, "reads": [],
    }  # fmt: skip


def grade_of(school, key):
    return school.rows("sql", f"select nota from notas where id = {key}").splitlines()[1]


def test_what_changes_data_runs_on_request_only(chains):
    arguments = ["Corrigir nota", "--filter", "nota=9.5", "--filter", "id=1"]
    for command in ("run", "explain"):
        assert chains.refusal(command, *arguments, status=2) == (
            f"the definition 'Corrigir nota' changes data; it is run with --yes only (see zyn {command} --help)"
        )
    assert float(grade_of(chains, 1)) == 8
    done = chains.zyn("run", *arguments, "--yes", "--out", "nada.csv")
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "the definition ran; it gives no rows\n")
    assert float(grade_of(chains, 1)) == 9.5 and float(grade_of(chains, 2)) == 6
    assert not (chains.folder / "nada.csv").exists()
    assert chains.rows("--quiet", "run", "Corrigir nota", "--yes") == ""


def test_dry_run_never_changes_data(chains):
    arguments = ["explain", "Corrigir nota", "--filter", "nota=9.5", "--filter", "id=1", "--dry-run"]
    text = chains.rows(*arguments)
    assert "1. Corrigir nota: put together, not run\n" in text and "runs a statement that gives no rows" in text
    document = json.loads(chains.rows(*arguments, "--format", "json"))
    jsonschema.validate(document, SCHEMA)
    (statement,) = document["sources"][0]["statements"]
    assert statement["sql"].split() == "update notas set nota = ? where id = ? and id < 100".split()
    assert [p["values"][0]["value"] for p in statement["parameters"]] == ["9.5", "1"]
    assert float(grade_of(chains, 1)) == 8


def test_explanation_of_what_changes_data(chains):
    text = chains.rows("explain", "Corrigir nota", "--filter", "id=1", "--yes")
    assert "1. Corrigir nota: no rows by design, " in text and "value: null" in text
    assert grade_of(chains, 1) == ""


LEAKS = (
    aggregation("Sinais", "Notas", ["turma"], [("moxTextAppend", "sinal", "sinais")])
    + aggregation("Sinais guardados", "Notas", ["turma"], [("moxTextAppend", "sinal", "sinais")], 'generateTempTable="1"')
    + pivot("Sinais cruzados", "Notas", ["aluno"], ("sinal", "moxTextAppend"))
    + """<moxJoinDataSource name="Sinais juntos"><sources>
  <source name="Notas"><columns><moxDataMatrixTextColumn columnName="turma" acolumnAlias="turma"/>
    <moxDataMatrixTextColumn columnName="sinal" acolumnAlias="um"/></columns><joins/></source>
  <source name="Segundas"><columns><moxDataMatrixTextColumn columnName="sinal" acolumnAlias="outro"/></columns><joins>
    <join columnNameOrigin="turma" sourceNameRelac="Notas" columnNameRelac="turma" columnNameJoin="turma"/></joins></source>
</sources></moxJoinDataSource>"""
    + """<moxGroupDataSource name="Lidos de volta" outputSource="lidos" filterSource="Notas"><DataSources>
  <moxDadoDataSource name="Notas" dataSource="Notas"/>
  <moxDadoDataSource name="guardados" dataSource="Sinais guardados"/>
  <moxDadoDataSource name="lidos"><moxSQLDataSource name="lidos"><Command type="0">select turma, sinais from guardados</Command>
    <Columns><Column columnName="turma" Type="1"/><Column columnName="sinais" Type="1"/></Columns></moxSQLDataSource>
  </moxDadoDataSource>
</DataSources></moxGroupDataSource>"""
)
LEAKY = ["Sinais", "Sinais cruzados", "Sinais juntos", "União", "Lidos de volta"]


@pytest.fixture
def leaky(chains):
    use_collections(chains, more=USERS, a=CHAINS.replace("</moxZYNCollection>", LEAKS + "</moxZYNCollection>"))
    return chains


@pytest.mark.parametrize("name", LEAKY)
def test_no_unit_of_another_run_is_seen_through_a_chain(leaky, name):
    everything = leaky.rows("--unit", "3", "--unit", "4", "--unit", "5", "run", name)
    assert all(mark(unit) in everything for unit in (3, 5))
    for arguments in ([], ["--filter", "id_unidade=3,4,5"], ["--filter", "id_unidade=1.."]):
        source = [] if name == "Lidos de volta" else ["--filter", "Notas:" + arguments[1]] if arguments else []
        given = source or arguments
        seen = leaky.rows("--user", "maria", "run", name, *given)
        assert mark(3) in seen and mark(4) not in seen and mark(5) not in seen, (name, given)
        both = leaky.rows("--user", "maria", "--unit", "3", "--unit", "4", "run", name, *given)
        assert mark(5) not in both
    foreign = ["--filter", ("" if name == "Lidos de volta" else "Notas:") + "id_unidade=5"]
    assert mark(5) not in leaky.rows("--user", "maria", "run", name, *foreign)


def test_temporary_tables_of_runs_at_once_are_apart(leaky):
    def run(unit):
        return leaky.rows("--unit", str(unit), "run", "Lidos de volta")

    units = [3, 4, 5] * 4
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        for unit, text in zip(units, pool.map(run, units)):
            assert mark(unit) in text
            assert not any(mark(other) in text for other in {3, 4, 5} - {unit})


def test_filters_on_units_of_every_query_of_a_chain_are_kept(leaky):
    document = json.loads(
        leaky.rows("--user", "maria", "explain", "União", "--filter", "Notas:id_unidade=3,5", "--filter", "Segundas:id_unidade=5",
                   "--format", "json")
    )  # fmt: skip
    assert [f["keptToUnits"] for f in document["filters"]] == [True, True]
    assert [(s["name"], s["rows"]) for s in document["sources"]] == [("Notas", 4), ("Segundas", 0), ("União", 4)]


HOSTILE = ["a,b", 'a "b"', "a\nb", "a\r\nb", '"', ",", "\n", " a ", ";", "á,\"\n", "\x1b[31m"]


def test_cells_go_round_through_another_reader_of_csv(sqlite_school):
    sqlite_school.rows("sql", "create table duros (id int, texto text)")
    for number, text in enumerate(HOSTILE):
        quoted = text.replace("'", "''")
        sqlite_school.rows("sql", "-", stdin=f"insert into duros values ({number}, '{quoted}')")
    definition = f"""<moxZYNCollection><moxSQLDataSource name="Duros"><Command type="1"><from>duros t</from></Command>
      <Columns>{column("id", 2, "t")}{column("texto", 1, "t")}</Columns>
      <Order><By tableName="t" columnName="id"/></Order></moxSQLDataSource>
      {sorter("Duros em ordem", "Duros", '<column name="id" dir="asc"/>', 'userDefined="no"')}</moxZYNCollection>"""
    use_collections(sqlite_school, a=definition)
    for name in ("Duros", "Duros em ordem"):
        done = subprocess.run([*zyn_call(sqlite_school), "run", name], cwd=sqlite_school.folder, capture_output=True, check=True)
        rows = list(csv.reader(io.StringIO(done.stdout.decode("utf-8"), newline=""), strict=True))
        assert rows == [["id", "texto"], *([str(i), text] for i, text in enumerate(HOSTILE))]


def zyn_call(school):
    return [school.zyn("--version").args[0]]


def test_columns_of_one_name_are_all_written(sqlite_school):
    assert sqlite_school.rows("sql", "select 1 as a, 2 as a, '' as \"\", 3 as \"0\"") == 'a,a,"",0\n1,2,"",3\n'
