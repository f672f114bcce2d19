# shellcheck shell=bash
# Load from wrk (Debian's) and the figures read from its reports. Sourced by run.sh.
#
#   wrk_load SECONDS CONNECTIONS REPORT URL...
#
# puts CONNECTIONS on the URLs at once, split evenly, one wrk run per URL (so two server
# processes each get their half, and a single peer given the same URL twice gets the same
# shape), with WRK_THREADS threads in all; each run's report goes to REPORT.N. wrk_stop ends
# runs under way.
#
#   wrk_figures ROUNDS REPORT...
#
# prints "rate p50_ms p99_ms errors" for the reports of ROUNDS loads one after another: the
# rates summed over simultaneous runs and averaged over rounds, the worst of the latencies,
# and non-2xx answers plus socket errors summed.

readonly WRK_THREADS=2

WRK_PIDS=()

wrk_load() {
  local seconds=$1 connections=$2 report=$3
  shift 3
  local runs=$#
  local threads=$((WRK_THREADS / runs > 0 ? WRK_THREADS / runs : 1))
  local run=0 url pid
  for url in "$@"; do
    wrk --latency -t "$threads" -c "$((connections / runs))" -d "${seconds}s" "$url" >"$report.$run" &
    WRK_PIDS+=($!)
    run=$((run + 1))
  done
  for pid in "${WRK_PIDS[@]}"; do
    wait "$pid" || {
      echo "wrk failed on $*" >&2
      return 1
    }
  done
  WRK_PIDS=()
}

wrk_stop() {
  local pid
  for pid in "${WRK_PIDS[@]}"; do
    kill -TERM "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
  done
  WRK_PIDS=()
}

wrk_figures() {
  local rounds=$1
  shift
  awk -v rounds="$rounds" '
    function ms(text, n) {
      n = text + 0
      if (text ~ /us$/) return n / 1000
      if (text ~ /ms$/) return n
      if (text ~ /m$/) return n * 60000
      return n * 1000
    }
    function worse(a, b) { return a > b ? a : b }
    /^ +50% / { p50 = worse(p50, ms($2)) }
    /^ +99% / { p99 = worse(p99, ms($2)) }
    /^ +Socket errors:/ { errors += $4 + $6 + $8 + $10 }
    /^ +Non-2xx or 3xx responses:/ { errors += $NF }
    /^Requests\/sec:/ { rate += $2; reports++ }
    END {
      if (reports != ARGC - 1) exit 1
      printf "%.0f %.2f %.2f %d\n", rate / rounds, p50, p99, errors
    }' "$@" || {
    echo "unreadable wrk report among $*" >&2
    return 1
  }
}
