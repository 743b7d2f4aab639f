"""What a person at a terminal sees, through a pseudo-terminal of a given width."""

import fcntl
import os
import pty
import re
import sqlite3
import struct
import subprocess
import termios

from conftest import ZYN

STYLE = re.compile(r"\x1b\[(?:1|2|22)m")


class Terminal:
    """A pseudo-terminal that a program runs on."""

    def __init__(self, width):
        self.main, self.program_side = pty.openpty()
        fcntl.ioctl(self.program_side, termios.TIOCSWINSZ, struct.pack("HHHH", 40, width, 0, 0))
        self.text = ""

    def start(self, school, *arguments, **streams):
        environment = {"PATH": os.environ["PATH"], "TERM": "xterm", **streams.pop("environment", {})}
        sides = {name: self.program_side for name in ("stdin", "stdout", "stderr")}
        process = subprocess.Popen(
            [ZYN, *arguments], cwd=school.folder, env=environment, **{**sides, **streams}, start_new_session=True
        )
        os.close(self.program_side)
        return process

    def read_some(self):
        """Adds what came to the text; false when the program has closed its side."""
        try:
            data = os.read(self.main, 65536)
        except OSError:
            data = b""
        self.text += data.decode("utf-8", "replace").replace("\r\n", "\n")
        return bool(data)

    def read_until(self, wanted):
        while wanted not in self.text:
            assert self.read_some(), self.text

    def read_all(self):
        while self.read_some():
            pass
        os.close(self.main)
        return self.text


def shown(school, width, *arguments, **streams):
    terminal = Terminal(width)
    process = terminal.start(school, *arguments, **streams)
    text = terminal.read_all()
    assert process.wait(timeout=60) == 0, text
    return text


def test_a_terminal_gets_a_styled_table(sqlite_school):
    text = shown(sqlite_school, 80, "sql", "select id, nota from alunos where id < 3")
    assert text == "\x1b[1mid\x1b[22m  \x1b[1mnota\x1b[22m\n──  ────\n 1   9.5\n 2  \x1b[2mnull\x1b[22m\n2 rows\n"


def test_no_color_is_honoured(sqlite_school):
    text = shown(sqlite_school, 80, "sql", "select 1 as a", environment={"NO_COLOR": "1"})
    assert text == "a\n─\n1\n1 row\n"


def test_long_texts_are_shortened_to_the_width(sqlite_school):
    for width in (40, 80, 160):
        text = STYLE.sub("", shown(sqlite_school, width, "sql", "select id, printf('%.*c', 500, 'x') as t, obs from alunos"))
        lines = text.splitlines()[:-1]
        assert all(len(line) <= width for line in lines), text
        assert max(map(len, lines)) == width and "x…" in text


def test_columns_without_room_are_named(sqlite_school):
    columns = ", ".join(f"1000000000 + {i} as numero_{i}" for i in range(10))
    text = STYLE.sub("", shown(sqlite_school, 80, "sql", f"select {columns}"))
    assert all(len(line) <= 80 for line in text.splitlines()[:-1])
    assert text.splitlines()[-1] == "1 row; no room for the columns numero_6, numero_7, numero_8, numero_9"


def test_no_cell_steers_the_terminal(sqlite_school):
    statement = "select char(27) || '[2J' || char(155) || char(7) || char(13) as a, 'x' as \"h" + "\x1b[5m" + '"'
    for form in ("table", "csv", "json", "ndjson"):
        text = STYLE.sub("", shown(sqlite_school, 80, "sql", statement, "--format", form))
        assert not re.search("[\x00-\x09\x0b-\x1f\x7f-\x9f]", text), repr(text)


def test_progress_appears_while_waiting_and_is_gone_at_the_end(sqlite_school):
    """Another program holds the database, so that the wait lasts as long as the test wants."""
    holder = sqlite3.connect(sqlite_school.folder / "school.db", isolation_level=None)
    holder.execute("begin exclusive")
    terminal = Terminal(80)
    process = terminal.start(sqlite_school, "sql", "select count(*) as n from alunos", stdout=subprocess.PIPE)
    terminal.read_until("reading ...")
    holder.execute("rollback")
    holder.close()
    text = terminal.read_all()
    assert process.stdout.read() == b"n\n4\n"
    process.stdout.close()
    assert process.wait(timeout=60) == 0
    assert text.endswith("\r\x1b[K"), repr(text)


def test_quiet_shows_no_progress(sqlite_school):
    holder = sqlite3.connect(sqlite_school.folder / "school.db", isolation_level=None)
    holder.execute("begin exclusive")
    terminal = Terminal(80)
    process = terminal.start(
        sqlite_school, "--quiet", "sql", "select count(*) as n from alunos", "--out", "a.csv", stdout=subprocess.DEVNULL
    )
    while not any(entry.name.startswith(".zyn-") for entry in sqlite_school.folder.iterdir()):
        assert process.poll() is None
    holder.execute("rollback")
    holder.close()
    assert terminal.read_all() == ""
    assert process.wait(timeout=60) == 0
