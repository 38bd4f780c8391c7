#include "json/TokenPrinter.h"

#include <cstdio>
#include <string>

namespace tunadm {
namespace {

void printItem(const char* item) {
  std::printf("%s ", item);  // output for diagnosis: a failed write is not reported
}

}  // namespace

void TokenPrinter::onError(const char* message) {
  printItem((std::string("error: ") + message).c_str());
}

void TokenPrinter::onLeftBracket() { printItem("["); }

void TokenPrinter::onLeftCurly() { printItem("{"); }

void TokenPrinter::onRightBracket() { printItem("]"); }

void TokenPrinter::onRightCurly() { printItem("}"); }

void TokenPrinter::onComma() { printItem(","); }

void TokenPrinter::onColon() { printItem(":"); }

void TokenPrinter::onValue(double number) {
  char text[100];
  std::snprintf(text, sizeof(text), "%f", number);  // deliberate: a longer one is cut
  printItem(text);
}

void TokenPrinter::onValue(std::string_view text) {
  std::printf("\"%s\" ", std::string(text).c_str());  // as in printItem
}

void TokenPrinter::onNull() { printItem("null"); }

void TokenPrinter::onValue(bool boolean) { printItem(boolean ? "true" : "false"); }

void TokenPrinter::onName(std::string_view word) { printItem(std::string(word).c_str()); }

void printJsonTokens(const char* text, std::ptrdiff_t length) {
  TokenPrinter printer;
  (void)scanJson(text, length, &printer);  // false: there is nothing to print
}

}  // namespace tunadm
