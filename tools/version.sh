#!/usr/bin/env bash
# Prints the project's version, which CMakeLists.txt alone states.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
sed -n 's/^project(CoreImageKaz VERSION \([0-9.]*\).*/CoreImageKaz \1/p' "$root/CMakeLists.txt"
