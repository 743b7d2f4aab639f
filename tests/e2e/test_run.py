"""zyn run: definitions by name, filters, forms of output, refusals."""

import json
import re

import pytest
from conftest import make_sqlite, School

FORMATTER = (
    '<Formatters Visual="moxDecimalFormatter"><Visual prefix="R$ " precision="2" separator=",">'
    '<thousand grouping="3" separator="."/></Visual></Formatters>'
)


def column(name, kind, heading="", formatter=""):
    return (
        f'<Column tableName="a" columnName="{name}" columnNameOrigin="{name}" VisibleName="{heading}" Visible="1" '
        f'Type="{kind}">{formatter}<sql alias="{name}" index="0">a.{name}</sql></Column>'
    )


DEFINITIONS = f"""<moxZYNCollection>
<moxSQLDataSource name="Alunos">
  <Command type="1"><from>alunos a</from></Command>
  <Columns>
    {column("id", 2, "Código")}{column("nome", 1, "Aluno")}{column("nota", 4, "Nota", FORMATTER)}
    {column("nascimento", 5)}
  </Columns>
  <Order><By tableName="a" columnName="id"/></Order>
  <Filters><column>
    <moxIntegralInFilter tableName="a" columnName="id" description="Código"/>
    <moxTextUniqueFilter tableName="a" columnName="nome" description="Nome"/>
    <moxDoubleRangeFilter tableName="a" columnName="nota" description="Nota"/>
    <moxDateRangeFilter tableName="a" columnName="nascimento" description="Nascimento"/>
  </column></Filters>
</moxSQLDataSource>
<moxSQLDataSource name="Acima da nota">
  <Command type="0">select id, nome from alunos where nota >= {{{{minima}}}} order by id</Command>
  <Columns>{column("id", 2)}{column("nome", 1)}</Columns>
  <Filters><custom>
    <moxIntegralUniqueFilter columnName="{{{{minima}}}}" require="1" description="Nota mínima"/>
  </custom></Filters>
</moxSQLDataSource>
<moxSQLDataSource name="Sem tabela">
  <Command type="0">select * from nada</Command><Columns>{column("id", 2)}</Columns>
</moxSQLDataSource>
<moxFormatterZYNItem description="Reais"><moxDecimalFormatter precision="2"/></moxFormatterZYNItem>
</moxZYNCollection>
"""


def furnish(school):
    (school.folder / "definicoes").mkdir()
    (school.folder / "definicoes/escola.xml").write_text(DEFINITIONS, encoding="utf-8")
    (school.folder / "colecoes").mkdir()
    school.write_settings(f'[database]\nurl = "{school.url}"\n\n[ZYNCollectionDirs]\nescola = "colecoes"\n')
    school.rows("pack", "definicoes", "--out", "colecoes/escola.zcf")
    return school


@pytest.fixture
def definitions(school):
    return furnish(school)


@pytest.fixture(scope="module")
def sqlite_definitions(tmp_path_factory):
    folder = tmp_path_factory.mktemp("run")
    return furnish(School(folder, make_sqlite(folder)))


ALL = '''id,nome,nota,nascimento
1,Ana Conceição,9.5,2001-02-03
2,Zé,,
3,"",10,1999-12-31
4,"漢字, ""aspas""",7,2000-01-01
'''


def ids(school, *filters):
    arguments = [part for text in filters for part in ("--filter", text)]
    return [int(row["id"]) for row in json.loads(school.rows("run", "Alunos", "--format", "json", *arguments))]


def test_rows_come_as_csv_elsewhere_than_on_a_terminal(definitions):
    assert definitions.rows("run", "Alunos") == ALL


def test_limit_writes_the_first_rows(definitions):
    assert definitions.rows("run", "Alunos", "--limit", 1) == "".join(ALL.splitlines(True)[:2])


def test_table_shows_headings_and_formatted_values(definitions):
    done = definitions.zyn("run", "Alunos", "--format", "table")
    lines = done.stdout.splitlines()
    assert lines[0].split() == ["Código", "Aluno", "Nota", "nascimento"]
    assert "R$ 9,50" in lines[2] and "null" in lines[3] and "R$ 10,00" in lines[4]
    assert lines[0].index("Nota") + len("Nota") == lines[2].index("R$ 9,50") + len("R$ 9,50"), "numbers stand to the right"
    assert done.stderr == "4 rows\n"


def test_plain_values_go_to_programs(definitions):
    rows = [json.loads(line) for line in definitions.rows("run", "Alunos", "--format", "ndjson").splitlines()]
    assert rows[0] == {"id": 1, "nome": "Ana Conceição", "nota": 9.5, "nascimento": "2001-02-03"}


