#!/bin/sh
# Every command of zovrand-cli with each of its system calls failing once, with kills at every step
# and at any time, and with several processes at once on one server's folder. Takes an hour or two;
# the tests labelled "faults" are a sample of it.
#   scripts/faults.sh [build folder]      without one: build/dev
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/dev}
cmake --build "$build" --target faults_tests
ZOV_FAULTS_WHOLE=1 QT_QPA_PLATFORM=offscreen "$build/tests/faults_tests"
