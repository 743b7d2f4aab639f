"""Open XML into a collection file, and the way back."""

import os
import signal
import subprocess
import zlib

import pytest
from collection_files import FORMATS, PACKS, SIGNATURE, SOURCES, collection_file, document_of, use_collections
from conftest import ROOT, ZYN

ENDINGS = [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]
EXAMPLES = sorted((ROOT / "examples/escola/definitions").glob("*.xml"))


@pytest.fixture
def folder(sqlite_school):
    sqlite_school.write_settings("")
    return sqlite_school.folder


@pytest.fixture
def zyn(sqlite_school, folder):
    return sqlite_school


def put(folder, name, text):
    path = folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(text if isinstance(text, bytes) else text.encode("utf-8"))
    return path


def left(folder):
    """What lies in the folder, but for the fixture's own files."""
    return {entry.name for entry in folder.iterdir()} - {"school.db", "zyn.toml"}


@pytest.mark.parametrize(
    "text",
    [
        FORMATS,
        PACKS,
        FORMATS.replace("\n", "\r\n") + "<!-- the end -->\n\n",
        "\ufeff" + PACKS,
        FORMATS.replace("UTF-8", "ISO-8859-1").replace("money", "preço").encode("latin-1"),
        "<moxZYNCollection/>",
        '<moxZYNCollection parentLibraryName=""   ></moxZYNCollection >',
    ],
)
def test_what_was_packed_is_unpacked_to_the_byte(zyn, folder, text):
    original = put(folder, "a.xml", text).read_bytes()
    assert zyn.rows("pack", "a.xml", "--out", "a.zcf") == ""
    assert zyn.rows("unpack", "a.zcf", "--out", "b.xml") == ""
    assert (folder / "b.xml").read_bytes() == original
    zyn.rows("pack", "b.xml", "--out", "b.zcf")
    assert (folder / "b.zcf").read_bytes() == (folder / "a.zcf").read_bytes()


@pytest.mark.parametrize("example", EXAMPLES, ids=lambda path: path.name)
def test_the_examples_come_back_to_the_byte(zyn, folder, example):
    assert zyn.rows("pack", example, "--out", "a.zcf") == ""
    zyn.rows("unpack", "a.zcf", "--out", "a.xml")
    assert (folder / "a.xml").read_bytes() == example.read_bytes()


def test_the_file_is_the_ten_bytes_and_the_compressed_document(zyn, folder):
    put(folder, "a.xml", FORMATS)
    zyn.rows("pack", "a.xml", "--out", "a.zcf")
    assert document_of(folder / "a.zcf") == FORMATS


def test_a_file_of_another_maker_is_unpacked(zyn, folder):
    put(folder, "a.zcf", SIGNATURE + zlib.compress(PACKS.encode("utf-8"), 1))
    zyn.rows("unpack", "a.zcf", "--out", "a.xml")
    assert (folder / "a.xml").read_text(encoding="utf-8") == PACKS


def test_a_folder_becomes_one_collection_by_the_bytes_of_the_paths(zyn, folder):
    put(folder, "d/b.xml", PACKS)
    put(folder, "d/a/formats.xml", FORMATS)
    put(folder, "d/notes.txt", "no XML")
    put(folder, "d/c.xml", "<moxZYNCollection/>")
    zyn.rows("pack", "d", "--out", "a.zcf")
    assert document_of(folder / "a.zcf") == (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        '<moxZYNCollection parentLibraryName="escola">\n'
        "  <!-- money -->\n"
        "  <moxFormatterZYNItem>\n"
        '    <moxDecimalFormatter description="Dinheiro" prefix="R$ " precision="2" separator=","/>\n'
        "  </moxFormatterZYNItem>\n"
        '  <moxFormatterZYNItem><moxDateFormatter description="Data" mask="%d/%m/%Y"/></moxFormatterZYNItem>\n'
        '  <moxZYNPack name="Álbum"/>\n'
        '  <moxZYNPack name="pacote, com &quot;aspas&quot;"/>\n'
        "</moxZYNCollection>\n"
    )


def test_what_was_merged_comes_back_to_the_byte_too(zyn, folder):
    zyn.rows("pack", ROOT / "examples/escola/definitions", "--out", "a.zcf")
    zyn.rows("unpack", "a.zcf", "--out", "a.xml")
    zyn.rows("pack", "a.xml", "--out", "b.zcf")
    assert (folder / "b.zcf").read_bytes() == (folder / "a.zcf").read_bytes()


