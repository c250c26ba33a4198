#!/usr/bin/env bash
# Installs the system packages (Debian, through apt-get) that one use of the
# source tree needs, by parts:
#   run      build the programs and run them (what `make run` needs);
#   test     what the tests add: a display, a modem on a pseudo-terminal, a
#            MariaDB server with its ODBC driver, PDF reading, fixed fonts;
#   package  what `make package` adds to build the Debian package.
# Without argument: run and test. Idempotent: packages already present are not
# fetched again, and nothing is done at all when everything is there.
set -euo pipefail

RUN=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools qt6-serialport-dev
  libical-dev libcurl4-openssl-dev libsqlite3-dev
  libqt6serialport6 qt6-qpa-plugins qt6-translations-l10n
  libqt6sql6-sqlite libqt6sql6-odbc libqt6sql6-mysql unixodbc
  xdg-utils
)
TEST=(
  xvfb xauth socat fonts-liberation poppler-utils python3 sqlite3
  python3-recurring-ical-events
  mariadb-server odbc-mariadb
)
PACKAGE=(dpkg-dev file)

parts=("$@")
[ ${#parts[@]} -gt 0 ] || parts=(run test)

wanted=()
for part in "${parts[@]}"; do
  case "$part" in
    run) wanted+=("${RUN[@]}") ;;
    test) wanted+=("${TEST[@]}") ;;
    package) wanted+=("${PACKAGE[@]}") ;;
    *) echo "usage: $0 [run] [test] [package]" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${wanted[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
