"""zyn search: what a screen shows, filters, order, pages, forms of output, refusals."""

import csv
import io
import json
import re

import pytest
from collection_files import use_collections
from conftest import School, make_sqlite
from test_terminal import STYLE, shown

DEFINITIONS = """<moxZYNCollection parentLibraryName="escola">
<moxSQLDataSource name="Unidades da rede">
  <Command type="0">select distinct id_unidade as id, obs as nome from alunos where id_unidade is not null
    order by id_unidade</Command>
  <mainData tableName="" columnName="id"/>
  <descricaoColumn tableName="" columnName="nome"/>
  <Columns>
    <Column columnName="id" Visible="1" Type="2"/><Column columnName="nome" Visible="1" Type="1"/>
  </Columns>
</moxSQLDataSource>
<moxSQLDataSource name="Alunos">
  <Command type="1"><from>alunos a</from></Command>
  <Columns>
    <Column tableName="a" columnName="id" columnNameOrigin="id" Type="2"><sql alias="id" index="0">a.id</sql></Column>
    <Column tableName="a" columnName="nome" columnNameOrigin="nome" VisibleName="Aluno" Visible="1" Type="1">
      <IconColumn tableName="a" columnName="situacao"/><refColumn tableName="a" columnName="id"/>
      <sql alias="nome" index="1">a.nome</sql></Column>
    <Column tableName="a" columnName="nota" columnNameOrigin="nota" VisibleName="Nota final" Visible="1" Type="4">
      <Formatters Visual="moxDecimalFormatter"><Visual precision="2" separator=","/></Formatters>
      <sql alias="nota" index="2">a.nota</sql></Column>
    <Column tableName="a" columnName="nascimento" columnNameOrigin="nascimento" VisibleName="Nascimento" Visible="1"
            Type="5"><sql alias="nascimento" index="3">a.nascimento</sql></Column>
    <Column tableName="a" columnName="id_unidade" columnNameOrigin="id_unidade" Type="2">
      <sql alias="id_unidade" index="4">a.id_unidade</sql></Column>
    <Column tableName="a" columnName="situacao" Type="1">
      <Formatters Icon="moxTextFormatter"><Icon/></Formatters>
      <sql alias="situacao" index="5">case when a.nota >= 9 then 'ok' when a.nota >= 0 then 'fraca' end</sql></Column>
  </Columns>
  <Filters>
    <column>
      <moxIntegralInFilter tableName="a" columnName="id" description="Código"/>
      <moxIntegralUniqueFilter tableName="a" columnName="id" description="Código"/>
      <moxTextUniqueFilter tableName="a" columnName="nome" description="Nome"/>
      <moxDoubleRangeFilter tableName="a" columnName="nota" description="Nota"/>
      <moxIntegralInFilter tableName="a" columnName="id_unidade" description="Unidade"/>
    </column>
  </Filters>
  <Relations><Rel dataSource="Unidades da rede" columnName="id">
    <DataSourceOrigin tableName="a" columnName="id_unidade"/></Rel></Relations>
</moxSQLDataSource>
<moxSearch InternalName="Pesquisa de alunos" VisibleName="Alunos da rede">
  <General dataSource="Alunos"><AutoFill atStartup="1"/><Allowing Reorder="1"/><Geometry width="640" height="480"/>
    <InitialOrdering tableName="a" columnName="id" direction="asc"/></General>
</moxSearch>
<moxSearch InternalName="Só com filtro" VisibleName="Alunos">
  <General dataSource="Alunos" requireFilter="1"><AutoFill atStartup="0"/><Allowing Reorder="0"/></General>
</moxSearch>
<moxSearch InternalName="Sem fonte" VisibleName="Alunos">
  <General dataSource="Nada"><AutoFill atStartup="0"/><Allowing Reorder="0"/></General>
</moxSearch>
</moxZYNCollection>"""

NAME = "Pesquisa de alunos"

PLAIN = '''id,nome,nota,nascimento,id_unidade,situacao
1,Ana Conceição,9.5,2001-02-03,3,ok
2,Zé,,,4,
3,"",10,1999-12-31,,ok
4,"漢字, ""aspas""",7,2000-01-01,5,fraca
'''


@pytest.fixture
def searches(school):
    use_collections(school, a=DEFINITIONS)
    return school


