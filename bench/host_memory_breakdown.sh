#!/usr/bin/env bash
# Where the desktop host's private memory goes: the host with all four widgets under Xvfb, and
# after it settles the anonymous (private) resident memory of each of its mappings, summed by what
# they belong to: the heap, other anonymous memory (thread stacks, GLib and font caches), and each
# shared library (its relocated data and what it wrote), largest first.
#   bench/host_memory_breakdown.sh [path/to/korvo-widgets] [settle seconds]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
binary=${1:-$root/build/release/src/cli/korvo-widgets}
settle=${2:-8}
source "$root/bench/xvfb_session.sh"
xvfb_session host-breakdown
mkdir -p "$work/config" "$work/data"
XDG_CONFIG_HOME="$work/config" XDG_DATA_HOME="$work/data" KORVO_BUNDLE_INFO="$root/data/Info.json" \
  "$binary" run >"$work/host.log" 2>&1 &
pids+=($!)
sleep "$settle"
# `run` hands over to the desktop host, its child or itself.
host=$(pgrep -n -f korvo-widgets-desktop || echo "${pids[-1]}")
awk -v status="/proc/$host/status" '
  BEGIN { while ((getline line < status) > 0) if (line ~ /^(RssAnon|VmHWM|RssFile):/) print line }' 
python3 - "/proc/$host/smaps" <<'PY'
import collections, re, sys
totals = collections.Counter()
name = None
for line in open(sys.argv[1]):
    if re.match(r"^[0-9a-f]+-[0-9a-f]+ ", line):
        fields = line.split()
        name = fields[5] if len(fields) > 5 else "[anonymous]"
        if name.startswith("/"):
            name = name.rsplit("/", 1)[-1].split(".so")[0]
    elif line.startswith("Anonymous:"):
        totals[name] += int(line.split()[1])
libraries = sum(kb for key, kb in totals.items() if not key.startswith("["))
print(f"{'kB':>7}  private memory by mapping ({sum(totals.values())} kB in all)")
print(f"{libraries:7d}  all shared libraries and the program ({sum(1 for k in totals if not k.startswith('['))} of them)")
for key, kb in totals.most_common(25):
    print(f"{kb:7d}  {key}")
PY