def test_merged_files_may_be_of_several_encodings(zyn, folder):
    put(folder, "a.xml", PACKS)
    latin = '<?xml version="1.0" encoding="ISO-8859-1"?><moxZYNCollection><moxZYNPack name="Ação"/></moxZYNCollection>'
    put(folder, "b.xml", latin.encode("latin-1"))
    put(folder, "c.xml", latin.replace("ISO-8859-1", "UTF-16").replace("Ação", "Maçã").encode("utf-16"))
    zyn.rows("pack", "a.xml", "b.xml", "c.xml", "--out", "a.zcf")
    for name in ("Álbum", "Ação", "Maçã"):
        assert f'name="{name}"' in document_of(folder / "a.zcf")


def test_what_was_packed_is_found(zyn, folder):
    use_collections(zyn)
    put(folder, "d/a.xml", FORMATS)
    put(folder, "d/b.xml", SOURCES)
    zyn.rows("pack", "d", "--out", "collections/a.zcf")
    assert [line.split(",")[0] for line in zyn.rows("items").splitlines()] == [
        "description", "Alunos", "Data", "Dinheiro",
    ]  # fmt: skip


def test_the_library_comes_from_the_files_or_the_option(zyn, folder):
    put(folder, "a.xml", FORMATS)
    put(folder, "b.xml", PACKS.replace(' parentLibraryName="escola"', ""))
    zyn.rows("pack", "b.xml", "a.xml", "--out", "a.zcf")
    assert 'parentLibraryName="escola"' in document_of(folder / "a.zcf")
    zyn.rows("pack", "b.xml", "--library", 'a"&b', "--out", "b.zcf")
    assert '<moxZYNCollection parentLibraryName="a&#34;&#38;b">\n  <moxZYNPack' in document_of(folder / "b.zcf")
    zyn.rows("pack", "a.xml", "--library", "escola", "--out", "c.zcf")
    assert document_of(folder / "c.zcf") == FORMATS


def test_libraries_that_differ_are_an_error(zyn, folder):
    put(folder, "a.xml", FORMATS)
    put(folder, "b.xml", PACKS.replace("escola", "outra"))
    line = zyn.refusal("pack", "a.xml", "b.xml", "--out", "a.zcf")
    assert line == 'b.xml belongs to the library "outra", and a.xml tells "escola"'
    line = zyn.refusal("pack", "a.xml", "--library", "nova", "--out", "a.zcf")
    assert line == 'a.xml belongs to the library "escola", and --library tells "nova"'
    assert left(folder) == {"a.xml", "b.xml"}


def test_a_description_that_is_there_twice_is_told_with_both_places(zyn, folder):
    put(folder, "a.xml", FORMATS)
    put(folder, "b.xml", '<moxZYNCollection>\n<moxZYNPack name="Data"/>\n<moxZYNPack name="Data"/></moxZYNCollection>')
    done = zyn.zyn("pack", "a.xml", "b.xml", "--out", "a.zcf")
    assert (done.returncode, done.stdout) == (0, "")
    assert done.stderr.splitlines() == [
        'zyn: note: b.xml:2: "Data" is defined at a.xml:8 already, which is the one that is found',
        'zyn: note: b.xml:3: "Data" is defined at a.xml:8 already, which is the one that is found',
    ]
    assert (folder / "a.zcf").exists()


def source_with(role):
    return (
        '<moxZYNCollection>\n<moxSQLDataSource name="Alunos">\n<Command type="0">select a.id from a</Command>\n'
        f'{role}<Columns><Column tableName="a" columnName="id" Type="2"/></Columns>'
        "</moxSQLDataSource></moxZYNCollection>"
    )


def test_a_unit_column_that_is_not_there_is_an_error(zyn, folder):
    put(folder, "a.xml", source_with('<unidadeColumn tableName="a" columnName="unidad"/>'))
    line = zyn.refusal("pack", "a.xml", "--out", "a.zcf")
    assert line == 'a.xml:4: unidadeColumn names no column of "Alunos": tableName "a", columnName "unidad"'
    assert left(folder) == {"a.xml"}


