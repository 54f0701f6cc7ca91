#!/usr/bin/env bash
# Installs the npm packages the tests use (web-ifc, the independent IFC reader) into
# tests/exchange/node_modules, at the versions tests/exchange/package.json pins. Quiet and quick
# when they are there; does nothing where Node is missing (the IFC test is skipped there).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
command -v npm >/dev/null 2>&1 || { echo "npm not found: the IFC read-back test will be skipped"; exit 0; }
dir="$root/tests/exchange"
[ -f "$dir/node_modules/web-ifc/package.json" ] &&
  grep -q '"version": "0.0.78"' "$dir/node_modules/web-ifc/package.json" && exit 0
echo "Installing npm packages: web-ifc"
npm install --prefix "$dir" --no-audit --no-fund --no-save --loglevel=error >/dev/null
