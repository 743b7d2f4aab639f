"""No way to run a definition shows a row of a unit that the run is not for.

The example's data bear witness: a row of unit 3 holds the text [U3] wherever it goes. Every definition with a unit
column takes part, and beside it a copy that also offers filters on that column, for users who try to widen what they
see.
"""

import copy
import csv
import io
import json
import re
import xml.etree.ElementTree as ElementTree

import pytest
from example_school import UNITS_OF, definition_elements, mariadb_escola, names_with_unit_column, sqlite_escola  # noqa: F401

WITNESS = re.compile(r"\[U(\d+)\]")
COPY = " (por unidade)"
DEFAULT_UNIT = {"rosangela": 1, "joaquim": 3, "marilia": 3, "admin": 1, "lucas": 2, "iara": 6}
HEAD_OFFICE = {user: 6 if user == "iara" else 1 for user in UNITS_OF}
WITHOUT_UNITS = """
[users.sem_unidade]
id = 900
works_by_units = true

[users.visitante]
id = 901
works_by_units = false
"""
FORMATS = [("run", "--format", form) for form in ("table", "csv", "json", "ndjson")]
FORMATTED = [("run", "--format", "csv", "--formatted")]
EXPLAIN = [("explain", "--format", form) for form in ("text", "json")]


# What is written does not depend on the database that was asked.
def forms(school):
    return FORMATS + FORMATTED + EXPLAIN if school.is_sqlite else [FORMATS[1], EXPLAIN[1]]


def unit_column(element):
    return element.find("unidadeColumn").attrib


def copy_with_unit_filters(element):
    """The definition under another name, with filters of every whole-number form on its unit column."""
    made = copy.deepcopy(element)
    made.set("name", element.get("name") + COPY)
    column = unit_column(made)
    filters = made.find("Filters")
    if filters is None:
        filters = ElementTree.SubElement(made, "Filters")
    bound = filters.find("column")
    if bound is None:
        bound = ElementTree.SubElement(filters, "column")
    for kind in ("moxIntegralUniqueFilter", "moxIntegralRangeFilter", "moxIntegralInFilter"):
        ElementTree.SubElement(
            bound, kind, tableName=column.get("tableName", ""), columnName=column["columnName"], description="Unidade"
        )
    return made


def add_copies(school):
    root = ElementTree.Element("moxZYNCollection", parentLibraryName="ZYNC")
    for element in definition_elements():
        if element.find("unidadeColumn") is not None:
            root.append(copy_with_unit_filters(element))
    path = school.folder / "copias.xml"
    ElementTree.ElementTree(root).write(path, encoding="utf-8", xml_declaration=True)
    school.rows("pack", path, "--out", "collections/zz-copias.zcf")
    return school


@pytest.fixture(scope="module")
def sqlite_copies(sqlite_escola):  # noqa: F811
    return add_copies(sqlite_escola)


@pytest.fixture(scope="module")
def mariadb_copies(mariadb_escola):  # noqa: F811
    return add_copies(mariadb_escola)


@pytest.fixture(params=["sqlite_copies", "mariadb_copies"])
def escola(request):
    return request.getfixturevalue(request.param)


NAMES = names_with_unit_column()


def required_filters(school, name):
    """Values for the filters without which a definition does not run."""
    shown = json.loads(school.rows("show", name, "--format", "json"))
    return [
        part
        for offer in shown["filters"]
        if offer["required"]
        for part in ("--filter", offer["column"].strip("{}") + "=" + ("3" if "mes" in offer["column"] else "60"))
    ]


def seen_units(text):
    return {int(unit) for unit in WITNESS.findall(text)}


def output(school, user, units, *arguments):
    """What a run that may have no rows prints, of which nothing is told on standard error but their number."""
    asked = [part for unit in units for part in ("--unit", unit)]
    done = school.zyn("--quiet", "--user", user, *asked, *arguments)
    assert (done.returncode, done.stderr) == (0, ""), arguments
    return done.stdout


def head_offices(text):
    return {int(row["id_unidadematriz"]) for row in csv.DictReader(io.StringIO(text)) if row.get("id_unidadematriz")}


@pytest.mark.parametrize("name", NAMES)
def test_every_user_sees_the_default_unit_alone_in_every_form(escola, name):
    required = required_filters(escola, name)
    for user, unit in DEFAULT_UNIT.items():
        for command, *form in forms(escola):
            text = output(escola, user, [], command, name, *form, *required)
            assert seen_units(text) <= {unit}, (user, form)
        assert head_offices(output(escola, user, [], "run", name, "--format", "csv", *required)) <= {HEAD_OFFICE[user]}


