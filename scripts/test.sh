#!/usr/bin/env bash
# Builds, then runs the whole test suite (GUI tests run offscreen).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
export QT_QPA_PLATFORM=offscreen
ctest --test-dir build --output-on-failure -j"$(nproc)"