@pytest.fixture(scope="module")
def sqlite_searches(tmp_path_factory):
    folder = tmp_path_factory.mktemp("search")
    school = School(folder, make_sqlite(folder))
    use_collections(school, a=DEFINITIONS)
    return school


def ids(school, *arguments):
    return [row["id"] for row in json.loads(school.rows("search", NAME, "--format", "json", *arguments))]


def test_programs_get_all_columns_plain(searches):
    assert searches.rows("search", NAME) == PLAIN
    rows = [json.loads(line) for line in searches.rows("search", NAME, "--format", "ndjson").splitlines()]
    assert rows[0] == {
        "id": 1, "nome": "Ana Conceição", "nota": 9.5, "nascimento": "2001-02-03", "id_unidade": 3, "situacao": "ok",
    }  # fmt: skip
    assert rows[1]["nota"] is None and rows[2]["nome"] == ""
    assert json.loads(searches.rows("search", NAME, "--format", "json")) == rows


def test_people_get_what_a_screen_shows(searches):
    done = searches.zyn("search", NAME, "--format", "table")
    assert done.stdout == (
        "Aluno                  id  Nota final  Nascimento\n"
        "─────────────────────  ──  ──────────  ──────────\n"
        "[ok]    Ana Conceição   1        9,50  03/02/2001\n"
        "        Zé              2        null  null\n"
        "[ok]                    3       10,00  31/12/1999\n"
        '[fraca] 漢字, "aspas"   4        7,00  01/01/2000\n'
    )
    assert done.stderr == "4 rows\n"


def test_formatted_texts_go_to_programs_that_ask(searches):
    rows = json.loads(searches.rows("search", NAME, "--format", "json", "--formatted"))
    assert [row["nota"] for row in rows] == ["9,50", None, "10,00", "7,00"]
    assert rows[0]["nascimento"] == "03/02/2001" and rows[0]["id"] == "1"


def test_filters_narrow(searches):
    assert ids(searches, "--filter", "id=4,1") == [1, 4]
    assert ids(searches, "--filter", "nome=%a%") == [1, 4]
    assert ids(searches, "--filter", "nota=8..", "--filter", "id_unidade=3") == [1]


def test_rows_are_sorted_by_names_and_headings(searches):
    assert ids(searches, "--sort", "nota") == [2, 4, 1, 3]
    assert ids(searches, "--sort", "Nota final:desc") == [3, 1, 4, 2]
    assert ids(searches, "--sort", "situacao:desc,nota:asc") == [1, 3, 4, 2]
    assert ids(searches, "--sort", "situacao", "--sort", "id:desc") == [2, 4, 3, 1]
    assert ids(searches) == [1, 2, 3, 4], "as the search says"


def test_pages_part_the_rows(searches):
    assert ids(searches, "--page", 1, "--page-size", 3) == [1, 2, 3]
    assert ids(searches, "--page", 2, "--page-size", 3) == [4]
    assert ids(searches, "--page-size", 2) == [1, 2]
    assert ids(searches, "--page", 2, "--page-size", 2, "--sort", "id:desc") == [2, 1]
    assert ids(searches, "--page", 1) == [1, 2, 3, 4]
    assert ids(searches, "--limit", 1) == [1]


@pytest.mark.parametrize("form, nothing", [("csv", PLAIN.splitlines(True)[0]), ("json", "[]\n"), ("ndjson", "")])
def test_there_is_nothing_behind_the_last_page(sqlite_searches, form, nothing):
    assert sqlite_searches.rows("search", NAME, "--page", 2, "--format", form) == nothing
    assert sqlite_searches.rows("search", NAME, "--page", 2**31 - 1, "--page-size", 2**31 - 1, "--format", form) == nothing


def page_end(school, *arguments):
    return school.zyn("search", NAME, "--format", "table", *arguments).stderr


def test_a_page_tells_which_rows_it_has(sqlite_searches):
    assert page_end(sqlite_searches, "--page-size", 2) == "2 of 4 rows\n"
    assert page_end(sqlite_searches, "--page", 2, "--page-size", 2) == "rows 3 to 4 of 4\n"
    assert page_end(sqlite_searches, "--page", 2, "--page-size", 3) == "row 4 of 4\n"
    assert page_end(sqlite_searches, "--page", 3, "--page-size", 2) == (
        "0 of 4 rows\nzyn: note: there is no page 3: the last one is 2\n"
    )
    assert page_end(sqlite_searches, "--page", 3, "--filter", "id=9") == (
        "0 rows\nzyn: note: there is no page 3: there are no rows\n"
    )


