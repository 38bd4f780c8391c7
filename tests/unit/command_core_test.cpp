#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "core/CommandCore.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

// One parameter of each kind, and one result field of each kind.
class SampleCommand final : public TunadmCommandInstance {
 public:
  SampleCommand() : TunadmCommandInstance("sample command") {
    list_.lines() = {"one", "  two"};
    headless_.lines() = {"free text"};
    hidden_.setEmit(false);
  }
  void execute(StatusCodeResultField&) override {}

  StringParam text{paramList(), "text", "old", Required::kNo};
  IntParam number{paramList(), "number", 41, Required::kNo};
  BoolParam truth{paramList(), "truth", true, Required::kNo};
  SingleWordParam word{paramList(), "word"};
  StringParam needed{paramList(), "needed", "", Required::kYes};

 private:
  StringResult unset_{resultList(), "unset"};
  StringResult hidden_{resultList(), "hidden"};
  BoolResult flag_{resultList(), "flag"};
  StringVectorResultField list_{resultList(), "list"};
  StringVectorResultField headless_{resultList(), "_headless"};
};

jsObject* makeWords(const Lines& words) {
  jsObject* array = makeArray();
  for (const std::string& word : words) appendString(array, std::string_view(word));
  return array;
}

// The details of the failure, empty for success. The two naming words come on top.
std::string bindDetails(SampleCommand* command, Lines words) {
  words.insert(words.begin(), {"sample", "command"});
  const ScopedJson array(makeWords(words));
  const Status status = bindCommandWords(command, array.get(), 2);
  EXPECT_EQ(status.code(), status.ok() ? 1 : 0x10000003);
  EXPECT_EQ(status.context(), status.ok() ? "" : "bind_json_args");
  return status.details();
}

TEST(Binding, Failures) {
  const struct {
    Lines words;
    const char* details;
  } cases[] = {
      {{"needed=x"}, ""},
      {{"needed="}, ""},
      {{"needed=x", "=lost", ""}, ""},
      {{}, "illegal or missing parameter: needed"},
      {{"needed"}, "parameter value required"},
      {{"needed=<single-word-command-absent>"}, "parameter value required"},
      {{"needed=x", "foo=1"}, "disregarding unused input: foo"},
      {{"needed=x", "--JSON"}, "disregarding unused input: --JSON"},
      {{"foo", "number=x"}, "disregarding unused input: foo"},
      {{"needed=x", "truth=maybe"}, "illegal value presented: \"maybe\""},
      {{"needed=x", "number="}, "illegal value presented: \"\""},
      {{"needed=x", "word=perhaps"}, "illegal single-word input: \"perhaps\""},
      {{"needed=x", "command_name=x"}, ""},
      {{"needed=x", "auth=a", "requestID=1", "output=o"}, ""},
  };
  for (const auto& c : cases) {
    SampleCommand command;
    EXPECT_EQ(bindDetails(&command, c.words), c.details);
  }
}

TEST(Binding, Values) {
  SampleCommand command;
  EXPECT_FALSE(command.text.presented());
  EXPECT_EQ(bindDetails(&command, {"text=first", "needed=b=c", "word", "number=7", "text=last"}),
            "");
  EXPECT_EQ(command.text.value(), "last");
  EXPECT_EQ(command.needed.value(), "b=c");
  EXPECT_EQ(command.number.value(), 7);
  EXPECT_TRUE(command.word.present());
  EXPECT_EQ(bindDetails(&command, {"needed=", "word=FALSE"}), "");
  EXPECT_FALSE(command.word.present());
  EXPECT_TRUE(command.word.presented());
}

TEST(Binding, WhatIsBoundBeforeAFailureStays) {
  SampleCommand command;
  EXPECT_NE(bindDetails(&command, {"number=5", "number2=6", "text=new"}), "");
  EXPECT_EQ(command.number.value(), 5);
  EXPECT_EQ(command.text.value(), "old");
}

TEST(Binding, JsonValues) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    jsObject* value;
    const char* details;
    int number;
  } cases[] = {{"number", makeNumber(3.9), "", 3},
               {"number", makeNumber(-3.9), "", -3},
               {"number", makeNumber(1e300), "", 2147483647},
               {"number", makeNumber(-1e300), "", -2147483647 - 1},
               {"number", makeNumber(nan), "", 0},
               {"number", makeBoolean(true), "illegal value presented: true", 41},
               {"truth", makeBoolean(false), "", 41},
               {"truth", makeNumber(1), "illegal value presented: 1", 41},
               {"text", makeNumber(2.5), "illegal value presented: 2.500000", 41},
               {"text", makeArray(), "illegal value presented: [ ]", 41},
               {"text", makeNull(), "illegal value presented: null", 41},
               {"word", makeBoolean(true), "illegal single-word input: true", 41}};
  for (const auto& c : cases) {
    SampleCommand command;
    const ScopedJson object(makeObject());
    setStringMember(object.get(), "needed", "x");
    setMember(object.get(), c.name, c.value);
    EXPECT_EQ(bind_json_args(&command, object.get()).details(), c.details);
    EXPECT_EQ(command.number.value(), c.number);
  }
}

