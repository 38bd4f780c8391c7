// The memory of value trees.
#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <utility>

namespace tunadm {

// Allocates small blocks, which a tree needs by the million, in a few instructions each: from
// blocks of the same size that were given back, or else from the end of a large chunk. When all
// small blocks have been given back, it starts again with its first chunk, so that the next tree is
// contiguous. Large blocks, of which a tree has few, have the size of a power of two and are kept
// as well: fresh ones from the system cost a page fault for every 4 KiB. It returns no memory to
// the system. Only one thread at a time may use it.
class JsonPool {
 public:
  // Returns at least `size` bytes, aligned for pointers and doubles.
  void* take(std::size_t size) {
    if (size > kLargestBlock) return takeLarge(size);
    ++taken_;
    Block*& first = free_[place(size)];
    if (first == nullptr) return cut(place(size) * kGrain);
    Block* const block = first;
    first = block->next;
    return block;
  }

  // Takes back what take returned for the same size.
  void give(void* memory, std::size_t size) {
    if (size > kLargestBlock) return giveLarge(memory, size);
    Block*& first = free_[place(size)];
    first = new (memory) Block{first};
    prefetchAfter(memory);
    if (--taken_ == 0) startOver();
  }

 private:
  static constexpr std::size_t kGrain = alignof(double);
#ifdef TUNADM_SANITIZED
  static constexpr std::size_t kLargestBlock = 0;  // lets the sanitizers watch every value
#else
  static constexpr std::size_t kLargestBlock = 64 * kGrain;
#endif

  // A block that was given back.
  struct Block {
    Block* next;
  };

  // Stands at the beginning of a chunk.
  struct Chunk {
    Chunk* next;
    std::size_t size;  // of all of it
  };

  static constexpr std::size_t place(std::size_t size) { return (size + kGrain - 1) / kGrain; }

  // Starts to load memory that will probably be used soon: a large tree is made, and mostly
  // released, in the order of its addresses. By itself the processor stops at the end of each page
  // of 4 KiB. An address without memory is ignored.
  static void prefetchAfter(const void* block) {
    constexpr std::size_t kAhead = 1536;
    constexpr int kForWriting = 1;
    __builtin_prefetch(static_cast<const char*>(block) + kAhead, kForWriting);
  }

  void* cut(std::size_t block_size) {
    // The remainder of the old chunk is smaller than one block, and is given up.
    if (remainder_size_ < block_size) addChunk();
    remainder_size_ -= block_size;
    prefetchAfter(remainder_);
    return std::exchange(remainder_, remainder_ + block_size);
  }

  // The same for a size above kLargestBlock.
  void* takeLarge(std::size_t size);
  void giveLarge(void* memory, std::size_t size);
  void addChunk();
  void startOver();

  std::array<Block*, kLargestBlock / kGrain + 1> free_ = {};
  std::size_t taken_ = 0;
  char* remainder_ = nullptr;  // of the newest chunk
  std::size_t remainder_size_ = 0;
  Chunk* chunks_ = nullptr;  // in use, the newest one first
  Chunk* unused_ = nullptr;
  std::array<Block*, std::numeric_limits<std::size_t>::digits + 1> free_large_ = {};
};

inline constinit JsonPool json_pool;

// The base of classes whose instances live in the pool.
struct JsonPooled {
  static void* operator new(std::size_t size) { return json_pool.take(size); }
  static void operator delete(void* memory, std::size_t size) { json_pool.give(memory, size); }
};

// Lets the containers of the standard library use the pool.
template <typename T>
struct JsonAllocator {
  using value_type = T;
  static_assert(alignof(T) <= alignof(double));

  JsonAllocator() = default;
  template <typename Other>
  constexpr explicit(false) JsonAllocator(const JsonAllocator<Other>& /*other*/) {}

  T* allocate(std::size_t count) { return static_cast<T*>(json_pool.take(bytesOf(count))); }
  void deallocate(T* memory, std::size_t count) { json_pool.give(memory, bytesOf(count)); }
  bool operator==(const JsonAllocator&) const = default;

 private:
  static constexpr std::size_t bytesOf(std::size_t count) {
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T is a pointer in some places, on purpose.
    return count * sizeof(T);
  }
};

}  // namespace tunadm
