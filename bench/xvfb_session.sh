# Sourced by the desktop benchmarks: a scratch folder and an Xvfb server of their own, both
# removed on exit with every process listed in `pids`.
#   xvfb_session NAME   sets $work and exports DISPLAY

xvfb_session() {
  work=$(mktemp -d "/tmp/korvo-$1-XXXXXX")
  pids=()
  trap xvfb_session_cleanup EXIT
  # Xvfb picks a free display number itself and reports it on the given descriptor.
  mkfifo "$work/display"
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$work/display" >"$work/xvfb.log" 2>&1 &
  pids+=($!)
  local number
  read -r number <"$work/display"
  export DISPLAY=":$number"
}

xvfb_session_cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}

# Polls the shell condition $1 every 50 ms for up to 30 s; fails when it never holds.
wait_for() { for _ in $(seq 1 600); do if eval "$1"; then return 0; fi; sleep 0.05; done; return 1; }

# Whether the bus name $1 has an owner on the session bus.
bus_owned() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.NameHasOwner "$1" 2>/dev/null | grep -q true
}
