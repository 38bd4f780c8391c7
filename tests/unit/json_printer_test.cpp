#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "json/JsonParser.h"
#include "json/JsonPrinter.h"

namespace tunadm {
namespace {

std::string printed(jsObject* value) {
  const ScopedJson owner(value);
  std::string out = ">";  // stays: printing appends
  printJson(value, &out);
  return out.substr(1);
}

TEST(JsonPrinter, Numbers) {
  const std::pair<double, const char*> cases[] = {{3, "3"},
                                                  {2.5, "2.500000"},
                                                  {0.999999, "1"},
                                                  {0.99998, "0.999980"},
                                                  {-1e-6, "0"},
                                                  {-2, "-2.000000"},
                                                  {2147483647, "2147483647"},
                                                  {2147483648, "2147483648.000000"},
                                                  {-2147483648.0, "-2147483648.000000"},
                                                  {4294967296, "4294967296.000000"},
                                                  {HUGE_VAL, "inf"},
                                                  {std::fabs(std::nan("")), "nan"}};
  for (const auto& [number, text] : cases) EXPECT_EQ(printed(makeNumber(number)), text);
  EXPECT_EQ(printed(makeNumber(-1e308)).size(), 317u);
}

TEST(JsonPrinter, Strings) {
  EXPECT_EQ(printed(makeString(std::string_view("\x00\x01\x07\b\t\n\x0b\f\r\x0e\x0f\x10\x1f", 13))),
            R"("\u0000\u0001\u0007\b\t\n\u000B\u000C\r\u000E\u000F\u0010\u001F")");
  EXPECT_EQ(printed(makeString(" \"\\/~\x7f\x80\xc3\xbf\xff.")), R"(" \"\/~\u007F????.")");
}

TEST(JsonPrinter, ContainersAndTheWordsOfAnArray) {
  const char* text = "[ \"q\\\"\", null, [ ], { \"q'\t\xc3\":{ }, \"n\":\"\\t\" } ]";
  const ScopedJson array(parseJson(text, -1));
  EXPECT_EQ(printed(deepCopy(array.get())), text);
  const std::vector<std::string> words = {"q\"", "null", "[ ]",
                                          "{ \"q'\t\xc3\":{ }, \"n\":\"\\t\" }"};
  EXPECT_EQ(arrayToWords(array.get()), words);
  EXPECT_EQ(printed(nullptr), "");
}

}  // namespace
}  // namespace tunadm