def test_other_roles_for_columns_that_are_not_there_are_told(zyn, folder):
    put(folder, "a.xml", source_with('<mainData tableName="b" columnName="id"/>'))
    done = zyn.zyn("pack", "a.xml", "--out", "a.zcf")
    assert done.returncode == 0
    assert done.stderr == 'zyn: note: a.xml:4: mainData names no column of "Alunos": tableName "b", columnName "id"\n'


def test_elements_that_nobody_knows_are_taken_along_and_told(zyn, folder):
    text = '<moxZYNCollection>\n<moxFuture a="1"/>\n<moxZYNPack name="p">\n<moxLater/></moxZYNPack>\n<moxDataMatrix/>' \
           "\n</moxZYNCollection>"  # fmt: skip
    put(folder, "a.xml", text)
    done = zyn.zyn("pack", "a.xml", "--out", "a.zcf")
    assert done.returncode == 0
    assert done.stderr.splitlines() == [
        "zyn: note: a.xml:2: moxFuture is taken along unread: no class is registered under the name 'moxFuture'",
        "zyn: note: a.xml:4: moxLater is taken along unread: no class is registered under the name 'moxLater'",
        "zyn: note: a.xml:5: moxDataMatrix is taken along unread: its class is no definition that is available here",
    ]
    assert document_of(folder / "a.zcf") == text


@pytest.mark.parametrize(
    "text, line",
    [
        ("", "a.xml: XML document"),
        ("<moxZYNCollection>\n<a>\n</moxZYNCollection>", "a.xml: XML document, line 3, column "),
        ("<moxZYNCollection>&x;</moxZYNCollection>", "a.xml: XML document, line 1, column 19: "),
        ("<!DOCTYPE a><moxZYNCollection/>", "a.xml: XML document, line 1, column 1: "),
        ("<!-- x -->\n<root/>", "a.xml:2: the root element is root, and that of a collection is moxZYNCollection"),
        ("<moxZYNCollection>\n\n<moxFormatterZYNItem/></moxZYNCollection>",
         "a.xml:3: moxFormatterZYNItem is not complete: its class refuses it"),
        (b"<moxZYNCollection>\xff</moxZYNCollection>", "a.xml: XML document, line 1, column 19: "),
        (collection_file(FORMATS), "a.xml: XML document, line 1, column "),
        ("<a>" * 300, "a.xml: XML document, line 1, column "),
    ],
)  # fmt: skip
def test_a_text_that_is_no_collection_is_refused_with_its_place(zyn, folder, text, line):
    put(folder, "a.xml", text)
    put(folder, "a.zcf", "old")
    assert zyn.refusal("pack", "a.xml", "--out", "a.zcf").startswith(line)
    assert (folder / "a.zcf").read_text() == "old"
    assert left(folder) == {"a.xml", "a.zcf"}


def test_a_definition_that_cannot_be_read_is_told_with_its_place(zyn, folder):
    put(folder, "a.xml", SOURCES.replace('<By tableName="a" columnName="nome"/>', '<By columnName="nada"/>'))
    line = zyn.refusal("pack", "a.xml", "--out", "a.zcf")
    assert line.startswith("a.xml:2: Ordem By com coluna inválida")
    assert left(folder) == {"a.xml"}


MISSPELT = """<moxZYNCollection>
<moxAggregationDataSource name="Somas" source="Alunos">
  <moxDataMatrixAggregator><Index name="id"/></moxDataMatrixAggregator>
</moxAggregationDataSource>
</moxZYNCollection>"""


def test_what_a_source_passes_over_is_a_note_with_its_place(zyn, folder):
    put(folder, "a.xml", MISSPELT)
    done = zyn.zyn("pack", "a.xml", "--out", "a.zcf")
    assert done.returncode == 0
    assert done.stderr.splitlines() == [
        "zyn: note: a.xml:2: moxAggregationDataSource does not read its attribute source; it reads name, dataSource, "
        "generateTempTable, countColumn",
        "zyn: note: a.xml:2: moxAggregationDataSource has no dataSource",
        "zyn: note: a.xml:3: moxDataMatrixAggregator does not read Index inside of it; it reads Indexes, Functions",
    ]


