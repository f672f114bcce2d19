# shellcheck shell=bash
# A local PostgreSQL cluster from Debian's packages in a folder of its own, on loopback only,
# trusting local connections. Sourced by scripts that need a database server:
#
#   source scripts/lib/local-postgres.sh
#   local_pg_start "$folder" "$port"     # initdb on first use, then start
#   local_pg_create_database forum       # unless it exists
#   url=$(local_pg_url forum)            # postgresql://quorvel@127.0.0.1:PORT/forum
#   local_pg_stop                        # safe to call twice, or before a start
#
# PostgreSQL refuses to run as root, so as root the cluster runs as the "postgres" user,
# which then owns the folder.

readonly LOCAL_PG_USER=quorvel
readonly LOCAL_PG_SERVICE_USER=postgres
readonly LOCAL_PG_MAX_CONNECTIONS=200
readonly LOCAL_PG_START_SECONDS=60

LOCAL_PG_FOLDER=""
LOCAL_PG_PORT=""
LOCAL_PG_RUNNING=false

# The newest installed server's binary folder.
local_pg_binaries() {
  local bin
  bin=$(printf "%s\n" /usr/lib/postgresql/*/bin | sort -V | tail -n 1)
  if [[ -z "$bin" || ! -x "$bin/initdb" ]]; then
    echo "no PostgreSQL server under /usr/lib/postgresql (scripts/setup.sh installs postgresql)" >&2
    return 1
  fi
  echo "$bin"
}

# Runs a server tool, as the service user when we are root.
local_pg_tool() {
  local tool=$1
  shift
  local program
  program="$(local_pg_binaries)/$tool"
  if [[ $(id -u) -eq 0 ]]; then
    runuser -u "$LOCAL_PG_SERVICE_USER" -- "$program" "$@"
  else
    "$program" "$@"
  fi
}

# Runs a client tool (psql, createdb) against the running cluster as the cluster's user.
local_pg_client() {
  local tool=$1
  shift
  "$(local_pg_binaries)/$tool" -h 127.0.0.1 -p "$LOCAL_PG_PORT" -U "$LOCAL_PG_USER" "$@"
}

# local_pg_start FOLDER PORT: makes the cluster in FOLDER unless it is there, and starts it.
local_pg_start() {
  LOCAL_PG_FOLDER=$1
  LOCAL_PG_PORT=$2
  mkdir -p "$LOCAL_PG_FOLDER"
  if [[ $(id -u) -eq 0 ]]; then
    chown "$LOCAL_PG_SERVICE_USER:" "$LOCAL_PG_FOLDER"
    if ! runuser -u "$LOCAL_PG_SERVICE_USER" -- test -w "$LOCAL_PG_FOLDER"; then
      echo "the $LOCAL_PG_SERVICE_USER user cannot reach $LOCAL_PG_FOLDER (a parent folder is closed to it);" \
        "choose a folder it can reach" >&2
      return 1
    fi
  fi
  if [[ ! -f "$LOCAL_PG_FOLDER/data/PG_VERSION" ]]; then
    local_pg_tool initdb -D "$LOCAL_PG_FOLDER/data" -U "$LOCAL_PG_USER" --auth=trust -E UTF8 \
      >"$LOCAL_PG_FOLDER/initdb.log" 2>&1 || {
      cat "$LOCAL_PG_FOLDER/initdb.log" >&2
      return 1
    }
  fi
  # synchronous_commit off: a crash may lose the last moments of a local forum, never corrupt it.
  local options="-p $LOCAL_PG_PORT -k '$LOCAL_PG_FOLDER' -c listen_addresses=127.0.0.1"
  options+=" -c max_connections=$LOCAL_PG_MAX_CONNECTIONS -c synchronous_commit=off"
  if ! local_pg_tool pg_ctl -D "$LOCAL_PG_FOLDER/data" -o "$options" -l "$LOCAL_PG_FOLDER/server.log" \
    -t "$LOCAL_PG_START_SECONDS" -w start >/dev/null; then
    echo "PostgreSQL did not start; its log:" >&2
    tail -n 20 "$LOCAL_PG_FOLDER/server.log" >&2
    return 1
  fi
  LOCAL_PG_RUNNING=true
}

# local_pg_create_database NAME: creates the database unless it exists.
local_pg_create_database() {
  local name=$1
  local exists
  exists=$(local_pg_client psql -d postgres -tAc "SELECT 1 FROM pg_database WHERE datname = '$name'")
  [[ "$exists" == 1 ]] || local_pg_client createdb "$name"
}

local_pg_url() {
  echo "postgresql://$LOCAL_PG_USER@127.0.0.1:$LOCAL_PG_PORT/$1"
}

# Fast shutdown: open connections are cut, nothing committed is lost.
local_pg_stop() {
  if $LOCAL_PG_RUNNING; then
    LOCAL_PG_RUNNING=false
    local_pg_tool pg_ctl -D "$LOCAL_PG_FOLDER/data" -m fast -w stop >/dev/null
  fi
}
