# shellcheck shell=bash disable=SC2034  # sets globals the sourcing script reads
# Starting quorvel-server processes in the background and stopping them. Sourced:
#
#   source scripts/lib/forum-servers.sh
#   forum_server_start "$binary" "$log" --port 0 --db "$db"   # sets FORUM_SERVER_ROOT
#   forum_servers_stop                                         # every one started; safe twice

readonly FORUM_SERVER_START_SECONDS=120  # a new PostgreSQL database is seeded on first start
readonly FORUM_SERVER_POLL_SECONDS=0.1

FORUM_SERVER_PIDS=()
FORUM_SERVER_ROOT=""

# A port free on loopback right now.
free_port() {
  python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# forum_server_start BINARY LOG OPTION...: stdout goes to LOG.out, the request log to LOG.
# Returns once the server names its API root (in FORUM_SERVER_ROOT), or fails with its log.
forum_server_start() {
  local binary=$1 log=$2
  shift 2
  "$binary" "$@" >"$log.out" 2>"$log" &
  local pid=$!
  FORUM_SERVER_PIDS+=("$pid")
  local deadline=$((SECONDS + FORUM_SERVER_START_SECONDS))
  while ((SECONDS < deadline)); do
    if FORUM_SERVER_ROOT=$(grep -s -o -m 1 'http://[^ ]*/api/' "$log.out"); then
      return 0
    fi
    if ! kill -0 "$pid" 2>/dev/null; then
      echo "quorvel-server $* did not start:" >&2
      tail -n 20 "$log" >&2
      return 1
    fi
    sleep "$FORUM_SERVER_POLL_SECONDS"
  done
  echo "quorvel-server $* did not name its address in ${FORUM_SERVER_START_SECONDS} s" >&2
  return 1
}

forum_servers_stop() {
  local pid
  for pid in "${FORUM_SERVER_PIDS[@]}"; do
    kill -TERM "$pid" 2>/dev/null || true
  done
  for pid in "${FORUM_SERVER_PIDS[@]}"; do
    wait "$pid" 2>/dev/null || true
  done
  FORUM_SERVER_PIDS=()
}
