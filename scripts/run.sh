#!/usr/bin/env bash
# Builds everything, starts the local forum server with its demo data, and opens the app on it.
# Options are passed on to the app (quorvel --help lists them). Without a display the app tours
# every screen headless instead, on a throwaway copy of the forum, and saves a picture of each.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh"
build="${QUORVEL_BUILD_DIR:-$root/build}"

data="${XDG_DATA_HOME:-$HOME/.local/share}/quorvel"
mkdir -p "$data"
port="${QUORVEL_PORT:-8080}"
server_log="$data/server.log"
db="$data/demo-forum.sqlite"

headless=false
[[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]] && headless=true
cleanup=()
if $headless; then
  # The tour replies and publishes: it does so on a fresh forum, as a first launch, and leaves
  # the demo forum and the user's settings as they were.
  sandbox=$(mktemp -d)
  cleanup+=("$sandbox")
  db="$sandbox/tour-forum.sqlite"
  export XDG_CONFIG_HOME="$sandbox/config"
fi

"$build/src/server/quorvel-server" --port "$port" --db "$db" >"$server_log.out" 2>"$server_log" &
server_pid=$!
trap 'kill "$server_pid" 2>/dev/null || true; wait "$server_pid" 2>/dev/null || true; rm -rf "${cleanup[@]}"' EXIT

for _ in $(seq 1 100); do
  grep -q "listening on" "$server_log.out" 2>/dev/null && break
  if ! kill -0 "$server_pid" 2>/dev/null; then
    echo "quorvel-server did not start (is port $port taken? set QUORVEL_PORT):" >&2
    cat "$server_log" >&2
    exit 1
  fi
  sleep 0.1
done
api_root=$(grep -o 'http://[^ ]*' "$server_log.out" | head -n 1)
export QUORVEL_API_ROOT="$api_root"
export QUORVEL_PUSH_URL="${api_root%/api/}/push"
echo "Local forum server with demo data at $api_root (log: $server_log)"

app="$build/src/app/quorvel"
if ! $headless; then
  echo "Open a topic in the running app: $build/src/server/quorvel-server push send --gateway $QUORVEL_PUSH_URL --all --topic 1001 --section 1 --title 新手必读 --db $db"
  echo
  echo "Opening Quorvel (close its window to stop the server)."
  "$app" "$@"
else
  tour="$data/tour"
  rm -rf "$tour"
  echo
  echo "No display: touring the app headless, one picture per screen, into $tour:"
  if ! QT_QPA_PLATFORM=offscreen "$app" --tour "$tour" "$@" 2>"$data/tour.log"; then
    echo "The tour stopped early:" >&2
    grep '^tour:' "$data/tour.log" >&2 || tail -n 20 "$data/tour.log" >&2
    exit 1
  fi
  echo
  echo "To see the window itself, run this on a display, or under a virtual one:"
  echo "  xvfb-run -s '-screen 0 800x900x24' scripts/run.sh"
fi
