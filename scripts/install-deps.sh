#!/usr/bin/env bash
# Installs every Debian package that building, running and testing Quillmeal needs.
set -euo pipefail
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
PKGS=(
  build-essential cmake make pkg-config clang-format
  qt6-base-dev qt6-base-dev-tools libqt6svg6
  qt6-l10n-tools
  libsqlite3-dev sqlite3
  python3
  libgl-dev
  xvfb xauth
  fonts-dejavu-core
  xz-utils
)
missing=()
for p in "${PKGS[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
