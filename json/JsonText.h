// The texts in value trees: strings and member names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "json/JsonPool.h"

namespace tunadm {

// A text that never changes, with a NUL byte after it. Up to 14 bytes stand in the object itself,
// which is enough for most member names; a longer text has a block of the pool. Half the size of a
// std::string, since a tree has up to two for each value. A moved-from text is empty.
class JsonText {
 public:
  constexpr JsonText() = default;
  explicit JsonText(std::string_view text) {
    if (text.size() <= kMostInside) {
      copyShort(text, inside(text.size()));
    } else {
      text.copy(outside(text.size()), text.size());
    }
  }
  JsonText(JsonText&& other) noexcept : form_(std::exchange(other.form_, Form())) {}
  JsonText& operator=(JsonText&& other) noexcept {
    if (this == &other) return *this;
    release();
    form_ = std::exchange(other.form_, Form());
    return *this;
  }
  ~JsonText() { release(); }

  // The size and the first byte tell most texts apart, without a call.
  bool operator==(std::string_view other) const {
    if (other.size() > kMostInside) return view() == other;
    const Inside& own = form_.inside;
    return own.size == other.size() &&
           (other.empty() || (own.bytes[0] == other.front() && view() == other));
  }

  bool empty() const { return form_.inside.size == 0; }
  const char* c_str() const {
    return isOutside() ? bytesOf(form_.outside.block) : form_.inside.bytes;
  }
  std::string_view view() const {
    return {c_str(), isOutside() ? form_.outside.block->size : form_.inside.size};
  }

 private:
  static constexpr std::size_t kMostInside = 14;
  static constexpr std::uint8_t kIsOutside = 0xff;

  // Stands before the bytes of a long text.
  struct Block {
    std::size_t size;
  };

  // Both begin with the same member, which therefore tells which of the two is in use.
  struct Inside {
    std::uint8_t size;
    char bytes[kMostInside + 1];
  };
  struct Outside {
    std::uint8_t mark;  // kIsOutside
    Block* block;
  };
  union Form {
    Inside inside = {};
    Outside outside;
  };

  // Copies text that has no more than kMostInside bytes. A call would take longer than this does.
  // The two copies overlap unless the text is twice their size.
  static void copyShort(std::string_view text, char* to) {
    const char* const from = text.data();
    if (text.size() >= 8) {
      std::memcpy(to, from, 8);
      std::memcpy(to + text.size() - 8, from + text.size() - 8, 8);
    } else if (text.size() >= 4) {
      std::memcpy(to, from, 4);
      std::memcpy(to + text.size() - 4, from + text.size() - 4, 4);
    } else {
      for (std::size_t i = 0; i < text.size(); ++i) to[i] = from[i];
    }
  }

  static std::size_t blockSize(std::size_t text_size) { return sizeof(Block) + text_size + 1; }
  static char* bytesOf(Block* block) { return reinterpret_cast<char*>(block + 1); }

  bool isOutside() const { return form_.inside.size == kIsOutside; }

  void release() {
    if (isOutside()) json_pool.give(form_.outside.block, blockSize(form_.outside.block->size));
  }

  // Each returns where the bytes go.
  char* inside(std::size_t size) {
    form_.inside.size = static_cast<std::uint8_t>(size);
    form_.inside.bytes[size] = '\0';
    return form_.inside.bytes;
  }
  char* outside(std::size_t size) {
    Block* const block = new (json_pool.take(blockSize(size))) Block{size};
    form_.outside = {kIsOutside, block};
    bytesOf(block)[size] = '\0';
    return bytesOf(block);
  }

  Form form_ = {};
};

}  // namespace tunadm
