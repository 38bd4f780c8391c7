#include "json/JsonPool.h"

#include <bit>

namespace tunadm {
namespace {

// The first chunk is enough for a command; the others are for large trees.
constexpr std::size_t kFirstChunk = std::size_t{4} * 1024;
constexpr std::size_t kFurtherChunk = std::size_t{256} * 1024;

}  // namespace

#ifdef TUNADM_SANITIZED
void* JsonPool::takeLarge(std::size_t size) { return ::operator new(size); }
void JsonPool::giveLarge(void* memory, std::size_t /*size*/) { ::operator delete(memory); }
#else
// A block has the size of the next power of two, whose exponent is its place.
void* JsonPool::takeLarge(std::size_t size) {
  Block*& first = free_large_[std::bit_width(size - 1)];
  if (first == nullptr) return ::operator new(std::bit_ceil(size));
  return std::exchange(first, first->next);
}

void JsonPool::giveLarge(void* memory, std::size_t size) {
  Block*& first = free_large_[std::bit_width(size - 1)];
  first = new (memory) Block{first};
}
#endif

void JsonPool::addChunk() {
  Chunk* chunk = unused_;
  if (chunk != nullptr) {
    unused_ = chunk->next;
  } else {
    const std::size_t size = chunks_ == nullptr ? kFirstChunk : kFurtherChunk;
    chunk = new (::operator new(size)) Chunk{nullptr, size};
  }
  chunk->next = chunks_;
  chunks_ = chunk;
  remainder_ = reinterpret_cast<char*>(chunk + 1);
  remainder_size_ = chunk->size - sizeof(Chunk);
}

void JsonPool::startOver() {
  // Moving them one by one puts them back into the order in which they were made.
  while (chunks_ != nullptr) {
    Chunk* const chunk = std::exchange(chunks_, chunks_->next);
    chunk->next = unused_;
    unused_ = chunk;
  }
  remainder_size_ = 0;
  free_.fill(nullptr);
}

}  // namespace tunadm
