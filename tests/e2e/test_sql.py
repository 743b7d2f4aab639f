"""A statement's whole road: settings, module, loader, matrix, sorter, and the forms of output."""

import csv
import io
import json
import os
import sqlite3
import stat
import subprocess

import pytest
from conftest import ZYN

ALL = "select id, nome, nota, nascimento, criado, foto, id_unidade from alunos order by id"


def test_the_first_thing_a_stranger_tries(school):
    assert school.rows("sql", "select 1 as a, 2.5 as b", "--format", "csv") == "a,b\n1,2.5\n"


def test_csv_tells_null_from_empty_text(school):
    assert school.rows("sql", ALL) == (
        "id,nome,nota,nascimento,criado,foto,id_unidade\n"
        "1,Ana Conceição,9.5,2001-02-03,2020-01-01 10:20:30,YWJj,3\n"
        "2,Zé,,,,,4\n"
        '3,"",10,1999-12-31,2020-01-02 00:00:00,"",\n'
        '4,"漢字, ""aspas""",7,2000-01-01,,,5\n'
    )


def test_csv_is_read_back_by_another_reader(school):
    rows = list(csv.DictReader(io.StringIO(school.rows("sql", ALL))))
    assert [row["nome"] for row in rows] == ["Ana Conceição", "Zé", "", '漢字, "aspas"']


def test_json_is_read_back_by_another_reader(school):
    rows = json.loads(school.rows("sql", ALL, "--format", "json"))
    assert rows[0] == {
        "id": 1,
        "nome": "Ana Conceição",
        "nota": 9.5,
        "nascimento": "2001-02-03",
        "criado": "2020-01-01 10:20:30",
        "foto": "YWJj",
        "id_unidade": 3,
    }
    assert list(rows[0]) == ["id", "nome", "nota", "nascimento", "criado", "foto", "id_unidade"]
    assert rows[1]["nota"] is None and rows[2]["nome"] == "" and rows[2]["foto"] == ""


def test_ndjson_has_one_object_a_line(school):
    lines = school.rows("sql", ALL, "--format", "ndjson").splitlines()
    assert [json.loads(line)["id"] for line in lines] == [1, 2, 3, 4]


def test_table_aligns_columns_and_tells_the_rows_on_standard_error(school):
    done = school.zyn("sql", "select id, nome, nota from alunos order by id", "--format", "table")
    assert done.stdout == (
        "id  nome           nota\n"
        "──  ─────────────  ────\n"
        " 1  Ana Conceição   9.5\n"
        " 2  Zé             null\n"
        " 3                   10\n"
        ' 4  漢字, "aspas"     7\n'
    )
    assert (done.returncode, done.stderr) == (0, "4 rows\n")


def test_quiet_tells_no_rows(school):
    assert school.rows("--quiet", "sql", "select 1 as a", "--format", "table") == "a\n─\n1\n"


def test_limit_shows_the_first_rows_after_sorting(school):
    done = school.zyn("sql", ALL, "--sort", "id:desc", "--limit", 2, "--format", "table")
    assert [line.split()[0] for line in done.stdout.splitlines()[2:]] == ["4", "3"]
    assert done.stderr == "2 of 4 rows\n"


def ids(school, *arguments):
    return [row["id"] for row in json.loads(school.rows("sql", ALL, "--format", "json", *arguments))]


def test_sort_puts_nulls_first_and_last_when_descending(school):
    assert ids(school, "--sort", "nota") == [2, 4, 1, 3]
    assert ids(school, "--sort", "nota:desc") == [3, 1, 4, 2]


def test_sort_by_several_columns(school):
    statement = "select nota is null as sem_nota, id from alunos"
    text = school.rows("sql", statement, "--sort", "sem_nota:desc,id:desc")
    assert text == "sem_nota,id\n1,2\n0,4\n0,3\n0,1\n"
    assert school.rows("sql", statement, "--sort", "sem_nota:desc", "--sort", "id:desc") == text


def test_sort_by_a_name_with_a_comma(school):
    text = school.rows("sql", 'select id as `a,b` from alunos', "--sort", '"a,b":desc')
    assert text == '"a,b"\n4\n3\n2\n1\n'


@pytest.mark.parametrize(
    "column, value, expected",
    [
        ("id", "2", [2]),
        ("id", "int:2", [2]),
        ("nota", "9.5", [1]),
        ("nota", "double:7", [4]),
        ("nome", "Zé", [2]),
        ("nome", "text:", [3]),
        ("nome", "", [3]),
        ("nascimento", "date:2000-01-01", [4]),
        ("nome", "null", []),
        ("nome", "' or 1=1 -- ", []),
    ],
)
def test_bind_finds_the_row_of_a_value(school, column, value, expected):
    text = school.rows("sql", f"select id from alunos where {column} = ?", "--bind", value)
    assert [int(line) for line in text.splitlines()[1:]] == expected


def test_binds_meet_the_marks_in_order(school):
    text = school.rows("sql", "select ? as a, ? as b, ? as c", "--bind", "x", "--bind", "null", "--bind", "-5")
    assert text == "a,b,c\nx,,-5\n"


