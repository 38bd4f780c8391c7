#include <sys/resource.h>

#include <cmath>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "json/AsciiCase.h"
#include "json/JsonParser.h"
#include "json/JsonPrinter.h"
#include "json/JsonSequencer.h"
#include "json/ScopedJson.h"
#include "json/TokenPrinter.h"
#include "tests/support/Rows.h"

namespace tunadm {
namespace {

using Pair = std::pair<const char*, const char*>;

std::string printed(const jsObject* value) {
  std::string out = ">";  // stays: printing appends
  printJson(value, &out);
  return out.substr(1);
}

// Releases the value that it prints.
std::string taken(jsObject* value) { return printed(ScopedJson(value).get()); }

// "none" for a null pointer. The text is parsed where a sanitizer sees any read beyond its end.
std::string parsed(std::string_view text) {
  const std::vector<char> exact(text.begin(), text.end());
  jsObject* const value = parseJson(exact.data(), static_cast<std::ptrdiff_t>(exact.size()));
  return value == nullptr ? "none" : taken(value);
}

TEST(AsciiCase, OnlyLettersOfAsciiHaveTwoForms) {
  EXPECT_TRUE(equalIgnoringCase("aZ@[`{\xc4", "Az@[`{\xc4"));
  for (const auto& [left, right] : {Pair{"@", "`"}, {"[", "{"}, {"\xc4", "\xe4"}, {"a", "ab"}})
    EXPECT_FALSE(equalIgnoringCase(left, right)) << left << right;
}

std::string tokens(const std::string& text) {
  testing::internal::CaptureStdout();
  printJsonTokens(text.c_str(), -1);
  return testing::internal::GetCapturedStdout();
}

TEST(JsonScanner, TokensAsPrinted) {
  expectRows({"\t[\r{\n] },:  -> [ { ] } , : ",
              "null true false nulls True a.b_c1 -> null true false nulls True a.b_c 1.000000 ",
              "12abc 1:\"2,+.5]-2}3 -> 12.000000 1.000000 , 0.500000 ] -2.000000 } 3.000000 ",
              "#a -0 b`z -> error: scanner error a -0.000000 b error: scanner error z ",
              "- .x 1[2 1e2 0x10 -inf -> 0.000000 0.000000 1.000000 100.000000 16.000000 -inf ",
              R"("\a,b""\"\\\/\'"1"c -> "?,b" ""\/'" 1.000000 )",
              "\"\\u0041\\q\\\n\\\"\" \"\" 1 \"\\\"\\ -> \"?0041??\"\" \"\" 1.000000 "},
             &tokens);
  EXPECT_EQ(tokens("1e99").size(), 100u);  // cut, and the blank
  const ScopedJson value(parseJson("\"a\0\\b\\f\\n\\r\\t\xff\"", 15));
  EXPECT_EQ(stringView(value.get()), std::string_view("a\0\b\f\n\r\t\xff", 8));
}

// The scanner looks at several bytes at a time, and short texts are stored in another way.
TEST(JsonScanner, StringsOfAllLengths) {
  for (std::size_t length = 0; length < 40; ++length) {
    const std::string piece(length, '\xa2');  // a quote but for its high bit
    for (const auto& [escape, byte] : {Pair{"", ""}, {R"(\")", "\""}, {R"(\\)", "\\"}}) {
      std::string text = "[\"";
      text.append(piece).append(escape).append(piece).append(R"(","\"",11111111111111111])");
      const ScopedJson array(parseJson(text.c_str(), -1));
      EXPECT_EQ(stringView(arrayAt(array.get(), 0)), std::string(piece).append(byte).append(piece));
      EXPECT_EQ(arraySize(array.get()), 3u) << text;
    }
    EXPECT_EQ(parsed('"' + piece + R"(\")"), "none") << length;
    const ScopedJson object(makeObject());
    EXPECT_STREQ(stringText(setStringMember(object.get(), piece + "n", piece)), piece.c_str());
    EXPECT_EQ(findMember(object.get(), piece + "n"), 0) << length;
    EXPECT_EQ(findMember(object.get(), piece + "m"), -1) << length;
  }
}

