// The XML tree against its peers, and how its cost grows.
//
// Every run copies the input first, since some parse in place: all pay for it alike. The table
// behind the benchmarks puts ours next to pugixml, from runs that take turns, the fastest of each
// counting.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "bench/xml_documents.h"
#include "bench/xml_peers.h"
#include "xml/document.h"

namespace {

struct Size {
  const char* name;
  std::size_t bytes;
};
constexpr Size kSizes[] = {{"2KiB", 2048}, {"20KiB", 20480}, {"1MiB", 1048576}};

class Input {
 public:
  explicit Input(std::string text) : text_(std::move(text)), copy_(text_.size() + 1) {}
  char* fresh() {
    std::memcpy(copy_.data(), text_.data(), text_.size() + 1);
    return copy_.data();
  }
  std::size_t size() const { return text_.size(); }

 private:
  std::string text_;
  std::vector<char> copy_;
};

void runPeer(benchmark::State& state, ParseFunction run, std::size_t bytes) {
  Input input(settingsFile(bytes));
  for (auto _ : state) {
    if (!run(input.fresh(), input.size())) {
      state.SkipWithError("not accepted");
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
}

std::size_t heapInUse() {
  struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

// Heap a parsed document holds, its input included, for each byte of input.
void heapPerByte(benchmark::State& state) {
  std::string text = settingsFile(static_cast<std::size_t>(state.range(0)));
  std::size_t held = 0;
  for (auto _ : state) {
    std::size_t before = heapInUse();
    auto* buffer = static_cast<char*>(std::malloc(text.size()));
    std::memcpy(buffer, text.data(), text.size());
    onu::xml::Document document(onu::xml::parseStr(buffer, text.size()));
    document->len = -1;
    held = heapInUse() - before;
  }
  state.counters["heap_per_byte"] = static_cast<double>(held) / static_cast<double>(text.size());
}

using Shape = std::string (*)(std::size_t n);

void parseShape(benchmark::State& state, Shape shape, std::size_t base) {
  Input input(shape(base * static_cast<std::size_t>(state.range(0))));
  for (auto _ : state) {
    onu::xml::freeDoc(onu::xml::parseStr(input.fresh(), input.size()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
}

void writeShape(benchmark::State& state, Shape shape, std::size_t base) {
  Input input(shape(base * static_cast<std::size_t>(state.range(0))));
  onu::xml::Document document(onu::xml::parseStr(input.fresh(), input.size()));
  for (auto _ : state) {
    std::free(onu::xml::toXml(document.node()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * input.size()));
}

// Children of names of their own are added behind each other and cut from the last one on.
void editChildren(benchmark::State& state) {
  std::vector<std::string> names(static_cast<std::size_t>(state.range(0)) * 500);
  for (std::size_t i = 0; i != names.size(); ++i) {
    names[i] = "e" + std::to_string(i);
  }
  for (auto _ : state) {
    char root[] = "<a/>";
    onu::xml::Document document(onu::xml::parseStr(root, sizeof(root) - 1));
    std::vector<onu::xml::XmlNode*> added;
    for (const std::string& name : names) {
      added.push_back(onu::xml::addChild(document.node(), name.c_str(), 0));
    }
    for (; !added.empty(); added.pop_back()) {
      onu::xml::cut(added.back());
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * 2 * names.size()));
}

double secondsPerRun(ParseFunction run, Input& input, std::size_t times) {
  auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < times; ++i) {
    benchmark::DoNotOptimize(run(input.fresh(), input.size()));
  }
  std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  return taken.count() / static_cast<double>(times);
}

void printRatio(const char* what, const Size& size, ParseFunction ours, ParseFunction theirs) {
  Input input(settingsFile(size.bytes));
  std::size_t times = 2000000 / size.bytes + 1;
  double best[2] = {1e9, 1e9};
  for (int turn = 0; turn < 200; ++turn) {
    best[0] = std::min(best[0], secondsPerRun(ours, input, times));
    best[1] = std::min(best[1], secondsPerRun(theirs, input, times));
  }
  auto bytes = static_cast<double>(input.size());
  std::printf("%-10s %-6s ours %6.3f GB/s  pugixml %6.3f GB/s  ratio %.2f\n", what, size.name,
              bytes / best[0] / 1e9, bytes / best[1] / 1e9, best[1] / best[0]);
}

void registerAll() {
  for (const Size& size : kSizes) {
    for (std::size_t i = 0; i < kPeerCount; ++i) {
      const Peer& peer = kPeers[i];
      std::string name = std::string(size.name) + "/" + peer.name;
      benchmark::RegisterBenchmark(("parse/" + name).c_str(), runPeer, peer.parse, size.bytes);
      if (peer.roundTrip == nullptr) {
        continue;
      }
      benchmark::RegisterBenchmark(("round_trip/" + name).c_str(), runPeer, peer.roundTrip,
                                   size.bytes);
    }
  }
  benchmark::RegisterBenchmark("heap", heapPerByte)->Arg(2048)->Arg(20480)->Arg(1048576);
  benchmark::RegisterBenchmark("grow_edit", editChildren)->RangeMultiplier(2)->Range(1, 16);
  constexpr struct {
    const char* name;
    Shape shape;
    std::size_t base;
  } kShapes[] = {{"same_names", sameNames, 500},        {"other_names", otherNames, 500},
                 {"near_names", nearNames, 500},        {"nested", nested, 500},
                 {"text_pieces", textPieces, 500},      {"attributes", manyAttributes, 500},
                 {"document_types", documentTypes, 500}};
  for (const auto& shape : kShapes) {
    std::string name = shape.name;
    benchmark::RegisterBenchmark(("grow_parse/" + name).c_str(), parseShape, shape.shape,
                                 shape.base)
        ->RangeMultiplier(2)
        ->Range(1, 16);
    benchmark::RegisterBenchmark(("grow_write/" + name).c_str(), writeShape, shape.shape,
                                 shape.base)
        ->RangeMultiplier(2)
        ->Range(1, 16);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Memory once touched stays with the process: the kernel's price of first touching it, which
  // starts at some size, would hide how the cost of the work grows. It holds for all alike.
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  registerAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  for (const Size& size : kSizes) {
    printRatio("parse", size, kPeers[0].parse, kPeers[1].parse);
    printRatio("round trip", size, kPeers[0].roundTrip, kPeers[1].roundTrip);
  }
  return 0;
}
