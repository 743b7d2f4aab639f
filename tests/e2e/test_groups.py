"""zyn run and explain of groups, filter sources, managers and searches."""

import json

import jsonschema
import pytest
from collection_files import use_collections
from conftest import ROOT

SCHEMA = json.loads((ROOT / "docs/reference/explain.schema.json").read_text(encoding="utf-8"))


def column(name, kind):
    return (
        f'<Column tableName="a" tableNameOrigin="alunos" columnName="{name}" columnNameOrigin="{name}" VisibleName="" '
        f'Visible="1" Type="{kind}"><sql alias="{name}" index="0">a.{name}</sql></Column>'
    )


def students(name, filters="", unit=""):
    return (
        f'<moxSQLDataSource name="{name}"><Command type="1"><from>alunos a</from></Command>{unit}<Columns>'
        f"{column('id', 2)}{column('nome', 1)}{column('nota', 4)}{column('id_unidade', 2)}</Columns>"
        f'<Order><By tableName="a" columnName="id"/></Order><Filters><column>{filters}</column></Filters>'
        "</moxSQLDataSource>"
    )


def member(name, source, attributes="", more=""):
    return f'<moxDadoDataSource name="{name}" {attributes}>{source}{more}</moxDadoDataSource>'


def group(name, output, filter_source, *members):
    return (
        f'<moxGroupDataSource name="{name}" outputSource="{output}" filterSource="{filter_source}"><DataSources>'
        f"{''.join(members)}</DataSources></moxGroupDataSource>"
    )


NOTES = (
    '<moxFilterDataSource name="Notas boas" dataSource="Todos"><where>a.nota &gt;= 8</where>'
    '<selectColumns tipo="0"/></moxFilterDataSource>'
)
MANAGER = (
    '<moxManageFilterDataSource name="Gerente"><sources><source name="Todos"><avaliable/><related>'
    '<filter tableNameOrigin="alunos" columnNameOrigin="id" tableName="a" columnName="id" filterNameRelac="quem"/>'
    "</related></source></sources><Filters>"
    '<moxIntegralInFilter tableName="" columnName="quem" description="Quem"/></Filters></moxManageFilterDataSource>'
)
RELATION = (
    '<Relation columnNameOrigin="id" tableNameOrigin="alunos" columnName="id" tableName="a">'
    '<DataSourceOrigin dataSource="Todos" columnName="id"/></Relation>'
)
DEFINITIONS = (
    '<moxZYNCollection parentLibraryName="escola">'
    + students("Alunos", '<moxTextUniqueFilter tableName="a" columnName="nome" description="Nome"/>')
    + group(
        "Destaques",
        "Saída",
        "Gerente",
        member("Todos", students("Todos")),
        member("Boas", NOTES),
        member("Gerente", MANAGER),
        member("Saída", students("S"), "", RELATION),
    )
    + group("Fora", "Dentro", "Dentro", '<moxDadoDataSource name="Dentro" dataSource="Destaques"/>')
    + group("Sem saída", "Nada", "Todos", member("Todos", students("Todos")))
    + group("Anel", "A", "A", '<moxDadoDataSource name="A" dataSource="Anel"/>')
    + group("Perdido", "A", "A", '<moxDadoDataSource name="A" dataSource="Nenhum"/>')
    + '<moxSearch VisibleName="Alunos" InternalName="Busca"><General dataSource="Alunos"><AutoFill atStartup="1"/>'
    '<Allowing Reorder="0"/><InitialOrdering columnName="nome" columnNameOrigin="nome" tableName="a" '
    'tableNameOrigin="alunos" direction="desc"/></General></moxSearch>'
    + MANAGER
    + "</moxZYNCollection>"
)


@pytest.fixture
def definitions(school):
    use_collections(school, a=DEFINITIONS)
    return school


def ids(school, name, *arguments):
    rows = school.rows("run", name, "--format", "ndjson", *arguments)
    return [json.loads(line)["id"] for line in rows.splitlines()]


def explained(school, name, *arguments):
    document = json.loads(school.rows("explain", name, "--format", "json", *arguments))
    jsonschema.validate(document, SCHEMA)
    return document


