
#include <sstream>

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
  EXPECT_EQ(status.code(), status.ok() ? 1 : 0x10000003) << line;
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
  EXPECT_EQ(command.text.value() + " " + command.needed.value(), "last b=c");
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

// What a number, a truth and a word take a text for, "-" when they refuse it.
TEST(Params, Texts) {
  expectRows({"7 -> 7 - -", "+7 -> 7 - -", " \t\v7 -> 7 - -", "-007 -> -7 - -", "1x -> - - -",
              "  -> - - -", "+ -> - - -", "+-1 -> - - -", "1  -> - - -", "0x10 -> - - -",
              "-2147483649 -> - - -", "2147483648 -> - - -", "No -> - off -", "yes -> - on -",
              "oFF -> - off -", "On -> - on -",
              // What a word takes.
              "TRUE -> - on on", "true -> - on on", "False -> - off off", "false -> - off off",
              " -> - - off", "<single-word-command-absent> -> - - off",
              "<single-word-command-present> -> - - on"},
             [](const std::string& text) {
               SampleCommand command;
               EXPECT_TRUE(command.word.setFromText("true"));
               const bool number = command.number.setFromText(text);
               const bool truth = command.truth.setFromText(text);
               const bool word = command.word.setFromText(text);
               std::string shown = number ? std::to_string(command.number.value()) : "-";
               shown.append(!truth ? " -" : command.truth.value() ? " on" : " off");
               return shown.append(!word ? " -" : command.word.present() ? " on" : " off");
             });
}

// An option counts in its place on the line, also among the words that name the command.
TEST(Rendering, LinesByOptionsAndOutcome) {
  const std::string method = "method: sample command|", code = "status_code: 0x10000003|";
  const std::string text = "status_text: invalid argument (illegal or missing parameter: needed)|";
  const std::string fields = "unset: |flag: false|list:|one|  two\n|free text|";
  expectRows({"a b output=JSON -> " + text + code, "a --quiet --text --json -> " + code + "json|",
              "a b --quiet --verbose output= -> " + method + text + code,
              "a b --verbose --quiet --json --text output=json -> " + code + "text|in JSON|",
              "a b needed=x --quiet -> " + fields,
              "a b needed=x --verbose -> " + method +
                  "status_text: success|status_code: 0x00000001|" + fields},
             [](const std::string& line) {
               SampleCommand command;
               EXPECT_EQ(command.statusField().status().code(), 0x12000001) << "not set yet";
               const std::string details = bindWords(&command, line, 2);
               command.statusField().status() =
                   details.empty() ? Status(kSuccess) : Status(kInvalidArgument, details, "");
               std::string shown;
               command.render([&shown](std::string_view each) { shown.append(each).append("|"); });
               shown.append(command.flags().json ? "json|" : "");
               shown.append(command.flags().text ? "text|" : "");
               return shown.append(command.jsonWanted() ? "in JSON|" : "");
             });
}

// Which of one value of each kind a sink takes, of a status last.
std::vector<bool> takenBy(ValueBinder&& sink) {
  return {sink.addText("", ""),
          sink.addInteger("", 0),
          sink.addBoolean("", true),
          sink.addList("", [](const LineReceiver&) {}),
          sink.addRecord("", {}),
          sink.addRecords("", [](const RecordReceiver&) {}),
          sink.addStatus("", Status(kSuccess))};
}

TEST(Sinks, TakeWhatTheyCanShow) {
  std::vector<bool> expected(7, false);
  EXPECT_EQ(takenBy(ValueBinder()), expected);
  expected.assign({true, true, true, true, true, true, false});
  EXPECT_EQ(takenBy(StringVectorValueBinder([](std::string_view) {})), expected);
  NamedValueBinder input;  // A parameter takes no kind by default.
  EXPECT_FALSE(input.setFromText("") || input.setFromInteger(0) || input.setFromBoolean(true) ||
               input.setFromNamedText("", ""));
}

// Shows as "~" what replaces a byte that is not part of a character.
std::string escaped(const std::string& text) {
  std::string json;
  appendJsonString(text, &json);
  for (std::size_t at = 0; (at = json.find("\xef\xbf\xbd")) != json.npos;)
    json.replace(at, 3, 1, '~');
  return json;
}

