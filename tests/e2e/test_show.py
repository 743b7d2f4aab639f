"""One definition, as a tree, as XML and as JSON."""

import json
import subprocess
import xml.etree.ElementTree

import pytest
from collection_files import FORMATS, PACKS, SOURCES, use_collections
from conftest import ROOT, ZYN


@pytest.fixture
def definitions(sqlite_school):
    use_collections(sqlite_school, a=FORMATS, b=PACKS, c=SOURCES)
    return sqlite_school


def test_shows_a_source_as_a_tree(definitions):
    assert definitions.rows("show", "Alunos") == (
        "Alunos\n"
        "├─ kind: data-source\n"
        "├─ class: moxSQLDataSource\n"
        "├─ library: escola\n"
        "├─ heading: Os alunos\n"
        "├─ statement: composed\n"
        "├─ columns\n"
        "│  ├─ id: int from alunos.id, main, hidden\n"
        '│  └─ nome: text "Nome" from alunos.nome\n'
        "└─ order\n"
        "   └─ nome\n"
    )


def test_shows_a_formatter_as_a_tree(definitions):
    assert definitions.rows("show", "Dinheiro").splitlines() == [
        "Dinheiro",
        "├─ kind: formatter",
        "├─ class: moxFormatterZYNItem",
        "├─ library: escola",
        "├─ formatter: moxDecimalFormatter",
        '└─ prefix: "R$ "',
    ]


WIRED = """<moxZYNCollection parentLibraryName="escola">
<moxFilterDataSource name="Só as ativas" dataSource="fonte"><where>a.id &gt; 1</where></moxFilterDataSource>
<moxGroupDataSource name="Grupo" outputSource="alunos" filterSource="alunos"><DataSources>
  <moxDadoDataSource name="alunos" dataSource="Alunos"/>
  <moxDadoDataSource name="ativas" dataSource="Só as ativas">
    <sourcesExternalRelation><relation external="fonte" internal="alunos"/></sourcesExternalRelation>
  </moxDadoDataSource>
  <moxDadoDataSource name="outra vez" dataSource="Grupo"/>
</DataSources></moxGroupDataSource>
<moxSearch InternalName="Pesquisa" VisibleName="Alunos do grupo"><General dataSource="Grupo">
  <AutoFill atStartup="1"/><Allowing Reorder="0"/></General></moxSearch>
</moxZYNCollection>"""


def test_shows_the_wiring_of_a_group_as_a_tree(definitions):
    use_collections(definitions, d=WIRED)
    text = definitions.rows("show", "Grupo")
    assert text.endswith(
        "└─ members\n"
        '   ├─ alunos is "Alunos" (moxSQLDataSource), gives the result, gives the filters\n'
        "   │  └─ changed by ativas\n"
        '   ├─ ativas is "Só as ativas" (moxFilterDataSource)\n'
        "   │  ├─ what it calls fonte is alunos\n"
        "   │  ├─ changes fonte, here alunos\n"
        "   │  └─ where: a.id > 1\n"
        '   └─ outra vez is "Grupo" (moxGroupDataSource), see above: a ring\n'
    ), text


def test_json_tells_the_wiring_of_a_group(definitions):
    use_collections(definitions, d=WIRED)
    group = json.loads(definitions.rows("show", "Grupo", "--format", "json"))["group"]
    assert (group["output"], group["filter_source"]) == ("alunos", "alunos")
    alunos, ativas, again = group["members"]
    assert (alunos["external"], alunos["output"], alunos["changed_by"]) == ("Alunos", True, ["ativas"])
    assert ativas["inputs"] == [{"source": "fonte", "member": "alunos"}]
    assert ativas["wires"] == [{"source": "fonte", "through": [], "target": "alunos", "defect": ""}]
    assert ativas["definition"]["changes"]["texts"] == [{"name": "where", "text": "a.id > 1"}]
    assert again["ring"] and "definition" not in again


def test_shows_the_screen_of_a_search(definitions):
    use_collections(definitions, d=WIRED)
    lines = definitions.rows("show", "Pesquisa").splitlines()
    assert lines[1] == "├─ kind: search"
    assert "├─ heading: Alunos do grupo" in lines and "├─ screen: 760 x 450" in lines
    search = json.loads(definitions.rows("show", "Pesquisa", "--format", "json"))["search"]
    assert (search["source"], search["auto_fill"], search["require_permission"]) == ("Grupo", True, True)


