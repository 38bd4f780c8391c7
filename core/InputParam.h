// The typed input parameters of a command: their base and the generic kinds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tunadm {

// Something that accepts a value. The defaults refuse.
class NamedValueBinder {
 public:
  NamedValueBinder() = default;
  NamedValueBinder(const NamedValueBinder&) = delete;
  NamedValueBinder& operator=(const NamedValueBinder&) = delete;
  virtual ~NamedValueBinder() = default;

  // Each returns whether the value was accepted. A refused one leaves the old value in place.
  [[nodiscard]] virtual bool setFromText(std::string_view text);
  [[nodiscard]] virtual bool setFromInteger(std::int32_t number);
  [[nodiscard]] virtual bool setFromBoolean(bool truth);
  [[nodiscard]] virtual bool setFromNamedText(std::string_view name, std::string_view text);
};

class InputParamBase;

// A command's parameters in declaration order. The parameters are members of the command.
using ParamList = std::vector<InputParamBase*>;

enum class Required : std::uint8_t { kNo = 0, kYes = 1 };

// One input parameter. It becomes presented with the first accepted value and stays so.
class InputParamBase : public NamedValueBinder {
 public:
  const std::string& name() const { return name_; }
  bool presented() const { return presented_; }
  bool required() const { return required_ == Required::kYes; }

  // A hidden parameter binds like any other, but help does not list it.
  bool hidden() const { return hidden_; }
  void hide() { hidden_ = true; }
  void makeOptional() { required_ = Required::kNo; }

  // Appends what help shows as `name=<...>`; nothing for a parameter without a value.
  virtual void appendHint(std::string* text) const = 0;
  std::string hint() const;

  // The values to offer to someone who writes a command line; empty when any text may be right.
  virtual std::vector<std::string_view> values() const { return {}; }
  // Whether a reader of the hint knows these values.
  virtual bool hintTellsValues() const { return true; }
  virtual bool isSingleWord() const { return false; }
  virtual bool needsValue() const { return true; }
  virtual bool isSatisfied() const { return presented() || !required(); }

  // A few words that describe the parameter in help.
  virtual std::string_view description() const = 0;

 protected:
  // Appends itself to `list`: declaration order is construction order.
  InputParamBase(ParamList* list, std::string_view name, Required required);

  void markPresented() { presented_ = true; }

  // For a setter to return when it has accepted a value.
  [[nodiscard]] bool accept() {
    markPresented();
    return true;
  }

 private:
  Required required_;
  bool hidden_ = false;
  bool presented_ = false;
  std::string name_;
};

// Any text.
class StringParam : public InputParamBase {
 public:
  StringParam(ParamList* list, std::string_view name, std::string_view default_value,
              Required required)
      : InputParamBase(list, name, required), value_(default_value) {}

  const std::string& value() const { return value_; }

  [[nodiscard]] bool setFromText(std::string_view text) override;
  void appendHint(std::string* text) const override { text->append("string"); }
  std::string_view description() const override { return "string"; }

 private:
  std::string value_;
};

// A base-10 integer of 32 bits. A text may have leading blanks and a sign; text after the digits
// and a number out of range are refused.
class IntParam final : public InputParamBase {
 public:
  IntParam(ParamList* list, std::string_view name, std::int32_t default_value, Required required)
      : InputParamBase(list, name, required), value_(default_value) {}

  std::int32_t value() const { return value_; }

  [[nodiscard]] bool setFromText(std::string_view text) override;
  [[nodiscard]] bool setFromInteger(std::int32_t number) override;
  void appendHint(std::string* text) const override { text->append("integer"); }
  std::string_view description() const override { return "integer"; }

 private:
  std::int32_t value_;
};

// true, yes, on, false, no, off, in any letter case.
class BoolParam final : public InputParamBase {
 public:
  BoolParam(ParamList* list, std::string_view name, bool default_value, Required required)
      : InputParamBase(list, name, required), value_(default_value) {}

  bool value() const { return value_; }

  [[nodiscard]] bool setFromText(std::string_view text) override;
  [[nodiscard]] bool setFromBoolean(bool truth) override;
  void appendHint(std::string* text) const override { text->append("boolean"); }
  std::vector<std::string_view> values() const override { return {"true", "false"}; }
  std::string_view description() const override { return "boolean"; }

 private:
  bool value_;
};

// The two states of a single-word parameter. Binding uses the first as the value of any word
// without an equals sign.
inline constexpr std::string_view kWordPresent = "<single-word-command-present>";
inline constexpr std::string_view kWordAbsent = "<single-word-command-absent>";

// A bare word: on by its name alone or `name=true`, off by `name=` or `name=false`.
class SingleWordParam final : public InputParamBase {
 public:
  SingleWordParam(ParamList* list, std::string_view word)
      : InputParamBase(list, word, Required::kNo), value_(kWordAbsent) {}

  bool present() const { return value_ == kWordPresent; }

  [[nodiscard]] bool setFromText(std::string_view text) override;
  void appendHint(std::string*) const override {}
  bool isSingleWord() const override { return true; }
  bool needsValue() const override { return false; }
  std::string_view description() const override { return "single word"; }

 private:
  std::string value_;
};

// The "auth" text that every command accepts and none examines.
class AuthParam final : public StringParam {
 public:
  explicit AuthParam(ParamList* list) : StringParam(list, "auth", "", Required::kNo) {}

  void appendHint(std::string* text) const override { text->append("auth string"); }
  std::string_view description() const override { return "auth string"; }
};

}  // namespace tunadm
