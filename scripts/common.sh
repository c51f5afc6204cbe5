# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# What the scripts share: where the repository is, the packages, and the builds. Sourced, never run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

say() { printf '==> %s\n' "$*"; }

die() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

# packages_for PURPOSE…: the packages that scripts/packages lists for these purposes.
packages_for() {
  awk -v wanted=" $* " '!/^#/ && NF == 2 && index(wanted, " " $1 " ") { print $2 }' "$root/scripts/packages"
}

# Reads package names, prints those that aren't installed.
only_missing() {
  local package status
  while read -r package; do
    # A package that dpkg has never heard of is an error to it, and simply missing to us.
    status=$(dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null || true)
    grep -qx installed <<<"$status" || printf '%s\n' "$package"
  done
}

is_debian_like() {
  command -v apt-get >/dev/null && command -v dpkg-query >/dev/null && [[ -r /etc/os-release ]] \
    && (. /etc/os-release && [[ " ${ID:-} ${ID_LIKE:-} " == *" debian "* ]])
}

as_root() {
  if [[ $(id -u) -eq 0 ]]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    die "installing packages needs root, and there is no sudo; as root run: apt-get install $missing"
  fi
}

apt_install() {
  # shellcheck disable=SC2086 # one word per package
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y -o DPkg::Lock::Timeout=300 \
    -o Dpkg::Use-Pty=0 install --no-install-recommends $missing </dev/null
}

# need_packages PURPOSE…: installs what is missing; quick when nothing is.
need_packages() {
  if [[ -n ${BRINDLE_SKIP_PACKAGES:-} ]]; then
    return
  fi
  if ! is_debian_like; then
    {
      printf 'This is not Debian or a relative of it, so nothing was installed. Needed are the things\n'
      printf 'that Debian 12 calls:\n'
      packages_for "$@" | sed 's/^/  /'
      printf 'Once they are there, run this again with BRINDLE_SKIP_PACKAGES=1 set.\n'
    } >&2
    exit 1
  fi
  missing=$(packages_for "$@" | only_missing | tr '\n' ' ')
  if [[ -z $missing ]]; then
    return
  fi
  say "Installing packages: $missing"
  mkdir -p build
  local log=build/packages.log
  # Lists of packages age: they are fetched anew only when the ones at hand don't do.
  if ! apt_install >"$log" 2>&1; then
    if ! { as_root apt-get -qq -o DPkg::Lock::Timeout=300 update </dev/null && apt_install; } >"$log" 2>&1; then
      tail -n 20 "$log" >&2
      die "the packages could not be installed; the whole account is in $root/$log"
    fi
  fi
}

# build_preset PRESET [TARGET…]: configures when needed and builds; ninja decides what is stale.
build_preset() {
  local preset=$1
  shift
  say "Building ($preset)"
  mkdir -p build
  if ! cmake --preset "$preset" >"build/configure-$preset.log" 2>&1; then
    cat "build/configure-$preset.log" >&2
    die "configuring the $preset build failed"
  fi
  cmake --build --preset "$preset" ${1:+--target "$@"}
}
