#!/usr/bin/env bash
# Builds, creates the embedded default cell and runs the main job on it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
cell=${QUORVEL_CELL:-$PWD/build/cell}
./build/quorvel init --cell "$cell" --force
./build/quorvel templates --cell "$cell"
# The main job: the demo template built for pallet 7, job 1, without a window.
# Columns: line number, node level, code, script line.
./build/quorvel build --cell "$cell" --template 1 --pallet 7 --job 1
# The wizard on that job without a window: program number and line numbering, then a short walk
# of the first workpiece (Next checks a line and advances; a typed value recomposes the line),
# the script view of the whole program, and Write: every line is checked, the master program
# Pal00007.NC is written into the pallet's folder of the cell and reported to the host.
./build/quorvel job --cell "$cell" --template 1 --pallet 7 --job 1 --script - <<'SCRIPT'
machines
program 7
numbers on
increment 10
sample
select 8
next
next
value 1 2.5
next
view
write Pal00007
SCRIPT
echo "---- $cell/Pallet7/Pal00007.NC"
tr -d '\r' < "$cell/Pallet7/Pal00007.NC"