@pytest.mark.parametrize("name", ["Destaques", "Fora"])
def test_group_runs_with_its_filters_relation_and_filter_source(definitions, name):
    assert ids(definitions, name) == [1, 3]
    assert ids(definitions, name, "--filter", "quem=1,2") == [1]
    assert ids(definitions, name, "--filter", f"{name}:Quem=3") == [3]


def test_group_is_explained_member_by_member(definitions):
    document = explained(definitions, "Destaques", "--filter", "quem=1,2")
    assert [(s["name"], s["depth"], s["rows"]) for s in document["sources"]] == [
        ("Destaques", 0, 1), ("Todos", 1, 1), ("Boas", 1, 1), ("Gerente", 1, 0), ("Saída", 1, 1),
    ]  # fmt: skip
    assert document["filterSources"] == [
        {"group": "Destaques", "member": "Boas", "query": "Todos", "texts": [{"piece": "where", "text": "a.nota >= 8"}]}
    ]
    assert document["sources"][0]["wiring"] and document["wiringProblems"] == [] and document["search"] is None
    (everybody,) = document["sources"][1]["statements"]
    assert [c["origin"] for c in everybody["conditions"]] == ["manager"]
    (output,) = document["sources"][4]["statements"]
    assert [(c["origin"], c["originName"]) for c in output["conditions"]] == [("relation", "Todos")]


def test_group_inside_a_group_is_nested(definitions):
    depths = [s["depth"] for s in explained(definitions, "Fora")["sources"]]
    assert depths == [0, 1, 2, 2, 2, 2]
    text = definitions.rows("explain", "Fora")
    assert "\n1. Fora: 2 rows, " in text and "\n  2. Dentro: 2 rows, " in text and "\n    3. Todos: 2 rows, " in text
    assert "\nwhat filter sources put into statements\n  Boas changes Todos in the group Destaques\n" in text


def test_dry_run_of_a_group_executes_what_a_relation_needs(definitions):
    document = explained(definitions, "Destaques", "--dry-run")
    executed = {s["name"]: s["executed"] for s in document["sources"]}
    assert executed["Todos"] and not executed["Saída"]
    assert [len(s["statements"]) for s in document["sources"]] == [0, 1, 0, 0, 1]


def test_search_runs_and_explains_as_its_source(definitions):
    assert ids(definitions, "Busca", "--filter", "nome=Ana%") == [1]
    document = explained(definitions, "Busca")
    assert document["definition"] == "Alunos"
    assert document["search"] == {
        "name": "Busca", "columns": ["id", "nome", "nota", "id_unidade"], "sortColumn": "nome", "sortDescending": True,
        "problem": None,
    }  # fmt: skip
    text = definitions.rows("explain", "Busca", "--dry-run")
    assert "the search Busca\n  puts the columns in the order id, nome, nota, id_unidade\n  sorts by nome, descending\n" in text


def test_wirings_that_cannot_work_are_told_by_name(definitions):
    refusals = {
        "Sem saída": "Falha: Sem saída; the group 'Sem saída' gives the rows of its member 'Nada', which it does not have",
        "Anel": "Fonte de dados externa inválida; the group 'Anel' holds itself",
        "Perdido": "; the member 'A' of the group 'Perdido' names 'Nenhum', which is no source that this session finds; in "
        "the definition 'Perdido'",
        "Gerente": "the definition 'Gerente' gives no data: it says in a group which filters there are",
    }
    for name, told in refusals.items():
        line = definitions.refusal("run", name)
        assert told in line and line.count(told) == 1, name


def test_failing_group_is_explained_up_to_the_failure(definitions):
    done = definitions.zyn("explain", "Sem saída", "--format", "json")
    document = json.loads(done.stdout)
    jsonschema.validate(document, SCHEMA)
    assert done.returncode == 1 and document["error"].startswith("Falha: Sem saída; ")
    assert document["wiringProblems"] == [
        "the group 'Sem saída' gives the rows of its member 'Nada', which it does not have"
    ]
    assert document["sources"][1]["rows"] == 4


def test_unknown_filters_of_groups_list_what_is_offered(definitions):
    line = definitions.refusal("run", "Destaques", "--filter", "x=1", status=2)
    assert "offered: quem=NUMBER,..." in line
