# Configuring and building. Sourced by ./dev.
# shellcheck shell=sh disable=SC2154

# One cache serves every clone on the machine: paths below the clone are cached as relative ones.
export CCACHE_BASEDIR="$root"
export CCACHE_NOHASHDIR=1

# configure NAME [CMake options]: makes build/NAME ready for ninja.
configure() {
  mkdir -p build
  name=$1
  shift
  cmake -S . -B "build/$name" -G Ninja -DCMAKE_CXX_COMPILER_LAUNCHER=ccache "$@" >"build/$name.configure.log" 2>&1 || {
    cat "build/$name.configure.log" >&2
    echo "./dev: CMake could not configure build/$name" >&2
    exit 1
  }
}

# build_release [TARGET...]: what a user runs, optimised.
build_release() {
  configure release -DCMAKE_BUILD_TYPE=Release
  ninja -C build/release "$@"
}
