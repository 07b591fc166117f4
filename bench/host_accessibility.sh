#!/usr/bin/env bash
# The accessible children in the running host: the desktop host with all four widgets under Xvfb
# on a private session bus, once with GTK's accessibility bridge loaded (and the tree read once
# through AT-SPI, as a screen reader would) and once without (NO_AT_BRIDGE=1). Its clock runs
# 300 times fast, so usage and temperature reload every 3 s and relative texts advance often.
# Prints the host's private memory (RssAnon) and resident memory for both, and how long the
# updates of the accessible children took (KORVO_HOST_DEBUG's lines) with and without edits.
#
#   bench/host_accessibility.sh [path/to/korvo-widgets] [seconds]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-${KORVO_BINARY:-$root/build/release/src/cli/korvo-widgets}}
seconds=${2:-30}
[[ -x $binary ]] || { echo "host_accessibility: no korvo-widgets at $binary" >&2; exit 1; }

source "$root/bench/xvfb_session.sh"
xvfb_session host-a11y
# Each private bus runs in a session of its own, ended as a whole: the accessibility bus that
# D-Bus starts on demand lives in it too.
sessions=()
cleanup() {
  for session in "${sessions[@]}"; do kill -- "-$session" 2>/dev/null || true; done
  xvfb_session_cleanup
}
trap cleanup EXIT

container="$work/data/app-groups/group.com.tessmoor.Korvo"
mkdir -p "$work/config" "$work/home" "$container"
now=$(($(date +%s) - 978307200))
printf '{"date":%d,"temperature":54,"temperatureDate":%d,"temperatureEnabled":true,"codex":{"enabled":true,"snapshot":{"windows":[{"title":"5-hour","usedPercent":20},{"title":"Weekly","usedPercent":40}],"fetchedAt":%d},"isRefreshing":false},"claude":{"enabled":false,"isRefreshing":false}}' \
  "$now" "$now" "$now" >"$container/usage-snapshot.json"

# Microseconds of the logged updates: "median p90 max (count)" of those matching $2.
timings() {
  grep -E "$2" "$1" | sed -E 's/.* in ([0-9]+) us$/\1/' | sort -n |
    awk '{ v[NR] = $1 } END { if (NR == 0) { print "none"; exit }
           printf "median %d us, p90 %d us, max %d us (%d updates)", v[int((NR + 1) / 2)], v[int(NR * 0.9 + 0.5)], v[NR], NR }'
}

run() {
  local mode=$1 log="$work/host-$1.log" bus="$work/bus-$1"
  setsid env -i PATH=/usr/bin:/bin HOME="$work/home" DISPLAY="$DISPLAY" XDG_DATA_DIRS=/usr/local/share:/usr/share \
    dbus-run-session -- sh -c 'printf %s "$DBUS_SESSION_BUS_ADDRESS" >"$0.tmp" && mv "$0.tmp" "$0" && exec sleep 3600' "$bus" \
    >/dev/null 2>&1 &
  local session=$!
  sessions+=($session)
  while [[ ! -s $bus ]]; do sleep 0.1; done
  local extra=()
  [[ $mode == without ]] && extra=(NO_AT_BRIDGE=1)
  : >"$log"
  env -i PATH=/usr/bin:/bin HOME="$work/home" DISPLAY="$DISPLAY" DBUS_SESSION_BUS_ADDRESS="$(cat "$bus")" \
    XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" GDK_BACKEND=x11 LANG=C.UTF-8 \
    KORVO_BUNDLE_INFO="$root/data/Info.json" KORVO_HOST_DEBUG=1 KORVO_TIME_RATE=300 "${extra[@]}" \
    "$binary" run 2>"$log" &
  local host=$!
  pids+=($host)
  # Until every window is up (the host logs each first update), then as a screen reader would:
  # the whole tree read once through AT-SPI, retried while the host is not on the bus yet.
  for ((tries = 0; tries < 100 && $(grep -c 'accessible children of' "$log" || true) < 4; tries++)); do
    sleep 0.2
  done
  if [[ $mode == with ]]; then
    local read=false
    for ((tries = 0; tries < 50; tries++)); do
      if env -i PATH=/usr/bin:/bin HOME="$work/home" DISPLAY="$DISPLAY" DBUS_SESSION_BUS_ADDRESS="$(cat "$bus")" \
        /usr/bin/python3 "$root/tests/support/a11y/read_accessible.py" >"$work/read.json" 2>/dev/null; then
        read=true
        break
      fi
      sleep 0.2
    done
    $read || { echo "host_accessibility: AT-SPI never read the host" >&2; exit 1; }
    echo "  read through AT-SPI: $(grep -c '"role"' "$work/read.json") accessibles"
  fi
  sleep "$seconds"
  kill -0 "$host" || { echo "host_accessibility: the host died" >&2; tail "$log" >&2; exit 1; }
  rss_anon[$mode]=$(awk '/^RssAnon/ { print $2 }' "/proc/$host/status")
  printf '%-8s bridge: %s\n' "$mode" "$(awk '/^VmRSS|^RssAnon/ { printf "%s %s kB  ", $1, $2 }' "/proc/$host/status")"
  # GTK links the bridge either way; NO_AT_BRIDGE keeps it from joining the accessibility bus.
  local seen=no
  env -i PATH=/usr/bin:/bin HOME="$work/home" DISPLAY="$DISPLAY" DBUS_SESSION_BUS_ADDRESS="$(cat "$bus")" \
    /usr/bin/python3 "$root/tests/support/a11y/read_accessible.py" >/dev/null 2>&1 && seen=yes
  echo "  on the accessibility bus: $seen"
  echo "  reloads: $(grep -c 'timeline request' "$log" || true) timeline requests"
  echo "  updates with edits:    $(timings "$log" 'children of .*: [1-9][0-9]* edits')"
  echo "  updates without edits: $(timings "$log" 'children of .*: 0 edits')"
  kill "$host"
  kill -- "-$session"
  wait "$host" "$session" 2>/dev/null || true
}

declare -A rss_anon
run with
run without
awk -v with="${rss_anon[with]}" -v without="${rss_anon[without]}" \
  'BEGIN { printf "RssAnon with the bridge / without: %.2f (%+d kB)\n", with / without, with - without }'
