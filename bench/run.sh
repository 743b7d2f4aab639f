#!/bin/sh
# Runs the comparison against floors and peers: brings the peers from npm, starts a MariaDB server of its own, and ends
# it. ./dev bench builds and then calls this.
set -eu

usage() {
  cat <<'TEXT'
usage: bench/run.sh BUILD_DIR [OPTIONS]        (./dev bench [OPTIONS] builds first)

Measures floor, ours and peers in turns and prints a table of medians.

  --rows N     rows of every case, in place of its own number (loads and CSV 1M, others 10M); up to 16M
  --rounds N   rounds; 5 unless told
  --case NAME  only this case; may be repeated: load-sqlite, load-mariadb, sort-numbers, sort-text, append, walk, index,
               group-int, group-text, group-two, expression, join, pivot, union, csv
  --cpu        processor time in place of elapsed time, for a machine with other work
  --write      put machine and table into docs/benchmarks.md; needs 5 rounds or more
  --help       this text

Peers: pandas and numexpr (Debian's python3-pandas, python3-numexpr), DuckDB and Polars (npm, installed into
BUILD_DIR/npm). One that cannot be had is reported as "not here". Wrong results end the run with status 1.
TEXT
}

say() {
  echo "bench: $*" >&2
}

# The first interpreter that has pandas: a python of the user's may stand before Debian's.
find_python() {
  for python in python3 /usr/bin/python3; do
    if "$python" -c 'import pandas' >/dev/null 2>&1; then
      echo "$python"
      return
    fi
  done
  say "pandas is not here; python3-pandas brings it"
}

# Installed once; the lock file says which versions, and a copy of it that they are there.
install_npm_peers() {
  if cmp -s "$peers/package-lock.json" "$npm/installed.json"; then
    return
  fi
  if ! command -v npm >/dev/null 2>&1; then
    say "npm is not here, so neither are DuckDB and Polars"
    return
  fi
  say "installing DuckDB and Polars into $npm"
  rm -rf "$npm"
  mkdir -p "$npm"
  cp "$peers/package.json" "$peers/package-lock.json" "$npm/"
  # Not "npm ci": it wants every platform's package in the lock file, and not all of them were published.
  if npm install --prefix "$npm" --no-audit --no-fund --loglevel=error >"$npm/install.log" 2>&1; then
    cp "$peers/package-lock.json" "$npm/installed.json"
  else
    say "npm could not install them, see $npm/install.log"
  fi
}

wants_mariadb() {
  case " $cases " in
    "  " | *" load-mariadb "*) return 0 ;;
  esac
  return 1
}

start_mariadb() {
  url=$(sh tests/support/mariadb_server.sh start "$work/mariadb" $$) || {
    say "MariaDB is not here"
    return
  }
  mariadb_socket=${url#*socket=}
}

stop_mariadb() {
  sh tests/support/mariadb_server.sh stop "$work/mariadb"
}

case ${1:-} in
  --help | -h | "")
    usage
    [ $# -gt 0 ] || exit 2
    exit 0
    ;;
esac
cd "$(dirname "$0")/.."
build=$(cd "$1" && pwd)
shift
peers=bench/compare/peers
npm=$build/npm
work=$build/work
cases=
write=
expected=
for argument in "$@"; do
  case $argument in
    --help | -h)
      usage
      exit 0
      ;;
    --write) write=yes ;;
    --case) expected=case ;;
    --case=*) cases="$cases ${argument#--case=}" ;;
    *)
      [ "$expected" != case ] || cases="$cases $argument"
      expected=
      ;;
  esac
done
cases=${cases# }

# Puts the arguments together; --write is a flag here and takes the document there.
count=$#
for argument in "$@"; do
  [ "$argument" = --write ] || set -- "$@" "$argument"
done
shift "$count"
[ -z "$write" ] || set -- "$@" --write docs/benchmarks.md

mkdir -p "$work"
python=$(find_python)
[ -z "$python" ] || set -- "$@" --python "$python" --pandas-peer "$peers/pandas_peer.py" \
  --pandas-group-peer "$peers/pandas_group.py" --pandas-join-peer "$peers/pandas_join.py" \
  --pandas-tables-peer "$peers/pandas_tables.py"
if [ -n "$python" ] && "$python" -c 'import numexpr' >/dev/null 2>&1; then
  set -- "$@" --numexpr-peer "$peers/numexpr_peer.py"
else
  say "numexpr is not here; python3-numexpr brings it"
fi
install_npm_peers
duckdb=$npm/node_modules/@duckdb/node-bindings-linux-x64/libduckdb.so
[ ! -f "$duckdb" ] || set -- "$@" --duckdb "$duckdb"
if [ -d "$npm/node_modules/nodejs-polars" ] && command -v node >/dev/null 2>&1; then
  set -- "$@" --node node --polars-peer "$peers/polars_peer.js" --npm "$npm" \
    --polars-expression-peer "$peers/polars_expression.js" --polars-group-peer "$peers/polars_group.js" \
    --polars-join-peer "$peers/polars_join.js" --polars-tables-peer "$peers/polars_tables.js"
fi
mariadb_socket=
if wants_mariadb; then
  trap stop_mariadb EXIT
  trap 'exit 130' INT TERM
  start_mariadb
  set -- "$@" --mariadb-socket "$mariadb_socket"
fi
"$build/bin/zyn_bench" --work "$work" "$@"
