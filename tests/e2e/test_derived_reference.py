"""The reference of sources made of other sources: its examples are packed and shown, its commands name what there is, and
it names all that the definitions write."""

import re
import xml.etree.ElementTree as ElementTree

import pytest
from example_school import definition_elements, sqlite_escola  # noqa: F401
from test_source_reference import indented_blocks, names_in, text_of

DOCUMENT = "derived-sources"
CLASSES = [
    "moxAggregationDataSource",
    "moxSorterDataSource",
    "moxObjectDataSource",
    "moxUnionDataSource",
    "moxExpressionDataSource",
    "moxDataSourcePivoting",
    "moxJoinDataSource",
]


def examples():
    return [block for block in indented_blocks(text_of(DOCUMENT)) if block.startswith("<")]


def test_each_class_has_an_example():
    assert sorted(ElementTree.fromstring(block).tag for block in examples()) == sorted(CLASSES)


def test_examples_are_read_without_a_complaint_and_shown(sqlite_escola, tmp_path):  # noqa: F811
    path = tmp_path / "exemplos.xml"
    path.write_text(f'<moxZYNCollection parentLibraryName="ZYNC">{"".join(examples())}</moxZYNCollection>', encoding="utf-8")
    collection = sqlite_escola.folder / "collections/zz-exemplos.zcf"
    done = sqlite_escola.zyn("--quiet", "pack", path, "--out", collection)
    try:
        assert (done.returncode, done.stdout, done.stderr) == (0, "", "")
        for block in examples():
            element = ElementTree.fromstring(block)
            assert f"class: {element.tag}" in sqlite_escola.rows("show", element.get("name"))
    finally:
        collection.unlink(missing_ok=True)


@pytest.mark.parametrize("tag", CLASSES)
def test_all_that_is_written_is_told(sqlite_escola, tag):  # noqa: F811
    told = set(re.findall(r"\w+", " ".join(re.findall(r"`([^`]+)`", text_of(DOCUMENT)))))
    wanted = [element.get("name") for element in definition_elements() if element.tag == tag]
    assert wanted
    for name in wanted:
        saved = ElementTree.fromstring(sqlite_escola.rows("--quiet", "show", name, "--xml"))
        assert {part for part in names_in(saved) if "Filter" not in part} - told - BINDS == set(), name


# What an entry of Binds has is told where filters are.
BINDS = {"columnName", "visualRepresentation", "description", "position", "X", "Y", "spanX", "spanY"}


def test_every_label_is_told(sqlite_escola):  # noqa: F811
    text = re.sub(r"\s+", " ", text_of(DOCUMENT))
    for tag in CLASSES:
        assert re.search(rf"`{tag}`, under the label \"\w", text), tag
