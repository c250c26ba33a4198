#!/usr/bin/env bash
# A throw-away MariaDB server for the tests and the benches.
#
#   mariadb-test.sh start DIR   starts a server whose data, socket and logs live
#                               in DIR, on a free port of 127.0.0.1, as the current
#                               user; creates the database Calendar with its
#                               tables and the user agenda/agenda; writes
#                               DIR/odbc.ini and DIR/odbcinst.ini with the DSNs
#                               Calendar_MySQL and Calendar_SQLServer; prints
#                               PORT=... and SOCKET=... and exits once the
#                               server answers.
#   mariadb-test.sh stop DIR    stops that server.
#
# Point unixODBC at the files with ODBCSYSINI=DIR ODBCINI=DIR/odbc.ini.
set -euo pipefail

action=${1:-}
dir=${2:-}
[ -n "$action" ] && [ -n "$dir" ] || { echo "usage: $0 start|stop DIR" >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)

find_bin() {
  for b in "$@"; do
    if command -v "$b" >/dev/null 2>&1; then command -v "$b"; return 0; fi
    for d in /usr/sbin /usr/bin /usr/local/sbin /usr/local/bin; do
      [ -x "$d/$b" ] && { echo "$d/$b"; return 0; }
    done
  done
  return 1
}

case "$action" in
stop)
  if [ -f "$dir/mariadbd.pid" ]; then
    pid=$(cat "$dir/mariadbd.pid")
    kill "$pid" 2>/dev/null || true
    for _ in $(seq 1 100); do
      kill -0 "$pid" 2>/dev/null || exit 0
      sleep 0.1
    done
    kill -9 "$pid" 2>/dev/null || true
  fi
  exit 0
  ;;
start) ;;
*) echo "usage: $0 start|stop DIR" >&2; exit 2 ;;
esac

server=$(find_bin mariadbd mysqld) || { echo "mariadb-test: no mariadbd/mysqld (install mariadb-server)" >&2; exit 1; }
installdb=$(find_bin mariadb-install-db mysql_install_db) || { echo "mariadb-test: no mariadb-install-db" >&2; exit 1; }
client=$(find_bin mariadb mysql) || { echo "mariadb-test: no mariadb client" >&2; exit 1; }
driver=""
for f in /usr/lib/x86_64-linux-gnu/odbc/libmaodbc.so /usr/lib/*/odbc/libmaodbc.so /usr/lib/odbc/libmaodbc.so /usr/lib64/libmaodbc.so; do
  [ -f "$f" ] && { driver=$f; break; }
done
[ -n "$driver" ] || { echo "mariadb-test: no MariaDB ODBC driver (install odbc-mariadb)" >&2; exit 1; }

mkdir -p "$dir"
dir=$(cd "$dir" && pwd)
sock="$dir/mysqld.sock"
user=$(id -un)
free_port() {
  python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1]); s.close()'
}

"$installdb" --no-defaults --datadir="$dir/data" --user="$user" --auth-root-authentication-method=normal \
  --skip-test-db >"$dir/install.log" 2>&1 || { cat "$dir/install.log" >&2; exit 1; }

# The free port found may be taken by another test program before the
# server binds it: a few tries, each on a new port.
for attempt in 1 2 3; do
  port=$(free_port)
  "$server" --no-defaults --datadir="$dir/data" --socket="$sock" --port="$port" --bind-address=127.0.0.1 \
    --pid-file="$dir/mariadbd.pid" --log-error="$dir/error.log" --user="$user" \
    --skip-name-resolve --innodb-buffer-pool-size=128M --innodb-flush-log-at-trx-commit=2 \
    --skip-log-bin --character-set-server=utf8mb4 --collation-server=utf8mb4_general_ci \
    </dev/null >/dev/null 2>&1 &
  spid=$!
  up=0
  for _ in $(seq 1 300); do
    if [ -S "$sock" ] && "$client" --no-defaults -uroot --socket="$sock" -e 'SELECT 1' >/dev/null 2>&1; then up=1; break; fi
    kill -0 "$spid" 2>/dev/null || break
    sleep 0.1
  done
  [ "$up" = 1 ] && break
  kill "$spid" 2>/dev/null || true
  wait "$spid" 2>/dev/null || true
  echo "mariadb-test: try $attempt failed:" >&2
  tail -5 "$dir/error.log" >&2 || true
done
"$client" --no-defaults -uroot --socket="$sock" -e 'SELECT 1' >/dev/null 2>&1 \
  || { echo "mariadb-test: the server does not answer" >&2; tail -20 "$dir/error.log" >&2; exit 1; }

"$client" --no-defaults -uroot --socket="$sock" <<SQL
CREATE DATABASE Calendar CHARACTER SET utf8mb4;
CREATE DATABASE Calendar6 CHARACTER SET utf8mb4;
CREATE USER 'agenda'@'localhost' IDENTIFIED BY 'agenda';
CREATE USER 'agenda'@'127.0.0.1' IDENTIFIED BY 'agenda';
GRANT ALL PRIVILEGES ON Calendar.* TO 'agenda'@'localhost', 'agenda'@'127.0.0.1';
GRANT ALL PRIVILEGES ON Calendar6.* TO 'agenda'@'localhost', 'agenda'@'127.0.0.1';
SQL
"$client" --no-defaults -uroot --socket="$sock" Calendar <"$here/calendrier-serveur.sql"

cat >"$dir/odbcinst.ini" <<INI
[MariaDB]
Description=MariaDB Connector/ODBC
Driver=$driver
INI
cat >"$dir/odbc.ini" <<INI
[Calendar_MySQL]
Driver=MariaDB
Server=127.0.0.1
Port=$port
Database=Calendar
User=agenda
Password=agenda

[Calendar_SQLServer]
Driver=MariaDB
Server=127.0.0.1
Port=$port
Database=Calendar
User=agenda
Password=agenda
INI
echo "PORT=$port"
echo "SOCKET=$sock"
