#!/usr/bin/env bash
# What asking Codex's app-server costs: `korvo codex --live` with the real Codex CLI (not signed
# in, so the whole exchange runs: start, initialize, the rate-limit request and its refusal, the
# process group ended) against starting `codex --version` and against `korvo codex` reading the
# rollouts alone. Release build, medians with hyperfine, side by side, and their ratios to
# `codex --version`.
#   bench/codex_live.sh [KORVO]
set -euo pipefail
cd "$(dirname "$0")/.."
korvo="${1:-build/release/src/app/korvo}"
codex="${KORVO_NPM_TOOLS:-$HOME/.cache/korvo-widgets/npm}/node_modules/.bin/codex"
if [ ! -x "$codex" ]; then
  echo "codex_live: $codex is missing: run scripts/install-deps" >&2
  exit 1
fi
if [ ! -x "$korvo" ]; then
  cmake --preset release >/dev/null
  cmake --build build/release --target korvo >/dev/null
fi
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch" XDG_DATA_HOME="$scratch/data" XDG_CONFIG_HOME="$scratch/config"
export XDG_STATE_HOME="$scratch/state" XDG_CACHE_HOME="$scratch/cache" CODEX_HOME="$scratch/codex"
export CLAUDE_CONFIG_DIR="$scratch/claude" KORVO_BUNDLE_INFO="$PWD/data/Info.json"
mkdir -p "$CODEX_HOME" "$XDG_CONFIG_HOME/korvo"
printf '{"codexCommand": "%s", "codexLiveMinutes": 1440}\n' "$codex" >"$XDG_CONFIG_HOME/korvo/settings.json"
# One ask first, so `korvo codex` below finds it recent and reads the rollouts alone.
"$korvo" codex --live >/dev/null 2>&1 || true

hyperfine --warmup 2 --runs 15 --export-json "$scratch/results.json" --style basic -i \
  -n "codex --version" "$codex --version" \
  -n "korvo codex --live" "$korvo codex --live" \
  -n "korvo codex" "$korvo codex"
python3 - "$scratch/results.json" <<'PY'
import json, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
anchor = results["codex --version"]
print(f"{'':20}{'median ms':>10}{'user ms':>9}{'system ms':>10}{'ratio':>7}")
for name, r in results.items():
    print(f"{name:20}{r['median'] * 1e3:10.1f}{r['user'] * 1e3:9.1f}{r['system'] * 1e3:10.1f}"
          f"{r['median'] / anchor['median']:7.2f}")
PY
