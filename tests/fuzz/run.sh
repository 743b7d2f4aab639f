#!/bin/sh
# Runs every fuzz target for a while, each from its own corpus. What breaks is left in BUILD_DIR/found/TARGET; the status
# is 1 when anything did.
#
# usage: run.sh BUILD_DIR SECONDS
set -eu

build=$1
seconds=$2
corpus=tests/fuzz/corpus
failed=0

for program in "$build"/bin/fuzz_*; do
  name=${program##*/fuzz_}
  found="$build/found/$name"
  mkdir -p "$found"
  set -- -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$found/broken-"
  if [ -f "tests/fuzz/$name.dict" ]; then
    set -- "$@" -dict="tests/fuzz/$name.dict"
  fi
  echo "== $name, $seconds seconds"
  if "$program" "$@" "$found" "$corpus/$name" >"$found.log" 2>&1; then
    sed -n 's/^stat::number_of_executed_units: *\([0-9]*\)$/   \1 inputs, nothing broke/p' "$found.log"
  else
    failed=1
    tail -n 40 "$found.log"
    echo "$name broke; the input is $found/broken-*, the report $found.log" >&2
  fi
done
exit "$failed"
