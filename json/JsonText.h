// The texts in value trees: strings and member names.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "json/JsonPool.h"

namespace tunadm {

// A text that never changes, in the pool's memory, with a NUL byte after it. Half the size of a
// std::string, since a tree has up to two for each value. A moved-from text is empty.
class JsonText {
 public:
  explicit JsonText(std::string_view text) : size_(text.size()) {
    if (text.empty()) return;
    char* const copy = static_cast<char*>(json_pool.take(size_ + 1));
    std::memcpy(copy, text.data(), size_);
    copy[size_] = '\0';
    text_ = copy;
  }
  JsonText(JsonText&& other) noexcept
      : text_(std::exchange(other.text_, "")), size_(std::exchange(other.size_, 0)) {}
  JsonText& operator=(JsonText&& other) noexcept {
    std::swap(text_, other.text_);
    std::swap(size_, other.size_);
    return *this;
  }
  ~JsonText() {
    if (size_ != 0) json_pool.give(const_cast<char*>(text_), size_ + 1);
  }

  // The first bytes tell most texts of equal length apart, without a call.
  bool operator==(std::string_view other) const {
    return size_ == other.size() && (size_ == 0 || (*text_ == other.front() && view() == other));
  }

  const char* c_str() const { return text_; }
  std::string_view view() const { return {text_, size_}; }

 private:
  const char* text_ = "";
  std::size_t size_;
};

}  // namespace tunadm
