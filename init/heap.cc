// malloc and its kin for programs that live a few milliseconds and have one thread: the executables
// of a unit are linked with this instead of the C library's heap. That one prepares for long lives
// and many threads, with more system calls than the rest of a request makes.
//
// Blocks lie one after another, first in a static area, which takes no memory until it is touched,
// then in areas of the kernel's. A freed block is used again once all later ones are freed as well:
// requests free their memory in the reverse order, more or less.

#include <sys/mman.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kAreaSize = std::size_t{256} * 1024;
constexpr std::size_t kPageSize = 4096;
constexpr std::size_t kFreed = 1;  // in a block's size

// In front of each block's bytes, which inherit its alignment.
struct alignas(std::max_align_t) Block {
  Block* before;     // null for the first of an area
  std::size_t size;  // with this head, a multiple of it; kFreed added when the block is free
};

struct alignas(std::max_align_t) Area {
  Area* before;
  Block* last;  // null while the area is empty
  char* next;   // where the next block begins
  char* end;
};

alignas(Block) char g_bytes[kAreaSize];
Area g_first = {nullptr, nullptr, g_bytes, g_bytes + sizeof(g_bytes)};
Area* g_area = &g_first;

std::size_t roundUp(std::size_t size, std::size_t step) { return (size + step - 1) / step * step; }

Block* blockOf(void* bytes) { return static_cast<Block*>(bytes) - 1; }

std::size_t roomLeft(const Area& area) { return static_cast<std::size_t>(area.end - area.next); }

// The size of a block for `size` bytes; 0 where no memory could hold it.
std::size_t blockSize(std::size_t size) {
  return size > PTRDIFF_MAX - kAreaSize ? 0 : sizeof(Block) + roundUp(size, sizeof(Block));
}

// Makes a new area with room for a block of `size` the one to take from. False without memory.
bool addArea(std::size_t size) {
  const std::size_t length =
      size > kAreaSize - sizeof(Area) ? roundUp(sizeof(Area) + size, kPageSize) : kAreaSize;
  void* const memory =
      ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    return false;
  }
  char* const bytes = static_cast<char*>(memory);
  Area* const area = static_cast<Area*>(memory);
  *area = {g_area, nullptr, bytes + sizeof(Area), bytes + length};
  g_area = area;
  return true;
}

// Takes the free blocks off the end, and the areas that become empty by it.
void takeBack() {
  for (;;) {
    while (g_area->last != nullptr && (g_area->last->size & kFreed) != 0) {
      g_area->next = reinterpret_cast<char*>(g_area->last);
      g_area->last = g_area->last->before;
    }
    if (g_area->last != nullptr || g_area == &g_first) {
      return;
    }
    Area* const empty = g_area;
    g_area = empty->before;
    ::munmap(empty, static_cast<std::size_t>(empty->end - reinterpret_cast<char*>(empty)));
  }
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  const std::size_t whole = blockSize(size);
  if (whole == 0 || (roomLeft(*g_area) < whole && !addArea(whole))) {
    errno = ENOMEM;
    return nullptr;
  }
  Block* const block = reinterpret_cast<Block*>(g_area->next);
  *block = {g_area->last, whole};
  g_area->last = block;
  g_area->next += whole;
  return block + 1;
}

void free(void* bytes) {
  if (bytes == nullptr) {
    return;
  }
  Block* const block = blockOf(bytes);
  if ((block->size & kFreed) != 0) {
    std::abort();
  }
  block->size |= kFreed;
  if (block == g_area->last) {
    takeBack();
  }
}

void* calloc(std::size_t count, std::size_t size) {
  std::size_t whole = 0;
  if (__builtin_mul_overflow(count, size, &whole)) {
    errno = ENOMEM;
    return nullptr;
  }
  void* const bytes = malloc(whole);
  return bytes == nullptr ? nullptr : std::memset(bytes, 0, whole);
}

void* realloc(void* bytes, std::size_t size) {
  if (bytes == nullptr) {
    return malloc(size);
  }
  Block* const block = blockOf(bytes);
  const std::size_t whole = blockSize(size);
  if (whole != 0 && block == g_area->last &&
      whole <= static_cast<std::size_t>(g_area->end - reinterpret_cast<char*>(block))) {
    block->size = whole;
    g_area->next = reinterpret_cast<char*>(block) + whole;
    return bytes;
  }
  if (whole != 0 && whole <= block->size) {
    return bytes;
  }
  void* const moved = malloc(size);
  if (moved != nullptr) {
    std::memcpy(moved, bytes, block->size - sizeof(Block));
    free(bytes);
  }
  return moved;
}

}  // extern "C"
