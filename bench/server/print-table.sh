#!/usr/bin/env bash
# Prints the server benchmark's table from its rows, each
#   "STORE PROCESSES ENDPOINT ANSWER_BYTES  RATE P50 P99 ERRORS (server)  RATE P50 P99 ERRORS (nginx)
#    RATIO/RATIO/... (per round)"
# with the ratio of the rates and whether the server meets the targets.
#
#   print-table.sh TARGET_RATIO TARGET_P99_MS ROW...
set -euo pipefail
target_ratio=$1
target_p99=$2
shift 2

printf '%s\n' "$@" | awk -v target_ratio="$target_ratio" -v target_p99="$target_p99" '
  BEGIN {
    format = "%-11s %5s  %-11s %6s  %9s %9s %6s %11s  %7s %7s  %7s %7s  %7s  %s\n"
    printf "\n" format, "store", "procs", "endpoint", "bytes", "server/s", "nginx/s", "ratio", "per round",
      "srv p50", "srv p99", "ngx p50", "ngx p99", "errors", "target"
    printf format, "", "", "", "", "", "", "", "", "ms", "ms", "ms", "ms", "srv/ngx", ""
  }
  {
    ratio = $9 > 0 ? $5 / $9 : 0
    missed = ""
    if (ratio < target_ratio) missed = missed " rate"
    if ($7 >= target_p99) missed = missed " p99"
    if ($8 > 0) missed = missed " errors"
    verdict = missed == "" ? "met" : "missed:" missed
    if ($12 > 0) verdict = verdict " (nginx errors: figures unsound)"
    printf format, $1, $2, $3, $4, $5, $9, sprintf("%.2f", ratio), $13, $6, $7, $10, $11, $8 "/" $12, verdict
  }
  END {
    printf "\ntargets: server/nginx >= %s with the cache warm, server p99 < %s ms\n", target_ratio, target_p99
    printf "rates: averaged over the rounds, summed over simultaneous wrk runs (two processes);"
    printf " p50 and p99: the worst of any round and run\n"
  }'
