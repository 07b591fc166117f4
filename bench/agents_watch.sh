#!/usr/bin/env bash
# What watching for Codex and Claude Code costs `korvo service`: wake-ups per minute (voluntary
# context switches over all threads) while nothing is written, and CPU time while a rollout gets
# a line every second, each with awakeWhileAgentsWork on and off, side by side. The home holds a
# year of Codex day folders and a few Claude projects, as a user's does.
#   bench/agents_watch.sh [SECONDS] [KORVO] [ROWS]  (default 60, build/release/src/app/korvo,
#                                                    "no yes": idle, then a line a second)
set -euo pipefail
cd "$(dirname "$0")/.."
seconds="${1:-60}"
korvo="$(realpath "${2:-build/release/src/app/korvo}")"
scratch="$(mktemp -d)"
trap 'kill $(jobs -p) 2>/dev/null; wait 2>/dev/null; rm -rf "$scratch"' EXIT
export HOME="$scratch" XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export XDG_STATE_HOME="$scratch/state" CODEX_HOME="$scratch/codex" CLAUDE_CONFIG_DIR="$scratch/claude"
export KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json"
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$scratch/no-system-bus"
for day in $(seq 0 364); do
  folder="$CODEX_HOME/sessions/$(date -u -d "2025-01-01 + $day days" +%Y/%m/%d)"
  mkdir -p "$folder" && echo '{}' >"$folder/rollout-$day.jsonl"
done
touch -d '2 days ago' $(find "$CODEX_HOME" -name '*.jsonl')
for project in one two three; do
  mkdir -p "$CLAUDE_CONFIG_DIR/projects/-home-me-$project" && echo '{}' >"$CLAUDE_CONFIG_DIR/projects/-home-me-$project/a.jsonl"
done
touch -d '2 days ago' $(find "$CLAUDE_CONFIG_DIR" -name '*.jsonl')

cpu_ns() { cat /proc/"$1"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f", sum }'; }
wakeups() { cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/ { sum += $2 } END { print sum }'; }

measure() {  # watch (true|false) writing (yes|no): prints "wake-ups/min CPU-ms"
  mkdir -p "$XDG_CONFIG_HOME/korvo"
  echo "{\"awakeWhileAgentsWork\":$1,\"codex\":false,\"temperature\":false}" >"$XDG_CONFIG_HOME/korvo/settings.json"
  dbus-daemon --session --fork --print-pid=1 --address="unix:path=$scratch/bus-$1-$2" >"$scratch/bus.pid"
  local bus; bus=$(cat "$scratch/bus.pid")
  DBUS_SESSION_BUS_ADDRESS="unix:path=$scratch/bus-$1-$2" "$korvo" service 2>>"$scratch/service.log" &
  local launcher=$!
  sleep 3
  local pid; pid="$(pgrep -n -P "$launcher" || true)"; pid="${pid:-$launcher}"
  local rollout="$CODEX_HOME/sessions/2025/12/31/rollout-now.jsonl"
  # Codex keeps its rollout open and appends a line at a time.
  exec 3>>"$rollout"
  local w0 c0; w0=$(wakeups "$pid"); c0=$(cpu_ns "$pid")
  for _ in $(seq "$seconds"); do
    [ "$2" = yes ] && echo '{"type":"event_msg","payload":{"type":"agent_message"}}' >&3
    sleep 1
  done
  exec 3>&-
  local w c; w=$(($(wakeups "$pid") - w0)); c=$(($(cpu_ns "$pid") - c0))
  kill "$launcher"; wait "$launcher" 2>/dev/null || true; kill "$bus"
  awk -v w="$w" -v c="$c" -v s="$seconds" 'BEGIN { printf "%8.2f %10.1f", w * 60 / s, c / 1e6 }'
}

printf "%-34s %8s %10s\n" "" "wake/min" "CPU ms"
for writing in ${3:-no yes}; do
  for watch in false true; do
    label="watch $([ $watch = true ] && echo on || echo off), $([ $writing = yes ] && echo "a line a second" || echo idle)"
    printf "%-34s %s\n" "$label" "$(measure $watch $writing)"
  done
done
