#!/usr/bin/env bash
# `korvo-widgets render usage --family medium --format png` against the floor: card_floor, a
# process drawing the same card by hand with Cairo and Pango and writing the PNG. Side by side,
# the floor first; give several korvo-widgets to compare builds in the same run.
#   bench/render_floor.sh [--runs N] [KORVO-WIDGETS …]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
runs=40
if [[ ${1:-} == --runs ]]; then runs=$2; shift 2; fi
binaries=("$@")
[[ ${#binaries[@]} -gt 0 ]] || binaries=("$root/build/release/src/cli/korvo-widgets")
floor=$root/build/release/bench/card_floor
[[ -x $floor ]] || cmake --build "$root/build/release" --target card_floor >/dev/null

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p "$scratch/app-groups/group.com.tessmoor.Korvo"
cp "$root/data/samples/usage-snapshot.json" "$scratch/app-groups/group.com.tessmoor.Korvo/"
export XDG_DATA_HOME="$scratch"
commands=("$floor $scratch/floor.png")
for binary in "${binaries[@]}"; do
  commands+=("$binary render usage --family medium --now 2026-11-15T01:45:00Z --format png -o $scratch/usage.png")
done
python3 "$root/bench/side_by_side.py" --runs "$runs" "${commands[@]}"
