#!/usr/bin/env bash
# What a drag costs the desktop host, frame for frame, against a repaint in place, side by side in
# one Xvfb server with openbox. The temperature card shows a reading taken now with the clock
# running 10 times fast, so its "Updated 12 sec ago" advances ten times a real second: each is a
# layout and repaint of the whole card (counted from KORVO_HOST_DEBUG's lines). Then the card is
# dragged N steps of 3 pixels (xdotool holds the button; openbox moves the window). Prints the
# host's on-CPU time per repaint and per drag step, their ratio, and the drag's wall time per step.
# (An uncovered card cannot serve as the repaint: the X server keeps the contents of a window with
# an alpha channel itself and sends it no expose.)
#
#   bench/drag_frames.sh [path/to/korvo-widgets] [steps]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-${KORVO_BINARY:-$root/build/release/src/cli/korvo-widgets}}
steps=${2:-200}
[[ -x $binary ]] || { echo "drag_frames: no korvo-widgets at $binary (build the release preset)" >&2; exit 1; }
for tool in openbox xdotool xwininfo; do
  command -v "$tool" >/dev/null || { echo "drag_frames: $tool is not installed" >&2; exit 1; }
done

source "$root/bench/xvfb_session.sh"
xvfb_session drag-frames
mkdir -p "$work/config" "$work/data"
openbox --sm-disable >"$work/openbox.log" 2>&1 &
pids+=($!)
wait_for "xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q window" ||
  { echo "drag_frames: openbox did not start" >&2; exit 1; }

container="$work/data/app-groups/group.com.tessmoor.Korvo"
mkdir -p "$container"
now=$(($(date +%s) - 978307200))
printf '{"date":%d,"temperature":54,"temperatureDate":%d,"temperatureEnabled":true,"codex":{"enabled":false,"isRefreshing":false},"claude":{"enabled":false,"isRefreshing":false}}' "$now" "$now" \
  >"$container/usage-snapshot.json"
XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" KORVO_BUNDLE_INFO="$root/data/Info.json" \
  KORVO_HOST_DEBUG=1 KORVO_TIME_RATE=10 "$binary" run --widget temperature --appearance light \
  >"$work/host.log" 2>&1 &
host=$!
pids+=($host)
wait_for "xdotool search --name '^CPU Temperature$' >/dev/null 2>&1" ||
  { echo "drag_frames: the temperature card never showed" >&2; cat "$work/host.log" >&2; exit 1; }
card=$(xdotool search --name '^CPU Temperature$' | head -1)

cpu_ns() { cat /proc/"$host"/task/*/schedstat | awk '{ sum += $1 } END { printf "%.0f", sum }'; }
repaints() { grep -c "accessible children of CPU Temperature" "$work/host.log" || true; }
geometry() { xwininfo -id "$card" | awk '/Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF }
  /Width/ { w = $NF } /Height/ { h = $NF } END { print x, y, w, h }'; }
read -r x y width height < <(geometry)

# Repaints in place while the seconds tick (the first clock minute is six real seconds).
sleep 0.5
before=$(cpu_ns)
painted=$(repaints)
sleep 4
repaint_ns=$(($(cpu_ns) - before))
painted=$(($(repaints) - painted))
(( painted > 0 )) || { echo "drag_frames: the card never repainted" >&2; cat "$work/host.log" >&2; exit 1; }
# Past the first minute the text counts minutes: a repaint every 3 real seconds at most.
sleep 3

# A drag: press on the card, move in steps, release.
xdotool mousemove --sync $((x + width / 2)) $((y + height / 2))
before=$(cpu_ns)
during=$(repaints)
start=$(date +%s%N)
xdotool mousedown 1
for step in $(seq 1 "$steps"); do
  xdotool mousemove --sync $((x + width / 2 - 3 * step)) $((y + height / 2 + step % 7))
done
xdotool mouseup 1
drag_wall=$(($(date +%s%N) - start))
sleep 1
drag_ns=$(($(cpu_ns) - before))
during=$(($(repaints) - during))
read -r x2 y2 _ _ < <(geometry)
[[ "$x2 $y2" != "$x $y" ]] || { echo "drag_frames: the card did not move" >&2; exit 1; }

per() { awk -v n="$1" -v k="$2" 'BEGIN { printf "%.1f us", n / k / 1000 }'; }
printf '%-40s %s\n' "host CPU per repaint ($painted repaints)" "$(per "$repaint_ns" "$painted")"
printf '%-40s %s\n' "host CPU per drag step ($steps steps)" "$(per "$drag_ns" "$steps")"
printf '%-40s %s\n' "drag step / repaint" \
  "$(awk -v a="$drag_ns" -v k="$steps" -v b="$repaint_ns" -v p="$painted" 'BEGIN { printf "%.3f", (a / k) / (b / p) }')"
printf '%-40s %s\n' "repaints during the drag" "$during"
printf '%-40s %s\n' "wall time per drag step (xdotool)" "$(per "$drag_wall" "$steps")"
printf '%-40s %s\n' "card moved" "($x, $y) -> ($x2, $y2)"
