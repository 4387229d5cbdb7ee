// The heap of the executables, under names of its own: this program keeps that of the C library,
// and the compiler knows nothing of what these functions promise.

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>
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

struct Piece {
  unsigned char* bytes = nullptr;
  std::size_t size = 0;
  unsigned char fill = 0;
};

unsigned char* bytesOf(void* block) { return static_cast<unsigned char*>(block); }

bool holds(const Piece& piece, std::size_t size) {
  return std::all_of(piece.bytes, piece.bytes + size,
                     [&](unsigned char byte) { return byte == piece.fill; });
}

bool isMapped(void* block) {
  unsigned char resident = 0;
  return ::mincore(bytesOf(block) - reinterpret_cast<std::uintptr_t>(block) % 4096, 1, &resident) ==
         0;
}

TEST(Heap, KeepsBlocksApartAndTakesThemBack) {
  std::mt19937 random(1);
  std::vector<Piece> pieces(200);
  void* const before = malloc(1);
  free(before);
  for (int step = 0; step < 40000; ++step) {
    Piece& piece = pieces[random() % pieces.size()];
    ASSERT_TRUE(holds(piece, piece.size)) << step;
    const std::size_t size = random() % (step % 50 == 0 ? 100000 : 300);
    const std::size_t kept = std::min(size, piece.size);
    std::size_t alignment = alignof(std::max_align_t);
    switch (random() % 5) {
      case 0:
        free(piece.bytes);
        piece = {};
        continue;
      case 1:
        free(piece.bytes);
        piece = {bytesOf(calloc(size, 1)), size, 0};
        ASSERT_TRUE(holds(piece, size)) << step;
        break;
      case 2:
        free(piece.bytes);
        alignment = std::size_t{8} << random() % 10;
        piece = {bytesOf(aligned_alloc(alignment, size)), size, 0};
        break;
      default:
        piece.bytes = bytesOf(realloc(piece.bytes, size));
        ASSERT_TRUE(holds(piece, kept)) << step;
        piece.size = size;
    }
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(piece.bytes) % alignment, 0U) << step;
    ASSERT_GE(malloc_usable_size(piece.bytes), size) << step;
    piece.size = malloc_usable_size(piece.bytes);
    piece.fill = static_cast<unsigned char>(step);
    std::memset(piece.bytes, piece.fill, piece.size);
  }
  for (const Piece& piece : pieces) {
    free(piece.bytes);
  }
  EXPECT_EQ(malloc(1), before) << "the last block that is left is not the one of before";
  free(before);
}

TEST(Heap, GrowsTheLastBlockInPlaceAndReturnsAreas) {
  void* const small = malloc(kMiB / 8);
  ASSERT_EQ(realloc(small, kMiB / 16), small);
  void* const large = realloc(small, 3 * kMiB);
  ASSERT_NE(large, small);
  std::memset(large, 1, 3 * kMiB);
  EXPECT_EQ(realloc(large, 3 * kMiB + 1000), large);
  free(large);
  EXPECT_FALSE(isMapped(bytesOf(large) + kMiB));
}

// An area that is used again begins anew, whatever gap its first block once had before it.
TEST(Heap, ForgetsTheGapOfAnEmptyArea) {
  void* const first = malloc(100);
  free(first);
  free(aligned_alloc(kMiB / 8, 100));
  void* const filling = malloc(200000);
  EXPECT_EQ(filling, first);
  free(aligned_alloc(kMiB / 8, 100));
  void* const most = malloc(255000);
  std::memset(most, 1, 255000);
  free(most);
  free(filling);
}

TEST(Heap, RefusesWhatCannotBe) {
  void* block = nullptr;
  EXPECT_EQ(posix_memalign(&block, 48, 100), ENOMEM) << "no power of two";
  EXPECT_EQ(posix_memalign(&block, 64, 100), 0);
  free(block);
  auto* const bytes = static_cast<char*>(malloc(10));
  std::strcpy(bytes, "unchanged");
  for (const std::size_t size : {SIZE_MAX, SIZE_MAX - 31, SIZE_MAX / 2 + 1, SIZE_MAX / 2 - 4095}) {
    errno = 0;
    EXPECT_EQ(malloc(size), nullptr) << size;
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(calloc(size, 2), nullptr) << size;
    EXPECT_EQ(realloc(bytes, size), nullptr) << size;
  }
  EXPECT_STREQ(bytes, "unchanged");
  free(bytes);
}

// A block that comes and goes at the end of an area must not cost system calls.
TEST(Heap, KeepsOneEmptyArea) {
  constexpr std::size_t kMostOfAnArea = 200000;
  void* const filling = malloc(kMostOfAnArea);
  void* const block = malloc(kMostOfAnArea);
  free(block);
  EXPECT_TRUE(isMapped(block));
  EXPECT_EQ(malloc(kMostOfAnArea), block);
  free(block);
  free(filling);
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
