"""The restriction to business units, and the rights of users."""

RESTRICTED = ("sql", "select id, obs from alunos", "--unit-column", "alunos.id_unidade", "--sort", "id")


def tokens(text):
    return [line.split(",", 1)[1] for line in text.splitlines()[1:]]


def test_user_sees_the_rows_of_the_default_unit(school):
    assert tokens(school.rows("--user", "maria", *RESTRICTED)) == ["[U3]"]


def test_user_sees_the_rows_of_the_units_asked_for(school):
    assert tokens(school.rows("--user", "maria", "--unit", 4, *RESTRICTED)) == ["[U4]"]
    assert tokens(school.rows("--user", "maria", "--unit", 4, "--unit", 3, *RESTRICTED)) == ["[U3]", "[U4]"]


def test_rows_of_no_unit_are_everybodys_when_said_so(school):
    assert tokens(school.rows("--user", "maria", *RESTRICTED, "--unit-may-be-null")) == ["[U3]", "de todos"]


def test_foreign_unit_is_refused(school):
    line = school.refusal("--user", "maria", "--unit", 5, *RESTRICTED)
    assert "5" in line and "maria" in line


def test_user_without_a_unit_is_refused_in_the_systems_words(school):
    line = school.refusal("--user", "sem_unidade", *RESTRICTED)
    assert line == "Não foi identificado a unidade matriz para processamento"


def test_units_without_a_user_are_taken_as_they_are(school):
    assert tokens(school.rows("--unit", 5, *RESTRICTED)) == ["[U5]"]


def test_neither_user_nor_unit_is_wrong_usage(school):
    line = school.refusal(*RESTRICTED, status=2)
    assert line == "--unit-column needs --user or --unit (see zyn sql --help)"


def test_condition_joins_a_where_of_the_statement(school):
    text = school.rows(
        "--user", "maria", "--unit", 3, "--unit", 4, "sql", "select id, obs from alunos where nota is null",
        "--unit-column", "id_unidade", "--where-word", "and",
    )  # fmt: skip
    assert tokens(text) == ["[U4]"]


def test_bound_values_go_ahead_of_the_units(school):
    text = school.rows(
        "--user", "maria", "--unit", 3, "--unit", 4, "sql", "select ? as x, obs from alunos",
        "--bind", "v", "--unit-column", "alunos.id_unidade", "--sort", "obs",
    )  # fmt: skip
    assert text == "x,obs\nv,[U3]\nv,[U4]\n"


def test_unknown_user_is_named(school):
    assert "zeca" in school.refusal("--user", "zeca", "classes")
