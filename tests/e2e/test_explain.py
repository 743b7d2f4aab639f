"""zyn explain: what was sent, with which values, and where each came from."""

import json

import jsonschema
import pytest
from conftest import ROOT
from example_school import mariadb_escola, source_names, sqlite_escola  # noqa: F401
from test_unit_restriction import required_filters

SCHEMA = json.loads((ROOT / "docs/reference/explain.schema.json").read_text(encoding="utf-8"))
REFERENCE = (ROOT / "docs/reference/explain.md").read_text(encoding="utf-8")
CANARY = """x' or 1=1 -- " /* {{p}} } ? @ # `"""


@pytest.fixture(params=["sqlite_escola", "mariadb_escola"])
def escola(request):
    return request.getfixturevalue(request.param)


def explained(school, name, *arguments, user="joaquim"):
    text = school.rows("--user", user, "explain", name, "--format", "json", *arguments)
    document = json.loads(text)
    jsonschema.validate(document, SCHEMA)
    return document


def only_statement(document):
    (source,) = document["sources"]
    (statement,) = source["statements"]
    return statement


def test_schema_is_one():
    jsonschema.Draft7Validator.check_schema(SCHEMA)


def test_reference_tells_every_member_and_origin():
    def members(schema):
        yield from schema.get("properties", {})
        for child in schema.get("properties", {}).values():
            yield from members(child)
            yield from members(child.get("items", {}))

    told = set(members(SCHEMA))
    for definition in SCHEMA["definitions"].values():
        told |= set(members(definition))
    told |= set(SCHEMA["definitions"]["part"]["properties"]["origin"]["enum"])
    told |= set(SCHEMA["definitions"]["value"]["properties"]["type"]["enum"])
    assert [name for name in told if f"`{name}`" not in REFERENCE] == []


@pytest.mark.parametrize("name", source_names())
def test_every_definition_is_explained_by_the_schema(escola, name):
    required = required_filters(escola, name)
    run = explained(escola, name, *required)
    assert run["definition"] == name and run["error"] is None
    assert run["sources"][-1]["name"] == name and run["sources"][-1]["executed"]
    dry = explained(escola, name, "--dry-run", *required)
    assert dry["dryRun"] and not dry["sources"][-1]["executed"] and dry["sources"][-1]["rows"] == 0
    assert [s["statements"] for s in dry["sources"]] == [s["statements"] for s in run["sources"]]
    for source in run["sources"]:
        for statement in source["statements"]:
            values = [v for part in statement["parameters"] + statement["conditions"] for v in part["values"]]
            assert len(values) == marks(statement["sql"]), "every mark has its value"


def marks(sql):
    """Question marks outside quotes."""
    return "".join(sql.split("'")[::2]).count("?")


def test_rows_are_those_of_the_run(escola):
    document = explained(escola, "Alunos da unidade")
    rows = escola.rows("--user", "joaquim", "run", "Alunos da unidade", "--format", "ndjson").count("\n")
    assert document["sources"][0]["rows"] == rows > 0


def test_users_filter_and_unit_rule_are_told_apart(escola):
    document = explained(escola, "Alunos da unidade", "--filter", "nome=A%", "--filter", "renda=1000..2500,50")
    assert document["units"] == {"ids": [3], "from": "session"}
    assert document["headOffice"] == {"id": 1, "from": "session"}
    assert [f["argument"] for f in document["filters"]] == ["nome=A%", "renda=1000..2500,50"]
    conditions = only_statement(document)["conditions"]
    assert [c["origin"] for c in conditions] == ["user-filter", "user-filter", "unit-rule"]
    assert [c["values"] for c in conditions] == [
        [{"type": "text", "value": "A%"}],
        [{"type": "double", "value": "1000"}, {"type": "double", "value": "2500.5"}],
        [{"type": "int", "value": "3"}],
    ]


def test_units_of_the_caller_are_told(escola):
    document = explained(escola, "Alunos da unidade", "--unit", 4, "--unit", 3, user="marilia")
    assert document["units"]["from"] == "caller" and sorted(document["units"]["ids"]) == [3, 4]


def test_parameters_tell_their_origin(escola):
    unset = only_statement(explained(escola, "Faturas em aberto"))["parameters"]
    assert [(p["column"], p["origin"], p["values"]) for p in unset][0] == (
        "{{vencidasAte}}", "unset-parameter", [{"type": "null", "value": None}],
    )  # fmt: skip
    given = only_statement(explained(escola, "Faturas em aberto", "--filter", "vencidasAte=30/06/2024"))["parameters"]
    assert (given[0]["origin"], given[0]["values"]) == ("user-filter", [{"type": "date", "value": "2024-06-30"}])


