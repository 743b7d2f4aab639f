# Configuring and building. Sourced by ./dev.
# shellcheck shell=sh

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
