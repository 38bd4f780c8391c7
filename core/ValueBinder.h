// The output sinks: what receives the named values of a result.
#pragma once

#include <cstdint>
#include <string_view>

#include "core/Record.h"
#include "core/Status.h"
#include "core/TextLines.h"

namespace tunadm {

// Receives named values. The defaults do nothing and report failure; a result field may drop the
// answer, because a sink leaves out what it refuses.
class ValueBinder {
 public:
  ValueBinder() = default;
  ValueBinder(const ValueBinder&) = delete;
  ValueBinder& operator=(const ValueBinder&) = delete;
  virtual ~ValueBinder() = default;

  virtual bool addText(std::string_view name, std::string_view text);
  virtual bool addInteger(std::string_view name, std::int32_t number);
  virtual bool addBoolean(std::string_view name, bool truth);
  virtual bool addList(std::string_view name, const LineSource& items);
  virtual bool addRecord(std::string_view name, Record record);
  virtual bool addRecords(std::string_view name, const RecordSource& records);
  // The outcome of the command of that method name, as a whole. A sink that refuses it is handed
  // those parts as texts that the options on the command line ask for.
  virtual bool addStatus(std::string_view method, const Status& status);
};

// Hands text lines to their receiver: "name: value", or for a list a heading "name:" and its items
// as they are. A name that is empty or begins with "_" has no heading. A record becomes a list with
// an item "name=text" for each member that has a line, in the order of the lines. A list of records
// becomes a list with one item for each record, its texts with ": " between them.
class StringVectorValueBinder final : public ValueBinder {
 public:
  // `out` must outlive the sink.
  explicit StringVectorValueBinder(const LineReceiver& out) : out_(out) {}

  bool addText(std::string_view name, std::string_view text) override;
  bool addInteger(std::string_view name, std::int32_t number) override;
  bool addBoolean(std::string_view name, bool truth) override;
  bool addList(std::string_view name, const LineSource& items) override;
  bool addRecord(std::string_view name, Record record) override;
  bool addRecords(std::string_view name, const RecordSource& records) override;

 private:
  const LineReceiver& out_;
};

}  // namespace tunadm
