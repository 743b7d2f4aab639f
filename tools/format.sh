#!/bin/sh
# format.sh -i rewrites the sources in the project's format; format.sh --check names those that differ from it.
set -eu
. tools/sources.sh

case ${1:-} in
  -i) cpp_sources | xargs clang-format-14 -i ;;
  --check) cpp_sources | xargs clang-format-14 --dry-run --Werror ;;
  *)
    echo "usage: tools/format.sh -i | --check" >&2
    exit 2
    ;;
esac
