#include "core/JsonValueBinder.h"

#include <cstddef>

#include "core/JsonString.h"
#include "core/StatusText.h"

namespace tunadm {
namespace {

// Appends a JSON string for each line, and a comma before all but the first of the list.
void appendItems(std::string_view lines, bool* first, std::string* json) {
  std::size_t end = 0;
  do {
    if (!*first) *json += ',';
    *first = false;
    end = lines.find('\n');
    appendJsonString(lines.substr(0, end), json);
    lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
  } while (end != std::string_view::npos);
}

void appendMember(const RecordMember& member, std::string* json) {
  appendJsonString(member.name, json);
  *json += ':';
  if (member.items == nullptr) {
    appendJsonString(member.text, json);
    return;
  }
  *json += '[';
  for (const std::string& item : *member.items) {
    if (&item != &member.items->front()) *json += ',';
    appendJsonString(item, json);
  }
  *json += ']';
}

void appendObject(Record record, std::string* json) {
  *json += '{';
  for (const RecordMember& member : record) {
    if (&member != &record.front()) *json += ',';
    appendMember(member, json);
  }
  *json += '}';
}

}  // namespace

bool JsonValueBinder::addText(std::string_view name, std::string_view text) {
  beginMember(name);
  appendJsonString(text, &pending_);
  write();
  return true;
}

bool JsonValueBinder::addInteger(std::string_view name, std::int32_t number) {
  beginMember(name);
  pending_ += std::to_string(number);
  write();
  return true;
}

bool JsonValueBinder::addBoolean(std::string_view name, bool truth) {
  beginMember(name);
  pending_ += truth ? "true" : "false";
  write();
  return true;
}

bool JsonValueBinder::addList(std::string_view name, const LineSource& items) {
  beginMember(name);
  pending_ += '[';
  bool first = true;
  items([&](std::string_view lines) {
    appendItems(lines, &first, &pending_);
    write();
  });
  pending_ += ']';
  write();
  return true;
}

bool JsonValueBinder::addRecord(std::string_view name, Record record) {
  beginMember(name);
  appendObject(record, &pending_);
  write();
  return true;
}

bool JsonValueBinder::addRecords(std::string_view name, const RecordSource& records) {
  beginMember(name);
  pending_ += '[';
  bool first = true;
  records([&](Record record) {
    if (!first) pending_ += ',';
    first = false;
    appendObject(record, &pending_);
    write();
  });
  pending_ += ']';
  write();
  return true;
}

bool JsonValueBinder::addStatus(std::string_view method, const Status& status) {
  addText("method", method);
  addInteger("status_code", status.code());
  addText("status_text", statusText(status.code()));
  if (!status.details().empty()) addText("status_details", status.details());
  if (!status.context().empty()) addText("status_context", status.context());
  return true;
}

void JsonValueBinder::finish() {
  pending_ += empty_ ? "{}\n" : "}\n";
  write();
}

void JsonValueBinder::beginMember(std::string_view name) {
  pending_ += empty_ ? '{' : ',';
  empty_ = false;
  if (name.starts_with('_')) name.remove_prefix(1);
  appendJsonString(name, &pending_);
  pending_ += ':';
}

void JsonValueBinder::write() {
  out_(pending_);
  pending_.clear();
}

}  // namespace tunadm
