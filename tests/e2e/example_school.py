"""The example school for tests from outside: its database, its definitions packed, settings that name both."""

import os
import subprocess
import uuid
import xml.etree.ElementTree

import pytest

from conftest import ROOT, ZYN, School, Server

GENERATOR = ZYN.parent / "escola-generate"
DEFINITIONS = ROOT / "examples/escola/definitions"

# Who may see which units; the head office of all of them but iara's is the unit 1.
UNITS_OF = {
    "rosangela": {1, 2, 3, 4, 5},
    "joaquim": {3},
    "marilia": {3, 4},
    "admin": {1, 2, 3, 4, 5, 6, 7},
    "lucas": {2},
    "iara": {6, 7},
}


def definition_elements():
    """The items of the open files, in the order of the files' names."""
    for path in sorted(DEFINITIONS.glob("*.xml")):
        yield from xml.etree.ElementTree.parse(path).getroot()


def source_names():
    return [element.get("name") for element in definition_elements() if element.tag == "moxSQLDataSource"]


def names_with_unit_column():
    return [element.get("name") for element in definition_elements() if element.find("unidadeColumn") is not None]


def generate(url, folder):
    subprocess.run([GENERATOR, "--database", url, "--scale", "tiny", "--quiet"], cwd=folder, check=True, timeout=300)


def settings_text(url):
    return f'[database]\nurl = "{url}"\n\n[ZYNCollectionDirs]\nescola = "collections"\n'


def furnish(folder, url):
    """A folder in which the program finds the example: settings, database, collection."""
    generate(url, folder)
    (folder / "collections").mkdir()
    school = School(folder, url)
    school.write_settings(settings_text(url))
    school.rows("pack", DEFINITIONS, "--out", "collections/escola.zcf")
    return school


def sqlite_example(folder):
    return furnish(folder, "sqlite:escola.db")


class MariadbExample:
    """The example on the test server, dropped at the end."""

    def __init__(self, folder):
        self.folder = folder
        self.server = Server(os.environ["MOX_TEST_MARIADB_URL"])
        self.database = f"zyn_escola_{uuid.uuid4().hex[:12]}"

    def __enter__(self):
        self.server.run(f"create database {self.database} character set utf8mb4;")
        return furnish(self.folder, self.server.url(self.database))

    def __exit__(self, *failure):
        self.server.run(f"drop database {self.database};")


@pytest.fixture(scope="module")
def sqlite_escola(tmp_path_factory):
    return sqlite_example(tmp_path_factory.mktemp("escola-sqlite"))


@pytest.fixture(scope="module")
def mariadb_escola(tmp_path_factory):
    if not os.environ.get("MOX_TEST_MARIADB_URL"):
        pytest.skip("MOX_TEST_MARIADB_URL names no server")
    with MariadbExample(tmp_path_factory.mktemp("escola-mariadb")) as school:
        yield school
