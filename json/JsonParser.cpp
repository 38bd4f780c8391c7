#include "json/JsonParser.h"

#include <utility>

#include "json/JsonNode.h"
#include "json/TokenScanner.h"

namespace tunadm {

jsObject* parserinfo::takeResult() { return state_ == kParserFinished ? result_.take() : nullptr; }

void parserinfo::onError(const char* /*message*/) {
  state_ = kParserFinished;
  result_.reset();
}

void parserinfo::onLeftBracket() {
  if (state_ != kParserWantsValue) return onError("onLeftBracket: wrong state");
  open(makeArray(), kParserWantsValue);
}

void parserinfo::onLeftCurly() {
  if (state_ != kParserWantsValue) return onError("onLeftCurly: wrong state");
  open(makeObject(), kParserWantsName);
}

void parserinfo::onRightBracket() {
  if (open_.empty() || !isArray(open_.back().container)) {
    return onError("onRightBracket: no open array");
  }
  close();
}

void parserinfo::onRightCurly() {
  if (open_.empty() || !isObject(open_.back().container)) {
    return onError("onRightCurly: no open object");
  }
  close();
}

void parserinfo::onComma() {
  if (state_ == kParserHasElement) {
    state_ = kParserWantsValue;
  } else if (state_ == kParserHasMember) {
    state_ = kParserWantsName;
  } else {
    onError("onComma: wrong state");
  }
}

void parserinfo::onColon() {
  if (state_ != kParserWantsColon) return onError("onColon: wrong state");
  state_ = kParserWantsValue;
}

void parserinfo::onValue(double number) { addValue(makeNumber(number)); }

void parserinfo::onValue(std::string_view text) {
  if (state_ == kParserWantsName) return setName(text);
  addValue(makeString(text));
}

void parserinfo::onNull() { addValue(makeNull()); }

void parserinfo::onValue(bool boolean) { addValue(makeBoolean(boolean)); }

void parserinfo::onName(std::string_view word) {
  if (state_ != kParserWantsName) return onError("onName, wrong state");
  setName(word);
}

void parserinfo::setName(std::string_view name) {
  name_ = name;
  state_ = kParserWantsColon;
}

// Takes ownership of `value`.
void parserinfo::addValue(jsObject* value) {
  if (state_ != kParserWantsValue) {
    releaseJson(value);
    return onError("onValue: wrong state");
  }
  if (open_.empty()) {
    result_.reset(value);
    state_ = kParserFinished;
  } else if (jsObject* const container = open_.back().container; container->kind() == kJsonArray) {
    container->elements().push_back(value);
    state_ = kParserHasElement;
  } else {
    addMember(container, value);
  }
}

// Takes ownership of `value`.
void parserinfo::addMember(jsObject* object, jsObject* value) {
  if (!name_.empty()) {
    releaseJson(object->members().put(name_, value));
    name_.clear();
  } else {
    // Deliberate: a container under an empty name is dropped, but is not an error.
    const bool dropped = value->isContainer();
    releaseJson(value);
    if (!dropped) return onError("onValue: no available name for field");
  }
  state_ = kParserHasMember;
}

void parserinfo::open(jsObject* container, ParserState next) {
  ScopedJson owned(container);
  if (!name_.empty()) {
    releaseJson(open_.back().container->members().put(name_, owned.take()));
    name_.clear();
  }
  open_.push_back({container, std::move(owned)});
  state_ = next;
}

void parserinfo::close() {
  OpenContainer closed = std::move(open_.back());
  open_.pop_back();
  // A name left over by an error must not reach another container's member.
  name_.clear();
  state_ = kParserWantsValue;
  if (closed.owned) return addValue(closed.owned.take());
  state_ = kParserHasMember;
}

jsObject* parseJson(const char* text, std::ptrdiff_t length) {
  parserinfo parser;
  if (!scanTokens(text, length, &parser)) return nullptr;
  return parser.takeResult();
}

}  // namespace tunadm
