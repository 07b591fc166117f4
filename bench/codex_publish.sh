#!/usr/bin/env bash
# What a heavy Codex user's rollouts cost `korvo publish` against a light user's: 1,000 rollouts
# of 1 MiB each whose token counts all carry `"rate_limits":null` (Team plans), modified over the
# last week (the worst case for the scan, which reads the newest file, then files of the last 8
# days up to 64 MiB) and over a year, against 10 over a week. The service publishes once a minute,
# so the figure that counts is a publication after the first, which remembers the files that hold
# no limits; the first is timed too (`--print`, which remembers nothing). Medians of the release
# build, with hyperfine, side by side, and their ratios to the light user's.
#   bench/codex_publish.sh [KORVO]
set -euo pipefail
cd "$(dirname "$0")/.."
korvo="${1:-build/release/src/app/korvo}"
if [ ! -x "$korvo" ]; then
  cmake --preset release >/dev/null
  cmake --build build/release --target korvo >/dev/null
fi
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export CLAUDE_CONFIG_DIR="$scratch/claude" HOME="$scratch"
export KORVO_SYSROOT="$PWD/tests/fixtures/hwmon/coretemp_two_packages"
export KORVO_BUNDLE_INFO="$PWD/data/Info.json"
# The rollouts alone: the app-server is measured by bench/codex_live.sh.
mkdir -p "$XDG_CONFIG_HOME/korvo"
echo '{"codexLive": false}' > "$XDG_CONFIG_HOME/korvo/settings.json"

# Rollouts as Codex writes them: the session's meta, then turns of a user message, reasoning, tool
# calls with their output, the answer and a token count without limits.
python3 - "$scratch" <<'PY'
import json, os, sys, time
scratch = sys.argv[1]
now = time.time()
def rollout(index):
    meta = {"timestamp": "2026-11-15T01:30:00.120Z", "type": "session_meta", "payload": {"id": f"0199a0b1-0000-7000-8000-{index:012d}", "cwd": "/home/user/project", "originator": "codex_cli_rs", "cli_version": "0.58.0"}}
    lines = [json.dumps(meta, separators=(",", ":"))]
    turn = 0
    size = len(lines[0])
    while size < 1024 * 1024:
        stamp = f"2026-11-15T{1 + turn // 3600 % 20:02d}:{turn // 60 % 60:02d}:{turn % 60:02d}.000Z"
        items = [
            {"timestamp": stamp, "type": "response_item", "payload": {"type": "message", "role": "user", "content": [{"type": "input_text", "text": "Please look at the parser again " * 4}]}},
            {"timestamp": stamp, "type": "response_item", "payload": {"type": "reasoning", "summary": [{"type": "summary_text", "text": "Thinking about token_count handling " * 20}], "encrypted_content": "gAAAA" + "x" * 3000}},
            {"timestamp": stamp, "type": "response_item", "payload": {"type": "function_call", "name": "shell", "arguments": json.dumps({"command": ["bash", "-lc", "rg token_count src"]}), "call_id": f"call_{turn}"}},
            {"timestamp": stamp, "type": "response_item", "payload": {"type": "function_call_output", "call_id": f"call_{turn}", "output": json.dumps({"output": "src/a.rs:12: token_count\n" * 200, "metadata": {"exit_code": 0}})}},
            {"timestamp": stamp, "type": "event_msg", "payload": {"type": "agent_message", "message": "Done with this step."}},
            {"timestamp": stamp, "type": "event_msg", "payload": {"type": "token_count", "info": {"total_token_usage": {"input_tokens": 5200 + turn, "cached_input_tokens": 2048, "output_tokens": 14, "reasoning_output_tokens": 0, "total_tokens": 5214 + turn}, "model_context_window": 272000}, "rate_limits": None}},
        ]
        for item in items:
            line = json.dumps(item, separators=(",", ":"))
            lines.append(line)
            size += len(line) + 1
        turn += 1
    return "\n".join(lines) + "\n"
body = rollout(0)
# Newest first, spread evenly over `days`.
for name, count, days in (("heavy", 1000, 7), ("year", 1000, 365), ("light", 10, 7)):
    for index in range(count):
        day = f"{scratch}/{name}/sessions/2026/11/{15 - index * 7 // count:02d}"
        os.makedirs(day, exist_ok=True)
        path = f"{day}/rollout-2026-11-15T01-30-00-{index:04d}.jsonl"
        with open(path, "w") as out:
            out.write(body)
        moment = now - index * (days * 24 * 3600 / count)
        os.utime(path, (moment, moment))
PY
du -sh "$scratch/heavy" "$scratch/year" "$scratch/light"
for name in heavy year light; do
  CODEX_HOME="$scratch/$name" "$korvo" publish --print | grep -q '"No limits in Codex logs yet"'
done

# One memo per user, as each has their own cache folder.
publish() { echo "CODEX_HOME=$scratch/$1 XDG_CACHE_HOME=$scratch/cache-$1 $korvo publish ${2:-}"; }
# Sixteen publications remember all of the heavy user's thousand mebibytes, 64 at a time.
hyperfine --warmup 20 --runs 30 --export-json "$scratch/results.json" --style basic \
  -n "1000 in a week" "$(publish heavy)" \
  -n "1000 in a year" "$(publish year)" \
  -n "10 in a week" "$(publish light)" \
  -n "first, 1000 in a week" "$(publish heavy --print)" \
  -n "first, 10 in a week" "$(publish light --print)"
python3 - "$scratch/results.json" <<'PY'
import json, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
light = results["10 in a week"]
print(f"{'':16}{'median ms':>10}{'user ms':>9}{'system ms':>10}{'ratio':>7}")
for name, r in results.items():
    print(f"{name:16}{r['median'] * 1e3:10.1f}{r['user'] * 1e3:9.1f}{r['system'] * 1e3:10.1f}"
          f"{r['median'] / light['median']:7.2f}")
PY
