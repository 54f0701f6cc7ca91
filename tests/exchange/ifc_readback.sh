#!/bin/sh
# Runs the IFC read-back under Node: skipped (exit 77) only where Node is missing.
# usage: ifc_readback.sh BXQ WORKDIR MODULES
if ! command -v node >/dev/null 2>&1; then
  echo "SKIPPED: node is not installed (Debian's nodejs, then scripts/install-npm-deps.sh for web-ifc)"
  exit 77
fi
if [ ! -f "$3/node_modules/web-ifc/web-ifc-api-node.js" ]; then
  echo "web-ifc is not installed in $3: run scripts/install-npm-deps.sh"
  exit 1
fi
exec node "$(dirname "$0")/ifc_readback.js" "$@"