def test_session_tokens_tell_their_origin(escola):
    documents = [explained(escola, name, *required_filters(escola, name)) for name in source_names()]
    parameters = [p for d in documents for s in d["sources"] for t in s["statements"] for p in t["parameters"]]
    tokens = {p["column"]: p for p in parameters if p["origin"] == "session-token"}
    assert tokens["{{p_idUnidadeNegocioPadrao}}"]["values"] == [{"type": "int", "value": "3"}]
    assert tokens["{{p_idUnidadeNegocioMatriz}}"]["values"] == [{"type": "int", "value": "1"}]
    assert tokens["{{p_idUsuario}}"]["values"][0]["type"] == "int"


@pytest.mark.parametrize("dry", [[], ["--dry-run"]])
def test_values_of_users_never_stand_in_the_statement(escola, dry):
    for name, column in [("Alunos da unidade", "nome"), ("Alunos da unidade", "registro"), ("Notas lançadas", "sigla")]:
        required = required_filters(escola, name)
        plain = only_statement(explained(escola, name, *dry, *required, "--filter", f"{column}=x"))
        canary = only_statement(explained(escola, name, *dry, *required, "--filter", f"{column}={CANARY}"))
        assert canary["sql"] == plain["sql"] and "1=1" not in canary["sql"]
        assert [{"type": "text", "value": CANARY}] in [c["values"] or None for c in canary["conditions"]] or all(
            {"type": "text", "value": CANARY} in c["values"] for c in canary["conditions"] if c["origin"] == "user-filter"
        )


def test_text_tells_the_same_for_people(sqlite_escola):  # noqa: F811
    text = sqlite_escola.rows("--user", "joaquim", "explain", "Alunos da unidade", "--filter", "nome=A%")
    assert text.startswith(
        "definition   Alunos da unidade\n"
        "units        unit 3, the session's default\n"
        "head office  1, the session's\n"
        "filter       nome=A%\n\n"
        "1. Alunos da unidade: "
    )
    assert "      value: text 'A%'\n      from: the user's filter\n" in text
    assert "      value: int 3\n      from: the unit rule: unit 3, the session's default\n" in text


def test_dry_run_is_told(sqlite_escola):  # noqa: F811
    text = sqlite_escola.rows("--user", "joaquim", "explain", "Alunos da unidade", "--dry-run")
    assert "Alunos da unidade (put together, not run)" in text and "1. Alunos da unidade: put together, not run\n" in text


def test_failing_run_is_explained_up_to_the_failure(sqlite_escola):  # noqa: F811
    school = sqlite_escola
    (school.folder / "quebrada.xml").write_text(
        '<moxZYNCollection parentLibraryName="ZYNC"><moxSQLDataSource name="Quebrada">'
        '<Command type="0">select * from nada</Command><Columns><Column tableName="n" columnName="id"/></Columns>'
        "</moxSQLDataSource></moxZYNCollection>"
    )
    school.rows("pack", "quebrada.xml", "--out", "collections/zz-quebrada.zcf")
    done = school.zyn("--user", "joaquim", "explain", "Quebrada", "--format", "json")
    document = json.loads(done.stdout)
    jsonschema.validate(document, SCHEMA)
    assert done.returncode == 1
    assert done.stderr == f"zyn: {document['error']}\n" and "nada" in document["error"]
    assert document["sources"][0]["statements"][0]["sql"].startswith("select * from nada")


def test_out_takes_the_explanation(sqlite_escola):  # noqa: F811
    out = sqlite_escola.folder / "explicacao.txt"
    assert sqlite_escola.rows("--user", "joaquim", "explain", "Cursos da rede", "--out", out) == ""
    assert out.read_text(encoding="utf-8").startswith("definition   Cursos da rede\n")


def test_wrong_calls(sqlite_escola):  # noqa: F811
    assert sqlite_escola.refusal("--user", "joaquim", "explain", "Nada") == "there is no definition 'Nada'"
    line = sqlite_escola.refusal("--user", "joaquim", "explain", "Alunos da unidade", "--format", "csv", status=2)
    assert "text" in line and "json" in line
    line = sqlite_escola.refusal("--user", "joaquim", "explain", "Alunos da unidade", "--filter", "x=1", status=2)
    assert line.startswith("filter 'x=1': there is no filter on 'x'; offered: ") and line.endswith("(see zyn explain --help)")
