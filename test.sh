#!/usr/bin/env bash
# Sets the machine up, builds the library with its checks, and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")"

scripts/setup test
scripts/build dev
ctest --preset dev
