#!/bin/sh
# Everything `./dev lint` looks at, quick checks first. Needs a configured build/release with the module built.
set -eu
. tools/sources.sh

echo "== format"
sh tools/format.sh --check
echo "== shell"
git ls-files --cached --others --exclude-standard dev .ci/run '*.sh' | xargs shellcheck -x
echo "== repository"
/usr/bin/python3 tools/check_repository.py
/usr/bin/python3 tools/index_decisions.py --check
/usr/bin/python3 tools/check_module_symbols.py build/release/lib/libmox_zyn.so
echo "== clang-tidy"
/usr/bin/python3 tools/run_clang_tidy.py build/release
echo "lint: clean"
