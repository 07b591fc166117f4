#!/usr/bin/env bash
# Writes what every widget shows, in every family, appearance, rendering, background and entry,
# with the clock pinned, into DIR: the laid-out tree as JSON, the PNG and the SVG. Dumps taken
# before and after a change that must not be seen compare with `diff -r`.
#   bench/dump_trees.sh DIR [path/to/korvo-widgets]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:?usage: dump_trees.sh DIR [korvo-widgets]}
binary=${2:-$root/build/release/src/cli/korvo-widgets}
mkdir -p "$out"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The sample shared file in the group container, fetched ten minutes before the pinned clock.
container="$scratch/data/app-groups/group.com.tessmoor.Korvo"
mkdir -p "$container" "$scratch/empty"
cp "$root/data/samples/usage-snapshot.json" "$container/"
export XDG_DATA_HOME="$scratch/data" HOME="$scratch" KORVO_BUNDLE_INFO="$root/data/Info.json"
export KORVO_SYSROOT="$root/tests/fixtures/proc/desktop-zram"
now=2026-11-15T01:45:00Z
# Other sensors, so the temperature card has a reading.
hwmon="$root/tests/fixtures/hwmon/coretemp_two_packages"

families() { "$binary" list --json | python3 -c '
import json, sys
for widget in json.load(sys.stdin):
    families = (f.removeprefix("system").lower() for f in widget["families"])
    print(widget["kind"].rsplit(".", 1)[-1], " ".join(families))'; }

while read -r kind family_list; do
  for family in $family_list; do
    for appearance in light dark; do
      for rendering in full-color accented; do
        for entry in placeholder snapshot timeline; do
          for background in host legacy; do
            name="$kind-$family-$appearance-$rendering-$entry-$background"
            args=(render "$kind" --family "$family" --appearance "$appearance"
                  --rendering "$rendering" --entry "$entry" --now "$now")
            [[ $background == legacy ]] && args+=(--legacy-background)
            [[ $rendering == accented ]] && args+=(--accent '#FF9500')
            for format in json png svg; do
              "$binary" "${args[@]}" --format "$format" -o "$out/$name.$format"
            done
          done
        done
        # No shared file: what a fresh install shows.
        XDG_DATA_HOME="$scratch/empty" "$binary" render "$kind" --family "$family" \
          --appearance "$appearance" --rendering "$rendering" --now "$now" --format json \
          -o "$out/$kind-$family-$appearance-$rendering-nofile.json"
      done
      # Dates and spans in another language.
      LC_ALL=de_DE.UTF-8 "$binary" render "$kind" --family "$family" --appearance "$appearance" \
        --now "$now" --format json -o "$out/$kind-$family-$appearance-de.json"
      KORVO_SYSROOT="$hwmon" "$binary" render "$kind" --family "$family" \
        --appearance "$appearance" --now "$now" --format json -o "$out/$kind-$family-$appearance-hwmon.json"
    done
  done
done < <(families)
# The command line's own outputs.
"$binary" list > "$out/list.txt"
"$binary" list --json > "$out/list.json"
# The reading's moment is the clock's, and the scratch folder's name changes from run to run.
"$binary" memory --json | grep -v timestamp > "$out/memory.json"
"$binary" memory | grep -v timestamp > "$out/memory.txt"
"$binary" snapshot check 2>&1 | sed "s|$scratch|SCRATCH|g" > "$out/snapshot-check.txt" || true
for kind in memory usage temperature; do
  "$binary" status "$kind" --format waybar > "$out/status-$kind.json" 2>&1 || true
done
echo "dump_trees: $(ls "$out" | wc -l) files in $out"
