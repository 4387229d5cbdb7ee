# What the instruction counts of a virtual unit need beside the unit itself. Read by script/machine.
# shellcheck shell=bash disable=SC2154

# Builds the benchmarks for ARM, ours against musl as the product is, pugixml's with the library of
# Debian, and packs them over the unit's files, without the recorders. Adds to `parts`.
prepare_machine_bench() {
  local build=$root/build/arm-bench extra=$root/build/machine/bench
  local board=${parts[1]} cross=/usr/arm-linux-gnueabihf/lib
  need_packages libpugixml-dev
  cmake -S "$root" --preset arm-musl -B "$build" -DONU_BENCH=ON >"$root/build/arm-bench.log"
  cmake --build "$build" --target static_floor spawn_cost machine_xml >>"$root/build/arm-bench.log"
  rm -rf "$extra"
  mkdir -p "$extra"/{bench,bin,lib}
  # Only the header of this machine's package and the library of the board's.
  arm-linux-gnueabihf-g++ -std=c++17 -Os -w -Wno-psabi -DONU_PEER -D_FILE_OFFSET_BITS=64 -I "$root" \
    "$root"/bench/{machine_xml,xml_documents}.cc -idirafter /usr/include \
    "$board/peers/libpugixml.so.1" -o "$extra/bench/machine_pugixml"
  cp "$build"/{static_floor,spawn_cost,machine_xml} "$root/bench/counters.sh" "$extra/bench/"
  cp -L "$board/peers/libpugixml.so.1" "$cross"/lib{stdc++.so.6,m.so.6,gcc_s.so.1} "$extra/lib/"
  # The unit's real shell; clish answers at once.
  ln -s busybox "$extra/bin/sh"
  cp "$build/static_floor" "$extra/bin/clish"
  "$root/sim/machine/image" "$board" "$root/build/machine/tree" "$root/build/machine/bench-image" \
    "$extra"
  parts=(--board "$board" --image "$root/build/machine/bench-image")
}
