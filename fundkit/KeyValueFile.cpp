#include "fundkit/KeyValueFile.h"

#include "core/Status.h"
#include "fundkit/AsciiText.h"
#include "fundkit/FileUtils.h"
#include "fundkit/LineReader.h"

namespace tunadm {
namespace {

constexpr std::size_t kLineBufferSize = 1024;

}  // namespace

void KeyValueTable::parse(std::string_view text, char separator, std::optional<char> cut) {
  LineReader lines(text, kLineBufferSize);
  for (LinePiece piece; lines.next(&piece);) {
    std::string_view line = piece.text;
    const std::size_t split = line.find(separator);
    if (split == line.npos) continue;
    const std::size_t end = cut ? line.find(*cut) : line.npos;
    if (end != line.npos && end > split) line = line.substr(0, end);
    const std::string_view key = trimGraphic(line.substr(0, split));
    if (!key.empty()) set(key, trimGraphic(line.substr(split + 1)));
  }
}

void KeyValueTable::set(std::string_view key, std::string_view value) {
  if (const int known = find(key); known >= 0) {
    values_[static_cast<std::size_t>(known)] = value;
    return;
  }
  index_.emplace(key, keys_.size());
  keys_.emplace_back(key);
  values_.emplace_back(value);
}

void KeyValueTable::clear() {
  keys_.clear();
  values_.clear();
  index_.clear();
}

int KeyValueTable::find(std::string_view key) const {
  const auto found = index_.find(key);
  return found == index_.end() ? -1 : static_cast<int>(found->second);
}

bool readKeyValueFile(const std::string& path, char separator, std::optional<char> cut,
                      KeyValueTable* table) {
  table->clear();
  std::string content;
  if (!readFile(path, &content).ok()) return false;
  table->parse(content, separator, cut);
  return true;
}

}  // namespace tunadm
