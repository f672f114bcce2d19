#!/usr/bin/env bash
# Serves one forum from several processes: starts a local PostgreSQL (made on first use in
# ${QUORVEL_CLUSTER_DIR:-build/cluster}, where the forum then stays) and N quorvel-server
# processes on consecutive ports against it. Ctrl-C or SIGTERM stops them all, and so does
# any one of them stopping.
#
#   scripts/serve-cluster.sh N [--base-port P] [--pg-port Q]
#
# Server i (from 0) listens on P+i (default P 8080, the client's default address) with its
# analytics collector on P+100+i; PostgreSQL takes port Q, or a free one.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
readonly DEFAULT_BASE_PORT=8080
readonly ANALYTICS_PORT_OFFSET=100
readonly DATABASE=forum

usage() {
  echo "usage: $0 N [--base-port P] [--pg-port Q]" >&2
  exit 2
}

[[ $# -ge 1 && "$1" =~ ^[1-9][0-9]*$ ]] || usage
count=$1
shift
base_port=$DEFAULT_BASE_PORT
pg_port=""
while [[ $# -gt 0 ]]; do
  case "$1" in
    --base-port) [[ $# -ge 2 && "$2" =~ ^[0-9]+$ ]] || usage; base_port=$2; shift 2 ;;
    --pg-port) [[ $# -ge 2 && "$2" =~ ^[0-9]+$ ]] || usage; pg_port=$2; shift 2 ;;
    *) usage ;;
  esac
done

"$root/scripts/build.sh" quorvel-server quorvel-cli
build="${QUORVEL_BUILD_DIR:-$root/build}"
folder="${QUORVEL_CLUSTER_DIR:-$root/build/cluster}"
# shellcheck source=SCRIPTDIR/lib/local-postgres.sh
source "$root/scripts/lib/local-postgres.sh"
# shellcheck source=SCRIPTDIR/lib/forum-servers.sh
source "$root/scripts/lib/forum-servers.sh"

# shellcheck disable=SC2317  # called by the trap
stop_all() {
  forum_servers_stop
  local_pg_stop
}
trap stop_all EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

mkdir -p "$folder"
local_pg_start "$folder/postgres" "${pg_port:-$(free_port)}"
local_pg_create_database "$DATABASE"
db=$(local_pg_url "$DATABASE")
echo "PostgreSQL on 127.0.0.1:$LOCAL_PG_PORT, database $db (log: $folder/postgres/server.log)"

for ((i = 0; i < count; i++)); do
  log="$folder/server-$i.log"
  forum_server_start "$build/src/server/quorvel-server" "$log" --port "$((base_port + i))" \
    --analytics-port "$((base_port + ANALYTICS_PORT_OFFSET + i))" --db "$db"
  echo "server $i: $FORUM_SERVER_ROOT (log: $log)"
done

echo
echo "Every one serves the same forum; for example:"
echo "  $build/src/tools/cli/quorvel-cli --api-root $FORUM_SERVER_ROOT topics 1"
origin=${FORUM_SERVER_ROOT%/api/}
echo "  $build/src/app/quorvel --api-root $FORUM_SERVER_ROOT --push-url $origin/push \\"
echo "      --analytics-url http://127.0.0.1:$((base_port + ANALYTICS_PORT_OFFSET + count - 1))"
echo "Ctrl-C stops them all."
status=0
wait -n "${FORUM_SERVER_PIDS[@]}" || status=$?
echo "a server stopped (status $status); stopping the others" >&2
exit 1
