#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "json/JsonSequencer.h"
#include "json/ScopedJson.h"
#include "json/TokenPrinter.h"

namespace tunadm {
namespace {

using Parse = jsObject* (*)(const char* text, std::ptrdiff_t length);
using Pair = std::pair<const char*, const char*>;

// "none" for a null pointer. The text is parsed where a sanitizer sees any read beyond its end.
std::string parsed(std::string_view text, Parse parse = &parseJson) {
  const std::vector<char> exact(text.begin(), text.end());
  const ScopedJson value(parse(exact.data(), static_cast<std::ptrdiff_t>(exact.size())));
  std::string out = value ? "" : "none";
  printJson(value.get(), &out);
  return out;
}

std::string repeated(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(JsonScanner, TokensAsPrinted) {
  const Pair cases[] = {
      {"\t[\r{\n] },: ", "[ { ] } , : "},
      {"null true false nulls True a.b_c1", "null true false nulls True a.b_c 1.000000 "},
      {"_a\xc3", "error: scanner error a error: scanner error "},
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
  testing::internal::CaptureStdout();
  printJsonTokens("1e200", -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout().size(), 100u);
}

TEST(JsonScanner, EveryByteOfAStringCounts) {
  const ScopedJson value(parseJson("\"a\0\\b\\f\\n\\r\\t\xff\"", 15));
  EXPECT_EQ(stringView(value.get()), std::string_view("a\0\b\f\n\r\t\xff", 8));
}

TEST(JsonParser, Values) {
  const Pair cases[] = {
      {R"({"a":1, b : [true,null , {}], c.d:"x", e:{f:{g:[]}},})",
       R"({ "a":1, "b":[ true, null, { } ], "c.d":"x", "e":{ "f":{ "g":[ ] } } })"},
      {R"({"a":1,"b":2,"a":[3]})", R"({ "a":[ 3 ], "b":2 })"},
      {R"({} "a)", "{ }"},
      // A closing bracket makes good what went wrong inside.
      {R"({"a" 1})", "{ }"},
      {"{a:1 x}", R"({ "a":1 })"},
      {"[,1]", "[ ]"},
      {"[1}]", "[ 1 ]"},
      {R"({"":1})", "{ }"},
      {R"([{"a":},[3],{"b":2}])", R"([ { }, [ 3 ], { "b":2 } ])"},
      {R"({"a":{"":{"c":[1]}},"":[2],b:2})", R"({ "a":{ }, "b":2 })"},
      // No value.
      {"", "none"},
      {"{} #", "none"},
      {"{}{}", "none"},
      {R"({"a":"abc)", "none"},
      {R"([{"":{"b":[1)", "none"},
  };
  for (const auto& [text, out] : cases) EXPECT_EQ(parsed(text), out) << text;
  EXPECT_EQ(parseJson(nullptr, 5), nullptr);
  EXPECT_EQ(parseJson("true", -1), makeBoolean(true));
}

TEST(JsonParser, Sequences) {
  const Pair cases[] = {
      {R"({"a":1}{"b":[{},true]} {)", R"([ { "a":1 }, { "b":[ { }, true ] } ])"},
      {"[1]{}{}", "[ ]"},
      {"{a:1 #,c:2}{b:null}", R"([ { "a":1 }, { "b":null } ])"},
      {"{a:1},{b:+2}{c:\"s\"}", R"([ { "a":1 } ])"},
  };
  for (const auto& [text, out] : cases) EXPECT_EQ(parsed(text, &parseJsonSequence), out) << text;
}

TEST(JsonParser, DepthAndSize) {
  constexpr int kCount = 500'000;
  const std::string opening = repeated("{a:[", kCount);
  EXPECT_EQ(parsed(opening), "none");
  EXPECT_TRUE(ScopedJson(parseJson((opening + repeated("]}", kCount)).c_str(), -1)));
  EXPECT_EQ(parsed('[' + repeated("1,", kCount) + ']').size(), 3u * kCount + 2);
  EXPECT_EQ(parsed('"' + repeated("\\n", kCount) + '"').size(), 2u * kCount + 2);
  EXPECT_EQ(parsed(repeated("9", kCount) + "e-499999"), "10");
}

// Under a sanitizer this finds values that have two owners, or none.
TEST(JsonParser, ByteSoup) {
  constexpr std::string_view kPieces[] = {"{", "}",  "[",    "]",      ",",   ":",  "a",  "\"b\"",
                                          "1", "\"", "null", "{\"\":", "{c:", "},", "\\", "\xff"};
  std::mt19937 random(7);
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (auto left = random() % 24; left > 0; --left) text += kPieces[random() % 16];
    const ScopedJson array(asArray(parseJsonSequence(text.c_str(), -1)));
    EXPECT_EQ(array.get() == nullptr, text.empty());
    (void)parsed(text);
  }
}

}  // namespace
}  // namespace tunadm
