#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the demo need.
# Idempotent: installs only what is missing, runs `apt-get update` at most once,
# works as root without a terminal (or through sudo when not root).
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config git procps
  libpugixml-dev libxml2-dev libpcre2-dev libsodium-dev libcurl4-openssl-dev libcli11-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  mono-xbuild mono-mcs mono-devel
  clang-14 libclang-rt-14-dev
  apache2
  qt6-base-dev
  g++-mingw-w64-x86-64-posix wine wine64 dpkg-dev curl googletest
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

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null 2>&1 || ! sudo -n true 2>/dev/null; then
    echo "setup: these Debian packages are missing: ${missing[*]}" >&2
    echo "setup: ask someone with root rights to run:" >&2
    echo "  apt-get install -y --no-install-recommends ${missing[*]}" >&2
    exit 2
  fi
  sudo="sudo"
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
if ! $sudo apt-get install -y -q --no-install-recommends "${missing[@]}" </dev/null; then
  $sudo apt-get update -q </dev/null
  $sudo apt-get install -y -q --no-install-recommends "${missing[@]}" </dev/null
fi
