#!/usr/bin/env bash
# The desktop host with all four widgets against Conky (memory used, a memory bar, swap and CPU,
# update_interval 1, in its own window), side by side for the same minute in one Xvfb server.
# Prints resident memory (VmHWM), private memory (RssAnon), PSS, CPU time (utime + stime) and
# wake-ups (voluntary context switches over all threads) for both, and their ratios.
#
#   bench/host_vs_conky.sh [path/to/korvo-widgets] [seconds]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-${KORVO_BINARY:-$root/build/release/src/cli/korvo-widgets}}
seconds=${2:-60}
settle=5
[[ -x $binary ]] || { echo "host_vs_conky: no korvo-widgets at $binary (build the release preset)" >&2; exit 1; }
command -v conky >/dev/null || { echo "host_vs_conky: conky is not installed (conky-std)" >&2; exit 1; }

source "$root/bench/xvfb_session.sh"
xvfb_session host-bench

cat >"$work/conky.conf" <<'CONKY'
conky.config = {
  out_to_x = true,
  out_to_console = false,
  own_window = true,
  own_window_type = 'normal',
  own_window_title = 'conky-bench',
  alignment = 'top_left',
  gap_x = 20,
  gap_y = 20,
  minimum_width = 200,
  update_interval = 1,
  double_buffer = true,
  use_xft = true,
  font = 'Inter:size=10',
  background = false,
}
conky.text = [[
Memory used: $mem / $memmax ($memperc%)
${membar 6,180}
Swap: $swap / $swapmax ($swapperc%)
CPU: ${cpu}% ${cpubar 6,180}
]]
CONKY

# A shared file as korvo leaves it: Codex read from a rollout 200 s ago, Claude's status line 130 s
# ago, the temperature 95 s ago, so the usage and temperature cards carry live "Updated … ago"
# texts counting minutes from three moments, the host's only wake-ups between reloads.
container="$work/data/app-groups/group.com.tessmoor.Korvo"
mkdir -p "$work/config" "$container"
now=$(($(date +%s) - 978307200))
codex=$((now - 200)) claude=$((now - 130)) temperature=$((now - 95))
cat >"$container/usage-snapshot.json" <<SNAPSHOT
{"date":$temperature,"temperature":52.5,"temperatureDate":$temperature,"temperatureEnabled":true,
 "codex":{"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":28,"resetsAt":$((codex + 7200))},
  {"title":"Weekly","usedPercent":42,"resetsAt":$((codex + 172800))}],"fetchedAt":$codex},"isRefreshing":false},
 "claude":{"enabled":true,"snapshot":{"windows":[{"title":"Weekly","usedPercent":17}],"fetchedAt":$claude},"isRefreshing":false}}
SNAPSHOT
XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" KORVO_BUNDLE_INFO="$root/data/Info.json" \
  "$binary" run >"$work/host.log" 2>&1 &
host=$!
pids+=($host)
conky -c "$work/conky.conf" >"$work/conky.log" 2>&1 &
conky=$!
pids+=($conky)

sleep "$settle"
for pid in $host $conky; do
  kill -0 "$pid" 2>/dev/null || { echo "host_vs_conky: process $pid died" >&2; cat "$work"/*.log >&2; exit 1; }
done

ticks=$(getconf CLK_TCK)
cpu_ticks() { awk '{ print $14 + $15 }' "/proc/$1/stat"; }
# Time on the CPU in nanoseconds, summed over the threads: exact where utime + stime count ticks.
cpu_ns() { cat /proc/"$1"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f", sum }'; }
wakeups() { cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/ { sum += $2 } END { print sum }'; }
status_kb() { awk -v key="$2:" '$1 == key { print $2 }' "/proc/$1/status"; }
pss_kb() { awk '$1 == "Pss:" { print $2 }' "/proc/$1/smaps_rollup"; }

declare -A cpu0 ns0 wake0
for pid in $host $conky; do
  cpu0[$pid]=$(cpu_ticks "$pid"); ns0[$pid]=$(cpu_ns "$pid"); wake0[$pid]=$(wakeups "$pid")
done
sleep "$seconds"

declare -A hwm anon pss cpu ns total wake threads
for pid in $host $conky; do
  hwm[$pid]=$(status_kb "$pid" VmHWM)
  anon[$pid]=$(status_kb "$pid" RssAnon)
  pss[$pid]=$(pss_kb "$pid")
  now=$(cpu_ticks "$pid")
  cpu[$pid]=$((now - cpu0[$pid]))
  ns[$pid]=$(($(cpu_ns "$pid") - ns0[$pid]))
  total[$pid]=$now
  wake[$pid]=$(($(wakeups "$pid") - wake0[$pid]))
  threads[$pid]=$(ls /proc/"$pid"/task | wc -l)
done

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b == 0) print "n/a"; else printf "%.3f", a / b }'; }
seconds_of() { awk -v t="$1" -v hz="$ticks" 'BEGIN { printf "%.2f", t / hz }'; }
ms_of() { awk -v n="$1" 'BEGIN { printf "%.2f", n / 1e6 }'; }
per_wake() { awk -v w="$1" -v s="$seconds" 'BEGIN { if (w == 0) print "never"; else printf "%.1f s", s / w }'; }

printf '%-34s %14s %14s %10s\n' "measure ($seconds s after ${settle} s)" korvo-widgets conky ratio
row() { printf '%-34s %14s %14s %10s\n' "$1" "$2" "$3" "$4"; }
row "VmHWM (kB)" "${hwm[$host]}" "${hwm[$conky]}" "$(ratio "${hwm[$host]}" "${hwm[$conky]}")"
row "RssAnon (kB)" "${anon[$host]}" "${anon[$conky]}" "$(ratio "${anon[$host]}" "${anon[$conky]}")"
row "PSS (kB)" "${pss[$host]}" "${pss[$conky]}" "$(ratio "${pss[$host]}" "${pss[$conky]}")"
row "CPU on-CPU time in the window (ms)" "$(ms_of "${ns[$host]}")" "$(ms_of "${ns[$conky]}")" \
  "$(ratio "${ns[$host]}" "${ns[$conky]}")"
row "utime+stime in the window (s)" "$(seconds_of "${cpu[$host]}")" "$(seconds_of "${cpu[$conky]}")" \
  "$(ratio "${cpu[$host]}" "${cpu[$conky]}")"
row "utime+stime since start (s)" "$(seconds_of "${total[$host]}")" "$(seconds_of "${total[$conky]}")" \
  "$(ratio "${total[$host]}" "${total[$conky]}")"
row "wake-ups in the window" "${wake[$host]}" "${wake[$conky]}" "$(ratio "${wake[$host]}" "${wake[$conky]}")"
row "one wake-up every" "$(per_wake "${wake[$host]}")" "$(per_wake "${wake[$conky]}")" ""
row "threads" "${threads[$host]}" "${threads[$conky]}" ""

verdict=0
if (( ns[$host] * 10 > ns[$conky] )); then
  echo "host_vs_conky: korvo-widgets used more than a tenth of Conky's CPU time" >&2; verdict=1
fi
if (( wake[$host] * 30 > seconds )); then
  echo "host_vs_conky: korvo-widgets woke more than twice a minute" >&2; verdict=1
fi
exit $verdict