def test_formatted_values_go_to_programs_that_ask(definitions):
    rows = json.loads(definitions.rows("run", "Alunos", "--format", "json", "--formatted"))
    assert [row["nota"] for row in rows] == ["R$ 9,50", None, "R$ 10,00", "R$ 7,00"]
    assert definitions.rows("run", "Alunos", "--formatted", "--limit", 1).splitlines()[1] == (
        '1,Ana Conceição,"R$ 9,50",2001-02-03'
    )


def test_filters_narrow(definitions):
    assert ids(definitions, "id=4,1") == [1, 4]
    assert ids(definitions, "nome=%a%") == [1, 4]
    assert ids(definitions, "nota=7..9,5") == [1, 4]
    assert ids(definitions, "nascimento=..01/01/2000") == [3, 4]
    assert ids(definitions, "nota=8..", "nascimento=2001-01-01..") == [1]
    assert ids(definitions, "a.nome=") == [3]


def test_token_takes_its_value(definitions):
    assert definitions.rows("run", "Acima da nota", "--filter", "minima=9").splitlines() == ["id,nome", "1,Ana Conceição", '3,""']


@pytest.mark.parametrize("value", ["' or 1=1 -- ", '"; drop table alunos; --', "{{minima}}", "x' /* ", "?", "@", "\\"])
def test_values_are_values(definitions, value):
    assert ids(definitions, f"nome={value}") == []
    assert ids(definitions) == [1, 2, 3, 4]


def refusal(school, *arguments):
    return school.refusal("run", *arguments, status=2)


def test_wrong_filters_are_wrong_usage(sqlite_definitions):
    school = sqlite_definitions
    hint = " (see zyn run --help)"
    offered = "offered: id=NUMBER,...; nome=TEXT; nota=MIN..MAX; nascimento=MIN..MAX"
    assert refusal(school, "Alunos", "--filter", "x=1") == f"filter 'x=1': there is no filter on 'x'; {offered}{hint}"
    assert refusal(school, "Alunos", "--filter", "id") == f"filter 'id': it is written COLUMN=VALUE; {offered}{hint}"
    assert refusal(school, "Alunos", "--filter", "id=a") == (
        f"filter 'id=a': 'a' is no whole number between -2147483648 and 2147483647{hint}"
    )
    assert refusal(school, "Alunos", "--filter", "nota=9..1") == (
        f"filter 'nota=9..1': the range '9..1' ends before it begins{hint}"
    )
    assert refusal(school, "Alunos", "--filter", "id=1", "--filter", "id=2") == (
        f"filter 'id=2': this filter is given twice{hint}"
    )
    assert refusal(school, "Acima da nota") == f"a required filter is missing: minima=NUMBER{hint}"


def test_unknown_definition_is_named(sqlite_definitions):
    assert sqlite_definitions.refusal("run", "Nada") == "there is no definition 'Nada'"


def test_definition_without_data_is_named(sqlite_definitions):
    names = sqlite_definitions.rows("items", "--kind", "formatter", "--format", "ndjson").splitlines()
    name = json.loads(names[0])["description"]
    line = sqlite_definitions.refusal("run", name) if name else ""
    assert line in ("", f"the definition '{name}' gives no data: it is a moxFormatterZYNItem")


def test_failure_names_the_definition(definitions):
    line = definitions.refusal("run", "Sem tabela")
    assert "nada" in line and line.endswith("in the definition 'Sem tabela'")


def test_failure_leaves_the_file_as_it_was(sqlite_definitions):
    out = sqlite_definitions.folder / "saida.csv"
    out.write_text("antes")
    sqlite_definitions.refusal("run", "Sem tabela", "--out", out)
    assert out.read_text() == "antes"
    assert sqlite_definitions.rows("run", "Alunos", "--out", out) == ""
    assert out.read_text(encoding="utf-8") == ALL


def test_time_is_told_in_shares(sqlite_definitions):
    done = sqlite_definitions.zyn("run", "Alunos", "--time")
    assert done.stdout == ALL
    share = r"\d+\.\d{3} s \(\d+ %\)"
    assert re.fullmatch(
        rf"time: \d+\.\d{{3}} s; start {share}, load {share}, formatting {share}, writing {share}\n", done.stderr
    )


def test_name_is_needed(sqlite_definitions):
    assert sqlite_definitions.refusal("run", status=2).startswith("NAME is required")
