#!/usr/bin/env bash
# Runs every scenario of scenarios.py against the programs of a build folder: run_all.sh BUILD [SCENARIO ...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
exec python3 "$here/scenarios.py" "$@"
