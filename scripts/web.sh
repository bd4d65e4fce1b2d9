#!/usr/bin/env bash
# Builds the browser viewer into build-web/tnef-viewer.html: the module, the
# OLE library and a host compiled with emscripten, and the page around them,
# bundled by web/build.mjs into one self-contained file.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh

out=build-web
wasm=$out/wasm
jobs=$(nproc 2>/dev/null || echo 2)
# Debian's emcc runs its JavaScript helpers with node, which finds Debian's
# acorn there.
export NODE_PATH=/usr/share/nodejs

# The page's npm packages, from the committed lock file.
if [ ! -f web/node_modules/.package-lock.json ] || [ web/package-lock.json -nt web/node_modules/.package-lock.json ]; then
  (cd web && npm ci --no-audit --no-fund)
fi

# The byte tables of the single-byte charsets, read from glibc's iconv.
mkdir -p "$wasm/gen" "$wasm/system-include"
tables_tool=$out/make_byte_tables
if [ ! -x "$tables_tool" ] || [ web/tools/make_byte_tables.cpp -nt "$tables_tool" ] ||
   [ host/charset_codecs.cpp -nt "$tables_tool" ]; then
  g++ -std=c++20 -O1 -I. web/tools/make_byte_tables.cpp host/charset_codecs.cpp -o "$tables_tool"
fi
"$tables_tool" "$wasm/gen/byte_tables.cpp.new"
if cmp -s "$wasm/gen/byte_tables.cpp.new" "$wasm/gen/byte_tables.cpp"; then
  rm "$wasm/gen/byte_tables.cpp.new"
else
  mv "$wasm/gen/byte_tables.cpp.new" "$wasm/gen/byte_tables.cpp"
fi
# nlohmann-json alone from the system's headers.
ln -sfn /usr/include/nlohmann "$wasm/system-include/nlohmann"

emcmake cmake -S . -B "$wasm" -DCMAKE_BUILD_TYPE=MinSizeRel -Wno-dev >/dev/null
cmake --build "$wasm" --target tnef-viewer -j "$jobs"
node web/build.mjs "$wasm/web" "$out/tnef-viewer.html"
