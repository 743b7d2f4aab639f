"""Whatever is wrong: the right status, exactly one line, and nothing half written."""

import os
import pathlib
import shutil
import socket

import pytest
from conftest import COMMANDS, ZYN

SELECT = ("sql", "select 1 as a")


@pytest.mark.parametrize(
    "arguments, line",
    [
        (["foo"], f"there is no command or option foo; the commands are {', '.join(COMMANDS)} (see zyn --help)"),
        (["--nope"], f"there is no command or option --nope; the commands are {', '.join(COMMANDS)} (see zyn --help)"),
        (["sql"], "STATEMENT is required (see zyn sql --help)"),
        ([*SELECT, "--format", "xml"], "--format: xml not in {table,csv,json,ndjson} (see zyn sql --help)"),
        ([*SELECT, "--nope"], "The following argument was not expected: --nope (see zyn sql --help)"),
        ([*SELECT, "--limit", "-1"], "Could not convert: --limit = -1 (see zyn sql --help)"),
        ([*SELECT, "--unit", "0"], "--unit: Value 0 not in range 1 to 2147483647 (see zyn sql --help)"),
        ([*SELECT, "--bind", "int:x"],
         "--bind int:x: no whole number between -2147483648 and 2147483647 (see zyn sql --help)"),
        ([*SELECT, "--bind", "date:2023-02-29"],
         "--bind date:2023-02-29: no day of the form YYYY-MM-DD (see zyn sql --help)"),
        ([*SELECT, "--sort", "a,"], "--sort a,: a column has no name (see zyn sql --help)"),
        (["sql", " ;\n"], "the statement is empty (see zyn sql --help)"),
        ([*SELECT, "--unit-may-be-null"], "--unit-may-be-null requires --unit-column (see zyn sql --help)"),
    ],
)  # fmt: skip
def test_wrong_usage(sqlite_school, arguments, line):
    assert sqlite_school.refusal(*arguments, status=2) == line


@pytest.mark.parametrize("option", ["--config", "--user", "--out", "--unit-column"])
def test_empty_value_is_no_missing_option(sqlite_school, option):
    line = sqlite_school.refusal(*SELECT, option, "", status=2)
    assert line == f"{option}: the value is empty (see zyn sql --help)"


def test_wrong_usage_touches_no_file(sqlite_school):
    (sqlite_school.folder / "a.csv").write_text("old")
    sqlite_school.refusal(*SELECT, "--out", "a.csv", "--bind", "int:x", status=2)
    assert (sqlite_school.folder / "a.csv").read_text() == "old"


def test_no_command_at_all(sqlite_school):
    done = sqlite_school.zyn()
    assert (done.returncode, done.stdout) == (2, "")
    assert done.stderr.startswith("usage: zyn [OPTIONS] COMMAND\n")


@pytest.mark.parametrize(
    "settings, place",
    [
        ("[database\n", ":1: "),
        ('[database]\nurl = "sqlite:school.db\n', ":2: "),
        ('[database]\n\nulr = "sqlite:school.db"\n', ":3: "),
        ("[database]\nurl = 5\n", ":2: "),
        ("[databse]\n", ":1: "),
        ("\xff", ":1: "),
    ],
)
def test_wrong_settings_name_file_and_line(sqlite_school, settings, place):
    sqlite_school.settings.write_bytes(settings.encode("latin-1"))
    line = sqlite_school.refusal(*SELECT)
    assert str(sqlite_school.settings) + place in line


def test_settings_that_are_not_there(sqlite_school):
    assert "none.toml" in sqlite_school.refusal("--config", "none.toml", *SELECT)


def test_no_database_is_configured(sqlite_school):
    sqlite_school.write_settings("")
    assert "[database]" in sqlite_school.refusal(*SELECT)


def test_database_of_an_unknown_kind(sqlite_school):
    sqlite_school.write_settings('[database]\nurl = "oracle:x"\n')
    line = sqlite_school.refusal(*SELECT)
    assert "sqlite:" in line and "mariadb:" in line


def test_database_file_that_is_not_there(sqlite_school):
    sqlite_school.write_settings('[database]\nurl = "sqlite:none.db"\n')
    assert "none.db" in sqlite_school.refusal(*SELECT)
    assert not (sqlite_school.folder / "none.db").exists()


def test_database_file_that_is_no_database(sqlite_school):
    (sqlite_school.folder / "school.db").write_text("not a database, but long enough to be read as one\n" * 30)
    assert "school.db" in sqlite_school.refusal("sql", "select * from alunos")


def test_server_that_is_not_there(sqlite_school):
    sqlite_school.write_settings('[database]\nurl = "mariadb://root@localhost/x?socket=none.sock"\n')
    assert "none.sock" in sqlite_school.refusal(*SELECT)


