"""Open collections and settings for the tests of definitions."""

import zlib

SIGNATURE = b"\x01\x00MOXZYNC\x00"

FORMATS = """<?xml version="1.0" encoding="UTF-8"?>
<!-- formats -->
<moxZYNCollection parentLibraryName="escola">
  <!-- money -->
  <moxFormatterZYNItem>
    <moxDecimalFormatter description="Dinheiro" prefix="R$ " precision="2" separator=","/>
  </moxFormatterZYNItem>
  <moxFormatterZYNItem><moxDateFormatter description="Data" mask="%d/%m/%Y"/></moxFormatterZYNItem>
</moxZYNCollection>
"""

PACKS = """<moxZYNCollection parentLibraryName="escola">
  <moxZYNPack name="Álbum"/>
  <moxZYNPack name="pacote, com &quot;aspas&quot;"/>
</moxZYNCollection>"""

SOURCES = """<moxZYNCollection parentLibraryName="escola">
  <moxSQLDataSource name="Alunos" VisibleName="Os alunos">
    <Command type="1"><from>alunos a</from></Command>
    <mainData tableName="a" columnName="id"/>
    <Columns>
      <Column tableName="a" tableNameOrigin="alunos" columnName="id" columnNameOrigin="id" Visible="0"
              Type="2"><sql alias="id" index="0">a.id</sql></Column>
      <Column tableName="a" tableNameOrigin="alunos" columnName="nome" columnNameOrigin="nome" VisibleName="Nome"
              Visible="1" Type="1"><sql alias="nome" index="1">a.nome</sql></Column>
    </Columns>
    <Order><By tableName="a" columnName="nome"/></Order>
  </moxSQLDataSource>
</moxZYNCollection>"""


def collection_file(text):
    """A collection file, made without the program."""
    return SIGNATURE + zlib.compress(text.encode("utf-8"))


def document_of(path):
    data = path.read_bytes()
    assert data[:10] == SIGNATURE
    return zlib.decompress(data[10:]).decode("utf-8")


def use_collections(school, more="", **files):
    """Has the school's settings name a folder with these collections, by their names without the ending."""
    folder = school.folder / "collections"
    folder.mkdir(exist_ok=True)
    for name, text in files.items():
        (folder / f"{name}.zcf").write_bytes(collection_file(text))
    school.write_settings(f'[database]\nurl = "{school.url}"\n[ZYNCollectionDirs]\nall = "collections"\n{more}')
    return folder
