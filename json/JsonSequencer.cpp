#include "json/JsonSequencer.h"

#include "json/ScopedJson.h"

namespace tunadm {

sequencer::sequencer(jsObject* output) : output_(output), parser_(new parserinfo()) {}

void sequencer::onError(const char* message) { parser_->onError(message); }

void sequencer::onLeftBracket() { parser_->onLeftBracket(); }

void sequencer::onLeftCurly() { parser_->onLeftCurly(); }

void sequencer::onRightBracket() { parser_->onRightBracket(); }

void sequencer::onRightCurly() {
  parser_->onRightCurly();
  jsObject* object = parser_->takeResult();
  if (object == nullptr) return;
  appendValue(output_, object);
  parser_.reset(new parserinfo());
}

void sequencer::onComma() { parser_->onComma(); }

void sequencer::onColon() { parser_->onColon(); }

void sequencer::onValue(double number) { parser_->onValue(number); }

void sequencer::onValue(std::string_view text) { parser_->onValue(text); }

void sequencer::onNull() { parser_->onNull(); }

void sequencer::onValue(bool boolean) { parser_->onValue(boolean); }

void sequencer::onName(std::string_view word) { parser_->onName(word); }

jsObject* parseJsonSequence(const char* text, std::ptrdiff_t length) {
  ScopedJson array(makeArray());
  sequencer receiver(array.get());
  if (!scanJson(text, length, &receiver)) return nullptr;
  return array.take();
}

}  // namespace tunadm
