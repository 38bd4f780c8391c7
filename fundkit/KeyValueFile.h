// Tables of keys and values read from text files.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// Two parallel lists. A key has the place of its first occurrence and the value of its last.
class KeyValueTable {
 public:
  // Adds the lines of `text` that hold `separator` and a key. Key and value are trimmed of bytes
  // that are not graphic. `cut` ends a line at its first occurrence, if that is after the
  // separator. Lines are taken in pieces of up to 1023 bytes.
  void parse(std::string_view text, char separator, std::optional<char> cut);

  void clear();

  const std::vector<std::string>& keys() const { return keys_; }
  const std::vector<std::string>& values() const { return values_; }

  // The index of exactly this key, or -1.
  int find(std::string_view key) const;

 private:
  void set(std::string_view key, std::string_view value);

  std::vector<std::string> keys_;
  std::vector<std::string> values_;
  std::map<std::string, std::size_t, std::less<>> index_;
};

// Replaces the content of `table` by that of a file. False, with an empty table, when the path is
// empty or the file cannot be read.
[[nodiscard]] bool readKeyValueFile(const std::string& path, char separator,
                                    std::optional<char> cut, KeyValueTable* table);

}  // namespace tunadm
