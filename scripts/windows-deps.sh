#!/usr/bin/env bash
# Builds the third-party libraries of the Windows build with MinGW-w64, from Debian's source
# packages of the versions the Linux build uses (unpacked with dpkg-source, so Debian's
# patches apply), into build-windows/deps, with CLI11's headers. Passwords are kept with the Windows API's per-user
# protection there, so libsodium is not needed. Each library is built once; a stamp file names
# the version, so a changed version is rebuilt. GoogleTest comes from Debian's googletest
# package, which installs its sources under /usr/src/googletest.
# Usage: scripts/windows-deps.sh [PREFIX]
set -euo pipefail
cd "$(dirname "$0")/.."
prefix="$(realpath -m "${1:-build-windows/deps}")"
work="$(dirname "$prefix")/deps-src"
mkdir -p "$prefix" "$work"
toolchain="$PWD/cmake/mingw-w64-x86_64.cmake"
archive=http://deb.debian.org/debian/pool/main

# fetch SOURCE VERSION...: the first version whose .dsc the archive still has (the newest
# stable update first, then the release it patches), unpacked into $work/SOURCE.
fetch() {
  local src="$1" pool dir version dsc
  shift
  case "$src" in lib*) pool="${src:0:4}" ;; *) pool="${src:0:1}" ;; esac
  dir="$work/$src"
  [ -f "$dir/.unpacked" ] && return 0
  rm -rf "$dir" "$work/dl-$src"
  mkdir -p "$work/dl-$src"
  for version in "$@"; do
    dsc="${src}_${version}.dsc"
    if curl -fsS -o "$work/dl-$src/$dsc" "$archive/$pool/$src/${dsc//+/%2B}" 2>/dev/null; then
      awk '/^Files:/ { f = 1; next } f && /^ / && NF == 3 { print $3; next } { f = 0 }' \
        "$work/dl-$src/$dsc" |
        while read -r file; do
          curl -fsS -o "$work/dl-$src/$file" "$archive/$pool/$src/${file//+/%2B}"
        done
      (cd "$work/dl-$src" && dpkg-source --no-check -x "$dsc" "$dir" >/dev/null)
      echo "$version" > "$dir/.unpacked"
      return 0
    fi
  done
  echo "windows-deps: no source package of $src $* in the Debian archive" >&2
  return 1
}

built() { [ -f "$prefix/.$1" ] && [ "$(cat "$prefix/.$1")" = "$2" ]; }
stamp() { echo "$2" > "$prefix/.$1"; }

cmake_build() {  # NAME SOURCE-DIR CMAKE-ARGS...
  local name="$1" source="$2"
  shift 2
  cmake -S "$source" -B "$work/build-$name" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "$@" \
    >/dev/null
  cmake --build "$work/build-$name" -j2 >/dev/null
  cmake --install "$work/build-$name" >/dev/null
}

if ! built pcre2 10.42; then
  fetch pcre2 10.42-1+deb12u2 10.42-1+deb12u1 10.42-1
  cmake_build pcre2 "$work/pcre2" -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF \
    -DPCRE2_SUPPORT_JIT=OFF
  stamp pcre2 10.42
fi

if ! built pugixml 1.13; then
  fetch pugixml 1.13-0.2
  cmake_build pugixml "$work/pugixml" -DPUGIXML_BUILD_TESTS=OFF
  stamp pugixml 1.13
fi

if ! built libxml2 2.9.14; then
  fetch libxml2 2.9.14+dfsg-1.3~deb12u5 2.9.14+dfsg-1.3~deb12u4 2.9.14+dfsg-1.3~deb12u1 \
    2.9.14+dfsg-1.3
  cmake_build libxml2 "$work/libxml2" -DLIBXML2_WITH_PYTHON=OFF -DLIBXML2_WITH_LZMA=OFF \
    -DLIBXML2_WITH_ZLIB=OFF -DLIBXML2_WITH_ICONV=OFF -DLIBXML2_WITH_TESTS=OFF \
    -DLIBXML2_WITH_PROGRAMS=OFF -DLIBXML2_WITH_HTTP=OFF -DLIBXML2_WITH_FTP=OFF
  stamp libxml2 2.9.14
fi

# Schannel, the system's own TLS, instead of OpenSSL.
if ! built curl 7.88.1; then
  fetch curl 7.88.1-10+deb12u15 7.88.1-10+deb12u14 7.88.1-10+deb12u12 7.88.1-10
  cmake_build curl "$work/curl" -DCURL_USE_SCHANNEL=ON -DCURL_USE_OPENSSL=OFF \
    -DCURL_USE_LIBSSH2=OFF -DCURL_USE_LIBPSL=OFF -DUSE_LIBIDN2=OFF -DCURL_ZLIB=OFF \
    -DCURL_BROTLI=OFF -DCURL_ZSTD=OFF -DUSE_NGHTTP2=OFF -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF \
    -DCURL_DISABLE_LDAP=ON -DENABLE_MANUAL=OFF
  stamp curl 7.88.1
fi

if ! built googletest 1.12.1; then
  cmake_build googletest /usr/src/googletest -Dgtest_disable_pthreads=OFF
  stamp googletest 1.12.1
fi

# CLI11 is headers only: those of Debian's libcli11-dev serve every platform.
if ! built cli11 "$(dpkg-query -W -f='${Version}' libcli11-dev)"; then
  mkdir -p "$prefix/include" "$prefix/share/cmake"
  cp -r /usr/include/CLI "$prefix/include/"
  cp -r /usr/share/cmake/CLI11 "$prefix/share/cmake/"
  stamp cli11 "$(dpkg-query -W -f='${Version}' libcli11-dev)"
fi

echo "windows-deps: libraries in $prefix"
