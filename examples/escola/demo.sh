#!/bin/sh
# The example, end to end: makes the school network's database and asks it a question the whole way, through program,
# framework, module, database, column tables and sorter.
#
# usage: demo.sh BUILD_DIR DEMO_DIR     BUILD_DIR holds bin/ and lib/; everything is written below DEMO_DIR
set -eu

build=$1
demo=$2
zyn="$build/bin/zyn"
user=rosangela

mkdir -p "$demo"

echo
echo "1. The database of a school network: $demo/escola.db"
rm -f "$demo/escola.db"
"$build/bin/escola-generate" --database "sqlite:$demo/escola.db" --scale demo --quiet
cat >"$demo/zyn.toml" <<'TOML'
# Settings of the demo. Paths are relative to this file.

[database]
url = "sqlite:escola.db"
TOML
"$zyn" --config "$demo/zyn.toml" --quiet sql \
  "select (select count(*) from ambiente_unidades) as units, (select count(*) from escola_alunos) as students,
          (select count(*) from escola_notas) as grades, (select count(*) from escola_faturas) as invoices" \
  --format table

echo
echo "2. How the network's schools did in each subject this year, best first, as its director $user may see it"
question="select * from (
    select n.id_unidade, u.cidade, d.nome as disciplina, count(n.nota) as notas,
           round(avg(n.nota), 2) as media, min(n.nota) as menor, max(n.nota) as maior,
           sum(n.faltas) as faltas, max(n.lancada_em) as ultimo_lancamento
    from escola_notas n
    inner join escola_matriculas m on m.id = n.id_matricula
    inner join escola_turmas t on t.id = m.id_turma
    inner join escola_disciplinas d on d.id = n.id_disciplina
    inner join ambiente_unidades u on u.id = n.id_unidade
    where t.ano = 2024
    group by n.id_unidade, u.cidade, d.nome) resumo"
ask() {
  "$zyn" --config "$demo/zyn.toml" --user "$user" --unit 1 --unit 2 --unit 3 --unit 4 --unit 5 --quiet \
    sql "$question" --unit-column resumo.id_unidade --sort media:desc,cidade,disciplina "$@"
}
ask --format csv --out "$demo/medias.csv"
ask --format table --limit 12
echo "   all $(($(wc -l <"$demo/medias.csv") - 1)) lines: $demo/medias.csv"

echo
echo "3. Go on by hand:"
echo "   $zyn --config $demo/zyn.toml sql 'select nome, cidade from ambiente_unidades' --sort nome"
echo "   $zyn --config $demo/zyn.toml classes"
