# Shared by the scripts of this folder: where the tree is, and what a fresh machine lacks.
# shellcheck shell=bash
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages="g++ cmake ninja-build"
unit_packages="bubblewrap busybox-static libubootenv-tool"
test_packages="libgtest-dev python3"

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

# Configures and builds the preset, saying little when all goes well.
build_preset() {
  local preset=$1
  cd "$root"
  cmake --preset "$preset" >"/tmp/onu-$preset.log" 2>&1 &&
    cmake --build --preset "$preset" >>"/tmp/onu-$preset.log" 2>&1 || {
    cat "/tmp/onu-$preset.log" >&2
    return 1
  }
}
