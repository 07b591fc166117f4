#!/usr/bin/env bash
# Whole-process cost of korvo's two commands that run most: `claude-statusline` (on every Claude
# Code message, typical input) and `publish` (every publishSeconds), against `free -b` as the
# anchor of a small program that reads /proc. Medians of the release build, with hyperfine.
#   bench/korvo_process.sh [KORVO]
set -euo pipefail
cd "$(dirname "$0")/.."
korvo="${1:-build/release/src/app/korvo}"
if [ ! -x "$korvo" ]; then
  cmake --preset release >/dev/null
  cmake --build build/release --target korvo >/dev/null
fi
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch" XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export CODEX_HOME="$scratch/codex" CLAUDE_CONFIG_DIR="$scratch/claude"
export KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json"

# A Codex rollout of a few thousand lines, as a day's session leaves it.
rollout="$CODEX_HOME/sessions/2026/11/15/rollout-2026-11-15T01-30-00-a.jsonl"
mkdir -p "$(dirname "$rollout")"
python3 - "$rollout" <<'PY'
import sys
chatter = '{"timestamp":"2026-11-15T01:30:02.000Z","type":"response_item","payload":{"type":"message","role":"assistant","content":[{"type":"output_text","text":"' + "x" * 900 + '"}]}}\n'
event = '{"timestamp":"2026-11-15T01:30:21.500Z","type":"event_msg","payload":{"type":"token_count","info":null,"rate_limits":{"limit_id":"codex","primary":{"used_percent":28.0,"window_minutes":300,"resets_at":1794721500},"secondary":{"used_percent":42.0,"window_minutes":10080,"resets_at":1795100000}}}}\n'
with open(sys.argv[1], "w") as out:
    out.write((chatter * 50 + event) * 60)
PY
# What Claude Code hands its status line, with the limits; unchanged figures, so most runs only
# read the shared file, as in a conversation.
cat > "$scratch/status.json" <<'JSON'
{"hook_event_name":"Status","session_id":"0199a0b1-0000-7000-8000-000000000001","transcript_path":"/home/user/.claude/projects/p/0199a0b1.jsonl","cwd":"/home/user/project","model":{"id":"claude-opus-4-1","display_name":"Opus"},"workspace":{"current_dir":"/home/user/project","project_dir":"/home/user/project"},"version":"2.1.80","output_style":{"name":"default"},"cost":{"total_cost_usd":0.42,"total_duration_ms":120000,"total_api_duration_ms":30000,"total_lines_added":12,"total_lines_removed":3},"rate_limits":{"five_hour":{"used_percentage":28,"resets_at":1794707100},"seven_day":{"used_percentage":41.6,"resets_at":1795000000}}}
JSON
"$korvo" publish

# hyperfine takes its own shell's start-up off each figure.
hyperfine --warmup 5 --runs 100 --export-json "$scratch/results.json" --style basic \
  "free -b" \
  "$korvo claude-statusline < $scratch/status.json" \
  "$korvo publish"
python3 - "$scratch/results.json" <<'PY'
import json, sys
results = json.load(open(sys.argv[1]))["results"]
anchor = results[0]["median"]
for result in results:
    print(f"median {result['median'] * 1000:7.2f} ms  {result['median'] / anchor:5.2f}x free -b  "
          f"{result['command'].split(' <')[0].rsplit('/', 1)[-1]}")
PY
