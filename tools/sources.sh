# Lists the C++ sources of the repository, tracked or new. Sourced by format.sh and lint.sh.
# shellcheck shell=sh
cpp_sources() {
  git ls-files --cached --others --exclude-standard '*.h' '*.cpp' | while read -r file; do
    [ ! -f "$file" ] || echo "$file"
  done
}
