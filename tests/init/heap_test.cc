// The heap of the executables, which is also that of this program.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

struct Piece {
  unsigned char* bytes = nullptr;
  std::size_t size = 0;
  unsigned char fill = 0;
};

bool holds(const Piece& piece, std::size_t size) {
  return std::all_of(piece.bytes, piece.bytes + size,
                     [&](unsigned char byte) { return byte == piece.fill; });
}

bool isMapped(char* bytes) {
  unsigned char resident = 0;
  return ::mincore(bytes - reinterpret_cast<std::uintptr_t>(bytes) % 4096, 1, &resident) == 0;
}

TEST(Heap, KeepsBlocksApartAndTakesThemBack) {
  std::mt19937 random(1);
  std::vector<Piece> pieces(200);
  void* const before = std::malloc(1);
  std::free(before);
  for (int step = 0; step < 40000; ++step) {
    Piece& piece = pieces[random() % pieces.size()];
    ASSERT_TRUE(holds(piece, piece.size)) << step;
    const std::size_t size = random() % (step % 50 == 0 ? 100000 : 300);
    const std::size_t kept = std::min(size, piece.size);
    switch (random() % 5) {
      case 0:
        std::free(piece.bytes);
        piece = {};
        continue;
      case 1:
        std::free(piece.bytes);
        piece = {static_cast<unsigned char*>(std::calloc(size, 1)), size, 0};
        ASSERT_TRUE(holds(piece, size)) << step;
        break;
      case 2:
        std::free(piece.bytes);
        piece = {static_cast<unsigned char*>(std::aligned_alloc(4096, size)), size, 0};
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(piece.bytes) % 4096, 0U) << step;
        break;
      default:
        piece.bytes = static_cast<unsigned char*>(std::realloc(piece.bytes, size));
        ASSERT_TRUE(holds(piece, kept)) << step;
        piece.size = size;
    }
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(piece.bytes) % alignof(std::max_align_t), 0U);
    piece.fill = static_cast<unsigned char>(step);
    std::memset(piece.bytes, piece.fill, size);
  }
  for (const Piece& piece : pieces) {
    std::free(piece.bytes);
  }
  EXPECT_EQ(std::malloc(1), before) << "the last block that is left is not the one of before";
  std::free(before);
}

TEST(Heap, GrowsTheLastBlockInPlaceAndReturnsAreas) {
  void* const small = std::malloc(kMiB / 8);
  ASSERT_EQ(std::realloc(small, kMiB / 16), small);
  void* const large = std::realloc(small, 3 * kMiB);
  ASSERT_NE(large, small);
  std::memset(large, 1, 3 * kMiB);
  void* const larger = std::realloc(large, 3 * kMiB + 1000);
  EXPECT_EQ(larger, large);
  std::free(larger);
  EXPECT_FALSE(isMapped(static_cast<char*>(larger) + kMiB));
}

// An area that is used again begins anew, whatever gap its first block once had before it.
TEST(Heap, ForgetsTheGapOfAnEmptyArea) {
  void* const filling = std::malloc(200000);
  std::free(std::aligned_alloc(kMiB / 8, 100));
  void* const most = std::malloc(255000);
  std::memset(most, 1, 255000);
  std::free(most);
  std::free(filling);
}

TEST(Heap, RefusesWhatCannotBe) {
  volatile std::size_t noPowerOfTwo = 48;
  EXPECT_EQ(std::aligned_alloc(noPowerOfTwo, 100), nullptr);
  volatile std::size_t most = SIZE_MAX;
  auto* const bytes = static_cast<char*>(std::malloc(10));
  std::strcpy(bytes, "unchanged");
  for (const std::size_t size : {most - 0, most - 31, most / 2 + 1, most / 2 - 4095}) {
    errno = 0;
    EXPECT_EQ(std::malloc(size), nullptr) << size;
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(std::calloc(size, 2), nullptr) << size;
    EXPECT_EQ(std::realloc(bytes, size), nullptr) << size;
  }
  EXPECT_STREQ(bytes, "unchanged");
  std::free(bytes);
}

// A block that comes and goes at the end of an area must not cost system calls.
TEST(Heap, KeepsOneEmptyArea) {
  constexpr std::size_t kMostOfAnArea = 200000;
  void* const filling = std::malloc(kMostOfAnArea);
  char* const block = static_cast<char*>(std::malloc(kMostOfAnArea));
  std::free(block);
  EXPECT_TRUE(isMapped(block));
  EXPECT_EQ(std::malloc(kMostOfAnArea), block);
  std::free(block);
  std::free(filling);
}

TEST(HeapDeathTest, EndsTheProcessOnFreedBytes) {
  void* const bytes = std::malloc(10);
  void* const behind = std::malloc(10);
  std::free(bytes);
  EXPECT_DEATH(std::free(bytes), "");
  EXPECT_DEATH(static_cast<void>(!std::realloc(bytes, 5)), "");
  std::free(behind);
}

}  // namespace
