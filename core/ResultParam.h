// The result fields of a command: their base and the generic kinds.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/Status.h"
#include "core/ValueBinder.h"

namespace tunadm {

class ResultParamBase;

// A command's result fields in declaration order. The fields are members of the command.
using ResultList = std::vector<ResultParamBase*>;

class ResultParamBase {
 public:
  ResultParamBase(const ResultParamBase&) = delete;
  ResultParamBase& operator=(const ResultParamBase&) = delete;
  virtual ~ResultParamBase() = default;

  const std::string& name() const { return name_; }

  // Hands the value to the sink. A sink that refuses a kind of value leaves it out.
  virtual void render(ValueBinder& out) const = 0;

  // Appends what the reference shows as `name=<...>`.
  virtual void typeName(std::string* text) const = 0;

 protected:
  // Appends itself to `list`: declaration order is construction order.
  ResultParamBase(ResultList* list, std::string_view name);

 private:
  std::string name_;
};

// One text; printed also when empty, unless its emit flag has been cleared.
class StringResult final : public ResultParamBase {
 public:
  StringResult(ResultList* list, std::string_view name) : ResultParamBase(list, name) {}

  void set(std::string_view value) { value_ = value; }
  void setEmit(bool emit) { emit_ = emit; }

  void render(ValueBinder& out) const override;
  void typeName(std::string* text) const override { text->append("string"); }

 private:
  std::string value_;
  bool emit_ = true;
};

class BoolResult final : public ResultParamBase {
 public:
  BoolResult(ResultList* list, std::string_view name) : ResultParamBase(list, name) {}

  void set(bool value) { value_ = value; }

  void render(ValueBinder& out) const override { out.addBoolean(name(), value_); }
  void typeName(std::string* text) const override { text->append("bool"); }

 private:
  bool value_ = false;
};

class StringVectorResultField final : public ResultParamBase {
 public:
  StringVectorResultField(ResultList* list, std::string_view name) : ResultParamBase(list, name) {}

  std::vector<std::string>& lines() { return lines_; }

  void render(ValueBinder& out) const override { out.addList(name(), linesOf(lines_)); }
  // Deliberate: the reference shows the field's own name as its type.
  void typeName(std::string* text) const override { text->append(name()); }

 private:
  std::vector<std::string> lines_;
};

// What the options on the command line ask for. `json` and `text` are kept, but change nothing that
// is printed.
struct OutputFlags {
  bool quiet = false;
  bool verbose = false;
  bool json = false;
  bool text = false;
};

// The outcome of the command. It starts as a failure, so that only code that has succeeded makes it
// a success.
class StatusCodeResultField final : public ResultParamBase {
 public:
  // `flags` must outlive the field.
  StatusCodeResultField(ResultList* list, std::string_view method, const OutputFlags* flags)
      : ResultParamBase(list, "status"), method_(method), flags_(flags) {}

  const std::string& method() const { return method_; }
  const Status& status() const { return status_; }
  Status& status() { return status_; }

  // Hands over the method and the status. A sink that refuses them as a whole gets the method, the
  // text and the code as texts, or those of them that the outcome and the flags ask for, without
  // the context.
  void render(ValueBinder& out) const override;
  void typeName(std::string* text) const override { text->append("status"); }

 private:
  std::string method_;
  Status status_{kApplicationError};
  const OutputFlags* flags_;
};

}  // namespace tunadm
