#!/usr/bin/env bash
# Runs the command line over a wire that flips bits, cuts and stalls, and prints how
# often what came of it:
#   scripts/wire_faults.sh [RUNS] [SEED]    1,000 runs from seed 1 when not said
# A run fails when databases that differ are called identical, when it hangs, or when
# it ends without saying why. The tests must be built (./test does).
set -euo pipefail
cd "$(dirname "$0")/.."
ZOV_WIRE_RUNS=${1:-1000} ZOV_WIRE_SEED=${2:-1} QT_QPA_PLATFORM=offscreen \
  build/dev/tests/wire_faults_tests --gtest_brief=1
