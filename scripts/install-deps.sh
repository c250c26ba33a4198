#!/usr/bin/env bash
# Installs the system packages that the build and the tests need. Idempotent:
# packages already present are not fetched again, and nothing is done at all
# when everything is there.
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6sql6-odbc
  qt6-serialport-dev libqt6serialport6
  libical-dev libcurl4-openssl-dev libsqlite3-dev sqlite3
  qt6-translations-l10n
  xvfb xauth socat fonts-liberation poppler-utils python3
  mariadb-server odbc-mariadb unixodbc unixodbc-dev libqt6sql6-mysql
)

missing=()
for p in "${PACKAGES[@]}"; do
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