@pytest.mark.parametrize("name", ["Alunos", "Dinheiro", "Data", "Álbum", 'pacote, com "aspas"'])
def test_xml_is_what_a_collection_takes(definitions, name):
    text = definitions.rows("show", name, "--xml")
    element = text.split("?>\n", 1)[1]
    (definitions.folder / "one.xml").write_text(
        f'<moxZYNCollection parentLibraryName="escola">{element}</moxZYNCollection>', encoding="utf-8"
    )
    definitions.rows("pack", "one.xml", "--out", "collections/a.zcf")
    for other in ("b.zcf", "c.zcf"):
        (definitions.folder / "collections" / other).unlink()
    assert definitions.rows("show", name, "--xml") == text
    assert definitions.rows("items").count("\n") == 2


def test_xml_is_well_formed_for_another_reader(definitions):
    root = xml.etree.ElementTree.fromstring(definitions.rows("show", "Data", "--xml"))
    assert root.tag == "moxFormatterZYNItem"
    assert root[0].attrib["mask"] == "%d/%m/%Y"


def test_json_tells_columns_and_order(definitions):
    view = json.loads(definitions.rows("show", "Alunos", "--format", "json"))
    assert list(view) == [
        "name", "kind", "class", "library", "settings", "columns", "filters", "order", "relations", "reads",
    ]  # fmt: skip
    assert view["class"] == "moxSQLDataSource"
    assert view["columns"][0] == {
        "name": "id", "type": "int", "heading": "", "origin": "alunos.id", "expression": "a.id", "formatter": "",
        "visible": False, "roles": ["main"],
    }  # fmt: skip
    assert view["order"] == [{"column": "nome", "descending": False}]


def test_writes_to_a_file(definitions):
    definitions.rows("show", "Data", "--xml", "--out", "data.xml")
    assert (definitions.folder / "data.xml").read_text(encoding="utf-8") == definitions.rows("show", "Data", "--xml")


def test_an_unknown_name_is_told_with_similar_ones(definitions):
    assert definitions.refusal("show", "dat") == 'there is no definition "dat"; similar: "Data"'
    assert definitions.refusal("show", "Data ") == 'there is no definition "Data "'
    assert definitions.refusal("show", "") == 'there is no definition ""'


def test_a_name_that_steers_a_terminal_is_told_harmlessly(definitions):
    assert definitions.refusal("show", "\x1b[31m\n") == 'there is no definition "␛[31m "'


def test_a_definition_of_a_library_that_is_not_permitted_is_not_there(definitions):
    use_collections(definitions, '[users.joao]\nid = 8\nlibraries = ["ZYNC", "outra"]\n')
    assert definitions.refusal("--user", "joao", "show", "Alunos") == 'there is no definition "Alunos"'


def test_the_first_of_two_is_found(definitions):
    use_collections(definitions, d=SOURCES.replace("Os alunos", "Outros"))
    assert "heading: Os alunos" in definitions.rows("show", "Alunos")


@pytest.mark.parametrize(
    "arguments, line",
    [
        (["show"], "NAME is required (see zyn show --help)"),
        (["show", "a", "--format", "csv"], "--format: csv not in {tree,json} (see zyn show --help)"),
        (["show", "a", "--xml", "--format", "json"], "--format excludes --xml (see zyn show --help)"),
        (["show", "a", "b"], "The following argument was not expected: b (see zyn show --help)"),
    ],
)
def test_wrong_usage(definitions, arguments, line):
    assert definitions.refusal(*arguments, status=2) == line


def test_completion_offers_the_descriptions(definitions):
    script = """
        . "$1"; shift
        COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=()
        _zyn; printf '%s\\n' "${COMPREPLY[@]}"
    """

    def offered(*words):
        done = subprocess.run(
            ["bash", "-c", script, "bash", ROOT / "packaging/zyn.bash-completion", ZYN, *words],
            cwd=definitions.folder, capture_output=True, encoding="utf-8", check=True,
        )  # fmt: skip
        assert done.stderr == ""
        return done.stdout.splitlines()

    assert offered("show", "D") == ["Data", "Dinheiro"]
    assert offered("show", "pacote,\\ ") == ['pacote, com "aspas"']
    assert offered("--config", "zyn.toml", "show", "Al") == ["Alunos"]
