#!/usr/bin/env bash
# Installs the npm packages the tests use (web-ifc, the independent IFC reader) into
# tests/exchange/node_modules, at the versions tests/exchange/package.json pins; Debian's npm first
# when Node has none. Quiet and quick when they are there; does nothing where Node is missing
# (the IFC test is skipped there).
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
dir="$root/tests/exchange"
command -v node >/dev/null 2>&1 || { echo "node not found: the IFC read-back test will be skipped"; exit 0; }
[ -f "$dir/node_modules/web-ifc/package.json" ] &&
  grep -q '"version": "0.0.78"' "$dir/node_modules/web-ifc/package.json" && exit 0
if ! command -v npm >/dev/null 2>&1; then
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  echo "Installing: npm"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends npm >/dev/null
fi
echo "Installing npm packages: web-ifc"
npm install --prefix "$dir" --no-audit --no-fund --no-save --loglevel=error >/dev/null
