#!/bin/sh
# A private MariaDB server for tests and benchmarks.
#
#   mariadb_server.sh start DIR [OWNER_PID]   makes a server in DIR and prints its URL; a server that runs there
#                                             already is kept. With OWNER_PID the server ends when that process
#                                             is gone, so that an interrupted test run leaves nothing behind.
#   mariadb_server.sh stop DIR                ends it and waits until it is gone; nothing to stop is no error
#
# The server listens on a unix socket only. Its data is thrown away at the next start and its settings trade
# every safety for speed. Needs Debian's mariadb-server-core and mariadb-client-core.

set -eu

fail() {
  echo "mariadb_server.sh: $*" >&2
  exit 1
}

usage() {
  echo "usage: mariadb_server.sh start DIR [OWNER_PID] | stop DIR" >&2
  exit 2
}

# A process id may have been given to another process since: only a server on our own directory counts.
server_pid() {
  [ -s "$dir/home" ] && [ -s "$dir/pid" ] || return 1
  home=$(cat "$dir/home")
  pid=$(cat "$dir/pid")
  [ -r "/proc/$pid/cmdline" ] || return 1
  tr '\0' '\n' <"/proc/$pid/cmdline" 2>/dev/null | grep -qxF -- "--defaults-file=$home/my.cnf" || return 1
  echo "$pid"
}

# Data and socket lie in DIR, unless its path is too long for a socket (107 bytes) or has characters, like a
# blank, that the installer of the data directory cannot take: then they lie in a directory of /tmp.
choose_home() {
  home=$dir
  case "$dir" in
    *[!A-Za-z0-9_./-]* | ?????????????????????????????????????????????????????????????????????????????????????????*)
      home=$(mktemp -d /tmp/mox-mariadb.XXXXXX)
      ;;
  esac
  printf '%s' "$home" >"$dir/home"
}

write_settings() {
  cat >"$home/my.cnf" <<SETTINGS
[mysqld]
datadir=$home/data
socket=$home/mysqld.sock
pid-file=$home/server.pid
log-error=$home/server.log
skip-networking
skip-log-bin
skip-name-resolve
character-set-server=utf8mb4
max-connections=100
max-allowed-packet=64M
performance-schema=off
innodb-buffer-pool-size=64M
innodb-log-file-size=16M
innodb-flush-log-at-trx-commit=0
innodb-flush-method=nosync
innodb-doublewrite=off
SETTINGS
  if [ "$(id -u)" -eq 0 ]; then
    echo "user=root" >>"$home/my.cnf"
  fi
}

install_data() {
  rm -rf "$home/data"
  mariadb-install-db --defaults-file="$home/my.cnf" --auth-root-authentication-method=normal --skip-test-db \
    --skip-name-resolve >"$home/install.log" 2>&1 || fail "making the data directory failed, see $home/install.log"
}

answers() {
  mariadb --no-defaults --protocol=socket --socket="$home/mysqld.sock" --user=root --execute="do 0" >/dev/null 2>&1
}

await_ready() {
  tries=0
  until answers; do
    server_pid >/dev/null || fail "the server ended while starting, see $home/server.log"
    tries=$((tries + 1))
    if [ "$tries" -gt 600 ]; then
      stop_server
      fail "the server was not ready after 60 seconds, see $home/server.log"
    fi
    sleep 0.1
  done
}

# Another server may stand in DIR by the time the owner ends: only the one that it was started with is ended.
watch_owner() {
  watched=$(server_pid)
  (
    while is_running "$1" && [ "$(server_pid)" = "$watched" ]; do
      sleep 0.5
    done
    if [ "$(server_pid)" = "$watched" ]; then
      stop_server
    fi
  ) >/dev/null 2>&1 </dev/null &
}

start_server() {
  for program in mariadbd mariadb-install-db my_print_defaults mariadb; do
    command -v "$program" >/dev/null 2>&1 ||
      fail "$program is missing: install mariadb-server-core and mariadb-client-core"
  done
  stop_server
  choose_home
  rm -f "$home/server.log"
  write_settings
  install_data
  mariadbd --defaults-file="$home/my.cnf" >/dev/null 2>&1 </dev/null &
  echo $! >"$dir/pid"
  await_ready
}

# Shows whether the process is still there and not a zombie that nobody has waited for.
is_running() {
  [ -r "/proc/$1/stat" ] && ! grep -q '^[0-9]* (.*) Z' "/proc/$1/stat" 2>/dev/null
}

stop_server() {
  if pid=$(server_pid); then
    kill "$pid" 2>/dev/null || true
    tries=0
    while is_running "$pid"; do
      tries=$((tries + 1))
      if [ "$tries" -eq 300 ]; then
        kill -9 "$pid" 2>/dev/null || true
      fi
      sleep 0.1
    done
  fi
  if [ -s "$dir/home" ]; then
    case "$(cat "$dir/home")" in
      /tmp/mox-mariadb.*) rm -rf "$(cat "$dir/home")" ;;
    esac
  fi
  rm -f "$dir/pid" "$dir/home"
}

print_url() {
  echo "mariadb://root@localhost/?socket=$home/mysqld.sock"
}

[ $# -ge 2 ] || usage
PATH="$PATH:/usr/sbin"
case "$1" in
  start)
    [ $# -le 3 ] || usage
    mkdir -p "$2"
    dir=$(cd "$2" && pwd)
    if server_pid >/dev/null; then
      home=$(cat "$dir/home")
      await_ready
    else
      start_server
    fi
    if [ $# -eq 3 ]; then
      watch_owner "$3"
    fi
    print_url
    ;;
  stop)
    [ $# -eq 2 ] || usage
    [ -d "$2" ] || exit 0
    dir=$(cd "$2" && pwd)
    stop_server
    ;;
  *) usage ;;
esac
