// Results with a structure of their own, as a sink receives them.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// One member of a record: a text or a list of texts. Valid only during the call that hands it over.
struct RecordMember {
  std::string_view name;
  std::string_view text = {};
  int line = 0;  // the place among the lines of the text form, from 1; 0 for none
  const std::vector<std::string>* items = nullptr;  // the list; null for a text
};

using Record = std::span<const RecordMember>;

using RecordReceiver = std::function<void(Record record)>;

// Hands the records of a list to `out` in order.
using RecordSource = std::function<void(const RecordReceiver& out)>;

}  // namespace tunadm
