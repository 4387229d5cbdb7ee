# Shared by the scripts of this folder: where the tree is, and what a fresh machine lacks.
# shellcheck shell=bash
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# shellcheck disable=SC2034 # for the scripts that read this one
build_packages="g++ cmake ninja-build"
# shellcheck disable=SC2034
unit_packages="bubblewrap busybox-static libubootenv-tool"
# shellcheck disable=SC2034
test_packages="libgtest-dev python3"
# shellcheck disable=SC2034 # Google Benchmark, and the peers
bench_packages="libbenchmark-dev pkg-config libpugixml-dev librapidxml-dev libtinyxml2-dev
  libmxml-dev libexpat1-dev libxml2-dev"

# Installs those of the Debian packages that are missing, with sudo where we are not root.
need_packages() {
  local package missing=() as_root=()
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q ' installed$' ||
      missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "Installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
    --no-install-recommends "${missing[@]}" >/dev/null
}

# Runs a command whose output goes to the file LOG; where it fails, shows that and ends the shell.
quietly() {
  local log=$1
  shift
  "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
}

# Configures and builds the preset; silent when all goes well.
build_preset() (
  cd "$root" && mkdir -p build || exit 1
  quietly "build/$1.log" cmake --preset "$1"
  quietly "build/$1.log" cmake --build --preset "$1"
)

# Builds the release preset's programs and the optical module, without tests unless script/test has
# configured them: "progress" shows what is compiled, "quiet" only what fails.
build_unit() (
  cd "$root" && mkdir -p build || exit 1
  tests=$(sed -n 's/^ONU_TESTS:BOOL=//p' build/release/CMakeCache.txt 2>/dev/null || true)
  quietly build/release.log cmake --preset release -DONU_TESTS="${tests:-OFF}"
  compile=(cmake --build --preset release --target onu-cgi onu-init optical-module)
  [ "$1" = progress ] || compile=(quietly build/release.log "${compile[@]}")
  "${compile[@]}"
)
