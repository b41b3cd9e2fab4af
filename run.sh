#!/usr/bin/env bash
# Builds the library and its tool as they are shipped, and runs the main job on a sample: reads a value file, shows it
# as a tree, answers queries by path, changes values and writes the file, and merges two files.
set -euo pipefail
cd "$(dirname "$0")"

scripts/setup build
scripts/build release kvtool

kvtool=build/release/bin/kvtool
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
show() {
    printf '\n$ kvtool %s\n' "${*//"$work/"/}"
    "$kvtool" "$@"
}

show values check samples/press.krg
show values show samples/press.krg
show values get samples/press.krg press:name
show values get samples/press.krg press:gamma --as long
show values get samples/press.krg press:serial
show values get samples/press.krg inks:names --index 4
show values set samples/press.krg press:inks 6 --output "$work/changed.krg"
show values set "$work/changed.krg" inks:solid:Orange 68.5 52.0 76.25
show values remove "$work/changed.krg" press:notes
show values copy samples/press.krg tolerances "$work/limits.krg"
show values set "$work/limits.krg" tolerances:paper 2.5
show values merge "$work/changed.krg" "$work/limits.krg"
show values get "$work/changed.krg" tolerances
show values get "$work/changed.krg" inks:solid
show values check "$work/changed.krg"