TEST(JsonText, EscapesOnlyWhatItMust) {
  std::string controls;
  for (char byte = 0; byte < 0x20; ++byte) controls += byte;
  EXPECT_EQ(escaped(controls),
            R"("\u0000\u0001\u0002\u0003\u0004\u0005\u0006\u0007\b\t\n\u000b\f\r\u000e\u000f)"
            R"(\u0010\u0011\u0012\u0013\u0014\u0015\u0016\u0017\u0018\u0019\u001a\u001b\u001c)"
            R"(\u001d\u001e\u001f")");
  const std::string whole =
      "\x7f \xc2\x80 \xdf\xbf \xe0\xa0\x80 \xed\x9f\xbf"
      "\xee\x80\x80 \xf0\x90\x80\x80\xf4\x8f\xbf\xbf";
  EXPECT_EQ(escaped(whole), '"' + whole + '"');
  expectRows({R"(a"b\c/ -> "a\"b\\c/")",
              // One replacement for each byte that begins nothing, such as those of overlong forms,
              // of surrogates and of numbers above U+10FFFF.
              "\x80 \xc0\xaf\xc1\xbf \xe0\x9f\xbf \xf0\x8f\xbf\xbf -> \"~ ~~~~ ~~~ ~~~~\"",
              "\xed\xa0\x80\xed\xbf\xbf \xf4\x90\x80\x80 \xf5\xff\xfe -> \"~~~~~~ ~~~~ ~~~\"",
              // One for the longest beginning of a character.
              "\xe2\x82 -> \"~\"", "\xe2\x82\" \xf0\x9f\x98\xc3\xc3\xa4 -> \"~\\\" ~~\xc3\xa4\"",
              "z\xf1\x80\x80\xe1\x80\xc2y\x80x\x80\xbfw -> \"z~~~y~x~~w\""},
             &escaped);
}

TEST(StatusText, OfTheModuleElseOfTheCategory) {
  static int module = 0x800;  // what is registered stays: a repeated test needs another
  const StatusCode own = 0x12000001 | ++module << 12;
  registerStatusTexts(module, nullptr);
  EXPECT_STREQ(statusText(own), "generic application error") << "not registered yet";
  registerStatusTexts(module, [](StatusCode) { return "its own"; });
  EXPECT_STREQ(statusText(own), "its own");
  registerStatusTexts(kProgramModule, &programStatusText);
  expectRows(
      {"00000001 -> success (good)", "00000000 -> invalid status code (good)",
       "00001002 -> profile is currently running (good)", "12001001 -> profile not found",
       "14000002 -> stdlib error: opendir", "14000013 -> stdlib error: system",
       "10000099 -> generic client error", "15000000 -> generic error code",
       "16000099 -> generic external-dependency error",
       "20000002 -> unrecognized informational status code",
       "24000009 -> unrecognized internal-error status code",
       "17000000 -> unrecognized status code value", "80000000 -> integer is not a status code"},
      [](const std::string& digits) {
        const auto code = static_cast<StatusCode>(std::stoul(digits, nullptr, 16));
        return std::string(statusText(code)) + (isSuccess(code) ? " (good)" : "");
      });
}

TEST(StatusText, OfFailedCalls) {
  std::string texts;
  for (int code = 0x14000001; code < 0x14000015; ++code)
    texts += statusText(static_cast<StatusCode>(code)) + std::string("; ");
  EXPECT_EQ(texts,
            "error on host system; stdlib error: opendir; stdlib error: readlink; "
            "stdlib error: file stat; stdlib error: file open; stdlib error: file read; "
            "stdlib error: file write; stdlib error: chmod; stdlib error: getifaddrs; "
            "stdlib error: fork; stdlib error: waitpid; stdlib error: unlink; "
            "stdlib error: unlink(directory); stdlib error: rmdir; stdlib error: mkdir; "
            "stdlib error: rename; stdlib error: copyfile; stdlib error: getcwd; "
            "stdlib error: system; generic host error; ");
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
