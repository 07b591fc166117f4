#!/usr/bin/env bash
# korvo's GTK instance measured beside the desktop host (korvo-widgets run) in one Xvfb, each
# on a private session bus: private memory (RssAnon) and PSS from smaps_rollup, and wake-ups
# (voluntary context switches over all threads) per minute, idle and with a Keep Awake session
# (mock session manager); then the time from `korvo open korvo://awake` to the dashboard being
# mapped, cold (no instance yet) and warm (the service runs), against `xmessage` mapping a window.
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

# Time to the dashboard mapped: warm (the service runs), then cold (a fresh bus, no instance).
mapped_ms() {
  local start=$(now_ms)
  # The instance a cold open leaves ends with its bus, which the clean-up stops.
  "$korvo" open korvo://awake >/dev/null 2>&1 &
  wait_for "xdotool search --onlyvisible --name '^Korvo · Resources' >/dev/null 2>&1"
  echo $(( $(now_ms) - start ))
}
anchor_ms() {
  local start=$(now_ms)
  xmessage -name korvo-anchor -title korvo-anchor anchor &
  local pid=$!
  wait_for "xdotool search --onlyvisible --name '^korvo-anchor$' >/dev/null 2>&1"
  echo $(( $(now_ms) - start ))
  kill "$pid"
}
warm=$(mapped_ms)
sleep 2
printf '%-28s service %6s   desktop host %6s   ratio %s\n' "RssAnon kB, dashboard open" \
  "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)" \
  "$(ratio "$(status_kb "$service" RssAnon)" "$(status_kb "$host" RssAnon)")"
kill "$service"; wait "$service" 2>/dev/null || true
new_bus "$work/bus2"
cold=$(mapped_ms)
anchor=$(anchor_ms)
printf '%-28s warm %5s ms   cold %5s ms   xmessage %5s ms   ratios %s / %s\n' \
  "open korvo://awake→mapped" "$warm" "$cold" "$anchor" "$(ratio "$warm" "$anchor")" "$(ratio "$cold" "$anchor")"
