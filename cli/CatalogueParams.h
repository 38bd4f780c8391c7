// The concrete input parameters of the commands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/InputParam.h"

namespace tunadm {

// "profile": which profile a command acts on. Hidden: its value is one of the command's
// words.
class OptionalProfileParam final : public StringParam {
 public:
  OptionalProfileParam(ParamList* list, std::string_view default_value)
      : StringParam(list, "profile", default_value, Required::kNo) {
    hide();
  }

  std::string_view description() const override { return "profile name"; }
};

// Stands among a parameter's values for the name of any network interface of the host.
inline constexpr std::string_view kInterfaceValue = "<interface>";

// "network": the underlay interface.
class OptionalNetworkParam final : public StringParam {
 public:
  explicit OptionalNetworkParam(ParamList* list)
      : StringParam(list, "network", "auto", Required::kNo) {}

  void appendHint(std::string* text) const override { text->append("interface | auto"); }
  std::vector<std::string_view> values() const override { return {kInterfaceValue, "auto"}; }
  std::string_view description() const override { return "network interface"; }
};

// "invitation": the code that enrols the device.
class OptionalActivationParam final : public StringParam {
 public:
  explicit OptionalActivationParam(ParamList* list)
      : StringParam(list, "invitation", "", Required::kNo) {}

  void appendHint(std::string* text) const override { text->append("invitation"); }
  std::string_view description() const override { return "invitation code"; }
};

// "log_level": any spelling of a level that the level parser knows; an unknown one reads as INFO.
class OptionalLogLevelParam final : public InputParamBase {
 public:
  explicit OptionalLogLevelParam(ParamList* list)
      : InputParamBase(list, "log_level", Required::kNo) {}

  // The canonical full name of the level; "info" when none was given.
  const std::string& value() const { return value_; }
  // The text as it was given; empty when none was.
  const std::string& given() const { return given_; }

  [[nodiscard]] bool setFromText(std::string_view text) override;
  void appendHint(std::string* text) const override;
  std::vector<std::string_view> values() const override;
  std::string_view description() const override { return "log level"; }

 private:
  std::string value_ = "info";
  std::string given_;
};

// "helmsman": host and port of the management server.
class HelmsmanParam final : public InputParamBase {
 public:
  HelmsmanParam(ParamList* list, Required required);

  const std::string& host() const { return host_; }
  // Unchecked: what atoi reads after the first ":", or 8096 when there is no ":".
  int port() const { return port_; }

  // An empty text clears the value and is refused.
  [[nodiscard]] bool setFromText(std::string_view text) override;
  void appendHint(std::string* text) const override { text->append("addr:port"); }
  std::string_view description() const override { return "helmsman address, in host:port form"; }

 private:
  std::string host_;
  int port_;
};

// "sys": the name of the init-system adapter, stored unchecked.
class SysImplParam final : public InputParamBase {
 public:
  explicit SysImplParam(ParamList* list) : InputParamBase(list, "sys", Required::kNo) {}

  // The name of the init system to use: the given one, else the one that the host's marker files
  // show, else "null". The parameter counts as presented afterwards.
  const std::string& resolve();

  // An empty text means the init system that the host's marker files show, if any.
  [[nodiscard]] bool setFromText(std::string_view text) override;
  void appendHint(std::string* text) const override { text->append("sys-impl"); }
  std::vector<std::string_view> values() const override;
  bool hintTellsValues() const override { return false; }
  std::string_view description() const override { return "sys impl name"; }

 private:
  std::string value_;
};

}  // namespace tunadm
