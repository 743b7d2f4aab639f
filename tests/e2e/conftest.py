"""Runs the built program from outside, on databases made for each test.

The program is the one named by ZYN_BIN, by default build/release/bin/zyn. Where MOX_TEST_MARIADB_URL names a server,
every test that takes `school` runs on it as well as on SQLite.
"""

import os
import pathlib
import sqlite3
import subprocess
import urllib.parse
import uuid

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
ZYN = pathlib.Path(os.environ.get("ZYN_BIN") or ROOT / "build/release/bin/zyn").resolve()

# In the order of the help.
COMMANDS = ["classes", "items", "show", "pack", "unpack", "run", "search", "explain", "sql"]

SCHEMA = """
create table alunos (id int primary key, nome varchar(40), nota double, nascimento date, criado datetime, foto blob,
                     id_unidade int, obs text)
"""

# Ready to be written as they are into the insert of either database.
ROWS = [
    "(1, 'Ana Conceição', 9.5, '2001-02-03', '2020-01-01 10:20:30', x'616263', 3, '[U3]')",
    "(2, 'Zé', null, null, null, null, 4, '[U4]')",
    "(3, '', 10, '1999-12-31', '2020-01-02 00:00:00', x'', null, 'de todos')",
    "(4, '漢字, \"aspas\"', 7, '2000-01-01', null, null, 5, '[U5]')",
]

USERS = """
[users.maria]
id = 7
default_unit = 3
head_office = 1
units = [3, 4]
works_by_units = true

[users.sem_unidade]
id = 8
works_by_units = true
"""


class School:
    """A folder with settings, and the database that they name."""

    def __init__(self, folder, url):
        self.folder = folder
        self.url = url
        self.settings = folder / "zyn.toml"
        self.write_settings()

    def write_settings(self, text=None):
        self.settings.write_text(f'[database]\nurl = "{self.url}"\n{USERS}' if text is None else text, encoding="utf-8")

    @property
    def is_sqlite(self):
        return self.url.startswith("sqlite:")

    def zyn(self, *arguments, stdin=None, stdout=subprocess.PIPE, **environment):
        """Runs the program in the folder, with nothing of the caller's environment."""
        return subprocess.run(
            [ZYN, *map(str, arguments)],
            cwd=self.folder,
            env={"PATH": os.environ["PATH"], "HOME": str(self.folder), **environment},
            input=stdin,
            stdin=subprocess.DEVNULL if stdin is None else None,
            stdout=stdout,
            stderr=subprocess.PIPE,
            encoding="utf-8",
            timeout=120,
            check=False,
        )

    def rows(self, *arguments, **options):
        """What the program prints when nothing goes wrong."""
        done = self.zyn(*arguments, **options)
        assert (done.returncode, done.stderr) == (0, "")
        return done.stdout

    def refusal(self, *arguments, status=1, **options):
        """The one line of a run that fails."""
        done = self.zyn(*arguments, **options)
        assert done.returncode == status, done
        assert done.stdout in ("", None)
        assert done.stderr.startswith("zyn: ")
        assert done.stderr.count("\n") == 1 and done.stderr.endswith("\n"), done.stderr
        return done.stderr[len("zyn: ") : -1]


def make_sqlite(folder):
    with sqlite3.connect(folder / "school.db") as connection:
        connection.execute(SCHEMA)
        connection.execute("insert into alunos values " + ", ".join(ROWS))
    connection.close()
    return "sqlite:school.db"


class Server:
    """The test server, spoken to by its own client program."""

    def __init__(self, url):
        parts = urllib.parse.urlsplit(url)
        self.query = parts.query
        self.user = parts.username
        self.socket = urllib.parse.parse_qs(parts.query)["socket"][0]

    def run(self, statements):
        subprocess.run(
            ["mariadb", "--no-defaults", f"--socket={self.socket}", f"--user={self.user}", "--default-character-set=utf8mb4"],
            input=statements,
            encoding="utf-8",
            check=True,
        )

    def url(self, database):
        return f"mariadb://{self.user}@localhost/{database}?{self.query}"


@pytest.fixture
def sqlite_school(tmp_path):
    """For what does not depend on the kind of database."""
    return School(tmp_path, make_sqlite(tmp_path))


@pytest.fixture(params=["sqlite", "mariadb"])
def school(request, tmp_path):
    if request.param == "sqlite":
        yield School(tmp_path, make_sqlite(tmp_path))
        return
    if not os.environ.get("MOX_TEST_MARIADB_URL"):
        pytest.skip("MOX_TEST_MARIADB_URL names no server")
    server = Server(os.environ["MOX_TEST_MARIADB_URL"])
    name = f"zyn_e2e_{uuid.uuid4().hex[:12]}"
    server.run(f"create database {name}; use {name}; {SCHEMA}; insert into alunos values {', '.join(ROWS)};")
    yield School(tmp_path, server.url(name))
    server.run(f"drop database {name};")
