// The heap of the executables, under names of its own: this program keeps that of the C library,
// and the compiler knows nothing of what these functions promise.

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#define malloc heapMalloc
#define free heapFree
#define calloc heapCalloc
#define realloc heapRealloc
#define aligned_alloc heapAlignedAlloc
#define memalign heapMemalign
#define posix_memalign heapPosixMemalign
#define malloc_usable_size heapUsableSize
#include "init/heap.cc"  // NOLINT(bugprone-suspicious-include)

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

bool isMapped(void* block) {
  unsigned char resident = 0;
  char* const byte = static_cast<char*>(block);
  return ::mincore(byte - reinterpret_cast<std::uintptr_t>(byte) % 4096, 1, &resident) == 0;
}

bool holds(const unsigned char* bytes, std::size_t size, unsigned char fill) {
  return std::all_of(bytes, bytes + size, [fill](unsigned char byte) { return byte == fill; });
}

// Each of the blocks is filled with its number, all that is usable of it.
TEST(Heap, KeepsBlocksApartAndTakesThemBack) {
  std::mt19937 random(1);
  std::vector<unsigned char*> blocks(200);
  void* const before = malloc(1);
  free(before);
  for (int step = 0; step < 40000; ++step) {
    const auto number = static_cast<unsigned char>(random() % blocks.size());
    unsigned char*& bytes = blocks[number];
    const std::size_t held = malloc_usable_size(bytes);
    ASSERT_TRUE(holds(bytes, held, number)) << step;
    const std::size_t size = random() % (step % 50 == 0 ? 100000 : 300);
    const auto action = random() % 5;
    if (action < 3) {
      free(std::exchange(bytes, nullptr));
    }
    if (action == 0) {
      continue;
    }
    const bool isCleared = action == 1;
    const bool isAligned = action == 2;
    const std::size_t alignment = isAligned ? std::size_t{8} << random() % 10 : alignof(Block);
    bytes = static_cast<unsigned char*>(isCleared   ? calloc(size, 1)
                                        : isAligned ? memalign(alignment, size)
                                                    : realloc(bytes, size));
    const std::size_t kept = isCleared ? size : isAligned ? 0 : std::min(size, held);
    ASSERT_TRUE(holds(bytes, kept, isCleared ? 0 : number)) << step;
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignment, 0U) << step;
    ASSERT_GE(malloc_usable_size(bytes), size) << step;
    std::memset(bytes, number, malloc_usable_size(bytes));
  }
  std::for_each(blocks.begin(), blocks.end(), free);
  EXPECT_EQ(malloc(1), before) << "the last block that is left is not the one of before";
  free(before);
}

// What comes and goes at the end of an area must not cost system calls: one empty area is kept.
TEST(Heap, GrowsTheLastBlockInPlaceAndReturnsAreas) {
  void* const filling = malloc(200000);
  void* const block = malloc(200000);
  free(block);
  EXPECT_TRUE(isMapped(block));
  EXPECT_EQ(malloc(200000), block);

  void* const small = malloc(kMiB / 32);
  free(small);
  EXPECT_EQ(malloc(kMiB / 32), small);
  EXPECT_EQ(realloc(small, kMiB / 64), small);
  void* const large = std::memset(realloc(small, 3 * kMiB), 1, 3 * kMiB);
  EXPECT_EQ(realloc(large, 3 * kMiB + 1000), large);
  free(large);
  EXPECT_FALSE(isMapped(static_cast<char*>(large) + kMiB));
  free(block);
  free(filling);
}

// An area that is used again begins anew, whatever gap its first block once had before it.
TEST(Heap, ForgetsTheGapOfAnEmptyArea) {
  void* const first = malloc(100);
  free(first);
  free(aligned_alloc(kMiB / 8, 100));
  void* const filling = malloc(200000);
  EXPECT_EQ(filling, first);
  free(aligned_alloc(kMiB / 8, 100));
  free(std::memset(malloc(255000), 1, 255000));
  free(filling);
}

TEST(Heap, RefusesWhatCannotBe) {
  void* block = nullptr;
  EXPECT_EQ(posix_memalign(&block, 48, 100), ENOMEM) << "no power of two";
  EXPECT_EQ(posix_memalign(&block, 64, 100), 0);
  std::strcpy(static_cast<char*>(block), "unchanged");
  for (const std::size_t size :
       {SIZE_MAX, SIZE_MAX - 31, SIZE_MAX / 2 + 1, SIZE_MAX / 2 - 4095, SIZE_MAX / 2 - kMiB}) {
    errno = 0;
    EXPECT_EQ(malloc(size), nullptr) << size;
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(calloc(size, 2), nullptr) << size;
    EXPECT_EQ(realloc(block, size), nullptr) << size;
  }
  EXPECT_STREQ(static_cast<char*>(block), "unchanged");
  free(block);
}

TEST(HeapDeathTest, EndsTheProcessOnFreedBytes) {
  void* const bytes = malloc(10);
  void* const behind = malloc(10);
  free(bytes);
  EXPECT_DEATH(free(bytes), "");
  EXPECT_DEATH(static_cast<void>(!realloc(bytes, 5)), "");
  free(behind);
}

}  // namespace
