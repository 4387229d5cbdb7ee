// A heap copy that ends with its allocation, so that any read behind it is found.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace onu::fuzz {

struct FreeBuffer {
  void operator()(char* p) const { std::free(p); }
};
using Buffer = std::unique_ptr<char, FreeBuffer>;

inline Buffer copyOf(const void* data, std::size_t size) {
  Buffer copy(static_cast<char*>(std::malloc(size)));
  if (size != 0) {
    std::memcpy(copy.get(), data, size);
  }
  return copy;
}

}  // namespace onu::fuzz
