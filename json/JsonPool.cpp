#include "json/JsonPool.h"

namespace tunadm {
namespace {

// The first chunk serves a request of a few words, the others are for large trees.
constexpr std::size_t kFirstChunk = std::size_t{4} * 1024;
constexpr std::size_t kFurtherChunk = std::size_t{256} * 1024;

}  // namespace

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
  rest_ = reinterpret_cast<char*>(chunk + 1);
  rest_size_ = chunk->size - sizeof(Chunk);
}

void JsonPool::startOver() {
  // Moved one by one, they come back in the order in which they were made.
  while (chunks_ != nullptr) {
    Chunk* const chunk = std::exchange(chunks_, chunks_->next);
    chunk->next = unused_;
    unused_ = chunk;
  }
  rest_size_ = 0;
  free_.fill(nullptr);
}

}  // namespace tunadm
