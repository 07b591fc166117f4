#!/usr/bin/env bash
# Whole-process cost of rendering one widget headless: the median of repeated runs of the release
# build of korvo-widgets, measured with hyperfine.
#   bench/render_process.sh [BINARY]
set -euo pipefail
cd "$(dirname "$0")/.."
binary="${1:-build/release/src/cli/korvo-widgets}"
if [ ! -x "$binary" ]; then
  scripts/build release >/dev/null
fi
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
# A group container holding the example shared file, so the usage widget draws real rows.
mkdir -p "$scratch/app-groups/group.com.tessmoor.Korvo"
cp data/samples/usage-snapshot.json "$scratch/app-groups/group.com.tessmoor.Korvo/"
export XDG_DATA_HOME="$scratch"

hyperfine --warmup 3 --runs 30 --export-json "$scratch/results.json" --style basic \
  "$binary render memory --format png -o $scratch/memory.png" \
  "$binary render usage --family medium -o $scratch/usage.png"
python3 - "$scratch/results.json" <<'PY'
import json, sys
for result in json.load(open(sys.argv[1]))["results"]:
    print(f"median {result['median'] * 1000:7.2f} ms  {result['command'].split(' ', 1)[1]}")
PY
