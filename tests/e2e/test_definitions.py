"""The example's definitions: every one runs, gives the same table on both databases, and comes back as it was saved."""

import csv
import io
import json

import pytest
from conftest import School
from example_school import (  # noqa: F401
    DEFINITIONS,
    UNITS_OF,
    definition_elements,
    mariadb_escola,
    settings_text,
    source_names,
    sqlite_escola,
)

# Ways to run each definition, every declared filter at least once. A definition whose required filter is missing is
# refused, so it has no run without one.
RUNS = {
    "Minhas unidades": [[], ["uf=PB,AL"]],
    "Alunos da unidade": [
        [],
        ["nome=%ana%"],
        ["id=62"],
        ["registro=2021000062..2021000070"],
        ["nascimento=2000-01-01..31/12/2005"],
        ["renda=5000,5..", "nome=%"],
    ],
    "Aniversariantes do mês": [["mes=5"], ["{{mes}}=12"]],
    "Responsáveis financeiros": [[], ["cpf_digitos=005.487.657-58"], ["nome=Emanuel%"], ["parentesco=pai,tia"]],
    "Matrículas": [
        [],
        ["ano=2021,2024"],
        ["id_turma=26"],
        ["numero=..5"],
        ["situacao=cursando,aprovado com dependência"],
        ["media=7..9,5"],
        ["Bolsa, sem bolsa é 0=0..25"],
    ],
    "Turmas do ano": [
        [],
        ["anoLetivo=2024"],
        ["serie=6,8"],
        ["turno=matutino"],
        ["data_inicio=2024-02-05"],
        ["Disciplina=10", "anoLetivo=2021"],
    ],
    "Boletim do aluno": [["id_matricula=161"], ["id_matricula=161", "sigla=MAT,POR"]],
    "Médias por disciplina": [[], ["ano=2022..2024", "sigla=MAT"], ["media=7,5.."]],
    "Notas lançadas": [
        [],
        ["nota=8,5", "bimestre=1,4"],
        ["recuperacao=5,6", "sigla=MAT"],
        ["recuperacao=5"],
        ["lancada_em=2024-04-01..2024-07-31"],
    ],
    "Frequência mensal": [[], ["mes=01/03/2024"], ["id_matricula=161"], ["faltas=2.."]],
    "Faltas do período": [[], ["minimo=3", "mes=2021-03-01..2021-06-01"]],
    "Calendário escolar": [[], ["data=2024-01-01..2024-12-31"], ["tipo=feriado,festa"]],
    "Disciplinas": [[], ["sigla=MAT"], ["aulas_semanais=4.."]],
    "Cursos da rede": [[], ["mensalidade=..900"]],
    "Funcionários": [
        [],
        ["cargo=Docência%"],
        ["admissao=2005-01-01..2010-12-31"],
        ["salario=5000..6000"],
        ["CPF=000.481.482-70"],
    ],
    "Faturas em aberto": [[], ["vencidasAte=2024-03-31"], ["vencimento=2021-06-10"], ["valor=700.."]],
    "Pagamentos por forma": [[], ["forma=pix,dinheiro"], ["pago_em=2024-01-01..2024-06-30"]],
    "Inadimplência por turma": [[], ["ano=2024"]],
    "Meus dados": [[]],
    "Quadro da unidade": [[], ["anoLetivo=2024"]],
    "Painéis da rede": [[]],
    "Configurações da unidade": [[]],
    "Vagas por turma": [[], ["serie=6"], ["turno=matutino"]],
    "Notas das turmas": [["id_turma=26"], ["ano=2023..2024", "bimestre=1,4"]],
    "Faturas emitidas": [[], ["vencimento=2021-01-01..2021-12-31", "situacao=parcial,vencida"]],
    "Pagamentos recebidos": [[], ["forma=pix,dinheiro"]],
    "Notas do ano passado": [[]],
    "Notas deste ano": [[]],
}

# Statements without an order of their own: rows come as the database likes.
UNORDERED = {
    "Responsáveis financeiros",
    "Boletim do aluno",
    "Médias por disciplina",
    "Calendário escolar",
}


def run(school, user, name, filters, *options):
    """Runs a definition for all units that the user may work in."""
    units = [argument for unit in sorted(UNITS_OF[user]) for argument in ("--unit", unit)]
    arguments = [argument for text in filters for argument in ("--filter", text)]
    return school.rows("--quiet", "--user", user, *units, "run", name, *arguments, "--format", "csv", *options)


def comparable(name, table):
    header, *rows = list(csv.reader(io.StringIO(table)))
    return [header, *(sorted(rows) if name in UNORDERED else rows)]


def cases():
    return [pytest.param(name, filters, id=f"{name}: {' '.join(filters)}") for name in RUNS for filters in RUNS[name]]


def items(school):
    return json.loads(school.rows("--quiet", "items", "--format", "json"))


def test_every_data_source_of_the_example_is_run_here():
    assert sorted(RUNS) == sorted(source_names())


def declared_filters(element):
    """Those of a query; what a manager declares is used where it rules."""
    if element.tag != "moxSQLDataSource":
        return []
    return [child for child in element.iterfind("Filters//*") if child.tag.startswith("mox")]


def test_every_declared_filter_is_used_here():
    for element in definition_elements():
        used = {text.split("=")[0].strip("{}") for filters in RUNS.get(element.get("name"), []) for text in filters}
        for specification in declared_filters(element):
            names = {specification.get("columnName").strip("{}"), specification.get("description")}
            assert names & used, (element.get("name"), names)


