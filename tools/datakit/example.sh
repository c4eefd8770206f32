#!/usr/bin/env bash
# Makes a data site out of small sources: example.sh DATAKIT SITE [SOURCES]
# SOURCES is a folder with an apt.dat, types.csv, airlines.csv and registrations.csv, and, if it has them, airports.csv,
# fixes.csv, publishers.csv, sightings.csv and liveries.csv; example/ by default. docs/data-site.md tells what each holds.
set -euo pipefail
datakit=$(realpath "$1")
mkdir -p "$2"
site=$(realpath "$2")
sources=$(realpath "${3:-$(dirname "$0")/example}")
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
cd "$made"

run() { echo "+ datakit $*"; "$datakit" "$@"; }
# What is not needed: OPTION FILE for those that are there.
database=() stands=() site_options=()
[ ! -e "$sources/fixes.csv" ] || database+=(--fixes "$sources/fixes.csv")
[ ! -e "$sources/publishers.csv" ] || database+=(--publishers "$sources/publishers.csv")
[ ! -e "$sources/sightings.csv" ] || stands+=(--sightings "$sources/sightings.csv")
airports=("$sources/apt.dat")
[ ! -e "$sources/airports.csv" ] || airports=("$sources/airports.csv" "$sources/apt.dat")

run airports --out index "${airports[@]}"
run database --out dbase.xml --types "$sources/types.csv" --airlines "$sources/airlines.csv" \
    --registrations "$sources/registrations.csv" "${database[@]}"
run stands --out stock --database dbase.xml "${stands[@]}" "$sources/apt.dat"
if [ -e "$sources/liveries.csv" ]; then
    run regcodes --out AIG-regcodes.xml --database dbase.xml "$sources/liveries.csv"
    site_options+=(--regcodes AIG-regcodes.xml)
fi
run site --out "$site" --airports index --database dbase.xml --stock stock "${site_options[@]}"
run check "$site"
