#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/AsciiCase.h"
#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "json/JsonSequencer.h"
#include "json/ScopedJson.h"
#include "json/TokenPrinter.h"

namespace tunadm {
namespace {

using Parse = jsObject* (*)(const char* text, std::ptrdiff_t length);
using Pair = std::pair<const char*, const char*>;

std::string printed(const jsObject* value) {
  std::string out = ">";  // stays: printing appends
  printJson(value, &out);
  return out.substr(1);
}

// "none" for a null pointer. The text is parsed where a sanitizer sees any read beyond its end.
std::string parsed(std::string_view text, Parse parse = &parseJson) {
  const std::vector<char> exact(text.begin(), text.end());
  const ScopedJson value(parse(exact.data(), static_cast<std::ptrdiff_t>(exact.size())));
  return value ? printed(value.get()) : "none";
}

std::string repeated(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(AsciiCase, OnlyLettersOfAsciiHaveTwoForms) {
  EXPECT_TRUE(equalIgnoringCase("aZ@[`{\xc4", "Az@[`{\xc4"));
  for (const auto& [left, right] : {Pair{"@", "`"}, {"[", "{"}, {"\xc4", "\xe4"}, {"a", "ab"}}) {
    EXPECT_FALSE(equalIgnoringCase(left, right)) << left << right;
  }
  EXPECT_TRUE(startsWithIgnoringCase("WARNing", "warn"));
  EXPECT_TRUE(startsWithIgnoringCase("warn", "WARN"));
  EXPECT_TRUE(startsWithIgnoringCase("", ""));
  EXPECT_FALSE(startsWithIgnoringCase("war", "warn"));
  EXPECT_FALSE(startsWithIgnoringCase("awarn", "warn"));
}

TEST(JsonScanner, TokensAsPrinted) {
  const Pair cases[] = {
      {"\t[\r{\n] },: ", "[ { ] } , : "},
      {"null true false nulls True a.b_c1", "null true false nulls True a.b_c 1.000000 "},
      {"12abc 1:\"2,+.5]-2}3", "12.000000 1.000000 , 0.500000 ] -2.000000 } 3.000000 "},
      {"- .x 1[2 1e2 0x10 -inf", "0.000000 0.000000 1.000000 100.000000 16.000000 -inf "},
      {R"("\a,b""\"\\\/\'"1"c)", R"("?,b" ""\/'" 1.000000 )"},
      {"\"\\u0041\\q\\\n\\\"\" \"\" 1 \"\\\"\\", "\"?0041??\"\" \"\" 1.000000 "},
  };
  for (const auto& [text, tokens] : cases) {
    testing::internal::CaptureStdout();
    printJsonTokens(text, -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), tokens) << text;
  }
  const ScopedJson value(parseJson("\"a\0\\b\\f\\n\\r\\t\xff\"", 15));
  EXPECT_EQ(stringView(value.get()), std::string_view("a\0\b\f\n\r\t\xff", 8));
}

TEST(JsonParser, Values) {
  const Pair cases[] = {
      {R"({"a":1, b : [true,null , {}], c.d:"x", e:{f:{g:[]}},})",
       R"({ "a":1, "b":[ true, null, { } ], "c.d":"x", "e":{ "f":{ "g":[ ] } } })"},
      {R"({"a":1,"b":2,"a":[{}]})", R"({ "a":[ { } ], "b":2 })"},
      {R"({} "a)", "{ }"},
      // A closing bracket makes good what went wrong inside.
      {R"({"a" 1})", "{ }"},
      {"{a:1 x}", R"({ "a":1 })"},
      {R"([{"a":},[3],{"b":2}])", R"([ { }, [ 3 ], { "b":2 } ])"},
      {R"({"a":{"":{"c":[1]}},"":[2],b:2})", R"({ "a":{ }, "b":2 })"},
  };
  for (const auto& [text, out] : cases) EXPECT_EQ(parsed(text), out) << text;
  for (const char* text : {"", "{} #", "{}{}", R"({"a":"abc)", R"([{"":{"b":[1)"})
    EXPECT_EQ(parsed(text), "none") << text;
  EXPECT_EQ(parseJson(nullptr, 5), nullptr);
  const Pair sequences[] = {
      {R"({"a":1}{"b":[{},true]} {)", R"([ { "a":1 }, { "b":[ { }, true ] } ])"},
      {"[1]{}{}", "[ ]"},
      {"{a:1 #,c:2}{b:null}", R"([ { "a":1 }, { "b":null } ])"},
  };
  for (const auto& [text, out] : sequences) EXPECT_EQ(parsed(text, &parseJsonSequence), out);
}

// None of this may use the stack for each level.
TEST(JsonParser, DepthAndSize) {
  constexpr int kCount = 500'000;
  const std::string opening = repeated("{a:[", kCount);
  EXPECT_EQ(parsed(opening), "none");
  const ScopedJson tree(parseJson((opening + repeated("]}", kCount)).c_str(), -1));
  EXPECT_EQ(printed(ScopedJson(deepCopy(tree.get())).get()).size(), 12u * kCount - 1);
  EXPECT_EQ(parsed('[' + repeated("1,", kCount) + ']').size(), 3u * kCount + 2);
  EXPECT_EQ(parsed('"' + repeated("\\n", kCount) + '"').size(), 2u * kCount + 2);
}

TEST(JsonPrinter, Numbers) {
  std::string texts;
  for (const double number : {3.0, 2.5, 0.999999, 0.99998, -1e-6, -2.0, 2147483647.0, 2147483648.0,
                              -2147483648.0, HUGE_VAL, std::fabs(std::nan(""))}) {
    texts += printed(ScopedJson(makeNumber(number)).get()) + " ";
  }
  EXPECT_EQ(texts,
            "3 2.500000 1 0.999980 0 -2.000000 2147483647 2147483648.000000 -2147483648.000000 "
            "inf nan ");
  EXPECT_EQ(printed(ScopedJson(makeNumber(-1e308)).get()).size(), 317u);
}

TEST(JsonPrinter, StringsAndTheWordsOfAnArray) {
  const ScopedJson bytes(makeString(
      std::string_view(" \"\\/~\x00\x07\b\t\n\x0b\f\r\x0e\x1f\x7f\x80\xc3\xbf\xff.", 21)));
  EXPECT_EQ(printed(bytes.get()),
            R"(" \"\/~\u0000\u0007\b\t\n\u000B\u000C\r\u000E\u001F\u007F????.")");
  const char* text = "[ \"q\\\"\", null, [ ], { \"q'\t\xc3\":{ }, \"n\":\"\\t\" } ]";
  const ScopedJson array(parseJson(text, -1));
  EXPECT_EQ(printed(array.get()), text);
  const std::vector<std::string> words = {"q\"", "null", "[ ]",
                                          "{ \"q'\t\xc3\":{ }, \"n\":\"\\t\" }"};
  EXPECT_EQ(arrayToWords(array.get()), words);
}

TEST(JsonObject, SetMemberReplacesInPlaceAndRemovalMovesTheLastMemberIntoTheGap) {
  const ScopedJson object(parseJson(R"({"a":5, "b":6, "c":7, "d":8})", -1));
  jsObject* o = object.get();
  setMember(o, "b", memberValue(o, 1));  // the same value again
  setMember(o, "a", makeArray());
  setMember(o, "b", nullptr);  // removes it
  setMember(o, "", makeString("dropped"));
  setMember(o, std::string_view("a\0", 2), makeNull());
  EXPECT_EQ(printed(o), std::string_view("{ \"a\":[ ], \"d\":8, \"c\":7, \"a\0\":null }", 36));
  EXPECT_EQ(printed(ScopedJson(detachMember(o, "c")).get()), "7");
  EXPECT_EQ(findMemberIgnoringCase(o, "D"), 1);
  EXPECT_EQ(detachMember(o, ""), nullptr);
}

// Without an index of the names this takes minutes, not a moment.
TEST(JsonObject, ManyMembersStayFoundWhileTheyComeAndGo) {
  constexpr int kCount = 100000;
  const ScopedJson object(makeObject());
  const auto name = [](int i) { return "member" + std::to_string(i); };
  for (int i = 0; i < kCount; ++i) setMember(object.get(), name(i), makeNumber(i));
  for (int i = 0; i < kCount; i += 3) setMember(object.get(), name(i), nullptr);
  for (int i = 0; i < kCount; i += 6) setMember(object.get(), name(i), makeNumber(i));
  for (int i = 0; i < kCount; ++i) {
    const ScopedJson value(detachMember(object.get(), name(i)));
    ASSERT_EQ(printed(value.get()), i % 6 == 3 ? "" : std::to_string(i));
  }
  EXPECT_EQ(objectSize(object.get()), 0u);
}

}  // namespace
}  // namespace tunadm
