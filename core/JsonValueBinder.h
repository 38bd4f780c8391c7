// The output sink that writes a result as JSON.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/TextLines.h"
#include "core/ValueBinder.h"

namespace tunadm {

// Writes one JSON object (RFC 8259, UTF-8) on one line, member by member as the values come. A
// leading "_" of a name is left out. Lists are written item by item and never collected.
class JsonValueBinder final : public ValueBinder {
 public:
  // `out` must outlive the sink.
  explicit JsonValueBinder(const TextReceiver& out) : out_(out) {}

  bool addText(std::string_view name, std::string_view text) override;
  bool addInteger(std::string_view name, std::int32_t number) override;
  bool addBoolean(std::string_view name, bool truth) override;
  // A line feed in what the source hands over separates two items.
  bool addList(std::string_view name, const LineSource& items) override;
  bool addRecord(std::string_view name, Record record) override;
  bool addRecords(std::string_view name, const RecordSource& records) override;
  // "method", "status_code" as a number and "status_text"; "status_details" and "status_context"
  // only where they are not empty.
  bool addStatus(std::string_view method, const Status& status) override;

  // Ends the object and its line. For one call, after the last value.
  void finish();

 private:
  void beginMember(std::string_view name);
  void write();

  const TextReceiver& out_;
  std::string pending_;  // not handed to out_ yet
  bool empty_ = true;
};

}  // namespace tunadm
