"""The list of definitions."""

import csv
import io
import json

import pytest
from collection_files import FORMATS, PACKS, SOURCES, use_collections

HELD_TO_LIBRARIES = """
[users.maria]
id = 7
libraries = ["ZYNC", "escola"]
[users.joao]
id = 8
libraries = ["ZYNC", "outra"]
[users.livre]
id = 9
"""


def listing(school, *arguments):
    rows = csv.DictReader(io.StringIO(school.rows("items", *arguments)))
    return [tuple(row.values()) for row in rows]


def test_lists_description_kind_library_and_class_by_description(sqlite_school):
    use_collections(sqlite_school, a=FORMATS, b=PACKS, c=SOURCES)
    assert sqlite_school.rows("items").splitlines()[0] == "description,kind,library,class"
    assert listing(sqlite_school) == [
        ("Alunos", "data-source", "escola", "moxSQLDataSource"),
        ("Data", "formatter", "escola", "moxFormatterZYNItem"),
        ("Dinheiro", "formatter", "escola", "moxFormatterZYNItem"),
        ('pacote, com "aspas"', "pack", "escola", "moxZYNPack"),
        ("Álbum", "pack", "escola", "moxZYNPack"),
    ]


def test_lists_nothing_without_collections(sqlite_school):
    assert sqlite_school.rows("items") == "description,kind,library,class\n"
    folder = use_collections(sqlite_school)
    folder.rmdir()
    assert sqlite_school.rows("items") == "description,kind,library,class\n"


@pytest.mark.parametrize(
    "kind, descriptions",
    [
        ("formatter", ["Data", "Dinheiro"]),
        ("pack", ['pacote, com "aspas"', "Álbum"]),
        ("data-source", ["Alunos"]),
        ("search", []),
        ("indicator", []),
        ("data-processor", []),
    ],
)
def test_lists_one_kind(sqlite_school, kind, descriptions):
    use_collections(sqlite_school, a=FORMATS, b=PACKS, c=SOURCES)
    assert [row[0] for row in listing(sqlite_school, "--kind", kind)] == descriptions


def test_unknown_kind_is_wrong_usage(sqlite_school):
    line = sqlite_school.refusal("items", "--kind", "foo", status=2)
    assert line.startswith("--kind: foo not in {search,pack,formatter,")


def test_takes_the_forms_of_every_result(sqlite_school):
    use_collections(sqlite_school, a=SOURCES)
    assert json.loads(sqlite_school.rows("items", "--format", "json")) == [
        {"description": "Alunos", "kind": "data-source", "library": "escola", "class": "moxSQLDataSource"}
    ]
    sqlite_school.rows("items", "--out", "items.csv")
    assert (sqlite_school.folder / "items.csv").read_text(encoding="utf-8").endswith("\nAlunos,data-source,escola,moxSQLDataSource\n")
    done = sqlite_school.zyn("items", "--format", "table")
    assert done.stderr == "1 row\n"


def test_a_user_sees_the_definitions_of_his_libraries(sqlite_school):
    other = PACKS.replace("escola", "outra")
    nobodys = SOURCES.replace(' parentLibraryName="escola"', "")
    use_collections(sqlite_school, HELD_TO_LIBRARIES, a=FORMATS, b=other, c=nobodys)
    assert {row[2] for row in listing(sqlite_school, "--user", "maria")} == {"escola"}
    assert {row[2] for row in listing(sqlite_school, "--user", "joao")} == {"outra"}
    assert {row[2] for row in listing(sqlite_school, "--user", "livre")} == {"escola", "outra", ""}
    assert {row[2] for row in listing(sqlite_school)} == {"escola", "outra", ""}


def test_elements_that_nobody_knows_are_told_a_line_each(sqlite_school):
    text = '<moxZYNCollection parentLibraryName="escola">\n<moxFuture name="x"/>\n<moxZYNPack name="a">\n<moxLater/>' \
           '</moxZYNPack>\n<moxZYNPack name="b"/></moxZYNCollection>'  # fmt: skip
    folder = use_collections(sqlite_school, HELD_TO_LIBRARIES, a=text)
    done = sqlite_school.zyn("items")
    assert done.returncode == 0
    assert [line.split(",")[0] for line in done.stdout.splitlines()[1:]] == ["a", "b"]
    assert done.stderr.splitlines() == [
        f"zyn: note: {folder}/a.zcf:2: moxFuture was left out: no class is registered under the name 'moxFuture'",
        f"zyn: note: {folder}/a.zcf:4: moxLater was left out: no class is registered under the name 'moxLater'",
    ]
    assert sqlite_school.zyn("--user", "joao", "items").stderr == ""


def test_two_definitions_of_one_description_are_both_listed(sqlite_school):
    use_collections(sqlite_school, a=SOURCES, b=SOURCES.replace("escola", "outra"))
    assert listing(sqlite_school) == [
        ("Alunos", "data-source", "escola", "moxSQLDataSource"),
        ("Alunos", "data-source", "outra", "moxSQLDataSource"),
    ]


def test_a_damaged_collection_is_told_with_its_file_and_place(sqlite_school):
    folder = use_collections(sqlite_school, a=SOURCES)
    whole = (folder / "a.zcf").read_bytes()
    (folder / "a.zcf").write_bytes(whole[:-1])
    line = sqlite_school.refusal("items")
    assert line == (
        f"The compressed data ends too early.; file: {folder}/a.zcf; noticed at byte {len(whole) - 11} of the "
        "compressed data; the compressed data begins at byte 10 of the file"
    )


def test_kinds_that_are_wired_in_groups_are_told_by_their_classes(sqlite_school):
    wired = """<moxZYNCollection parentLibraryName="escola">
    <moxFilterDataSource name="a" dataSource="Alunos"/><moxManageFilterDataSource name="b"/>
    <moxGroupDataSource name="c" outputSource="x"/><moxSearch InternalName="d"/>
    </moxZYNCollection>"""
    use_collections(sqlite_school, a=wired)
    assert listing(sqlite_school) == [
        ("a", "data-source", "escola", "moxFilterDataSource"),
        ("b", "data-source", "escola", "moxManageFilterDataSource"),
        ("c", "data-source", "escola", "moxGroupDataSource"),
        ("d", "search", "escola", "moxSearch"),
    ]
