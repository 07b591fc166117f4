#!/usr/bin/env bash
# What korvo's history costs, side by side (bench/side_by_side.py, medians and ratios):
# - `korvo publish` against a history of 90 days (as a service publishing each minute leaves it,
#   bench/history_simulate), a fresh one, and none (its place taken by a folder, so the history
#   is skipped at once);
# - `korvo usage` (forecasts from 90 days of history) against `korvo codex`;
# and the history file's size after 90 days. The AI tab's graphs with 90 days of history against
# none: bench/usage_graph_bench; the service's publications in one process (the history kept
# open between them): bench/publish_bench. Both run at the end.
#   bench/history.sh [BUILD]     (default build/dev)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build/dev}"
korvo="$PWD/$build/src/app/korvo"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config" HOME="$scratch"
export CLAUDE_CONFIG_DIR="$scratch/claude" CODEX_HOME="$PWD/tests/fixtures/codex"
export KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json"
# The rollouts alone: the app-server is measured by bench/codex_live.sh.
mkdir -p "$XDG_CONFIG_HOME/korvo"
echo '{"codexLive": false}' >"$XDG_CONFIG_HOME/korvo/settings.json"

for kind in ninety fresh none; do mkdir -p "$scratch/$kind/korvo"; done
echo "simulating 90 days of publications…"
size=$(XDG_STATE_HOME="$scratch/ninety" "$build/bench/history_simulate" 90)
XDG_STATE_HOME="$scratch/fresh" "$korvo" publish
mkdir -p "$scratch/none/korvo/history.sqlite3"
XDG_STATE_HOME="$scratch/ninety" "$korvo" publish

echo "history after 90 days: $((size / 1024)) KiB"
echo
echo "korvo publish, without history / fresh history / 90 days of history:"
python3 bench/side_by_side.py --runs "${RUNS:-40}" -- \
  "env XDG_STATE_HOME=$scratch/none $korvo publish" \
  "env XDG_STATE_HOME=$scratch/fresh $korvo publish" \
  "env XDG_STATE_HOME=$scratch/ninety $korvo publish"
echo
echo "korvo codex against korvo usage (90 days of history):"
python3 bench/side_by_side.py --runs "${RUNS:-40}" -- \
  "env XDG_STATE_HOME=$scratch/ninety $korvo codex" \
  "env XDG_STATE_HOME=$scratch/ninety $korvo usage"
echo
echo "the AI tab's graphs (4 windows: history read, forecast, model, Cairo at scale 2), no history / 90 days:"
for kind in none ninety; do
  XDG_STATE_HOME="$scratch/$kind" "$build/bench/usage_graph_bench" --benchmark_min_time=0.5 2>/dev/null |
    grep BM_AiTabGraphs | sed "s/^/$kind: /"
done
echo
echo "the service's publication in one process, one after another, no history / 90 days:"
for kind in none ninety; do
  XDG_STATE_HOME="$scratch/$kind" "$build/bench/publish_bench" --benchmark_min_time=2 \
    --benchmark_repetitions=3 --benchmark_report_aggregates_only=true 2>/dev/null |
    grep "_median" | sed "s/^/$kind: /"
done