def test_a_refused_source_is_told_with_what_its_class_does_not_read(zyn, folder):
    put(folder, "a.xml", MISSPELT.replace("moxDataMatrixAggregator", "moxAggregator").replace("source=", "dataSource="))
    assert zyn.refusal("pack", "a.xml", "--out", "a.zcf") == (
        "a.xml:2: moxAggregationDataSource is not complete: its class refuses it; a.xml:3: moxAggregationDataSource does not "
        "read moxAggregator inside of it; it reads moxDataMatrixAggregator"
    )


def test_a_text_that_no_reader_would_unfold_is_not_packed(zyn, folder):
    put(folder, "a.xml", "<moxZYNCollection>" + " " * (4 << 20) + "</moxZYNCollection>")
    line = zyn.refusal("pack", "a.xml", "--out", "a.zcf")
    assert line.startswith("The compressed data grows beyond 1000 times its size.")
    assert left(folder) == {"a.xml"}


@pytest.mark.parametrize(
    "arguments, line",
    [
        (["pack", "nix.xml", "--out", "a.zcf"], 'Cannot read "nix.xml": No such file or directory. (code 2)'),
        (["pack", "empty", "--out", "a.zcf"], 'Cannot pack "empty": there is no .xml file below it.'),
        (["pack", "/dev/null", "--out", "a.zcf"], 'Cannot read "/dev/null": it is no regular file.'),
        (["unpack", "nix.zcf", "--out", "a.xml"], 'Cannot read "nix.zcf": No such file or directory. (code 2)'),
        (["unpack", "empty", "--out", "a.xml"], 'Cannot read "empty": Is a directory. (code 21)'),
    ],
)
def test_a_source_that_cannot_be_read(zyn, folder, arguments, line):
    (folder / "empty").mkdir()
    assert zyn.refusal(*arguments) == line
    assert left(folder) == {"empty"}


@pytest.mark.parametrize(
    "arguments, line",
    [
        (["pack", "--out", "a.zcf"], "SRC is required (see zyn pack --help)"),
        (["pack", "a.xml"], "--out is required (see zyn pack --help)"),
        (["pack", "a.xml", "--out", ""], "--out: the value is empty (see zyn pack --help)"),
        (["pack", "a.xml", "--out", "b.zcf", "--library", ""], "--library: the value is empty (see zyn pack --help)"),
        (["pack", "", "--out", "b.zcf"], "SRC: the value is empty (see zyn pack --help)"),
        (["unpack", "--out", "a.xml"], "FILE is required (see zyn unpack --help)"),
        (["unpack", "a.zcf"], "--out is required (see zyn unpack --help)"),
        (["unpack", "a.zcf", "b.zcf", "--out", "x"],
         "The following argument was not expected: b.zcf (see zyn unpack --help)"),
    ],
)  # fmt: skip
def test_wrong_usage(zyn, folder, arguments, line):
    put(folder, "a.xml", FORMATS)
    assert zyn.refusal(*arguments, status=2) == line
    assert left(folder) == {"a.xml"}


def damaged():
    """Every way in which a file can be damaged, and what is said of it."""
    whole = collection_file(PACKS)
    header = "Cabeçalho de dados incorreto.; file: x.zcf; "
    begins = "; the compressed data begins at byte 10 of the file"
    noticed = "; file: x.zcf; noticed at byte {} of the compressed data"
    huge = SIGNATURE + zlib.compress(b" " * (8 << 20), 9)
    return {
        "nothing": (b"", header + "it ends after 0 bytes, and the header has 10"),
        "cut header": (whole[:9], header + "it ends after 9 bytes, and the header has 10"),
        "newer": (b"\x02" + whole[1:], header + "byte 0, the version of the format, is 0x02 where 0x01 belongs"),
        "other": (b"\x01\x00ABXZYNC\x00" + whole[10:], header + "byte 2 is 0x41 where 0x4D belongs"),
        "open": (PACKS.encode("utf-8"), header + "it begins like an open XML document"),
        "empty": (whole[:10], "The compressed data is empty.; file: x.zcf" + begins),
        "cut": (whole[:-3], "The compressed data ends too early." + noticed.format(len(whole) - 13) + begins),
        "longer": (whole + b"x",
                   "The compressed data has further bytes behind its end." + noticed.format(len(whole) - 10) + begins),
        "changed": (whole[:-1] + bytes([whole[-1] ^ 1]),
                    "The compressed data is damaged." + noticed.format(len(whole) - 10)
                    + ": incorrect data check" + begins),
        "no stream": (SIGNATURE + b"plain",
                      "The compressed data is damaged." + noticed.format(2) + ": incorrect header check" + begins),
        "bomb": (huge, "The compressed data grows beyond 1000 times its size.; file: x.zcf; noticed at byte "),
    }  # fmt: skip


