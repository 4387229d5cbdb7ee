// What the XML tree costs on a unit, in instructions: to be run on a board whose clock counts them,
// a nanosecond each. Prints a line per document: its name, its bytes, and the instructions per byte
// of parsing it, of writing it, and of a change written back (parse, change, write, release).
//
//   machine_xml [NAME FILE]...
//
// The files come before the documents of bench/xml_documents.h. Built twice: with ONU_PEER it is
// pugixml's tree, for comparison. Each parses in place, keeps blank text and writes to memory.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "bench/xml_documents.h"

#ifdef ONU_PEER
#include <pugixml.hpp>
#else
#include "xml/xml.h"
#endif

namespace onu {
namespace {

constexpr const char* kNewText = "10.20.30.40";
constexpr std::size_t kWork = 400'000;  // bytes for each figure, in runs of which the middle counts
constexpr std::size_t kMaxRuns = 101;

#ifdef ONU_PEER
class Tree {
 public:
  Tree(char* data, std::size_t length)
      : good_(document_.load_buffer_inplace(data, length,
                                            pugi::parse_default | pugi::parse_ws_pcdata)) {}
  bool good() const { return good_; }
  // The first child's first child, which in a settings file is a value.
  void change() {
    const pugi::xml_node group = document_.document_element().first_child();
    pugi::xml_node element = group.type() == pugi::node_element ? group : group.next_sibling();
    element.text().set(kNewText);
  }
  std::size_t write() const {
    struct Text : pugi::xml_writer {
      std::string text;
      void write(const void* data, std::size_t size) override {
        text.append(static_cast<const char*>(data), size);
      }
    } text;
    document_.save(text, "", pugi::format_raw);
    return text.text.size();
  }

 private:
  pugi::xml_document document_;
  bool good_;
};
#else
class Tree {
 public:
  Tree(char* data, std::size_t length) : root_(xml::parseStr(data, length)) {}
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree() { xml::freeDoc(root_); }
  bool good() const { return root_->err[0] == '\0'; }
  void change() { xml::setText(root_->xml.child, kNewText); }
  std::size_t write() const {
    std::size_t length = 0;
    std::free(xml::toXml(&root_->xml, &length));
    return length;
  }

 private:
  xml::XmlRoot* root_;
};
#endif

double now() {
  timespec time{};
  ::clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

// The input as often as it is to be parsed, for parsing writes into it.
std::vector<std::string> copies(const std::string& text, std::size_t runs) {
  return std::vector<std::string>(runs, text);
}

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Of the runs of one document, less what asking for the time takes.
struct Costs {
  std::vector<double> parse;
  std::vector<double> write;
  std::vector<double> change;
};

Costs measure(const std::string& text, std::size_t runs) {
  Costs costs;
  for (std::string& input : copies(text, runs)) {
    const double start = now();
    Tree tree(input.data(), input.size());
    const double parsed = now();
    if (!tree.good() || tree.write() == 0) {
      std::fprintf(stderr, "machine_xml: a document is not accepted\n");
      std::exit(1);
    }
    costs.write.push_back(now() - parsed);
    costs.parse.push_back(parsed - start);
  }
  for (std::string& input : copies(text, runs)) {
    const double start = now();
    {
      Tree tree(input.data(), input.size());
      tree.change();
      static_cast<void>(tree.write());
    }
    costs.change.push_back(now() - start);
  }
  return costs;
}

void report(const std::string& name, const std::string& text) {
  std::vector<double> clock;
  for (std::size_t i = 0; i < kMaxRuns; ++i) {
    const double start = now();
    clock.push_back(now() - start);
  }
  const double clockCost = median(clock);
  Costs costs = measure(text, std::min(kMaxRuns, kWork / text.size() + 1));
  const auto perByte = [&](std::vector<double>& runs) {
    return (median(runs) - clockCost) / static_cast<double>(text.size());
  };
  std::printf("%s %zu %.2f %.2f %.2f\n", name.c_str(), text.size(), perByte(costs.parse),
              perByte(costs.write), perByte(costs.change));
}

std::string readFile(const char* path) {
  std::string text;
  if (std::FILE* const file = std::fopen(path, "rb")) {
    char block[4096];
    while (const std::size_t got = std::fread(block, 1, sizeof block, file)) {
      text.append(block, got);
    }
    std::fclose(file);
  }
  return text;
}

}  // namespace
}  // namespace onu

int main(int, char** argument) {
  for (++argument; argument[0] != nullptr && argument[1] != nullptr; argument += 2) {
    onu::report(argument[0], onu::readFile(argument[1]));
  }
  constexpr std::size_t kParts = 500;
  const std::pair<const char*, std::string> documents[] = {
      {"settings_2k", settingsFile(2048)}, {"settings_20k", settingsFile(20480)},
      {"same_names", sameNames(kParts)},   {"other_names", otherNames(kParts)},
      {"near_names", nearNames(kParts)},   {"nested", nested(kParts)},
      {"text_pieces", textPieces(kParts)}, {"attributes", manyAttributes(kParts)},
  };
  for (const auto& [name, text] : documents) {
    onu::report(name, text);
  }
  return 0;
}
