// A stack of plain values for working state: the first few need no heap.
#pragma once

#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "xml/memory.h"

namespace xml::internal {

template <typename T, size_t kInline>
class GrowStack {
  static_assert(std::is_trivially_copyable_v<T>, "moved with memcpy");

 public:
  GrowStack() = default;
  GrowStack(const GrowStack&) = delete;
  GrowStack& operator=(const GrowStack&) = delete;
  ~GrowStack() {
    if (data_ != inlineData()) std::free(data_);
  }

  bool empty() const { return size_ == 0; }
  size_t size() const { return size_; }
  T& operator[](size_t i) { return data_[i]; }
  T& top() { return data_[size_ - 1]; }
  T* data() { return data_; }

  void pop() { --size_; }
  void resize(size_t size) { size_ = size; }  // to at most the reserved size

  // The new top, uninitialised.
  T& push() {
    if (size_ == capacity_) reserve(1);
    return data_[size_++];
  }

  // Makes room for `more` values behind the top.
  void reserve(size_t more) {
    if (capacity_ - size_ >= more) return;
    size_t capacity = 2 * capacity_ + more;
    bool wasInline = data_ == inlineData();
    auto* data = static_cast<T*>(reallocate(wasInline ? nullptr : data_, capacity * sizeof(T)));
    if (wasInline && size_ != 0) std::memcpy(data, inlineData(), size_ * sizeof(T));
    data_ = data;
    capacity_ = capacity;
  }

 private:
  T* inlineData() { return reinterpret_cast<T*>(storage_); }

  size_t size_ = 0;
  size_t capacity_ = kInline;
  T* data_ = inlineData();
  alignas(T) unsigned char storage_[kInline * sizeof(T)];
};

}  // namespace xml::internal
