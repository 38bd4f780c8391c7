#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/CommandCore.h"
#include "core/ProgramStatus.h"
#include "core/RequestForm.h"
#include "core/StatusText.h"
#include "json/JsonParser.h"
#include "json/JsonPrinter.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

StatusCode codeOf(unsigned bits) { return static_cast<StatusCode>(bits); }

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
  return status.details();
}

TEST(Binding, Words) {
  const std::pair<Lines, const char*> cases[] = {
      {{"needed=x", "=lost", ""}, ""},
      {{}, "illegal or missing parameter: needed"},
      {{"needed"}, "parameter value required"},
      {{"needed=<single-word-command-absent>"}, "parameter value required"},
      {{"needed=x", "foo=1"}, "disregarding unused input: foo"},
      {{"foo", "number=x"}, "disregarding unused input: foo"},
      {{"needed=x", "truth=maybe"}, "illegal value presented: \"maybe\""},
      {{"needed=x", "number="}, "illegal value presented: \"\""},
      {{"needed=x", "word=perhaps"}, "illegal single-word input: \"perhaps\""},
      {{"needed=", "command_name=x", "auth=a", "requestID=1", "output=o"}, ""},
  };
  for (const auto& [words, details] : cases) {
    SampleCommand command;
    EXPECT_EQ(bindWords(&command, words), details);
  }
  SampleCommand command;  // What is bound before a failure stays, and the last value counts.
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
      {R"("truth": 1)", "illegal value presented: 1"},
      {R"("number": true)", "illegal value presented: true"},
      {R"("text": 2.5)", "illegal value presented: 2.500000"},
      {R"("text": null)", "illegal value presented: null"},
      {R"("word": true)", "illegal single-word input: true"}};
  for (const auto& [member, details] : others) EXPECT_EQ(bound(member), details);
  EXPECT_FALSE(command.truth.value());
  const ScopedJson no_words(parseJson("[4]", -1));
  EXPECT_EQ(bindCommandWords(&command, no_words.get(), 0).details(), "parameter not a string");
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
    EXPECT_NE(bindWords(&command, words, 2), "");
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
    command.render(&lines);
    EXPECT_EQ(lines, expected) << c.option << c.code;
  }
  Lines lines;
  SampleCommand().render(&lines);  // one that never sets its status has failed
  EXPECT_EQ(lines, (Lines{"status_text: application error", "status_code: 0x12000001"}));
}

TEST(Status, CategoryZeroIsSuccess) {
  for (const unsigned code : {0U, 1U, 0x1002U}) EXPECT_TRUE(isSuccess(codeOf(code))) << code;
  for (const unsigned code : {0x10000003U, 0x20000001U, 0x80000000U, 0xffffffffU}) {
    EXPECT_FALSE(isSuccess(codeOf(code))) << code;
  }
}

TEST(StatusText, OfTheModuleElseOfTheCategory) {
  EXPECT_STREQ(statusText(codeOf(0x12001001)), "generic application error") << "nobody's yet";
  registerStatusTexts(kProgramModule, &programStatusText);
  // A later provider of the same module fills the gaps of the first.
  registerStatusTexts(kProgramModule, [](StatusCode code) -> const char* {
    return code == codeOf(0x12001fff) ? "from the second" : nullptr;
  });
  const std::pair<unsigned, const char*> cases[] = {
      {0x00000001, "success"},
      {0x00000000, "invalid status code"},
      {0x14000002, "stdlib error: opendir"},
      {0x1400000b, "stdlib error: waitpid"},
      {0x14000013, "stdlib error: system"},
      {0x00001002, "profile is currently running"},
      {0x12001001, "profile not found"},
      {0x12001fff, "from the second"},
      {0x00000003, "generic success"},
      {0x10000099, "generic client error"},
      {0x12002001, "generic application error"},
      {0x14000099, "generic host error"},
      {0x16000099, "generic external-dependency error"},
      {0x20000002, "unrecognized informational status code"},
      {0x22000001, "unrecognized transient-error status code"},
      {0x24000009, "unrecognized internal-error status code"},
      {0x15000000, "generic error code"},
      {0x17000000, "unrecognized status code value"},
      {0x80000000, "integer is not a status code"}};
  for (const auto& [code, text] : cases) EXPECT_STREQ(statusText(codeOf(code)), text) << code;
}

TEST(RequestForm, BuiltFromWords) {
  const char* words[] = {"tunadm", "profile", "create", "p1", "helmsman=h:1=2"};
  ScopedJson request;
  EXPECT_EQ(buildRequest(2, words, &request).code(), 0x10000002);
  EXPECT_EQ(buildRequest(5, words, &request).code(), 1);
  std::string text;
  printJson(request.get(), &text);
  EXPECT_EQ(text,
            "{ \"method\":\"profile create\", \"p1\":\"<single-word-command-present>\", "
            "\"helmsman\":\"h:1=2\", "
            "\"command_args\":[ \"profile\", \"create\", \"p1\", \"helmsman=h:1=2\" ] }");
}

}  // namespace
}  // namespace tunadm
