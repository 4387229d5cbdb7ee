#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace onu {

// Where the commands that work on an uploaded file expect it.
inline constexpr char kUploadPath[] = "/tmp/recFile";

// Takes the first file out of a multipart/form-data body as the body arrives, in constant memory.
//
// The body starts with its boundary line. The first "filename=" anywhere behind it begins the file,
// also one in the value of another field; the data starts after the next empty line and runs to the
// line end that is followed by the boundary. Without any, the file is empty. A boundary line is
// compared by its first 100 bytes.
class UploadReader {
 public:
  using NameArea = std::array<char, 256>;

  // Writes the data to the descriptor `target` and the file's stored name to `area`; both belong to
  // the caller and outlive the reader.
  UploadReader(int target, NameArea& area) : target_(target), area_(area) {}

  // Reads exactly `length` bytes from the descriptor `source`. False when it ends before, or when
  // the target cannot be written; what was taken until then stays in the target.
  bool read(int source, std::uint32_t length);

 private:
  enum class State { kBoundary, kField, kFileName, kHeader, kData, kDone };

  static constexpr std::size_t kBlock = 0x8000;
  static constexpr std::size_t kBoundaryMax = 100;
  static constexpr std::size_t kDelimiterMax = 2 + kBoundaryMax;  // CR LF and the boundary

  std::size_t scan(std::string_view input);
  void takeHeader(char c);
  void takeBoundary(char c);
  void takeFileName(char c);
  bool completes(std::string_view pattern, char c);
  std::size_t takeData(std::string_view input);
  void write(std::string_view data);

  int target_;
  NameArea& area_;
  State state_ = State::kBoundary;
  std::array<char, kDelimiterMax> delimiter_{'\r', '\n'};
  std::size_t delimiterSize_ = 2;
  std::size_t boundarySize_ = 0;  // of the whole line, also where it is longer than what is kept
  std::size_t matched_ = 0;       // bytes of the text that ends the current state
  std::size_t nameEnd_ = 0;
  bool failed_ = false;
};

}  // namespace onu
