#!/usr/bin/env bash
# Memory over thousands of reloads: the desktop host with all four widgets under Xvfb, its clock
# running fast enough that the usage and temperature widgets reload every 10 ms and memory every
# 20 ms, while the shared file keeps appearing, changing, breaking and vanishing. Prints the
# reloads counted and the host's resident and private memory after warm-up and at the end.
#
#   bench/host_reload_memory.sh [path/to/korvo-widgets] [seconds]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-${KORVO_BINARY:-$root/build/release/src/cli/korvo-widgets}}
seconds=${2:-60}
[[ -x $binary ]] || { echo "host_reload_memory: no korvo-widgets at $binary" >&2; exit 1; }

source "$root/bench/xvfb_session.sh"
xvfb_session host-reload

container="$work/data/app-groups/group.com.tessmoor.Korvo"
mkdir -p "$work/config" "$container"
export XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data"
export KORVO_BUNDLE_INFO="$root/data/Info.json" KORVO_HOST_DEBUG=1 KORVO_TIME_RATE=90000

snapshot() {
  local used=$1 now
  now=$(($(date +%s) - 978307200))
  printf '{"date":%d,"temperature":%d,"temperatureDate":%d,"temperatureEnabled":true,' "$now" $((30 + used / 2)) "$now"
  printf '"codex":{"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":%d},' "$used"
  printf '{"title":"Weekly","usedPercent":%d,"resetsAt":%d}],"fetchedAt":%d},"isRefreshing":false},' $((100 - used)) $((now + 3600)) "$now"
  printf '"claude":{"enabled":true,"snapshot":{"windows":[{"title":"Weekly","usedPercent":%d}],"fetchedAt":%d},"isRefreshing":false}}' "$used" "$now"
}

"$binary" run 2>"$work/host.log" &
host=$!
pids+=($host)

# The shared file's life while the host reads it: replaced atomically, broken, gone.
(
  used=0
  while :; do
    used=$(((used + 7) % 101))
    snapshot "$used" >"$container/.tmp" && mv "$container/.tmp" "$container/usage-snapshot.json"
    sleep 0.05
    printf '{"date": "broken' >"$container/usage-snapshot.json"
    sleep 0.05
    rm -f "$container/usage-snapshot.json"
    sleep 0.05
  done
) &
pids+=($!)

requests() { grep -c 'timeline request' "$work/host.log" || true; }
memory() { awk '/^VmRSS|^RssAnon/ { printf "%s %s kB  ", $1, $2 }' "/proc/$host/status"; }

sleep 5
kill -0 "$host" || { echo "host_reload_memory: the host died" >&2; cat "$work/host.log" >&2; exit 1; }
start_requests=$(requests)
echo "after warm-up:  $(memory) timeline requests so far: $start_requests"
for ((step = 1; step <= 4; step++)); do sleep $((seconds / 4)); echo "  at $((step * seconds / 4)) s: $(memory) requests: $(requests)"; done
kill -0 "$host" || { echo "host_reload_memory: the host died" >&2; tail "$work/host.log" >&2; exit 1; }
end_requests=$(requests)
echo "after ${seconds} s:    $(memory) timeline requests so far: $end_requests"
echo "reloads in the measured span: $((end_requests - start_requests)); VmHWM $(awk '/^VmHWM/ { print $2 }' "/proc/$host/status") kB"
