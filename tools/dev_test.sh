# Running the tests. Sourced by ./dev.
# shellcheck shell=sh disable=SC2154

results=build/test-results

# start_mariadb: a private server for the tests, in a directory of its own, ended by stop_mariadb whatever happens.
start_mariadb() {
  mariadb_dir=$(mktemp -d "${TMPDIR:-/tmp}/mox-test-db.XXXXXX")
  trap stop_mariadb EXIT
  trap 'exit 130' INT TERM
  MOX_TEST_MARIADB_URL=$(sh tests/support/mariadb_server.sh start "$mariadb_dir" $$)
  export MOX_TEST_MARIADB_URL
}

stop_mariadb() {
  sh tests/support/mariadb_server.sh stop "$mariadb_dir" || true
  rm -rf "$mariadb_dir"
}

# run_gtest NAME PROGRAM [options]: a failing or crashing program is told by its missing or red report; one that
# fails behind its last test, as of leaks, by its status.
run_gtest() {
  name=$1
  shift
  echo "== $name"
  status=0
  "$@" --gtest_brief=1 --gtest_output="xml:$root/$results/$name.xml" || status=$?
  echo "$status" >"$results/$name.status"
}

run_pytest() {
  echo "== end to end"
  ZYN_BIN="$root/build/release/bin/zyn" /usr/bin/python3 -m pytest -q -p no:cacheprovider \
    --junitxml="$root/$results/end-to-end.xml" tests/e2e || echo "end to end ended with status $?"
}

run_plain() {
  run_gtest unit build/release/bin/unit_tests
  run_gtest contract build/release/bin/contract_tests
  run_pytest
}

# The leak check needs ptrace, which some containers refuse; everything else of the sanitizer works there.
leak_check_works() {
  echo 'int main(void) { return 0; }' | cc -fsanitize=address -x c - -o build/leak_probe &&
    build/leak_probe >/dev/null 2>&1
}

run_sanitized() {
  leak_check_works || export ASAN_OPTIONS=detect_leaks=0
  export UBSAN_OPTIONS=print_stacktrace=1
  export TSAN_OPTIONS=halt_on_error=1
  run_gtest unit-address build/address/bin/unit_tests
  run_gtest contract-address build/address/bin/contract_tests
  run_gtest threads build/thread/bin/thread_tests
}

build_sanitized() {
  configure address -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMOX_SANITIZE=address
  ninja -C build/address unit_tests contract_tests mox_zyn
  configure thread -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMOX_SANITIZE=thread
  ninja -C build/thread thread_tests
}

# run_all_tests everything|sanitizers
run_all_tests() {
  rm -rf "$results"
  mkdir -p "$results"
  [ "$1" = sanitizers ] || build_release
  build_sanitized
  start_mariadb
  [ "$1" = sanitizers ] || run_plain
  run_sanitized
  if [ "$1" = sanitizers ]; then
    expected="unit-address contract-address threads"
  else
    expected="unit contract end-to-end unit-address contract-address threads"
  fi
  # shellcheck disable=SC2086
  /usr/bin/python3 tools/summarise_tests.py "$results" $expected
}

run_coverage() {
  rm -rf "$results" build/coverage/report
  mkdir -p "$results" build/coverage/report
  configure coverage -DCMAKE_BUILD_TYPE=Debug -DMOX_COVERAGE=ON
  ninja -C build/coverage unit_tests contract_tests mox_zyn
  start_mariadb
  run_gtest unit build/coverage/bin/unit_tests
  run_gtest contract build/coverage/bin/contract_tests
  gcovr --root . --filter src/ --filter include/ --object-directory build/coverage \
    --html-details build/coverage/report/index.html --print-summary
  /usr/bin/python3 tools/summarise_tests.py "$results" unit contract
}
