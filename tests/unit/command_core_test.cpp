#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/CommandCore.h"
#include "json/JsonParser.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

// One parameter and one result field of each kind.
class SampleCommand final : public TunadmCommandInstance {
 public:
  SampleCommand() : TunadmCommandInstance("sample command") {
    list_.lines() = {"one", "  two"};
    headless_.lines() = {"free text"};
  }
  void execute(StatusCodeResultField&) override {}

  StringParam text{paramList(), "text", "old", Required::kNo};
  IntParam number{paramList(), "number", 41, Required::kNo};
  BoolParam truth{paramList(), "truth", true, Required::kNo};
  SingleWordParam word{paramList(), "word"};
  StringParam needed{paramList(), "needed", "", Required::kYes};

 private:
  StringResult unset_{resultList(), "unset"};
  BoolResult flag_{resultList(), "flag"};
  StringVectorResultField list_{resultList(), "list"};
  StringVectorResultField headless_{resultList(), "_headless"};
};

// The details of the failure, empty for success. The first `naming` words name the command.
std::string bindWords(SampleCommand* command, const Lines& words, std::size_t naming = 0) {
  const ScopedJson array(makeArray());
  for (const std::string& word : words) appendString(array.get(), std::string_view(word));
  const Status status = bindCommandWords(command, array.get(), naming);
  EXPECT_EQ(status.code(), status.ok() ? 1 : 0x10000003);
  EXPECT_EQ(status.context(), status.ok() ? "" : "bind_json_args");
  return status.details();
}

TEST(Binding, Words) {
  const std::pair<Lines, const char*> cases[] = {
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
  for (const auto& [words, details] : cases) {
    SampleCommand command;
    EXPECT_EQ(bindWords(&command, words), details);
  }
}

TEST(Binding, TheLastValueCountsAndWhatIsBoundBeforeAFailureStays) {
  SampleCommand command;
  EXPECT_NE(bindWords(&command, {"number=5", "number2=6", "text=new"}), "");
  EXPECT_EQ(command.number.value(), 5);
  EXPECT_FALSE(command.text.presented());
  EXPECT_EQ(bindWords(&command, {"text=first", "needed=b=c", "word", "text=last"}), "");
  EXPECT_EQ(command.text.value() + command.needed.value(), "lastb=c");
  EXPECT_TRUE(command.word.present());
}

TEST(Binding, JsonValues) {
  SampleCommand command;
  const auto bound = [&command](const std::string& member) {
    const ScopedJson object(parseJson((R"({"needed": "x", )" + member + "}").c_str(), -1));
    return bind_json_args(&command, object.get()).details();
  };
  const std::pair<const char*, int> numbers[] = {
      {"3.9", 3}, {"-3.9", -3}, {"1e300", INT32_MAX}, {"-1e300", INT32_MIN}};
  for (const auto& [text, number] : numbers) {
    EXPECT_EQ(bound(std::string("\"number\": ") + text), "");
    EXPECT_EQ(command.number.value(), number);
  }
  const std::pair<const char*, const char*> others[] = {
      {R"("truth": false)", ""},
      {R"("number": true)", "illegal value presented: true"},
      {R"("truth": 1)", "illegal value presented: 1"},
      {R"("text": 2.5)", "illegal value presented: 2.500000"},
      {R"("text": [])", "illegal value presented: [ ]"},
      {R"("text": null)", "illegal value presented: null"},
      {R"("word": true)", "illegal single-word input: true"}};
  for (const auto& [member, details] : others) EXPECT_EQ(bound(member), details);
  EXPECT_FALSE(command.truth.value());
  const ScopedJson no_words(parseJson("[4]", -1));
  const Status status = bindCommandWords(&command, no_words.get(), 0);
  EXPECT_EQ(status.details() + status.context(), "parameter not a stringbinding input args");
}

TEST(Binding, OptionsCountInTheirPlaceOnTheLine) {
  using FourFlags = std::array<bool, 4>;  // quiet, verbose, json, text
  const std::pair<Lines, FourFlags> cases[] = {
      {{"a", "b", "--quiet", "--verbose"}, {false, true, false, false}},
      {{"a", "b", "--verbose", "--quiet", "--json", "--text"}, {true, false, false, true}},
      {{"a", "--quiet", "--text", "--json"}, {true, false, true, false}},
  };
  for (const auto& [words, expected] : cases) {
    SampleCommand command;
    EXPECT_EQ(bindWords(&command, words, 2), "illegal or missing parameter: needed");
    const OutputFlags& flags = command.flags();
    EXPECT_EQ((FourFlags{flags.quiet, flags.verbose, flags.json, flags.text}), expected);
  }
}

TEST(Params, Texts) {
  SampleCommand command;
  for (const char* text : {"2147483648", "-2147483649", "", " ", "+", "+-1", "1x", "1 ", "0x10"}) {
    EXPECT_FALSE(command.number.setFromText(text)) << text;
  }
  const std::pair<const char*, int> taken[] = {
      {"+7", 7}, {" \t\v12", 12}, {"-2147483648", INT32_MIN}, {"2147483647", INT32_MAX}};
  for (const auto& [text, number] : taken) {
    EXPECT_TRUE(command.number.setFromText(text)) << text;
    EXPECT_EQ(command.number.value(), number) << text;
  }

  bool expected = true;  // each text below turns over what the one before it set
  for (const char* text : {"false", "TRUE", "No", "yes", "oFF", "On"}) {
    EXPECT_TRUE(command.truth.setFromText(text)) << text;
    EXPECT_EQ(command.truth.value(), expected = !expected) << text;
  }
  for (const char* text : {"False", "TRUE", "<single-word-command-absent>",
                           "<single-word-command-present>", "", "true"}) {
    EXPECT_TRUE(command.word.setFromText(text)) << text;
    EXPECT_EQ(command.word.present(), expected = !expected) << text;
  }
  EXPECT_FALSE(command.truth.setFromText("") || command.word.setFromText("yes"));
}

TEST(Rendering, StatusLinesByModeAndFieldsOfASuccess) {
  const Lines fields = {"unset: ", "flag: false", "list:", "one", "  two", "free text"};
  const std::string method = "method: sample command";
  const std::string text = "status_text: invalid argument (no value)";
  const std::string code = "status_code: 0x10000003";
  const struct {
    const char* option;
    StatusCode code;
    Lines status;
  } cases[] = {
      {"--json", kSuccess, {}},
      {"--quiet", kSuccess, {}},
      {"--verbose", kSuccess, {method, "status_text: success", "status_code: 0x00000001"}},
      {"--text", kInvalidArgument, {text, code}},
      {"--quiet", kInvalidArgument, {code}},
      {"--verbose", kInvalidArgument, {method, text, code}},
  };
  for (const auto& c : cases) {
    SampleCommand command;
    EXPECT_TRUE(command.applyOption(c.option));
    command.statusField().status() = Status(c.code, c.code == kSuccess ? "" : "no value", "");
    Lines expected = c.status;
    if (c.code == kSuccess) expected.insert(expected.end(), fields.begin(), fields.end());
    Lines lines;
    command.render([&lines](std::string_view line) { lines.emplace_back(line); });
    EXPECT_EQ(lines, expected) << c.option << c.code;
  }
  Lines lines;
  SampleCommand().render([&lines](std::string_view line) {
    lines.emplace_back(line);
  });  // one that never sets its status has failed
  EXPECT_EQ(lines, (Lines{"status_text: application error", "status_code: 0x12000001"}));
}

}  // namespace
}  // namespace tunadm
