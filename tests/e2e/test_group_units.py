"""No group, manager or group of groups shows a row of a unit that the run is not for.

Every definition of the example with a unit column stands in a group of its own, with filters on that column, beside a
manager that puts a filter of another name on it; and that group in an outer one.
"""

import xml.etree.ElementTree as ElementTree

import pytest
from example_school import UNITS_OF, definition_elements, mariadb_escola, sqlite_escola  # noqa: F401
from test_unit_restriction import (
    COPY,
    DEFAULT_UNIT,
    NAMES,
    add_copies,
    output,
    required_filters,
    seen_units,
    unit_column,
)

GROUP = " (grupo)"
OUTER = " (fora)"


def add_member(group, name, **attributes):
    return ElementTree.SubElement(group, "moxDadoDataSource", name=name, **attributes)


def new_group(root, name, member):
    group = ElementTree.SubElement(root, "moxGroupDataSource", name=name, outputSource=member, filterSource=member)
    return ElementTree.SubElement(group, "DataSources")


def filterable_names(element):
    """Every name that a filter may bear: a query that is ruled offers only what its manager lists."""
    names = {column.get(name, "") for column in element.iter("Column") for name in ("columnName", "columnNameOrigin")}
    names |= {part.get("columnName", "") for filters in element.iter("Filters") for part in filters.iter()}
    return sorted(names | {unit_column(element)["columnName"]} - {""})


def add_manager(members, element):
    unit = unit_column(element)
    column = next((c for c in element.iter("Column") if c.get("columnName") == unit["columnName"]), unit)
    manager = ElementTree.SubElement(add_member(members, "G", unificarTelaFiltro="1"), "moxManageFilterDataSource", name="G")
    source = ElementTree.SubElement(ElementTree.SubElement(manager, "sources"), "source", name="A")
    available = ElementTree.SubElement(source, "avaliable")
    for name in filterable_names(element):
        ElementTree.SubElement(available, "filter", filterName=name)
    ElementTree.SubElement(
        ElementTree.SubElement(source, "related"),
        "filter",
        tableName=column.get("tableName", ""),
        columnName=column.get("columnName"),
        columnNameOrigin=column.get("columnNameOrigin", ""),
        filterNameRelac="onde",
    )
    filters = ElementTree.SubElement(manager, "Filters")
    for kind in ("moxIntegralUniqueFilter", "moxIntegralRangeFilter", "moxIntegralInFilter"):
        ElementTree.SubElement(filters, kind, tableName="", columnName="onde")


def add_groups(school):
    add_copies(school)
    root = ElementTree.Element("moxZYNCollection", parentLibraryName="ZYNC")
    for element in definition_elements():
        if element.find("unidadeColumn") is None:
            continue
        name = element.get("name")
        members = new_group(root, name + GROUP, "A")
        add_member(members, "A", dataSource=name + COPY)
        add_manager(members, element)
        add_member(new_group(root, name + OUTER, "D"), "D", dataSource=name + GROUP)
    path = school.folder / "grupos.xml"
    ElementTree.ElementTree(root).write(path, encoding="utf-8", xml_declaration=True)
    school.rows("pack", path, "--out", "collections/zz-grupos.zcf")
    return school


@pytest.fixture(scope="module")
def sqlite_groups(sqlite_escola):  # noqa: F811
    return add_groups(sqlite_escola)


@pytest.fixture(scope="module")
def mariadb_groups(mariadb_escola):  # noqa: F811
    return add_groups(mariadb_escola)


@pytest.fixture(params=["sqlite_groups", "mariadb_groups"])
def escola(request):
    return request.getfixturevalue(request.param)


def filters_of(column, value):
    """A user's attempts: on the column itself, through the manager, and both."""
    direct, managed = ("--filter", f"{column}={value}"), ("--filter", f"onde={value}")
    return [direct, managed, direct + managed]


@pytest.mark.parametrize("name", NAMES)
def test_no_user_sees_more_than_his_unit(escola, name):
    required = required_filters(escola, name)
    column = next(unit_column(e)["columnName"] for e in definition_elements() if e.get("name") == name)
    for user, unit in DEFAULT_UNIT.items():
        text = output(escola, user, [], "run", name + OUTER, "--format", "csv", *required)
        assert seen_units(text) <= {unit}, user
    for user, unit in (("joaquim", 3), ("iara", 6)):
        for wider in filters_of(column, "..99"):
            for definition, command, form in ((GROUP, "run", "csv"), (OUTER, "run", "csv"), (OUTER, "explain", "json")):
                text = output(escola, user, [], command, name + definition, "--format", form, *required, *wider)
                assert seen_units(text) <= {unit}, (user, wider, definition, command)


@pytest.mark.parametrize("name", NAMES)
def test_units_asked_for_are_all_that_is_seen(escola, name):
    required = required_filters(escola, name)
    for user, units in UNITS_OF.items():
        text = output(escola, user, units, "run", name + OUTER, "--format", "csv", *required, "--filter", "onde=1..99")
        assert seen_units(text) <= units, user


def test_witnesses_are_seen_where_they_may_be(escola):
    """So that the tests above can fail."""
    seen = {}
    for name in NAMES:
        required = required_filters(escola, name)
        text = output(escola, "admin", UNITS_OF["admin"], "run", name + OUTER, "--format", "csv", *required)
        seen[name] = seen_units(text)
    assert sum(len(units) >= 5 for units in seen.values()) >= 12, seen
