// The memory of value trees.
#pragma once

#include <array>
#include <cstddef>
#include <new>
#include <utility>

namespace tunadm {

// Hands out small blocks, which a tree needs by the million, in a few instructions each: from the
// blocks of the same size that were given back, or else off the end of a large chunk. When no block
// is out any more, it begins with its first chunk again, so that what comes next lies in one piece;
// it returns no memory to the system. Not for use by several threads at once.
class JsonPool {
 public:
  // At least `size` bytes, aligned for pointers and doubles.
  void* take(std::size_t size) {
    if (size > kLargestBlock) return ::operator new(size);
    ++taken_;
    Block*& first = free_[place(size)];
    if (first == nullptr) return cut(place(size) * kGrain);
    Block* const block = first;
    first = block->next;
    return block;
  }

  // Takes back what take gave for the same size.
  void give(void* memory, std::size_t size) {
    if (size > kLargestBlock) return ::operator delete(memory);
    Block*& first = free_[place(size)];
    first = new (memory) Block{first};
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

  // The head of a chunk, at the beginning of its memory.
  struct Chunk {
    Chunk* next;
    std::size_t size;  // of all of it
  };

  static constexpr std::size_t place(std::size_t size) { return (size + kGrain - 1) / kGrain; }

  void* cut(std::size_t block_size) {
    // What is left of the old chunk is less than one block, and is given up.
    if (rest_size_ < block_size) addChunk();
    rest_size_ -= block_size;
    return std::exchange(rest_, rest_ + block_size);
  }

  void addChunk();
  void startOver();

  std::array<Block*, kLargestBlock / kGrain + 1> free_ = {};
  std::size_t taken_ = 0;
  char* rest_ = nullptr;  // what is left of the newest chunk
  std::size_t rest_size_ = 0;
  Chunk* chunks_ = nullptr;  // in use, the newest one first
  Chunk* unused_ = nullptr;
};

inline constinit JsonPool json_pool;

// The base of classes whose instances live in the pool.
struct JsonPooled {
  static void* operator new(std::size_t size) { return json_pool.take(size); }
  static void* operator new(std::size_t /*size*/, void* place) { return place; }
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

  T* allocate(std::size_t count) {
    // T is meant to be a pointer in some places, hence the two exceptions.
    void* const memory = json_pool.take(count * sizeof(T));  // NOLINT(bugprone-sizeof-expression)
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, std::size_t count) {
    json_pool.give(memory, count * sizeof(T));  // NOLINT(bugprone-sizeof-expression): see above
  }
  bool operator==(const JsonAllocator&) const = default;
};

}  // namespace tunadm
