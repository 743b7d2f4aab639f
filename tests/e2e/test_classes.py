"""The listing of the registry."""

import csv
import io

MODULE_CLASSES = [
    "moxDataMatrix",
    "moxDataMatrixDateColumn",
    "moxDataMatrixDoubleColumn",
    "moxDataMatrixIntColumn",
    "moxDataMatrixTextColumn",
    "moxDataMatrixBlobColumn",
    "moxDataMatrixRow",
    "moxDataMatrixSQLLoader",
    "moxDataMatrixSorter",
]


def listing(school, *arguments):
    return list(csv.DictReader(io.StringIO(school.rows(*arguments, "classes"))))


def test_lists_the_modules_classes_with_container_and_library(sqlite_school):
    rows = {row["name"]: row for row in listing(sqlite_school)}
    for name in MODULE_CLASSES:
        assert rows[name] == {"name": name, "container": "internal", "library": "ZYNC", "available": "yes"}


def test_lists_in_order_of_registration(sqlite_school):
    names = [row["name"] for row in listing(sqlite_school)]
    places = [names.index(name) for name in MODULE_CLASSES]
    assert places == sorted(places)
    assert len(set(names)) == len(names)


def test_needs_neither_settings_nor_database(sqlite_school):
    sqlite_school.settings.unlink()
    (sqlite_school.folder / "school.db").unlink()
    assert listing(sqlite_school)


def test_takes_the_forms_of_every_result(sqlite_school):
    done = sqlite_school.zyn("classes", "--format", "table")
    assert done.stdout.splitlines()[0].split() == ["name", "container", "library", "available"]
    assert done.stderr.endswith(" rows\n")
    assert sqlite_school.rows("classes", "--format", "ndjson").startswith('{"name":"')


def test_for_a_user(sqlite_school):
    assert listing(sqlite_school, "--user", "maria")
