#!/usr/bin/env bash
# Load figures for quorvel-server against nginx serving the very same answer bytes, in one
# run: wrk with 64 connections on GetTopics and TopicDetail, sent as the client sends them,
# (a) on SQLite with one server process, (b) on a local PostgreSQL with two, the connections
# split between them (nginx then gets the same two halves). Caches are warmed first. Prints
# a table; fails only when something does not run, never for a missed target.
#
#   bench/server/run.sh
set -euo pipefail
shopt -s inherit_errexit
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)

readonly CONNECTIONS=64
readonly ROUNDS=2
readonly ROUND_SECONDS=5  # 10 s of load on each side in all
readonly WARM_SECONDS=2
readonly ENDPOINTS=(GetTopics TopicDetail)
readonly TARGET_RATIO=0.5
readonly TARGET_P99_MS=20
readonly DATABASE=forum

"$root/scripts/build.sh" quorvel-server quorvel-bench-urls
build="${QUORVEL_BUILD_DIR:-$root/build}"
server="$build/src/server/quorvel-server"
urls_tool="$build/bench/server/quorvel-bench-urls"

# shellcheck source=SCRIPTDIR/../../scripts/lib/local-postgres.sh
source "$root/scripts/lib/local-postgres.sh"
# shellcheck source=SCRIPTDIR/../../scripts/lib/forum-servers.sh
source "$root/scripts/lib/forum-servers.sh"
# shellcheck source=SCRIPTDIR/nginx-peer.sh
source "$here/nginx-peer.sh"
# shellcheck source=SCRIPTDIR/wrk-figures.sh
source "$here/wrk-figures.sh"

# Everything of the run lives here; nginx's workers and PostgreSQL run as other users.
work=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-server-bench.XXXXXX")
chmod 755 "$work"
# shellcheck disable=SC2317  # called by the trap
finish() {
  local status=$?
  wrk_stop
  nginx_stop
  forum_servers_stop
  local_pg_stop
  if ((status == 0)); then
    rm -rf "$work"
  else
    echo "logs kept in $work" >&2
  fi
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

cores=$(nproc)
# The server takes a thread count once its HTTP layer has a pool; the processes then share
# the cores, as nginx's workers do.
server_help=$("$server" --help 2>/dev/null)
server_threads=""
threads_note="its HTTP layer takes no --threads"
if [[ "$server_help" == *--threads* ]]; then
  server_threads=$cores
  threads_note="--threads $cores split between its processes"
fi

rows=()

# measure LABEL ENDPOINT: warms both sides, then loads them in turn, ROUNDS times each, so a
# change in the machine's other load falls on both alike. Reads server_urls and nginx_urls
# (one per wrk run); adds the row.
measure() {
  local label=$1 endpoint=$2 side round
  local reports="$work/$label/$endpoint"
  for side in server nginx; do
    local -n urls="${side}_urls"
    wrk_load "$WARM_SECONDS" "$CONNECTIONS" "$reports-$side-warm" "${urls[@]}"
  done
  for ((round = 0; round < ROUNDS; round++)); do
    for side in server nginx; do
      local -n urls="${side}_urls"
      wrk_load "$ROUND_SECONDS" "$CONNECTIONS" "$reports-$side-$round" "${urls[@]}"
    done
  done
  local bytes server_figures nginx_figures round_ratios=""
  bytes=$(stat -c %s "$work/$label/answers/$endpoint.body")
  server_figures=$(wrk_figures "$ROUNDS" "$reports"-server-[0-9]*)
  nginx_figures=$(wrk_figures "$ROUNDS" "$reports"-nginx-[0-9]*)
  # The ratio of each round alone shows how much the machine's other load moved it.
  for ((round = 0; round < ROUNDS; round++)); do
    round_ratios+="${round_ratios:+/}$(ratio_of "$(wrk_figures 1 "$reports-server-$round".*)" \
      "$(wrk_figures 1 "$reports-nginx-$round".*)")"
  done
  rows+=("$label ${#server_urls[@]} $endpoint $bytes $server_figures $nginx_figures $round_ratios")
}

# ratio_of SERVER_FIGURES NGINX_FIGURES: the ratio of their rates.
ratio_of() {
  awk -v server="${1%% *}" -v nginx="${2%% *}" 'BEGIN { printf "%.2f", (nginx > 0 ? server / nginx : 0) }'
}

# url_of ENDPOINT API_ROOT: the client's request to the endpoint under that root.
url_of() {
  XDG_DATA_HOME="$work/device" "$urls_tool" "$2" | awk -v endpoint="$1" '$1 == endpoint { print $2 }'
}

# run_case LABEL PROCESSES DATABASE
run_case() {
  local label=$1 processes=$2 db=$3
  local folder="$work/$label" i endpoint
  mkdir -p "$folder/answers"
  local roots=() options=(--port 0 --analytics-port 0 --db "$db")
  if [[ -n "$server_threads" ]]; then
    options+=(--threads "$((server_threads / processes > 0 ? server_threads / processes : 1))")
  fi
  for ((i = 0; i < processes; i++)); do
    forum_server_start "$server" "$folder/server-$i.log" "${options[@]}"
    roots+=("$FORUM_SERVER_ROOT")
  done
  # nginx's answers are fetched once from the server: this first request also fills its cache.
  for endpoint in "${ENDPOINTS[@]}"; do
    local answer="$folder/answers/$endpoint" got
    got=$(curl -sS -o "$answer.body" -w '%{http_code} %{content_type}' "$(url_of "$endpoint" "${roots[0]}")")
    if [[ "${got%% *}" != 200 ]]; then
      echo "$label: $endpoint answered ${got%% *}: $(head -c 300 "$answer.body")" >&2
      return 1
    fi
    printf '%s' "${got#* }" >"$answer.type"
    for ((i = 1; i < processes; i++)); do
      if ! curl -sS "$(url_of "$endpoint" "${roots[i]}")" | cmp -s - "$answer.body"; then
        echo "$label: server processes answer $endpoint differently; nginx cannot stand in for all" >&2
        return 1
      fi
    done
  done
  nginx_start "$folder/nginx" "$folder/answers"

  for endpoint in "${ENDPOINTS[@]}"; do
    local server_urls=() nginx_urls=()
    for ((i = 0; i < processes; i++)); do
      server_urls+=("$(url_of "$endpoint" "${roots[i]}")")
      nginx_urls+=("$(url_of "$endpoint" "$NGINX_ORIGIN/api/")")
    done
    measure "$label" "$endpoint"
  done
  nginx_stop
  forum_servers_stop
}

echo "quorvel-server $(git -C "$root" describe --always --dirty)" \
  "($threads_note)" \
  "against nginx $("$NGINX" -v 2>&1 | sed 's|.*/||') (worker_processes auto)"
echo "wrk, $CONNECTIONS connections, after a ${WARM_SECONDS} s warm-up $ROUNDS rounds of ${ROUND_SECONDS} s" \
  "on each side in turn;" \
  "$cores cores, load average $(cut -d ' ' -f 1-3 /proc/loadavg) before the run"

run_case sqlite 1 "$work/forum.sqlite"
local_pg_start "$work/postgres" "$(free_port)"
local_pg_create_database "$DATABASE"
run_case postgresql 2 "$(local_pg_url "$DATABASE")"

"$here/print-table.sh" "$TARGET_RATIO" "$TARGET_P99_MS" "${rows[@]}"