def test_braces_and_brackets_are_values_like_any_other(school):
    text = school.rows("sql", "select ? as a, ? as b, ? as c", "--bind", "{}", "--bind", "[x]", "--bind", "a,b")
    assert text == 'a,b,c\n{},[x],"a,b"\n'


def test_equal_names_stay_in_csv_and_differ_in_json(school):
    assert school.rows("sql", "select 1 as a, 2 as a") == "a,a\n1,2\n"
    assert school.rows("sql", "select 1 as a, 2 as a", "--format", "ndjson") == '{"a":1,"a_2":2}\n'


def test_statement_from_standard_input(school):
    assert school.rows("sql", "-", stdin="select 7\n  as sete\n") == "sete\n7\n"


def test_statement_that_starts_with_a_dash(school):
    assert school.rows("sql", "--", "-- comment\nselect 1 as a") == "a\n1\n"


def test_statement_without_rows_does_its_work(school):
    assert school.rows("sql", "insert into alunos (id, nome) values (?, ?)", "--bind", 9, "--bind", "Eva") == ""
    assert school.rows("sql", "select nome from alunos where id = 9") == "nome\nEva\n"
    done = school.zyn("sql", "delete from alunos where id = 9", "--format", "table")
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "the statement gives no columns\n")


def test_result_without_rows_keeps_its_header(school):
    assert school.rows("sql", "select id, nome from alunos where 1=0") == "id,nome\n"
    assert school.rows("sql", "select id, nome from alunos where 1=0", "--format", "json") == "[]\n"


def test_out_writes_the_whole_file_with_the_usual_rights(school):
    mask = os.umask(0o027)
    try:
        assert school.rows("sql", "select 1 as a", "--out", "a.csv") == ""
    finally:
        os.umask(mask)
    written = school.folder / "a.csv"
    assert written.read_text() == "a\n1\n"
    assert stat.S_IMODE(written.stat().st_mode) == 0o640


def test_out_replaces_the_file_before(school):
    (school.folder / "a.json").write_text("old" * 1000)
    school.rows("sql", "select 1 as a", "--format", "json", "--out", "a.json")
    assert (school.folder / "a.json").read_text() == '[\n{"a":1}\n]\n'


def test_reader_that_goes_away_ends_the_program_without_a_word(sqlite_school):
    statement = "with recursive n(i) as (select 1 union all select i + 1 from n where i < 300000) select i from n"
    read_end, write_end = os.pipe()
    os.close(read_end)
    try:
        done = sqlite_school.zyn("sql", statement, stdout=write_end)
    finally:
        os.close(write_end)
    assert done.stderr == ""
    assert done.returncode == -13  # the signal of a broken pipe


def test_settings_are_found_by_environment_and_option(sqlite_school):
    elsewhere = sqlite_school.folder / "elsewhere"
    elsewhere.mkdir()
    moved = sqlite_school.settings.rename(elsewhere / "other.toml")
    (sqlite_school.folder / "school.db").rename(elsewhere / "school.db")
    count = ("sql", "select count(*) as n from alunos")
    assert sqlite_school.rows("--config", moved, *count) == "n\n4\n"
    assert sqlite_school.rows(*count, "--config", moved) == "n\n4\n", "global options may stand behind the command"
    assert sqlite_school.rows(*count, ZYN_CONFIG=str(moved)) == "n\n4\n"


def test_many_rows_arrive_complete(sqlite_school):
    statement = "with recursive n(i) as (select 1 union all select i + 1 from n where i < 50000) select i from n"
    text = sqlite_school.rows("sql", statement, "--sort", "i:desc")
    assert text == "i\n" + "".join(f"{i}\n" for i in range(50000, 0, -1))


def test_output_does_not_depend_on_the_locale(sqlite_school):
    for locale in ("C", "C.UTF-8", "pt_BR.UTF-8"):
        text = sqlite_school.rows("--quiet", "sql", "select 'ação' as t, 2.5 as d", "--format", "table", LC_ALL=locale)
        assert text == "t       d\n────  ───\nação  2.5\n"


def test_interrupted_run_leaves_no_file_behind(sqlite_school):
    """Another program holds the database, so that the run waits with its new file opened."""
    holder = sqlite3.connect(sqlite_school.folder / "school.db", isolation_level=None)
    holder.execute("begin exclusive")
    process = subprocess.Popen(
        [ZYN, "sql", "select * from alunos", "--out", "a.csv"], cwd=sqlite_school.folder, stderr=subprocess.PIPE
    )
    try:
        while not any(entry.name.startswith(".zyn-") for entry in sqlite_school.folder.iterdir()):
            assert process.poll() is None
        process.terminate()
        assert process.wait(timeout=60) == -15
    finally:
        process.kill()
        process.communicate()
        holder.close()
    assert sorted(entry.name for entry in sqlite_school.folder.iterdir()) == ["school.db", "zyn.toml"]