TEST(JsonScanner, NumbersAreReadAsByTheCLibrary) {
  std::istringstream texts(
      "-17 999999999999999 9007199254740993 18446744073709551617 0.1 5. -5.5 .5 -. +3 1-2 "
      "1234567.89012345 9.675781823764509 "
      "123456789012345.5 0.30000000000000004 1.5e-3 1.5.5 -1e999 1e-400 0x1p3 -0x.8");
  for (std::string text; texts >> text;) {
    const ScopedJson value(parseJson(text.c_str(), -1));
    EXPECT_EQ(numberValue(value.get()), std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(JsonParser, Values) {
  expectRows({R"({"a":1, b : [true,null , {}]} -> { "a":1, "b":[ true, null, { } ] })",
              R"({c.d:"x", e:{f:{g:[]}},} -> { "c.d":"x", "e":{ "f":{ "g":[ ] } } })",
              R"({"a":1,"b":2,"a":[{}]} -> { "a":[ { } ], "b":2 })", R"({} "a -> { })",
              R"([false,"",null,1,] -> [ false, "", null, 1 ])",
              // A closing bracket makes good what went wrong inside.
              R"({"a" 1} -> { })", R"({a:1 b:2} -> { "a":1 })", "{a b:1} -> { }", "[,1] -> [ ]",
              "[1:2:,3] -> [ 1, 3 ]", R"([{"a":},[3],{"b":2}] -> [ { }, [ 3 ], { "b":2 } ])",
              "{a::1} -> { }", R"({"a":{"":{"c":[1]}},"":[2],b:2} -> { "a":{ }, "b":2 })",
              R"({"":1,b:2} -> { })", R"({a:{b,},c:3} -> { "a":{ }, "c":3 })", "{[1],a:1} -> { }",
              R"({a:[{b}],c:[[3],4]} -> { "a":[ { } ], "c":[ [ 3 ], 4 ] })",
              // Nothing does at the top level, or at the end.
              " -> none", "{} # -> none", "{}{} -> none", R"({"a":"abc -> none)",
              R"([{"":{"b":[1 -> none)", "[1} -> none", "{a:1] -> none", "] -> none", "} -> none",
              "1 2 -> none", "a -> none", "[1]1 -> none"},
             &parsed);
  expectRows({R"({"a":1}{"b":[{},true]} { -> [ { "a":1 }, { "b":[ { }, true ] } ])",
              "[1]{}{} -> [ ]", R"({a:1 #,c:2}{b:null} -> [ { "a":1 }, { "b":null } ])"},
             [](const std::string& text) { return taken(parseJsonSequence(text.c_str(), -1)); });
  EXPECT_EQ(parseJson(nullptr, 5), nullptr);
  EXPECT_EQ(parseJsonSequence("", -1), nullptr);
}

// None of this may use the stack for each level.
TEST(JsonParser, DepthAndSize) {
  constexpr int kCount = 500'000;
  std::string text;
  for (int i = 0; i < kCount; ++i) text += "{a:[";
  EXPECT_EQ(parsed(text), "none");
  for (int i = 0; i < kCount; ++i) text += "]}";
  const ScopedJson tree(parseJson(text.c_str(), -1));
  EXPECT_EQ(taken(deepCopy(tree.get())).size(), 12u * kCount - 1);
}

TEST(JsonPrinter, Numbers) {
  std::istringstream cases(
      "3 3  2.5 2.500000  0.999999 1  0.99998 0.999980  1.000009 1  1.000011 1.000011  -1e-6 0 "
      "-2e-5 -0.000020  -0.5 -0.500000  -2 -2.000000  2147483647 2147483647  1e999 inf "
      "2147483648 2147483648.000000  -2147483648 -2147483648.000000");
  for (std::string text, out; cases >> text >> out;) EXPECT_EQ(parsed(text), out) << text;
  EXPECT_EQ(taken(makeNumber(std::fabs(std::nan("")))), "nan");
  EXPECT_EQ(taken(makeNumber(-1e308)).size(), 317u);
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

TEST(JsonArray, ElementsAreSetTakenAndRemoved) {
  const ScopedJson array(parseJson("[10,11,12]", -1));
  jsObject* const a = array.get();
  setAt(a, 1, makeString("x"));
  setAt(a, 3, makeNumber(13));
  setAt(a, 5, makeNumber(15));  // beyond the end
  setAt(a, 0, nullptr);
  setAt(a, 2, arrayAt(a, 2));  // the same value again
  EXPECT_EQ(printed(a), R"([ null, "x", 12, 13 ])");
  EXPECT_EQ(taken(takeAt(a, 1)) + taken(takeAt(a, 3)) + taken(takeLast(a)), "\"x\"13");
  removeAt(a, 0);
  removeAt(a, 1);
  const jsObject* const appended[] = {arrayAt(a, 0),           appendNull(a),
                                      appendObject(a),         appendNumber(a, 7),
                                      appendBoolean(a, false), appendString(a, "s")};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(appended[i], arrayAt(a, i)) << i;
  appendValue(a, nullptr);
  EXPECT_EQ(printed(a), R"([ 12, null, { }, 7, false, "s", null ])");
}

// Shared instances survive their release; a copy shares them, too, and no other value.
TEST(JsonValue, SharedInstancesAndCopies) {
  const ScopedJson tree(
      parseJson(R"([null,true,false,-1,0,1,2,"",3,1.5,"t",[{"a":-2}],-3,0.5])", -1));
  ScopedJson copy(deepCopy(tree.get()));
  EXPECT_EQ(printed(copy.get()), printed(tree.get()));
  for (std::size_t i = 0; i < arraySize(tree.get()); ++i) {
    EXPECT_EQ(arrayAt(copy.get(), i) == arrayAt(tree.get(), i), i < 8) << i;
    if (i < 8) releaseJson(arrayAt(tree.get(), i));
  }
  copy.reset(copy.get());  // keeps it
  EXPECT_EQ(printed(tree.get()), printed(copy.get()));
  EXPECT_FALSE(booleanValue(makeBoolean(false)));
  EXPECT_EQ(makeString(static_cast<const char*>(nullptr)), makeString(""));
}

#ifndef TUNADM_SANITIZED  // the sanitizers keep released memory
TEST(JsonValue, ReleasedMemoryIsUsedAgain) {
  const auto peak = [] {
    rusage used{};
    EXPECT_EQ(getrusage(RUSAGE_SELF, &used), 0);
    return used.ru_maxrss;
  };
  std::string text = "[", list;  // a list grows through blocks of all sizes that the pool has
  for (int i = 0; i < 64; ++i) list += "3.5,";
  for (int i = 0; i < 4000; ++i) text.append("[").append(list).append("],");
  const auto parseAndRelease = [&text] {
    EXPECT_NE(taken(parseJson((text + "]").c_str(), -1)), "");
  };
  parseAndRelease();
  const auto before = peak();
  for (int round = 0; round < 30; ++round) parseAndRelease();
  EXPECT_LT(peak(), before + 50'000);  // KiB; each tree has 8 MB
}
#endif

TEST(JsonValue, EachKindIsOnlyItself) {
  const ScopedJson values(parseJson("[null,true,3,\"t\",[4],{a:5}]", -1));
  for (std::size_t kind = 0; kind < 7; ++kind) {  // the last one is a null pointer
    const jsObject* const value = arrayAt(std::as_const(values).get(), kind);
    const bool is[] = {isNull(value),   isBoolean(value), isNumber(value),
                       isString(value), isArray(value),   isObject(value)};
    const jsObject* const as[] = {asNull(value),   asBoolean(value), asNumber(value),
                                  asString(value), asArray(value),   asObject(value)};
    jsObject* const own = arrayAt(values.get(), kind);
    const jsObject* const as_own[] = {asNull(own),   asBoolean(own), asNumber(own),
                                      asString(own), asArray(own),   asObject(own)};
    const bool has[] = {kind == 0,
                        booleanValue(value),
                        numberValue(value) == 3,
                        stringView(value) == "t",
                        arraySize(value) == 1,
                        objectSize(value) == 1};
    for (std::size_t other = 0; other < 6; ++other) {
      EXPECT_EQ(is[other], other == kind) << kind << other;
      EXPECT_EQ(as[other], other == kind ? value : nullptr) << kind << other;
      EXPECT_EQ(as_own[other], as[other]) << kind << other;
      EXPECT_EQ(has[other], other == kind) << kind << other;
    }
    EXPECT_EQ(findMember(value, "a") + findMemberIgnoringCase(value, "A"), kind == 5 ? 0 : -2);
    EXPECT_EQ(memberValue(value, 1), nullptr) << kind;
    EXPECT_EQ(std::string(stringText(value)).append(memberName(value, 1)), kind == 3 ? "t" : "");
  }
}

TEST(JsonObject, SetMemberReplacesInPlaceAndRemovalMovesTheLastMemberIntoTheGap) {
  const ScopedJson object(parseJson(R"({"a":5, "b":6, "c":7, "d":8})", -1));
  jsObject* o = object.get();
  setMember(o, "d", memberValue(o, 3));  // the same value again
  setMember(o, "a", makeArray());
  setMember(o, "b", nullptr);  // removes it
  setMember(o, "", makeString("dropped"));
  setMember(o, std::string_view("a\0", 2), makeNull());
  EXPECT_EQ(taken(detachMember(o, "d")) + taken(detachMember(o, "")), "8");
  EXPECT_EQ(findMemberIgnoringCase(o, "C"), 2);
  EXPECT_EQ(findMember(o, "C"), -1);
  EXPECT_EQ(printed(setStringMember(o, "c", "t")) + printed(setStringMember(o, "", "u")), "\"t\"");
  EXPECT_EQ(printed(o), std::string_view("{ \"a\":[ ], \"a\0\":null, \"c\":\"t\" }", 31));
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
    ASSERT_EQ(taken(detachMember(object.get(), name(i))), i % 6 == 3 ? "" : std::to_string(i));
    ASSERT_EQ(findMember(object.get(), name(i)), -1) << i;
  }
  EXPECT_EQ(objectSize(object.get()), 0u);
}

}  // namespace
}  // namespace tunadm