def test_widths_are_those_of_the_page(sqlite_searches):
    lines = sqlite_searches.zyn("search", NAME, "--format", "table", "--filter", "id=2").stdout.splitlines()
    assert lines[2] == "Zé      2        null  null"


FILTERS = """filter,label,type,forms,required,values
id,Código,int,"list, one",no,""
nome,Nome,text,one,no,""
nota,Nota,double,range,no,""
id_unidade,Unidade,int,list,no,"3: 3 [U3], 4 [U4], 5 [U5]"
"""


def test_filters_are_listed_with_their_values(searches):
    assert searches.rows("search", NAME, "--filters") == FILTERS
    few = searches.rows("search", NAME, "--filters", "--choices", 1)
    assert few.splitlines()[-1] == 'id_unidade,Unidade,int,list,no,"3: 3 [U3], …"'


def test_filters_are_listed_for_programs(searches):
    entries = json.loads(searches.rows("search", NAME, "--filters", "--format", "json", "--choices", 2))
    assert entries[0] == {
        "filter": "id", "label": "Código", "source": "Alunos", "type": "int", "forms": ["list", "one"], "required": False,
        "values": None,
    }  # fmt: skip
    assert entries[3]["values"] == {
        "source": "Unidades da rede", "problem": "", "total": 3,
        "choices": [{"value": "3", "label": "[U3]"}, {"value": "4", "label": "[U4]"}],
    }  # fmt: skip
    lines = searches.rows("search", NAME, "--filters", "--format", "ndjson", "--choices", 2).splitlines()
    assert [json.loads(line) for line in lines] == entries


def test_values_that_cannot_be_read_are_told(sqlite_school):
    use_collections(sqlite_school, a=DEFINITIONS.replace("from alunos where id_unidade", "from nada where id_unidade"))
    entry = json.loads(sqlite_school.rows("search", NAME, "--filters", "--format", "json"))[3]
    assert entry["values"]["choices"] == [] and "nada" in entry["values"]["problem"]
    assert "not known: " in sqlite_school.rows("search", NAME, "--filters")


def test_a_search_that_requires_a_filter_says_so_in_its_list(sqlite_searches):
    done = sqlite_searches.zyn("search", "Só com filtro", "--filters")
    assert done.stdout == FILTERS
    assert done.stderr == "zyn: note: the search runs with a filter only\n"


def test_each_listed_filter_is_taken(searches):
    values = {"int": "1", "text": "Ana%", "double": "1..9"}
    for entry in json.loads(searches.rows("search", NAME, "--filters", "--format", "json")):
        searches.rows("search", NAME, "--filter", f"{entry['filter']}={values[entry['type']]}")


def test_refusals(sqlite_searches):
    school = sqlite_searches
    assert school.refusal("search", "pesquisa") == f'there is no definition "pesquisa"; similar: "{NAME}"'
    assert school.refusal("search", "Alunos") == 'the definition "Alunos" is no search: it is a moxSQLDataSource'
    assert school.refusal("search", "Sem fonte").startswith("Fonte de dados externa inválida")


@pytest.mark.parametrize(
    "arguments, line",
    [
        ([], "NAME is required"),
        (["Só com filtro"], "the search 'Só com filtro' runs only with a filter"),
        (
            [NAME, "--sort", "x"],
            "--sort: the search has no column 'x'; it has: id, nome, nota, nascimento, id_unidade, situacao",
        ),
        (
            [NAME, "--filter", "x=1"],
            "filter 'x=1': there is no filter on 'x'; offered: id=NUMBER,...; id=NUMBER; nome=TEXT; nota=MIN..MAX; "
            "id_unidade=NUMBER,...",
        ),
        ([NAME, "--page", "0"], "--page: Value 0 not in range 1 to 2147483647"),
        ([NAME, "--page", "1", "--limit", "1"], "--limit excludes --page"),
        ([NAME, "--filters", "--sort", "id"], "--sort excludes --filters"),
        ([NAME, "--choices", "3"], "--choices requires --filters"),
    ],
)
def test_wrong_usage(sqlite_searches, arguments, line):
    assert sqlite_searches.refusal("search", *arguments, status=2) == f"{line} (see zyn search --help)"


