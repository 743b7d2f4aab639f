"""What is told of chains of sources that cannot work, or whose columns come to nothing."""

import json

import jsonschema
from test_chain_runs import SCHEMA, chains  # noqa: F401


def test_failures_name_the_source_and_what_it_lacks(chains):  # noqa: F811
    assert chains.refusal("run", "Ordem da órfã") == (
        "Falha: Órfã; in the source 'Órfã', a moxAggregationDataSource; the source 'Órfã' reads 'Nenhuma', which is no "
        "source that this session finds; in the definition 'Ordem da órfã'"
    )
    refused = chains.refusal("--unit", "3", "run", "Coluna errada")
    assert refused.startswith(
        "Coluna nada não localizada.; there are: id, aluno, turma, bimestre, nota, sinal, id_unidade; in the source "
        "'Coluna errada', a moxDataSourcePivoting; "
    )
    assert chains.refusal("--unit", "3", "run", "Oferta vazia", "--sort", "nada") == (
        "the source 'Oferta vazia' offers to sort by 'nada', a column that its rows do not have"
    )
    refused = chains.refusal("run", "Anel")
    assert refused.startswith("Fonte de dados externa inválida") and "Elo" in refused and "'Anel'" in refused
    refused = chains.refusal("run", "De nada", "--yes")
    assert "the source 'De nada' reads 'Corrigir nota', which gives no rows" in refused


def test_explanation_of_a_failing_chain_tells_how_far_it_came(chains):  # noqa: F811
    done = chains.zyn("--unit", "3", "explain", "Coluna errada", "--format", "json")
    document = json.loads(done.stdout)
    jsonschema.validate(document, SCHEMA)
    assert done.returncode == 1 and document["error"]
    assert [(s["name"], s["rows"]) for s in document["sources"]] == [("Notas", 4), ("Coluna errada", 0)]
    text = chains.zyn("explain", "Ordem da órfã").stdout
    assert "what is wrong in the chain\n  the source 'Órfã' reads 'Nenhuma', which is no source" in text


def test_failures_of_members_and_statements_name_the_step(chains):  # noqa: F811
    member = (
        "Coluna não encontrada nada; Coluna: x; Expressão: nada(0); there are: id, aluno, turma, bimestre, nota, sinal, "
        "id_unidade, x; in the member 'soma' of the group 'Grupo'; in the definition '{}'"
    )
    for command, name in (("run", "Grupo"), ("run", "Busca"), ("search", "Busca")):
        assert chains.refusal("--unit", "3", command, name) == member.format(name)
    done = chains.zyn("--unit", "3", "explain", "Grupo", "--format", "json")
    assert json.loads(done.stdout)["error"] == member.format("Grupo")
    for form in ("text", "json"):
        text = chains.zyn("--unit", "3", "explain", "Terceira", "--format", form).stdout
        assert "nenhuma" in text and "in the source 'Sem tabela', a moxSQLDataSource; in the definition 'Terceira'" in text


def test_explanation_tells_what_came_to_nothing(chains):  # noqa: F811
    document = json.loads(chains.rows("--unit", "3", "explain", "Trocada", "--format", "json"))
    jsonschema.validate(document, SCHEMA)
    assert document["error"] is None and document["chainProblems"] == [
        "the source 'Trocada' groups by 'série', a column that the rows of 'Notas' do not have",
        "the source 'Trocada' computes 'media' by moxDoubleAvg from 'bimestre', which is int and not double",
    ]
    assert json.loads(chains.rows("--unit", "3", "explain", "Trocada", "--dry-run", "--format", "json"))["chainProblems"] == []