TEST(Binding, OptionsCountInTheirPlaceOnTheLine) {
  const struct {
    Lines words;
    bool quiet, verbose, json, text;
  } cases[] = {
      {{"a", "b"}, false, false, false, false},
      {{"a", "b", "--quiet", "--verbose"}, false, true, false, false},
      {{"a", "b", "--verbose", "--quiet", "--json", "--text"}, true, false, false, true},
      {{"a", "--quiet"}, true, false, false, false},
      {{"a", "--quiet", "--verbose"}, false, true, false, false},
  };
  for (const auto& c : cases) {
    SampleCommand command;
    const ScopedJson words(makeWords(c.words));
    (void)bindCommandWords(&command, words.get(), 2);  // fails: a parameter is missing
    const OutputFlags& flags = command.flags();
    EXPECT_EQ(flags.quiet, c.quiet);
    EXPECT_EQ(flags.verbose, c.verbose);
    EXPECT_EQ(flags.json, c.json);
    EXPECT_EQ(flags.text, c.text);
  }
  SampleCommand command;
  const ScopedJson words(makeArray());
  appendNumber(words.get(), 4);
  const Status status = bindCommandWords(&command, words.get(), 0);
  EXPECT_EQ(status.code(), 0x10000003);
  EXPECT_EQ(status.details() + status.context(), "parameter not a stringbinding input args");
}

TEST(IntParam, Texts) {
  const struct {
    const char* text;
    bool taken;
    int after;
  } cases[] = {{"+7", true, 7},
               {" \t\v12", true, 12},
               {"-2147483648", true, -2147483647 - 1},
               {"2147483647", true, 2147483647},
               {"2147483648", false, 41},
               {"-2147483649", false, 41},
               {"", false, 41},
               {" ", false, 41},
               {"+", false, 41},
               {"+-1", false, 41},
               {"1x", false, 41},
               {"1 ", false, 41},
               {"0x10", false, 41}};
  for (const auto& c : cases) {
    SampleCommand command;
    EXPECT_EQ(command.number.setFromText(c.text), c.taken) << c.text;
    EXPECT_EQ(command.number.value(), c.after) << c.text;
  }
}

TEST(BoolParam, Texts) {
  SampleCommand command;
  for (const char* text : {"false", "No", "oFF"}) {
    EXPECT_TRUE(command.truth.setFromText("yes"));
    EXPECT_TRUE(command.truth.setFromText(text));
    EXPECT_FALSE(command.truth.value()) << text;
  }
  for (const char* text : {"TRUE", "yes", "On"}) {
    EXPECT_TRUE(command.truth.setFromText("no"));
    EXPECT_TRUE(command.truth.setFromText(text));
    EXPECT_TRUE(command.truth.value()) << text;
  }
  EXPECT_FALSE(command.truth.setFromText(""));
  EXPECT_FALSE(command.truth.setFromInteger(1));
}

TEST(SingleWordParam, Texts) {
  const std::pair<const char*, bool> cases[] = {{"", false},
                                                {"<single-word-command-absent>", false},
                                                {"False", false},
                                                {"<single-word-command-present>", true},
                                                {"TRUE", true}};
  for (const auto& [text, present] : cases) {
    SampleCommand command;
    EXPECT_TRUE(command.word.setFromText(present ? "" : "true"));
    EXPECT_TRUE(command.word.setFromText(text)) << text;
    EXPECT_EQ(command.word.present(), present) << text;
    EXPECT_FALSE(command.word.setFromText("yes"));
  }
}

TEST(Rendering, StatusLinesByModeAndFieldsOfASuccess) {
  const Lines fields = {"unset: ", "flag: false", "list:", "one", "  two", "free text"};
  const struct {
    const char* option;
    bool success;
    Lines status;
  } cases[] = {
      {"--json", true, {}},
      {"--quiet", true, {}},
      {"--verbose",
       true,
       {"method: sample command", "status_text: success", "status_code: 0x00000001"}},
      {"--text",
       false,
       {"status_text: invalid argument (parameter value required)", "status_code: 0x10000003"}},
      {"--quiet", false, {"status_code: 0x10000003"}},
      {"--verbose",
       false,
       {"method: sample command", "status_text: invalid argument (parameter value required)",
        "status_code: 0x10000003"}},
  };
  for (const auto& c : cases) {
    SampleCommand command;
    EXPECT_TRUE(command.applyOption(c.option));
    command.statusField().status() =
        Status(kInvalidArgument, "parameter value required", "bind_json_args");
    if (c.success) command.statusField().status().reset();
    Lines expected = c.status;
    if (c.success) expected.insert(expected.end(), fields.begin(), fields.end());
    Lines lines;
    command.render(&lines);
    EXPECT_EQ(lines, expected) << c.option << c.success;
  }
}

TEST(Rendering, ACommandThatNeverSetsItsStatusHasFailed) {
  SampleCommand command;
  Lines lines;
  command.render(&lines);
  EXPECT_EQ(lines, (Lines{"status_text: application error", "status_code: 0x12000001"}));
}

TEST(ValueBinder, IntegersAndRefusals) {
  Lines lines;
  StringVectorValueBinder out(&lines);
  EXPECT_TRUE(out.addInteger("n", -5));
  EXPECT_TRUE(out.addList("", {}));
  EXPECT_EQ(lines, (Lines{"n: -5"}));
  ValueBinder sink;
  EXPECT_FALSE(sink.addText("a", "b") || sink.addList("a", {}) || sink.addBoolean("a", true) ||
               sink.addInteger("a", 1));
}

}  // namespace
}  // namespace tunadm