def test_all_twelve_kinds_of_filter_are_declared():
    tags = {specification.tag for element in definition_elements() for specification in declared_filters(element)}
    forms = [(kind, form) for kind in ("Integral", "Double", "Text") for form in ("Unique", "Range", "In")]
    forms += [("Date", "Unique"), ("Date", "Range"), ("Integral", "UniqueSQL")]
    assert tags == {f"mox{kind}{form}Filter" for kind, form in forms}


def test_short_columns_name_their_class():
    tags = {column.tag for element in definition_elements() for column in element.iterfind("Columns/*")} - {"Column"}
    assert tags == {f"moxDataMatrix{kind}Column" for kind in ("Int", "Double", "Text", "Date")}


def test_no_item_is_skipped(sqlite_escola):
    done = sqlite_escola.zyn("items", "--format", "json", "--quiet")
    assert (done.returncode, done.stderr) == (0, "")
    kinds = [item["kind"] for item in json.loads(done.stdout)]
    assert len(kinds) == len(list(definition_elements())) >= 20
    assert {kind: kinds.count(kind) for kind in kinds} == {"data-source": 57, "formatter": 7, "pack": 1, "search": 5}


@pytest.mark.parametrize(("name", "filters"), cases())
def test_definition_gives_rows(sqlite_escola, name, filters):
    header, *rows = list(csv.reader(io.StringIO(run(sqlite_escola, "rosangela", name, filters))))
    assert header and rows


@pytest.mark.parametrize(("name", "filters"), cases())
def test_both_databases_give_equal_tables(sqlite_escola, mariadb_escola, name, filters):
    for user, options in (("rosangela", []), ("rosangela", ["--formatted"]), ("iara", [])):
        one = run(sqlite_escola, user, name, filters, *options)
        other = run(mariadb_escola, user, name, filters, *options)
        assert comparable(name, one) == comparable(name, other), (user, options)


def test_users_of_different_units_see_different_rows(sqlite_escola):
    tables = {user: run(sqlite_escola, user, "Alunos da unidade", []) for user in UNITS_OF}
    assert len(set(tables.values())) == len(UNITS_OF)


def formatted_rows(school, name, filters):
    return list(csv.DictReader(io.StringIO(run(school, "joaquim", name, filters, "--formatted"))))


def test_people_are_shown_as_a_brazilian_office_writes_them(sqlite_escola):
    (person,) = formatted_rows(sqlite_escola, "Funcionários", ["CPF=000.481.482-70"])
    shown = {key: value for key, value in person.items() if key not in ("id", "id_unidade", "observacao", "cargo")}
    assert list(shown.values()) == [
        "Amanda Pacheco Mendonça",
        "AMANDA PACHECO MENDONCA",
        "CPF 000.481.482-70",
        "00048148270",
        "Tel. (83) 90000-2740",
        "desde 31/03/2005",
        "R$ 6.136,00",
    ]


def test_money_days_and_shares_are_shown_as_a_brazilian_office_writes_them(sqlite_escola):
    invoice = formatted_rows(sqlite_escola, "Faturas em aberto", ["vencimento=2021-06-10"])[0]
    assert [invoice[key] for key in ("vencimento", "valor", "devido", "emitida_em")] == [
        "10/06/2021",
        "R$ 620,00",
        "R$ 248,00",
        "20/05/2021 06:02",
    ]
    month = formatted_rows(sqlite_escola, "Frequência mensal", ["id_matricula=162"])[0]
    assert [month[key] for key in ("id_matricula", "mes", "presenca")] == ["000162", "02/2021", "94,1 %"]


def saved(school, name):
    """The element as the definition writes itself."""
    text = school.rows("--quiet", "show", name, "--xml")
    declaration, element = text.split("\n", 1)
    assert declaration.startswith("<?xml")
    return element


def test_load_save_load_gives_the_same_definition(sqlite_escola, tmp_path):
    names = [item["description"] for item in items(sqlite_escola)]
    first = {name: saved(sqlite_escola, name) for name in names}
    again = School(tmp_path, f"sqlite:{sqlite_escola.folder}/escola.db")
    again.write_settings(settings_text(again.url))
    (tmp_path / "collections").mkdir()
    collection = '<moxZYNCollection parentLibraryName="ZYNC">\n' + "".join(first.values()) + "</moxZYNCollection>\n"
    (tmp_path / "again.xml").write_text(collection, encoding="utf-8")
    again.rows("pack", "again.xml", "--out", "collections/again.zcf")
    assert items(again) == items(sqlite_escola)
    assert {name: saved(again, name) for name in names} == first
    for name, runs in RUNS.items():
        assert run(again, "rosangela", name, runs[0]) == run(sqlite_escola, "rosangela", name, runs[0])


def test_pack_of_what_unpack_gave_is_the_same_file(sqlite_escola, tmp_path):
    school = sqlite_escola
    packed = (school.folder / "collections/escola.zcf").read_bytes()
    assert packed[:10] == b"\x01\x00MOXZYNC\x00"
    school.rows("unpack", "collections/escola.zcf", "--out", tmp_path / "open.xml")
    school.rows("pack", tmp_path / "open.xml", "--out", tmp_path / "again.zcf")
    school.rows("unpack", tmp_path / "again.zcf", "--out", tmp_path / "again.xml")
    assert (tmp_path / "again.xml").read_bytes() == (tmp_path / "open.xml").read_bytes()
    assert (tmp_path / "again.zcf").read_bytes() == packed


def test_packing_the_folder_again_gives_the_same_bytes(sqlite_escola, tmp_path):
    sqlite_escola.rows("pack", DEFINITIONS, "--out", tmp_path / "again.zcf")
    assert (tmp_path / "again.zcf").read_bytes() == (sqlite_escola.folder / "collections/escola.zcf").read_bytes()
