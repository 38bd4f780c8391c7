// The output sinks: what receives the named values of a result.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// Receives named values. The defaults do nothing and report failure.
class ValueBinder {
 public:
  ValueBinder() = default;
  ValueBinder(const ValueBinder&) = delete;
  ValueBinder& operator=(const ValueBinder&) = delete;
  virtual ~ValueBinder() = default;

  virtual bool addText(std::string_view name, std::string_view text);
  virtual bool addInteger(std::string_view name, std::int32_t number);
  virtual bool addBoolean(std::string_view name, bool truth);
  virtual bool addList(std::string_view name, const std::vector<std::string>& items);
};

// Appends text lines to a list that the caller owns: "name: value", or for a list a heading "name:"
// and its items as they are. A name that is empty or begins with "_" gives no heading.
class StringVectorValueBinder final : public ValueBinder {
 public:
  explicit StringVectorValueBinder(std::vector<std::string>* lines) : lines_(lines) {}

  bool addText(std::string_view name, std::string_view text) override;
  bool addInteger(std::string_view name, std::int32_t number) override;
  bool addBoolean(std::string_view name, bool truth) override;
  bool addList(std::string_view name, const std::vector<std::string>& items) override;

 private:
  std::vector<std::string>* lines_;
};

}  // namespace tunadm
