# shellcheck shell=bash
# The peer the server benchmark compares against: nginx (Debian's nginx-light) serving fixed
# answer files at the server's paths, in a folder of its own with a generated configuration
# (its own prefix, pid, logs and temporary folders; no access log; a free loopback port).
# Sourced by run.sh.
#
#   nginx_start FOLDER ANSWERS   # sets NGINX_ORIGIN ("http://127.0.0.1:PORT")
#   nginx_stop                   # safe twice, or before a start
#
# ANSWERS holds, per endpoint, <endpoint>.body (the answer's bytes) and <endpoint>.type (its
# Content-Type); GET /api/<endpoint> with any query answers them.

readonly NGINX=/usr/sbin/nginx
readonly NGINX_START_SECONDS=10
readonly NGINX_POLL_SECONDS=0.1
readonly NGINX_WORKER_CONNECTIONS=1024
# Keep-alive connections are never closed for their request count, as the server never does.
readonly NGINX_KEEPALIVE_REQUESTS=100000000

NGINX_PID=""
NGINX_ORIGIN=""

nginx_start() {
  local folder=$1 answers=$2
  local port locations="" body endpoint
  port=$(free_port)
  mkdir -p "$folder/temp"
  for body in "$answers"/*.body; do
    endpoint=$(basename "$body" .body)
    locations+="        location = /api/$endpoint { default_type \"$(cat "$answers/$endpoint.type")\"; alias $body; }"$'\n'
  done
  # A static server set up as one would for production: sendfile, open files cached.
  cat >"$folder/nginx.conf" <<EOF
worker_processes auto;
daemon off;
pid $folder/nginx.pid;
error_log $folder/error.log warn;
events { worker_connections $NGINX_WORKER_CONNECTIONS; }
http {
    access_log off;
    server_tokens off;
    sendfile on;
    tcp_nopush on;
    tcp_nodelay on;
    open_file_cache max=16;
    keepalive_requests $NGINX_KEEPALIVE_REQUESTS;
    client_body_temp_path $folder/temp/body;
    proxy_temp_path $folder/temp/proxy;
    fastcgi_temp_path $folder/temp/fastcgi;
    uwsgi_temp_path $folder/temp/uwsgi;
    scgi_temp_path $folder/temp/scgi;
    server {
        listen 127.0.0.1:$port;
$locations    }
}
EOF
  "$NGINX" -p "$folder" -c "$folder/nginx.conf" -e "$folder/error.log" &
  NGINX_PID=$!
  NGINX_ORIGIN="http://127.0.0.1:$port"
  local deadline=$((SECONDS + NGINX_START_SECONDS))
  while ((SECONDS < deadline)); do
    curl -sf -o /dev/null "$NGINX_ORIGIN/api/$endpoint" && return 0
    if ! kill -0 "$NGINX_PID" 2>/dev/null; then
      echo "nginx did not start:" >&2
      cat "$folder/error.log" >&2
      return 1
    fi
    sleep "$NGINX_POLL_SECONDS"
  done
  echo "nginx did not answer on $NGINX_ORIGIN in $NGINX_START_SECONDS s" >&2
  return 1
}

nginx_stop() {
  if [[ -n "$NGINX_PID" ]]; then
    kill -TERM "$NGINX_PID" 2>/dev/null || true
    wait "$NGINX_PID" 2>/dev/null || true
    NGINX_PID=""
  fi
}