def test_units_are_needed_where_rows_belong_to_them(sqlite_school):
    unit = '<unidadeColumn tableName="a" columnName="id_unidade" allownull="0"/>'
    use_collections(
        sqlite_school,
        "[users.maria]\nid = 7\ndefault_unit = 3\nhead_office = 1\nunits = [3, 4]\nworks_by_units = true\n",
        a=DEFINITIONS.replace("<from>alunos a</from></Command>", f"<from>alunos a</from></Command>{unit}"),
    )
    refusal = sqlite_school.refusal("search", NAME, status=2)
    assert refusal.startswith(f"the definition '{NAME}' keeps to business units; it needs --user or --unit")
    assert ids(sqlite_school, "--user", "maria") == [1]
    assert ids(sqlite_school, "--user", "maria", "--unit", 3, "--unit", 4) == [1, 2]
    assert ids(sqlite_school, "--user", "maria", "--filter", "id_unidade=3,4,5") == [1]
    assert "5" in sqlite_school.refusal("--user", "maria", "--unit", 5, "search", NAME)


def test_failure_leaves_the_file_as_it_was(sqlite_searches):
    out = sqlite_searches.folder / "saida.csv"
    out.write_text("antes")
    sqlite_searches.refusal("search", "Sem fonte", "--out", out)
    assert out.read_text() == "antes"
    assert sqlite_searches.rows("search", NAME, "--out", out) == ""
    assert out.read_text(encoding="utf-8") == PLAIN


def test_time_is_told_in_shares(sqlite_searches):
    done = sqlite_searches.zyn("search", NAME, "--time")
    assert done.stdout == PLAIN
    share = r"\d+\.\d{3} s \(\d+ %\)"
    assert re.fullmatch(
        rf"time: \d+\.\d{{3}} s; start {share}, load {share}, formatting {share}, writing {share}\n", done.stderr
    )


def terminal_lines(school, width, *arguments):
    return STYLE.sub("", shown(school, width, "search", NAME, *arguments)).splitlines()


@pytest.mark.parametrize("width", [80, 160])
def test_a_terminal_shows_the_screen_in_its_width(sqlite_school, width):
    long_text = "'" + "palavra " * 30 + "'"
    use_collections(sqlite_school, a=DEFINITIONS.replace("a.nome</sql>", f"{long_text}</sql>"))
    *lines, end = terminal_lines(sqlite_school, width)
    assert max(map(len, lines)) == width
    assert "palavra…" in lines[2] or "palavr" in lines[2]
    assert lines[0].split() == ["Aluno", "id", "Nota", "final", "Nascimento"]
    assert lines[2].startswith("[ok]    palavra") and lines[2].endswith("   1        9,50  03/02/2001")
    assert end == "4 rows"


def test_columns_without_room_are_named(sqlite_searches):
    lines = terminal_lines(sqlite_searches, 24)
    assert all(len(line) <= 24 for line in lines[:-1])
    assert lines[-1] == "4 rows; no room for the column Nascimento"


def test_no_icon_steers_the_terminal(sqlite_school):
    use_collections(sqlite_school, a=DEFINITIONS.replace("then 'ok'", "then char(27) || '[2J'"))
    text = "\n".join(terminal_lines(sqlite_school, 80))
    assert "[␛[2J]" in text and "\x1b" not in text


def test_a_page_of_many_rows_is_written_alone(sqlite_school):
    many = """(with recursive n(i) as (select 1 union all select i + 1 from n where i < 200000)
      select i as id, 'nome ' || i as nome, i / 4.0 as nota, null as nascimento, 3 as id_unidade from n) a"""
    use_collections(sqlite_school, a=DEFINITIONS.replace("<from>alunos a</from>", f"<from>{many.replace('<', '&lt;')}</from>"))
    rows = csv.DictReader(
        io.StringIO(sqlite_school.rows("search", NAME, "--page", 3000, "--sort", "id:desc", "--formatted"))
    )
    assert [int(row["id"]) for row in rows] == list(range(50050, 50000, -1))
