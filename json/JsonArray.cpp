// Arrays: reading and changing them.
#include <string_view>
#include <utility>

#include "json/JsonNode.h"
#include "json/JsonValue.h"

namespace tunadm {
namespace {

jsObject* orNull(jsObject* value) { return value == nullptr ? makeNull() : value; }

// Appends and hands back, with null for a value that was released instead.
jsObject* appendAndReturn(jsObject* array, jsObject* value) {
  appendValue(array, value);
  return isArray(array) ? value : nullptr;
}

}  // namespace

std::size_t arraySize(const jsObject* array) {
  return isArray(array) ? array->elements().size() : 0;
}

const jsObject* arrayAt(const jsObject* array, std::size_t index) {
  return index < arraySize(array) ? array->elements()[index] : nullptr;
}

jsObject* arrayAt(jsObject* array, std::size_t index) {
  return index < arraySize(array) ? array->elements()[index] : nullptr;
}

void appendValue(jsObject* array, jsObject* value) {
  if (!isArray(array)) return releaseJson(value);
  array->elements().push_back(orNull(value));
}

jsObject* appendObject(jsObject* array) { return appendAndReturn(array, makeObject()); }

jsObject* appendNull(jsObject* array) { return appendAndReturn(array, makeNull()); }

jsObject* appendBoolean(jsObject* array, bool boolean) {
  return appendAndReturn(array, makeBoolean(boolean));
}

jsObject* appendNumber(jsObject* array, double number) {
  return appendAndReturn(array, makeNumber(number));
}

jsObject* appendString(jsObject* array, std::string_view text) {
  return appendAndReturn(array, makeString(text));
}

jsObject* appendString(jsObject* array, const char* text) {
  return appendAndReturn(array, makeString(text));
}

void setAt(jsObject* array, std::size_t index, jsObject* value) {
  const std::size_t size = arraySize(array);
  if (!isArray(array) || index > size) return releaseJson(value);
  if (index == size) return appendValue(array, value);
  jsObject* old = std::exchange(array->elements()[index], orNull(value));
  if (old != value) releaseJson(old);
}

jsObject* takeAt(jsObject* array, std::size_t index) {
  if (index >= arraySize(array)) return nullptr;
  auto& elements = array->elements();
  jsObject* taken = elements[index];
  elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(index));
  return taken;
}

jsObject* takeLast(jsObject* array) {
  const std::size_t size = arraySize(array);
  return size == 0 ? nullptr : takeAt(array, size - 1);
}

void removeAt(jsObject* array, std::size_t index) { releaseJson(takeAt(array, index)); }

}  // namespace tunadm
