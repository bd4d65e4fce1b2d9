#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need, when missing.
set -euo pipefail
packages=(g++ cmake make libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev libxml2-dev
          clang libclang-rt-14-dev binutils python3
          pkg-config libgmime-3.0-dev libmagic-dev media-types  # mail: GMime, libmagic, mime.types
          dpkg-dev file man-db  # packaging (cpack's dependency list) and the manual page test
          emscripten chromium)  # the browser viewer's build and tests
# The browser viewer's build and tests run on node and npm; a node from
# elsewhere (NodeSource, say) that brings its own npm will do.
command -v node >/dev/null || packages+=(nodejs)
command -v npm >/dev/null || packages+=(npm)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "installing: ${missing[*]}"
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq "${missing[@]}" >/dev/null
fi
