"""The reference of filter sources, managers, groups and searches: its examples are packed, its commands run, and it names
all that the definitions write."""

import re
import shlex
import xml.etree.ElementTree as ElementTree

import pytest
from conftest import ROOT
from example_school import definition_elements, sqlite_escola  # noqa: F401

DOCUMENTS = {
    "filter-source": "moxFilterDataSource",
    "filter-manager": "moxManageFilterDataSource",
    "group": "moxGroupDataSource",
    "search": "moxSearch",
}

# What has a reference of its own.
DESCRIBED_ELSEWHERE = re.compile(r"mox(SQL|Filter|ManageFilter|Group)DataSource|mox\w+Filter")


def text_of(document):
    return (ROOT / f"docs/reference/{document}.md").read_text(encoding="utf-8")


def indented_blocks(text):
    return [re.sub(r"^ {4}", "", block, flags=re.M) for block in re.findall(r"(?<=\n\n)(?: {4}.*\n)+", text)]


def xml_blocks(document):
    return [block for block in indented_blocks(text_of(document)) if block.startswith("<")]


@pytest.mark.parametrize("document", DOCUMENTS)
def test_examples_are_read_without_a_complaint(sqlite_escola, tmp_path, document):  # noqa: F811
    whole = [block for block in xml_blocks(document) if block.startswith(f"<{DOCUMENTS[document]} ")]
    assert whole
    path = tmp_path / "exemplos.xml"
    path.write_text(f'<moxZYNCollection parentLibraryName="ZYNC">{"".join(whole)}</moxZYNCollection>', encoding="utf-8")
    done = sqlite_escola.zyn("--quiet", "pack", path, "--out", tmp_path / "exemplos.zcf")
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")


@pytest.mark.parametrize("document", DOCUMENTS)
def test_parts_of_examples_are_well_formed(document):
    for block in xml_blocks(document):
        ElementTree.fromstring(f"<x>{block}</x>")


def names_in(element):
    """Names of the element's own parts: what other classes read is theirs to describe."""
    names = {element.tag, *element.attrib}
    for child in element:
        if not DESCRIBED_ELSEWHERE.fullmatch(child.tag):
            names |= names_in(child) if child.tag != "column" else {"column"}
    return names


@pytest.mark.parametrize("document", DOCUMENTS)
def test_all_that_is_written_is_told(sqlite_escola, document):  # noqa: F811
    told = set(re.findall(r"`(\w+)`", text_of(document)))
    wanted = [element for element in definition_elements() if element.tag == DOCUMENTS[document]]
    assert wanted
    for element in wanted:
        name = element.get("name") or element.get("InternalName")
        saved = ElementTree.fromstring(sqlite_escola.rows("--quiet", "show", name, "--xml"))
        assert names_in(saved) - told == set(), name


@pytest.mark.parametrize("document", DOCUMENTS)
def test_commands_run(sqlite_escola, document):  # noqa: F811
    commands = [line for block in indented_blocks(text_of(document)) for line in block.splitlines() if line.startswith("zyn ")]
    assert commands
    for command in commands:
        done = sqlite_escola.zyn(*shlex.split(command)[1:])
        assert done.returncode == 0 and len(done.stdout.splitlines()) > 1, (command, done)


@pytest.mark.parametrize("document", DOCUMENTS)
def test_links_lead_somewhere(document):
    for link in re.findall(r"\]\(([^)#]+)", text_of(document)):
        assert (ROOT / "docs/reference" / link).resolve().exists(), link


def test_a_filter_source_on_its_own_changes_nothing(sqlite_escola):  # noqa: F811
    alone, source = (sqlite_escola.rows("--user", "joaquim", "run", name) for name in ("Só quem cursa", "Matrículas"))
    assert alone == source and "aprovado" in source


def test_a_manager_on_its_own_is_refused_as_told(sqlite_escola):  # noqa: F811
    told = "the definition 'NAME' gives no data: it says in a group which filters there are"
    line = sqlite_escola.refusal("--user", "joaquim", "run", "Período dos boletins")
    assert line.startswith(told.replace("NAME", "Período dos boletins"))
    assert told in re.sub(r"\s+", " ", text_of("filter-manager"))
