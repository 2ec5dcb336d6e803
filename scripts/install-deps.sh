#!/usr/bin/env bash
# Installs the Debian packages needed to build, test and benchmark utilkit.
# Idempotent: packages already present are left alone, and apt is only run
# when something is missing. Run as root (or through sudo).
set -euo pipefail

packages=(
  build-essential cmake make pkg-config git
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  libxerces-c-dev libcli11-dev nlohmann-json3-dev
  clang clang-format
  mingw-w64 wine64
  systemd python3
  chromium
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
