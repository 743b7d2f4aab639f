# Which Debian packages each kind of work needs, and how they get there. Sourced by ./dev.
# shellcheck shell=sh

packages_for() {
  case $1 in
    build)
      echo build-essential cmake ninja-build ccache mold pkg-config \
        libsqlite3-dev libmariadb-dev libpugixml-dev nlohmann-json3-dev libtomlplusplus-dev libcli11-dev \
        libfmt-dev zlib1g-dev
      ;;
    tests)
      echo libgtest-dev libgmock-dev librapidcheck-dev mariadb-server-core mariadb-client-core \
        python3 python3-pytest python3-jsonschema
      ;;
    lint) echo clang-format-14 clang-tidy-14 shellcheck python3 git ;;
    coverage) echo gcovr ;;
    bench) echo libbenchmark-dev python3-pandas python3-mysqldb nodejs npm ;;
    fuzz) echo clang-14 libclang-rt-14-dev ;;
  esac
}

# Node.js often comes from elsewhere, with an npm of its own that Debian's package would fight with.
is_installed() {
  case $1 in
    nodejs) command -v node >/dev/null && return ;;
    npm) command -v npm >/dev/null && return ;;
  esac
  [ "$(dpkg-query -W -f '${db:Status-Abbrev}' "$1" 2>/dev/null)" = "ii " ]
}

missing_packages() {
  for kind in "$@"; do
    for package in $(packages_for "$kind"); do
      is_installed "$package" || echo "$package"
    done
  done | sort -u
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

# Installs what is missing for the kinds of work named; says what to do where it may not.
need_packages() {
  missing=$(missing_packages "$@" | tr '\n' ' ')
  [ -n "$missing" ] || return 0
  if ! command -v apt-get >/dev/null; then
    echo "./dev: this needs Debian 12 or a system with its packages: $missing" >&2
    exit 1
  fi
  if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
    echo "./dev: packages are missing, and this user can neither install them nor use sudo. As root, run:" >&2
    echo "  apt-get install $missing" >&2
    exit 1
  fi
  echo "Installing: $missing"
  mkdir -p build
  install_log=build/setup.log
  # shellcheck disable=SC2086
  if ! { as_root apt-get -q update && as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get -q -y --no-install-recommends install $missing; } >"$install_log" 2>&1; then
    tail -n 20 "$install_log" >&2
    echo "./dev: the packages could not be installed; the whole output is in $install_log. As root, run:" >&2
    echo "  apt-get install $missing" >&2
    exit 1
  fi
}
