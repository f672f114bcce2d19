#!/usr/bin/env bash
# Builds everything, starts the local forum server with its demo data, and shows the forum
# through the client. Options are passed on to the client window when there is one.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/build.sh"
build="${QUORVEL_BUILD_DIR:-$root/build}"

data="${XDG_DATA_HOME:-$HOME/.local/share}/quorvel"
mkdir -p "$data"
port="${QUORVEL_PORT:-8080}"
server_log="$data/server.log"

"$build/src/server/quorvel-server" --port "$port" --db "$data/demo-forum.sqlite" >"$server_log.out" 2>"$server_log" &
server_pid=$!
trap 'kill "$server_pid" 2>/dev/null || true; wait "$server_pid" 2>/dev/null || true' EXIT

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
echo "Open a topic in the running app: $build/src/server/quorvel-server push send --gateway $QUORVEL_PUSH_URL --all --topic 1001 --section 1 --title 新手必读 --db $data/demo-forum.sqlite"
echo

cli="$build/src/tools/cli/quorvel-cli"
"$cli" ads
echo
"$cli" boards
echo
first_board=$("$cli" boards --json | grep -m1 '"sectionid"' | grep -o '[0-9]\+')
"$cli" top "$first_board"
echo
"$cli" topics "$first_board"
echo

# The window: the first board, as the home screen opens it; from it a topic, the composer
# and back. Without a display the window is drawn offscreen and saved as a picture instead.
app="$build/src/app/quorvel"
if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
  echo "Opening board $first_board in the Quorvel window (close it to stop the server)."
  "$app" --board "$first_board" "$@"
else
  shot="$data/board-$first_board.png"
  QT_QPA_PLATFORM=offscreen "$app" --board "$first_board" --screenshot "$shot" "$@" 2>/dev/null
  echo "No display: the window for board $first_board was drawn offscreen to $shot"
fi
