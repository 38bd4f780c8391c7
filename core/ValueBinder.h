// The output sinks: what receives the named values of a result.
#pragma once

#include <cstdint>
#include <string_view>

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
};

// Hands text lines to their receiver: "name: value", or for a list a heading "name:" and its items
// as they are. A name that is empty or begins with "_" has no heading.
class StringVectorValueBinder final : public ValueBinder {
 public:
  // `out` must outlive the sink.
  explicit StringVectorValueBinder(const LineReceiver& out) : out_(out) {}

  bool addText(std::string_view name, std::string_view text) override;
  bool addInteger(std::string_view name, std::int32_t number) override;
  bool addBoolean(std::string_view name, bool truth) override;
  bool addList(std::string_view name, const LineSource& items) override;

 private:
  const LineReceiver& out_;
};

}  // namespace tunadm
