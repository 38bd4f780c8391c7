#include "json/JsonPool.h"

namespace tunadm {
namespace {

// The first chunk serves a request of a few words, the others are for large trees.
constexpr std::size_t kFirstChunk = std::size_t{4} * 1024;
constexpr std::size_t kFurtherChunk = std::size_t{256} * 1024;

}  // namespace

void JsonPool::addChunk() {
  const std::size_t size = chunks_ == nullptr ? kFirstChunk : kFurtherChunk;
  rest_ = static_cast<char*>(::operator new(size));
  chunks_ = new (rest_) Block{chunks_};
  rest_ += sizeof(Block);
  rest_size_ = size - sizeof(Block);
}

void JsonPool::startOver() {
  while (chunks_ != nullptr) {
    Block* const next = chunks_->next;
    ::operator delete(chunks_);
    chunks_ = next;
  }
  rest_size_ = 0;
  free_.fill(nullptr);
}

}  // namespace tunadm
