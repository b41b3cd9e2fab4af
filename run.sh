#!/usr/bin/env bash
# Builds the library and its tool as they are shipped, and runs the main job on real press data: two printings, measured,
# are judged against a reference by the limits of a contract proof. The first passes, the second doesn't.
set -euo pipefail
cd "$(dirname "$0")"

scripts/setup run
scripts/build release kvtool

tables=/usr/share/color/icc # of Debian's package icc-profiles-free
out=build/proof
mkdir -p "$out"

judge() {
    local measured=$1
    shift
    printf '\n$ kvtool proof samples/contract_proof.xml FOGRA39L.ti3 %s.ti3 --report ... --html ...\n' "$measured"
    build/release/bin/kvtool proof samples/contract_proof.xml "$tables/FOGRA39L.ti3" "$tables/$measured.ti3" \
        --report "$out/$measured.xml" --html "$out/$measured.html" "$@" || return
    printf 'Report: %s\nPage:   %s\n' "$PWD/$out/$measured.xml" "$PWD/$out/$measured.html"
}

judge TR006 --fail-above A
judge FOGRA40L
code=0
judge FOGRA40L --fail-above C >"$out/failing.txt" 2>&1 || code=$?
if [ "$code" != 3 ]; then
    echo "run.sh: a printing that is out of tolerance ended with code $code instead of 3" >&2
    exit 1
fi
