#!/usr/bin/env bash
# Installs the Debian packages the project needs, only those that are missing.
# Works as root (CI) and as a user with sudo.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql
  libssl-dev openssl zlib1g-dev libsqlite3-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  qt6-webengine-dev qt6-base-private-dev qt6-svg-dev
  fonts-noto-cjk xvfb xauth curl xdotool
  thrift-compiler libthrift-dev libboost-dev python3
  clang-14 libclang-rt-14-dev
  postgresql wrk nginx-light
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done

if ((${#missing[@]} == 0)); then
  exit 0
fi

echo "setup: installing ${missing[*]}"
sudo_cmd=()
if [[ $(id -u) -ne 0 ]]; then
  sudo_cmd=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