@pytest.mark.parametrize("name", NAMES)
def test_units_asked_for_are_all_that_is_seen(escola, name):
    required = required_filters(escola, name)
    for user, units in UNITS_OF.items():
        text = output(escola, user, units, "run", name, "--format", "csv", *required)
        assert seen_units(text) <= units, user


@pytest.mark.parametrize("name", NAMES)
def test_no_filter_on_the_unit_column_widens_the_result(escola, name):
    required = required_filters(escola, name)
    column = next(unit_column(e)["columnName"] for e in definition_elements() if e.get("name") == name)
    for user, unit in [("joaquim", 3), ("iara", 6)]:
        allowed = {HEAD_OFFICE[user]} if column == "id_unidadematriz" else {unit}
        for value in ("..99", "1,2,3,4,5,6,7", "2", "-5..2147483647"):
            for command, *form in [("run", "--format", "csv"), ("explain", "--format", "json")]:
                wider = ("--filter", f"{column}={value}")
                text = output(escola, user, [], command, name + COPY, *form, *required, *wider)
                assert seen_units(text) <= {unit}, (user, value)
                if form[-1] == "csv":
                    assert head_offices(text) <= {HEAD_OFFICE[user]}, (user, value)
                if form[-1] == "json":
                    assert bound_units(json.loads(text)) <= allowed, (user, value)


def bound_units(explanation):
    """The values that go with conditions on the unit column."""
    conditions = [c for s in explanation["sources"] for t in s["statements"] for c in t["conditions"]]
    assert conditions, "the run is not restricted"
    unit_tests = [c for c in conditions if is_unit_test(c, explanation)]
    assert unit_tests
    return {int(value["value"]) for c in unit_tests for value in c["values"]}


def is_unit_test(condition, explanation):
    if condition["origin"] == "unit-rule":
        return True
    return any(f["keptToUnits"] and condition["column"].endswith(f["column"]) for f in explanation["filters"])


def unit_column_name(name):
    return next(unit_column(e)["columnName"] for e in definition_elements() if e.get("name") == name)


KEPT_TO_UNITS = [name for name in NAMES if unit_column_name(name) != "id_unidadematriz"]  # not to the head office


@pytest.mark.parametrize("name", KEPT_TO_UNITS)
def test_filter_within_the_units_narrows(escola, name):
    required = required_filters(escola, name)
    column = unit_column_name(name)
    both = output(escola, "marilia", [3, 4], "run", name + COPY, "--format", "csv", *required, "--filter", f"{column}=1..9")
    four = output(escola, "marilia", [3, 4], "run", name + COPY, "--format", "csv", *required, "--filter", f"{column}=4")
    assert seen_units(both) <= {3, 4}
    assert seen_units(four) <= {4}


def test_witnesses_are_seen_where_they_may_be(escola):
    """So that the tests above can fail."""
    seen = {}
    for name in NAMES:
        required = required_filters(escola, name)
        seen[name] = seen_units(output(escola, "admin", UNITS_OF["admin"], "run", name, "--format", "csv", *required))
    assert sum(len(units) >= 5 for units in seen.values()) >= 12, seen


@pytest.mark.parametrize("name", NAMES)
def test_user_without_units_gets_nothing(escola, name):
    settings = escola.folder / "sem_unidade.toml"
    settings.write_text(escola.settings.read_text(encoding="utf-8") + WITHOUT_UNITS, encoding="utf-8")
    required = required_filters(escola, name)
    for command, *form in [FORMATS[0], FORMATS[1], EXPLAIN[1]]:
        done = escola.zyn("--config", settings, "--user", "sem_unidade", command, name, *form, *required)
        assert done.returncode == 1 and seen_units(done.stdout) == set()
        assert done.stderr.startswith("zyn: Não foi identificado a unidade matriz para processamento; in the definition")
        assert command == "explain" or done.stdout == ""
        done = escola.zyn("--config", settings, "--user", "visitante", command, name, *form, *required)
        assert done.returncode == 0 and seen_units(done.stdout) == set()


@pytest.mark.parametrize("name", NAMES)
def test_foreign_unit_is_refused(escola, name):
    line = escola.refusal("--user", "joaquim", "--unit", 6, "run", name, *required_filters(escola, name))
    assert "joaquim" in line and "6" in line


@pytest.mark.parametrize("command", ["run", "explain"])
def test_neither_user_nor_unit_is_wrong_usage(escola, command):
    for name in NAMES:
        line = escola.refusal(command, name, status=2)
        assert line == (
            f"the definition '{name}' keeps to business units; it needs --user or --unit (see zyn {command} --help)"
        )
