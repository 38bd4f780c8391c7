#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "json/JsonPrinter.h"
#include "json/ScopedJson.h"

namespace tunadm {
namespace {

std::string printed(jsObject* value) {
  const ScopedJson owner(value);
  std::string out;
  printJson(value, &out);
  return out;
}

TEST(JsonPrinter, Numbers) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const struct {
    double number;
    const char* text;
  } cases[] = {{3, "3"},
               {2.5, "2.500000"},
               {0.999999, "1"},
               {0.99998, "0.999980"},
               {1e-6, "0"},
               {-1e-6, "0"},
               {-0.5, "-0.500000"},
               {-2, "-2.000000"},
               {-1.9999999, "-2.000000"},
               {2147483647, "2147483647"},
               {2147483648, "2147483648.000000"},
               {-2147483648.0, "-2147483648.000000"},
               {4294967296, "4294967296.000000"},
               {1e22, "10000000000000000000000.000000"},
               {kInfinity, "inf"},
               {-kInfinity, "-inf"},
               {std::fabs(std::numeric_limits<double>::quiet_NaN()), "nan"}};
  for (const auto& c : cases) EXPECT_EQ(printed(makeNumber(c.number)), c.text);
  EXPECT_EQ(printed(makeNumber(-1e308)).size(), 317u);
}

TEST(JsonPrinter, Strings) {
  EXPECT_EQ(printed(makeString(std::string_view("\x00\x01\x07\b\t\n\x0b\f\r\x0e\x0f\x10\x1f", 13))),
            R"("\u0000\u0001\u0007\b\t\n\u000B\u000C\r\u000E\u000F\u0010\u001F")");
  EXPECT_EQ(printed(makeString("plain \"\\/~\x7f\x80\xc3\xbf\xff.")),
            R"("plain \"\/~\u007F????.")");
  EXPECT_EQ(printed(makeString("")), R"("")");
}

TEST(JsonPrinter, ContainersNestAndLeaveNamesAsTheyAre) {
  jsObject* object = makeObject();
  setMember(object, "a", makeNumber(1));
  jsObject* array = makeArray();
  appendValue(array, makeArray());
  appendValue(array, makeObject());
  appendBoolean(appendObject(array), false);  // not an array: nothing is appended
  appendBoolean(array, true);
  setMember(object, "q\"\\\t\xc3", array);
  setMember(object, "n", makeNull());
  EXPECT_EQ(printed(object), "{ \"a\":1, \"q\"\\\t\xc3\":[ [ ], { }, { }, true ], \"n\":null }");
}

TEST(JsonPrinter, AppendsToWhatIsThere) {
  std::string out = "x: ";
  printJson(makeBoolean(false), &out);
  printJson(nullptr, &out);
  EXPECT_EQ(out, "x: false");
}

TEST(JsonPrinter, WordsOfAnArray) {
  const ScopedJson array(makeArray());
  for (const char* text : {"a b", "", "q\"\t\xc3"}) appendString(array.get(), text);
  appendNumber(array.get(), -3);
  appendNull(array.get());
  setStringMember(appendObject(array.get()), "k", "\t");
  EXPECT_EQ(
      arrayToWords(array.get()),
      (std::vector<std::string>{"a b", "", "q\"\t\xc3", "-3.000000", "null", R"({ "k":"\t" })"}));
  EXPECT_TRUE(arrayToWords(makeNull()).empty());
}

}  // namespace
}  // namespace tunadm