@pytest.mark.parametrize("kind", damaged())
def test_a_damaged_file_is_refused_with_what_is_wrong_and_where(zyn, folder, kind):
    data, line = damaged()[kind]
    put(folder, "x.zcf", data)
    put(folder, "a.xml", "old")
    assert zyn.refusal("unpack", "x.zcf", "--out", "a.xml").startswith(line)
    assert (folder / "a.xml").read_text() == "old"
    assert left(folder) == {"x.zcf", "a.xml"}


def test_damaged_collections_of_the_settings_keep_nobody_from_mending_them(zyn, folder):
    collections = use_collections(zyn, a=FORMATS)
    put(collections, "a.zcf", b"broken")
    put(folder, "a.xml", FORMATS)
    zyn.refusal("items")
    zyn.rows("pack", "a.xml", "--out", "collections/a.zcf")
    assert zyn.rows("items").count("\n") == 3


@pytest.mark.skipif(os.geteuid() == 0, reason="root may write anywhere")
def test_a_folder_that_may_not_be_written(zyn, folder):
    put(folder, "a.xml", FORMATS)
    (folder / "closed").mkdir(mode=0o500)
    assert "Permission denied" in zyn.refusal("pack", "a.xml", "--out", "closed/a.zcf")


@pytest.mark.parametrize("command", [["pack", "a.xml"], ["unpack", "a.zcf"]])
@pytest.mark.parametrize(
    "out, reason", [("nowhere/x", "No such file or directory"), ("dir", "Is a directory"), ("/proc/x", "")]
)
def test_a_place_that_cannot_be_written(zyn, folder, command, out, reason):
    put(folder, "a.xml", FORMATS)
    put(folder, "a.zcf", collection_file(FORMATS))
    (folder / "dir").mkdir()
    assert f'Cannot write "{out}": {reason}' in zyn.refusal(*command, "--out", out)
    assert left(folder) == {"a.xml", "a.zcf", "dir"}


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="there is no /dev/full")
@pytest.mark.parametrize("command", [["pack", "a.xml"], ["unpack", "a.zcf"]])
def test_a_full_disk(zyn, folder, command):
    put(folder, "a.xml", FORMATS)
    put(folder, "a.zcf", collection_file(FORMATS))
    assert "No space left on device" in zyn.refusal(*command, "--out", "/dev/full")


def test_a_replaced_file_keeps_its_mode_and_its_links(zyn, folder):
    put(folder, "a.xml", FORMATS)
    put(folder, "real.zcf", "old").chmod(0o640)
    (folder / "a.zcf").symlink_to("real.zcf")
    zyn.rows("pack", "a.xml", "--out", "a.zcf")
    assert (folder / "a.zcf").is_symlink()
    assert (folder / "real.zcf").stat().st_mode & 0o777 == 0o640
    assert document_of(folder / "real.zcf") == FORMATS


def test_a_file_may_be_packed_over_itself(zyn, folder):
    put(folder, "a", FORMATS)
    zyn.rows("pack", "a", "--out", "a")
    assert document_of(folder / "a") == FORMATS


def heed_signals():
    """What a terminal's programs are given; one that runs behind others inherits signals that are ignored."""
    for ending in ENDINGS:
        signal.signal(ending, signal.SIG_DFL)


@pytest.mark.parametrize("ending", ENDINGS)
def test_an_interrupted_run_leaves_nothing_behind(zyn, folder, ending):
    put(folder, "a.zcf", "old")
    definitions = "".join(f'<moxZYNPack name="{i:0200}"/>' for i in range(150000))
    put(folder, "a.xml", f"<moxZYNCollection>{definitions}</moxZYNCollection>")
    running = subprocess.Popen([ZYN, "pack", "a.xml", "--out", "a.zcf"], cwd=folder, preexec_fn=heed_signals)
    while not any(name.startswith(".zyn-") for name in left(folder)):
        assert running.poll() is None, "the run ended before it could be interrupted"
    running.send_signal(ending)
    assert running.wait(60) == -ending
    assert left(folder) == {"a.xml", "a.zcf"}
    assert (folder / "a.zcf").read_text() == "old"
