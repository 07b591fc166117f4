#!/usr/bin/env bash
# Start-up cost of the commands that run most, side by side with `free -b` (a small program that
# reads /proc): korvo-widgets list, memory --json, snapshot check, status, and korvo's
# claude-statusline and publish. Each BUILD is a folder holding korvo-widgets and korvo (default:
# the release build); give two to compare builds in the same run.
#   bench/startup_process.sh [--runs N] [BUILD …]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
runs=60
if [[ ${1:-} == --runs ]]; then runs=$2; shift 2; fi
builds=("$@")
[[ ${#builds[@]} -gt 0 ]] || builds=("$root/build/release/src")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch" XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export CODEX_HOME="$scratch/codex" CLAUDE_CONFIG_DIR="$scratch/claude"
export KORVO_SYSROOT="$root/tests/fixtures/proc/desktop-zram"
export KORVO_BUNDLE_INFO="$root/data/Info.json"
mkdir -p "$XDG_DATA_HOME/app-groups/group.com.tessmoor.Korvo"
cp "$root/data/samples/usage-snapshot.json" "$XDG_DATA_HOME/app-groups/group.com.tessmoor.Korvo/"
# What Claude Code hands its status line, with limits already published: the usual message.
cat >"$scratch/status.json" <<'JSON'
{"hook_event_name":"Status","session_id":"0199a0b1-0000-7000-8000-000000000001","model":{"id":"claude-opus-4-1","display_name":"Opus"},"workspace":{"current_dir":"/home/user/project"},"version":"2.1.80","rate_limits":{"five_hour":{"used_percentage":28,"resets_at":1794707100},"seven_day":{"used_percentage":41.6,"resets_at":1795000000}}}
JSON

# A build folder holds the programs where the build tree puts them, or side by side.
program() {
  if [[ -x $1/cli/$2 ]]; then echo "$1/cli/$2"; elif [[ -x $1/app/$2 ]]; then echo "$1/app/$2"; else echo "$1/$2"; fi
}
commands=("free -b")
for build in "${builds[@]}"; do
  widgets=$(program "$build" korvo-widgets)
  korvo=$(program "$build" korvo)
  "$korvo" publish >/dev/null
  commands+=("$widgets list" "$widgets memory --json" "$widgets snapshot check"
             "$widgets status memory" "$widgets status usage" "$widgets status usage --format waybar"
             "$korvo claude-statusline" "$korvo publish")
done
python3 "$root/bench/side_by_side.py" --runs "$runs" --stdin "$scratch/status.json" "${commands[@]}"
