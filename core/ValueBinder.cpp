#include "core/ValueBinder.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace tunadm {

bool ValueBinder::addText(std::string_view, std::string_view) { return false; }
bool ValueBinder::addInteger(std::string_view, std::int32_t) { return false; }
bool ValueBinder::addBoolean(std::string_view, bool) { return false; }
bool ValueBinder::addList(std::string_view, const LineSource&) { return false; }
bool ValueBinder::addRecord(std::string_view, Record) { return false; }
bool ValueBinder::addRecords(std::string_view, const RecordSource&) { return false; }
bool ValueBinder::addStatus(std::string_view, const Status&) { return false; }

bool StringVectorValueBinder::addText(std::string_view name, std::string_view text) {
  std::string line;
  line.reserve(name.size() + 2 + text.size());
  line.append(name).append(": ").append(text);
  out_(line);
  return true;
}

bool StringVectorValueBinder::addInteger(std::string_view name, std::int32_t number) {
  return addText(name, std::to_string(number));
}

bool StringVectorValueBinder::addBoolean(std::string_view name, bool truth) {
  return addText(name, truth ? "true" : "false");
}

bool StringVectorValueBinder::addList(std::string_view name, const LineSource& items) {
  if (!name.empty() && name.front() != '_') out_(std::string(name) + ":");
  items(out_);
  return true;
}

bool StringVectorValueBinder::addRecord(std::string_view name, Record record) {
  std::vector<RecordMember> shown;
  std::copy_if(record.begin(), record.end(), std::back_inserter(shown),
               [](const RecordMember& member) { return member.line > 0; });
  std::sort(shown.begin(), shown.end(), [](const RecordMember& one, const RecordMember& other) {
    return one.line < other.line;
  });
  return addList(name, [&shown](const LineReceiver& out) {
    for (const RecordMember& member : shown) {
      out(std::string(member.name).append("=").append(member.text));
    }
  });
}

bool StringVectorValueBinder::addRecords(std::string_view name, const RecordSource& records) {
  return addList(name, [&records](const LineReceiver& out) {
    std::string line;
    records([&](Record record) {
      line.clear();
      for (const RecordMember& member : record) {
        line.append(line.empty() ? "" : ": ").append(member.text);
      }
      out(line);
    });
  });
}

}  // namespace tunadm
