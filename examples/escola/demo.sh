#!/bin/sh
# The example, end to end: makes the school network's database, packs its definitions, and runs three of them for two
# users of different units, a search for one, and a report card for the head of a unit, the whole way through program,
# framework, module, database, column tables and formatters.
#
# usage: demo.sh BUILD_DIR DEMO_DIR     BUILD_DIR holds bin/ and lib/; everything is written below DEMO_DIR
set -eu

build=$1
demo=$2
here=$(dirname "$0")

mkdir -p "$demo/collections"

zyn() {
  "$build/bin/zyn" --config "$demo/zyn.toml" --quiet "$@"
}

# for_both NAME [options]: what each of the two sees; the texts in brackets say which unit a row belongs to.
for_both() {
  echo
  echo "   \"$1\" for joaquim"
  zyn --user joaquim run --format table "$@"
  echo
  echo "   \"$1\" for iara"
  zyn --user iara --unit 6 --unit 7 run --format table "$@"
}

echo
echo "1. The database of a school network: $demo/escola.db"
rm -f "$demo/escola.db"
"$build/bin/escola-generate" --database "sqlite:$demo/escola.db" --scale demo --quiet
cat >"$demo/zyn.toml" <<'TOML'
# Settings of the demo. Paths are relative to this file.

[database]
url = "sqlite:escola.db"

[ZYNCollectionDirs]
escola = "collections"
TOML
zyn sql "select (select count(*) from ambiente_unidades) as units, (select count(*) from escola_alunos) as students,
          (select count(*) from escola_notas) as grades, (select count(*) from escola_faturas) as invoices" \
  --format table

echo
echo "2. What is asked of it is declared: $here/definitions, packed into $demo/collections/escola.zcf"
zyn pack "$here/definitions" --out "$demo/collections/escola.zcf"
zyn items --format csv --out "$demo/items.csv"
echo "   zyn items lists $(($(wc -l <"$demo/items.csv") - 1)):"
tail -n +2 "$demo/items.csv" | cut -d, -f1 | paste -sd, | sed 's/,/, /g' | fold -s -w 110 | sed 's/^/   /'

echo
echo "3. Three of them, for the head of the unit 3 (joaquim) and the director of the units 6 and 7 (iara)"
for_both "Cursos da rede"
for_both "Vagas por turma" --limit 5
for_both "Faturas em aberto" --filter vencidasAte=2024-06-30 --limit 5

echo
echo "4. A screen to look students up, as joaquim sees it: the icon of a state in brackets, keys to go on with"
zyn --user joaquim search "Pesquisa de matrículas" --filter ano=2021.. --filter nome=A% --page 1 --page-size 6 --format table

echo
echo "5. Why is this what joaquim gets?"
zyn --user joaquim explain "Faturas em aberto" --filter vencidasAte=2024-06-30 --out "$demo/explain.txt"
sed -n 's/^/ /; /conditions/,$p' "$demo/explain.txt"
echo "   from $demo/explain.txt, which holds the statement and all values"

echo
echo "6. The report card of a class, out of five definitions: marks, averages, their order, the cross table, its order"
zyn --user joaquim run "Boletim da turma" --filter id_turma=26 --format table

echo
echo "Go on by hand:"
echo "   $build/bin/zyn --config $demo/zyn.toml --user iara --unit 6 --unit 7 run 'Médias por disciplina'"
echo "   $build/bin/zyn --config $demo/zyn.toml show 'Boletim da turma'"
echo "   $build/bin/zyn --config $demo/zyn.toml --user joaquim explain 'Turmas na ordem escolhida' --sort faltas:desc"
echo "   $build/bin/zyn --config $demo/zyn.toml --user joaquim search 'Pesquisa de matrículas' --filters"
echo "   $build/bin/zyn --config $demo/zyn.toml sql 'select nome, cidade from ambiente_unidades' --sort nome"
echo "   docs/tutorial/first-definition.md writes a definition from an empty file, docs/tutorial/narrowing-and-searching.md"
echo "   a screen of several, docs/tutorial/from-marks-to-a-report-card.md a report card"
