#!/usr/bin/env bash
# Installs the dependencies, configures and builds everything, and runs every test.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
scripts/install-deps.sh
scripts/install-npm-deps.sh
cmake --preset default >/dev/null
cmake --build --preset default
ctest --preset default
