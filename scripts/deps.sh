#!/usr/bin/env bash
# Installs the Debian packages TAVIK needs to build, run and test, when any is missing.
# Usage: scripts/deps.sh [run|test]
set -euo pipefail
want=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-serialport-dev libqt6serialport6
      libgtest-dev libgmock-dev libbenchmark-dev fonts-wqy-zenhei ccache
      libgdal-dev libxlsxwriter-dev)
if [ "${1:-test}" = test ]; then
  want+=(libproj-dev proj-bin gdal-bin xvfb xauth python3 python3-ezdxf librecad poppler-utils rtklib
         python3-openpyxl)
fi
missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
