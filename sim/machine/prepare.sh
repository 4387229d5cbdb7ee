# What script/machine and script/replay, which have read script/common.sh, need before a virtual
# unit can start. Sets `parts`, the words that tell Python where the parts lie.
# shellcheck shell=bash disable=SC2154

machine_packages="qemu-system-arm device-tree-compiler cpio kmod busybox-static curl python3
  g++-arm-linux-gnueabihf"

# Builds what goes onto a unit and packs it. Ends with status 77 where a part cannot be had.
prepare_machine() {
  local board=${XDG_CACHE_HOME:-$HOME/.cache}/onu-machine/board tree=$root/build/machine/tree
  echo "Building the programs for ARM"
  # shellcheck disable=SC2086 # lists of names
  need_packages $build_packages $machine_packages || {
    echo "skipped: virtual unit: a package cannot be installed"
    exit 77
  }
  "$root/script/musl-toolchain" arm || exit
  build_preset arm-musl
  "$root/sim/machine/board" "$board" || exit
  rm -rf "$tree"
  mkdir -p "$tree"
  DESTDIR=$tree cmake --install "$root/build/arm-musl" --strip >/dev/null
  "$root/sim/machine/image" "$board" "$tree" "$root/build/machine/image"
  # shellcheck disable=SC2034 # for those that read this file
  parts=(--board "$board" --image "$root/build/machine/image")
}
