
#include <cstdio>
#include <sstream>
#include <utility>

#include "core/CommandCore.h"
#include "core/JsonString.h"
#include "core/ProgramStatus.h"
#include "core/RequestForm.h"
#include "core/StatusText.h"
#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "tests/support/Rows.h"

namespace tunadm {
namespace {

using Lines = std::vector<std::string>;

StatusCode codeOf(unsigned bits) { return static_cast<StatusCode>(bits); }

// One parameter and one result field of each kind.
class SampleCommand final : public TunadmCommandInstance {
 public:
  SampleCommand() : TunadmCommandInstance("sample command") {
    list_.lines() = {"one", "  two\n"};
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
std::string bindWords(SampleCommand* command, const std::string& line, std::size_t naming = 0) {
  const ScopedJson array(makeArray());
  std::istringstream words(line);
  for (std::string word; words >> word;) appendString(array.get(), std::string_view(word));
  const Status status = bindCommandWords(command, array.get(), naming);
  EXPECT_EQ(status.code(), status.ok() ? 1 : 0x10000003);
  return status.details();
}

TEST(Binding, Words) {
  expectRows({"needed=x =lost -> ", "needed= command_name=x auth=a requestID=1 output=o -> ",
              " -> illegal or missing parameter: needed", "needed -> parameter value required",
              "needed=<single-word-command-absent> -> parameter value required",
              "needed=x foo=1 -> disregarding unused input: foo",
              "foo number=x -> disregarding unused input: foo",
              "needed=x truth=maybe -> illegal value presented: \"maybe\"",
              "needed=x number= -> illegal value presented: \"\"",
              "needed=x word=perhaps -> illegal single-word input: \"perhaps\""},
             [](const std::string& line) {
               SampleCommand command;
               return bindWords(&command, line);
             });
  SampleCommand command;  // What is bound before a failure stays, and the last value counts.
  EXPECT_NE(bindWords(&command, "number=5 number2=6 text=new"), "");
  EXPECT_EQ(command.number.value(), 5);
  EXPECT_FALSE(command.text.presented());
  EXPECT_EQ(bindWords(&command, "text=first needed=b=c word text=last"), "");
  EXPECT_EQ(command.text.value(), "last");
  EXPECT_EQ(command.needed.value(), "b=c");
  EXPECT_TRUE(command.word.present());
}

TEST(Binding, JsonValues) {
  SampleCommand command;
  expectRows(
      {R"("number": 3.9 -> 3)", R"("number": -3.9 -> -3)", R"("number": 1e300 -> 2147483647)",
       R"("number": -1e300 -> -2147483648)", R"("truth": 1 -> illegal value presented: 1)",
       R"("number": true -> illegal value presented: true)",
       R"("text": 2.5 -> illegal value presented: 2.500000)",
       R"("text": null -> illegal value presented: null)",
       R"("word": true -> illegal single-word input: true)"},
      [&](const std::string& member) {
        const ScopedJson object(parseJson((R"({"needed": "x", )" + member + "}").c_str(), -1));
        const Status bound = bind_json_args(&command, object.get());
        return bound.ok() ? std::to_string(command.number.value()) : bound.details();
      });
}

TEST(Binding, OptionsCountInTheirPlaceOnTheLine) {
  expectRows({"a b --quiet --verbose -> v", "a --quiet --text --json -> qj",
              "a b --verbose --quiet --json --text -> qt"},
             [](const std::string& line) {
               SampleCommand command;
               EXPECT_NE(bindWords(&command, line, 2), "");
               const OutputFlags& flags = command.flags();
               std::string shown = flags.quiet ? "q" : "";
               shown.append(flags.verbose ? "v" : "").append(flags.json ? "j" : "");
               return shown.append(flags.text ? "t" : "");
             });
}

TEST(Params, Texts) {
  SampleCommand command;
  for (const char* text : {"2147483648", "-2147483649", "", " ", "+", "+-1", "1x", "1 ", "0x10"})
    EXPECT_FALSE(command.number.setFromText(text)) << text;
  for (const char* text : {"7", "+7", " \t\v7", "007"}) {
    EXPECT_TRUE(command.number.setFromText(text)) << text;
    EXPECT_EQ(command.number.value(), 7) << text;
  }
  bool expected = true;  // each text below inverts what the one before it set
  for (const char* text : {"false", "TRUE", "No", "yes", "oFF", "On"}) {
    EXPECT_TRUE(command.truth.setFromText(text)) << text;
    EXPECT_EQ(command.truth.value(), expected = !expected) << text;
  }
  for (const char* text : {"False", "TRUE", "<single-word-command-absent>",
                           "<single-word-command-present>", "", "true"}) {
    EXPECT_TRUE(command.word.setFromText(text)) << text;
    EXPECT_EQ(command.word.present(), expected = !expected) << text;
  }
  EXPECT_FALSE(command.truth.setFromText(""));
  EXPECT_FALSE(command.word.setFromText("yes"));
}

Lines linesOf(const SampleCommand& command) {
  Lines lines;
  command.render([&lines](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

TEST(Rendering, StatusLinesByModeAndFieldsOfASuccess) {
  const auto rendered = [](const char* option, const Status& status) {
    SampleCommand command;
    EXPECT_TRUE(command.applyOption(option));
    command.statusField().status() = status;
    return linesOf(command);
  };
  const std::string method = "method: sample command";
  const std::string text = "status_text: invalid argument (no value)";
  const std::string code = "status_code: 0x10000003";
  const Status failed(kInvalidArgument, "no value", "");
  EXPECT_EQ(rendered("--text", failed), (Lines{text, code}));
  EXPECT_EQ(rendered("--quiet", failed), (Lines{code}));
  EXPECT_EQ(rendered("--verbose", failed), (Lines{method, text, code}));
  Lines fields = {"unset: ", "flag: false", "list:", "one", "  two\n", "free text"};
  EXPECT_EQ(rendered("--quiet", Status(kSuccess)), fields);
  fields.insert(fields.begin(), {method, "status_text: success", "status_code: 0x00000001"});
  EXPECT_EQ(rendered("--verbose", Status(kSuccess)), fields);
  EXPECT_EQ(linesOf(SampleCommand()),  // one that never sets its status has failed
            (Lines{"status_text: application error", "status_code: 0x12000001"}));
}

std::string jsonOf(const SampleCommand& command) {
  std::string json;
  command.renderJson([&json](std::string_view text) { json += text; });
  return json;
}

TEST(Rendering, JsonByOutcomeAndNeverByOption) {
  for (const char* option : {"--quiet", "--verbose", "--text"}) {
    SampleCommand command;
    EXPECT_EQ(bindWords(&command, std::string("needed=x output=json requestID=\"7\" ") + option),
              "");
    EXPECT_TRUE(command.jsonWanted());
    EXPECT_EQ(jsonOf(command),
              "{\"requestID\":\"\\\"7\\\"\",\"method\":\"sample command\","
              "\"status_code\":301989889,\"status_text\":\"application error\"}\n");
  }
  SampleCommand command;
  command.statusField().status() = Status(kSuccessWithWarnings, "some", "there");
  EXPECT_EQ(jsonOf(command),
            "{\"method\":\"sample command\",\"status_code\":2,\"status_text\":\"success with "
            "warnings\",\"status_details\":\"some\",\"status_context\":\"there\",\"unset\":\"\","
            "\"flag\":false,\"list\":[\"one\",\"  two\",\"\"],\"headless\":[\"free text\"]}\n");
  for (const char* word : {"output=", "output=JSON", "output=json ", "--json"}) {
    SampleCommand other;
    const ScopedJson words(makeArray());
    appendString(words.get(), std::string_view(word));
    (void)bindCommandWords(&other, words.get(), 0);  // refused for the parameter that is missing
    EXPECT_FALSE(other.jsonWanted()) << word;
  }
}

TEST(JsonText, EscapesOnlyWhatItMust) {
  for (int byte = 0; byte < 0x20; ++byte) {
    const std::string letters = "btn fr";  // of the bytes from 8 on
    const char letter = byte < 8 || byte > 13 ? ' ' : letters[static_cast<std::size_t>(byte) - 8];
    char expected[sizeof("\"\\u0000\"")];
    (void)std::snprintf(expected, sizeof(expected), letter == ' ' ? "\"\\u%04x\"" : "\"\\%c\"",
                        letter == ' ' ? byte : letter);
    std::string json;
    appendJsonString(std::string(1, static_cast<char>(byte)), &json);
    EXPECT_EQ(json, expected);
  }
  const std::string replaced = "\xef\xbf\xbd";
  const std::string whole =
      "\x7f \xc2\x80 \xdf\xbf \xe0\xa0\x80 \xed\x9f\xbf\xee\x80\x80 "
      "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf";
  const std::pair<std::string, std::string> cases[] = {
      {R"(a"b\c/)", R"(a\"b\\c/)"},
      {whole, whole},
      // One replacement for each byte that begins nothing, such as those of overlong forms, of
      // surrogates and of numbers above U+10FFFF.
      {"\x80 \xc0\xaf\xc1\xbf \xe0\x9f\xbf \xf0\x8f\xbf\xbf", "? ???? ??? ????"},
      {"\xed\xa0\x80\xed\xbf\xbf \xf4\x90\x80\x80 \xf5\xff\xfe", "?????? ???? ???"},
      // One for the longest beginning of a character.
      {"\xe2\x82", "?"},
      {"\xe2\x82\" \xf0\x9f\x98\xc3\xc3\xa4", "?\\\" ??\xc3\xa4"},
      {"a\xf1\x80\x80\xe1\x80\xc2"
       "b\x80"
       "c\x80\xbf"
       "d",
       "a???b?c??d"},
  };
  for (const auto& [text, expected] : cases) {
    std::string wanted = "\"";
    for (const char byte : expected) wanted += byte == '?' ? replaced : std::string(1, byte);
    std::string json;
    appendJsonString(text, &json);
    EXPECT_EQ(json, wanted + "\"");
  }
}

TEST(StatusText, OfTheModuleElseOfTheCategory) {
  static unsigned module = 0x800;  // what is registered stays: a repeated test needs another
  const StatusCode own = codeOf(0x12000001 | ++module << 12);
  registerStatusTexts(static_cast<int>(module), nullptr);
  EXPECT_STREQ(statusText(own), "generic application error") << "not registered yet";
  registerStatusTexts(static_cast<int>(module), [](StatusCode) { return "its own"; });
  EXPECT_STREQ(statusText(own), "its own");
  registerStatusTexts(kProgramModule, &programStatusText);
  for (const std::string row :
       {"00000001 success", "00000000 invalid status code", "14000002 stdlib error: opendir",
        "14000013 stdlib error: system", "00001002 profile is currently running",
        "12001001 profile not found", "10000099 generic client error",
        "16000099 generic external-dependency error", "15000000 generic error code",
        "20000002 unrecognized informational status code",
        "24000009 unrecognized internal-error status code",
        "17000000 unrecognized status code value", "80000000 integer is not a status code"}) {
    const StatusCode code = codeOf(static_cast<unsigned>(std::stoul(row, nullptr, 16)));
    EXPECT_EQ(statusText(code), row.substr(9)) << row;
    EXPECT_EQ(isSuccess(code), row.rfind("00", 0) == 0) << row;
  }
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
