#!/usr/bin/env bash
# What `korvo service` costs while it only publishes: wake-ups per minute (voluntary context
# switches over all its threads), CPU time per hour, private memory (RssAnon) and PSS, over a
# window of SECONDS after a short settling time. Release build, fixture sensors, a fresh home;
# KORVO_BENCH_SETTINGS, when set, is the settings file (e.g. '{"codexLive": false}').
#   bench/service_idle.sh [SECONDS] [KORVO]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-120}"
korvo="${2:-build/release/src/app/korvo}"
if [ ! -x "$korvo" ]; then
  cmake --preset release >/dev/null
  cmake --build build/release --target korvo korvo-service >/dev/null
fi
scratch="$(mktemp -d)"
export HOME="$scratch" XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export XDG_STATE_HOME="$scratch/state" CODEX_HOME="$scratch/codex" CLAUDE_CONFIG_DIR="$scratch/claude"
export KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json"

if [ -n "${KORVO_BENCH_SETTINGS:-}" ]; then
  mkdir -p "$XDG_CONFIG_HOME/korvo"
  printf '%s\n' "$KORVO_BENCH_SETTINGS" >"$XDG_CONFIG_HOME/korvo/settings.json"
fi
"$korvo" service >"$scratch/service.log" 2>&1 &
launcher=$!
trap 'kill "$launcher" 2>/dev/null; wait "$launcher" 2>/dev/null; rm -rf "$scratch"' EXIT
sleep 3
# `korvo service` may hand over to its GLib side with exec or as a child: measure what sleeps.
pid="$(pgrep -n -P "$launcher" || true)"
pid="${pid:-$launcher}"

cpu_ns() { cat /proc/"$1"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f", sum }'; }
wakeups() { cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/ { sum += $2 } END { print sum }'; }
kb() { awk -v key="$2:" '$1 == key { print $2 }' "$3"; }

ns0=$(cpu_ns "$pid")
wake0=$(wakeups "$pid")
sleep "$seconds"
ns=$(($(cpu_ns "$pid") - ns0))
wake=$(($(wakeups "$pid") - wake0))
anon=$(kb "$pid" RssAnon "/proc/$pid/status")
pss=$(kb "$pid" Pss "/proc/$pid/smaps_rollup")
threads=$(ls /proc/"$pid"/task | wc -l)

awk -v s="$seconds" -v w="$wake" -v ns="$ns" -v a="$anon" -v p="$pss" -v t="$threads" 'BEGIN {
  printf "window                %d s\n", s
  printf "wake-ups per minute   %.2f\n", w * 60 / s
  printf "CPU per hour          %.1f ms\n", ns / 1e6 * 3600 / s
  printf "private memory        %.1f MB (RssAnon)\n", a / 1024
  printf "PSS                   %.1f MB\n", p / 1024
  printf "threads               %d\n", t
}'
