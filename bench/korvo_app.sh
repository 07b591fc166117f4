#!/usr/bin/env bash
# korvo's GTK instance measured beside the desktop host (korvo-widgets run) in one Xvfb, each
# on a private session bus: private memory (RssAnon) and PSS from smaps_rollup, and wake-ups
# (voluntary context switches over all threads) per minute, idle and with a Keep Awake session
# (mock session manager); then the time from `korvo open korvo://awake` to the dashboard being
# mapped, warm (the service runs: its first showing and a later one) and cold (no instance yet),
# against `xmessage` mapping a window.
#   bench/korvo_app.sh [BUILD]      (default build/release; SECONDS=60 sets the idle windows)
set -euo pipefail
cd "$(dirname "$0")/.."
build="${1:-build/release}"
seconds="${SECONDS_PER_WINDOW:-60}"
for target in korvo korvo-service korvo-widgets korvo-widgets-desktop; do
  if ! find "$build/src" -name "$target" -type f -perm -u+x | grep -q .; then
    cmake --build "$build" --target korvo korvo-service korvo-widgets korvo-widgets-desktop -j2 >/dev/null
    break
  fi
done
source bench/xvfb_session.sh
xvfb_session korvo-app
korvo="$PWD/$build/src/app/korvo"
widgets="$PWD/$build/src/cli/korvo-widgets"
export HOME="$work" XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" XDG_STATE_HOME="$work/state"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json" KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$work/no-system-bus" GDK_BACKEND=x11 NO_AT_BRIDGE=1
export KORVO_DASHBOARD_DUMP="$work/dashboard.json"

new_bus() {
  dbus-daemon --session --fork --print-pid=1 --address="unix:path=$1" >"$1.pid"
  pids+=($(cat "$1.pid"))
  export DBUS_SESSION_BUS_ADDRESS="unix:path=$1"
}
status_kb() { awk -v key="$2:" '$1 == key { print $2 }' "/proc/$1/status"; }
pss_kb() { awk '$1 == "Pss:" { print $2 }' "/proc/$1/smaps_rollup"; }
wakeups() { cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches/ { sum += $2 } END { print sum }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b == 0 ? 0 : a / b) }'; }
now_ms() { date +%s%3N; }

new_bus "$work/bus"
/usr/bin/python3 -m dbusmock --session org.gnome.SessionManager /org/gnome/SessionManager \
  org.gnome.SessionManager >"$work/mock.log" 2>&1 &
pids+=($!)
wait_for "bus_owned org.gnome.SessionManager"
gdbus call --session --dest org.gnome.SessionManager --object-path /org/gnome/SessionManager \
  --method org.freedesktop.DBus.Mock.AddMethod '' Inhibit susu u 'ret = 42' >/dev/null
gdbus call --session --dest org.gnome.SessionManager --object-path /org/gnome/SessionManager \
  --method org.freedesktop.DBus.Mock.AddMethod '' Uninhibit u '' '' >/dev/null

"$korvo" service 2>"$work/service.log" &
service=$!
pids+=($service)
"$widgets" run 2>"$work/host.log" &  # execs the desktop host: same process
host=$!
pids+=($host)
wait_for "bus_owned com.tessmoor.Korvo && bus_owned com.tessmoor.Korvo.Widgets"
sleep 5  # both settle: first publication, first layout

measure() {  # label
  local w0s w0h
  w0s=$(wakeups "$service"); w0h=$(wakeups "$host")
  sleep "$seconds"
  local ws=$(( ($(wakeups "$service") - w0s) * 60 / seconds ))
  local wh=$(( ($(wakeups "$host") - w0h) * 60 / seconds ))
  printf '%-28s service %6s   desktop host %6s   ratio %s\n' "$1 wake-ups/min" "$ws" "$wh" "$(ratio "$ws" "$wh")"
}
printf '%-28s service %6s   desktop host %6s   ratio %s\n' "RssAnon kB" \
  "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)" \
  "$(ratio "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)")"
printf '%-28s service %6s   desktop host %6s   ratio %s\n' "PSS kB" \
  "$(pss_kb "$service")" "$(pss_kb "$host")" "$(ratio "$(pss_kb "$service")" "$(pss_kb "$host")")"
measure "idle"
"$korvo" awake start 2h >/dev/null
measure "Keep Awake running"
"$korvo" awake stop >/dev/null

# Time to the dashboard mapped: warm (the service runs; its first showing builds the window, a
# later one shows it again), then cold (a fresh bus, no instance), against xmessage. Each is
# polled without a pause (one xdotool a few milliseconds), five times, and the median kept.
visible() { xdotool search --onlyvisible --name "$1" >/dev/null 2>&1; }
dashboard='^Korvo · Resources'
mapped_ms() {
  local start=$(now_ms)
  # The instance a cold open leaves ends with its bus, which the clean-up stops.
  "$korvo" open korvo://awake >/dev/null 2>&1 &
  until visible "$dashboard"; do :; done
  echo $(( $(now_ms) - start ))
}
# Escape closes the dashboard (the keys go to the window under the pointer: no window manager).
close_dashboard() {
  local id
  id=$(xdotool search --onlyvisible --name "$dashboard" | head -1)
  eval "$(xdotool getwindowgeometry --shell "$id")"
  xdotool mousemove $((X + 40)) $((Y + HEIGHT - 40)) key Escape
  while visible "$dashboard"; do :; done
}
anchor_ms() {
  local start=$(now_ms)
  xmessage -name korvo-anchor -title korvo-anchor anchor 2>/dev/null &
  local pid=$!
  until visible '^korvo-anchor$'; do :; done
  echo $(( $(now_ms) - start ))
  kill "$pid"
  wait "$pid" 2>/dev/null || true
}
median() { printf '%s\n' "$@" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
first=$(mapped_ms)
sleep 2
printf '%-28s service %6s   desktop host %6s   ratio %s\n' "RssAnon kB, dashboard open" \
  "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)" \
  "$(ratio "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)")"
again=()
anchors=()
for _ in 1 2 3 4 5; do
  close_dashboard
  again+=("$(mapped_ms)")
  anchors+=("$(anchor_ms)")
done
close_dashboard
kill "$service"; wait "$service" 2>/dev/null || true
new_bus "$work/bus2"
cold=$(mapped_ms)
warm=$(median "${again[@]}")
anchor=$(median "${anchors[@]}")
printf '%-28s first %5s ms   again %5s ms   cold %5s ms   xmessage %5s ms\n' \
  "open korvo://awake→mapped" "$first" "$warm" "$cold" "$anchor"
printf '%-28s first %s   again %s   cold %s\n' "  ratios to xmessage" "$(ratio "$first" "$anchor")" \
  "$(ratio "$warm" "$anchor")" "$(ratio "$cold" "$anchor")"