def test_server_that_does_not_speak_the_protocol(sqlite_school):
    """Somebody listens, and closes the line at once."""
    with socket.socket(socket.AF_INET) as listener:
        listener.bind(("127.0.0.1", 0))
        listener.listen()
        port = listener.getsockname()[1]
        sqlite_school.write_settings(f'[database]\nurl = "mariadb://root@127.0.0.1:{port}/x?connect_timeout=1"\n')
        sqlite_school.refusal(*SELECT)


@pytest.mark.skipif(not os.environ.get("MOX_TEST_MARIADB_URL"), reason="MOX_TEST_MARIADB_URL names no server")
def test_wrong_password_is_refused_and_never_echoed(sqlite_school):
    url = os.environ["MOX_TEST_MARIADB_URL"]
    sqlite_school.write_settings(f'[database]\nurl = "{url}"\npassword_env = "ZYN_PASSWORD"\n')
    line = sqlite_school.refusal(*SELECT, ZYN_PASSWORD="segredo-errado")
    assert "denied" in line.lower() and "segredo" not in line


def test_statement_that_the_database_refuses(school):
    line = school.refusal("sql", "select from nowhere", "--out", "a.csv")
    assert "syntax" in line
    assert not (school.folder / "a.csv").exists()


def test_statement_on_a_table_that_is_not_there_gives_the_servers_code(school):
    line = school.refusal("sql", "select * from nenhuma")
    assert "nenhuma" in line
    assert ("no such table" in line) if school.is_sqlite else ("1146" in line)


def test_statement_with_line_breaks_and_control_characters_stays_one_harmless_line(school):
    line = school.refusal("sql", "select *\nfrom\tnenhuma\r\n-- \x1b[31m")
    assert "\x1b" not in line


def test_more_values_than_marks(school):
    school.refusal(*SELECT, "--bind", "5")


def test_sort_column_that_the_result_lacks(school):
    line = school.refusal("sql", "select 1 as a, 2 as b", "--sort", "c", "--out", "a.csv")
    assert line == "--sort: the result has no column 'c'; it has: a, b"
    assert sorted(entry.name for entry in school.folder.iterdir() if "csv" in entry.name or "zyn-" in entry.name) == []


@pytest.mark.parametrize("place", ["none/a.csv", "."])
def test_out_that_cannot_be_written(sqlite_school, place):
    assert f'Cannot write "{place}"' in sqlite_school.refusal(*SELECT, "--out", place)


def test_out_that_cannot_be_written_is_found_before_the_statement_runs(sqlite_school):
    sqlite_school.refusal("sql", "delete from alunos", "--out", "none/a.csv")
    assert sqlite_school.rows("sql", "select count(*) as n from alunos") == "n\n4\n"


def test_full_disk_behind_standard_output(sqlite_school):
    with open("/dev/full", "w", encoding="utf-8") as full:
        line = sqlite_school.refusal(*SELECT, stdout=full)
    assert "No space left on device" in line


def test_full_disk_behind_out(sqlite_school):
    assert "No space left on device" in sqlite_school.refusal(*SELECT, "--out", "/dev/full")


def use_module(school, path):
    school.write_settings(f'[database]\nurl = "{school.url}"\n[modules]\npaths = ["{path}"]\n')


def test_module_that_is_not_there(sqlite_school):
    use_module(sqlite_school, "none.so")
    assert "none.so" in sqlite_school.refusal("classes")


def test_module_that_is_no_library(sqlite_school):
    (sqlite_school.folder / "bad.so").write_text("no library\n")
    use_module(sqlite_school, "bad.so")
    assert "bad.so" in sqlite_school.refusal("classes")


def test_library_that_is_no_module(sqlite_school):
    core = ZYN.parent.parent / "lib" / "libmox_core.so"
    use_module(sqlite_school, core)
    line = sqlite_school.refusal("classes")
    assert "libmox_core.so" in line and "moxPlugIn_" in line


def test_module_that_is_cut_short(sqlite_school):
    whole = (ZYN.parent.parent / "lib" / "libmox_zyn.so").read_bytes()
    (sqlite_school.folder / "short.so").write_bytes(whole[: len(whole) // 3])
    use_module(sqlite_school, "short.so")
    line = sqlite_school.refusal("classes")
    assert "short.so" in line and "cut short" in line


def test_module_named_by_the_environment(sqlite_school):
    assert "none.so" in sqlite_school.refusal("classes", ZYN_MODULE="none.so")
    copy = pathlib.Path(shutil.copy(ZYN.parent.parent / "lib" / "libmox_zyn.so", sqlite_school.folder / "copy.so"))
    assert "ZYNC" in sqlite_school.rows("classes", ZYN_MODULE=str(copy))


def test_statement_on_standard_input_has_a_bound(sqlite_school):
    line = sqlite_school.refusal("sql", "-", stdin="-" * (16 * 1024 * 1024 + 1))
    assert line == "the statement on standard input is larger than 16 MiB"
