// JSON values: trees of jsObject, built and changed by the functions below.
//
// A value has one owner: its container or a holder (ScopedJson). Null, the booleans, the numbers
// -1, 0, 1 and 2 and the empty string are shared instances, which any tree may hold and a release
// leaves alone. A function that stores a `value` takes ownership of it in any case: what it does
// not store, it releases. Only one thread may use these functions, even on different trees: all
// trees share one pool of memory.
//
// A name is any sequence of bytes but the empty one. An operation on a null pointer, or on a value
// of another kind, finds nothing (null, 0, empty, -1) and changes nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tunadm {

// The numbers are part of the interface.
enum JsonKind : std::uint32_t {
  kJsonNull = 1,
  kJsonBoolean = 2,
  kJsonNumber = 3,
  kJsonString = 4,
  kJsonArray = 5,
  kJsonObject = 6,
};

class jsObject;

// Making. The caller owns the result. A null `text` makes the empty string.
[[nodiscard]] jsObject* makeNull();
[[nodiscard]] jsObject* makeBoolean(bool boolean);
[[nodiscard]] jsObject* makeNumber(double number);
[[nodiscard]] jsObject* makeString(std::string_view text);
[[nodiscard]] jsObject* makeString(const char* text);
[[nodiscard]] jsObject* makeArray();
[[nodiscard]] jsObject* makeObject();

// Frees `value` and everything in it, except shared instances. A null pointer is ignored.
void releaseJson(jsObject* value);

// Returns a new tree equal to `value`, owned by the caller; shared instances are shared again. Null
// for a null pointer.
[[nodiscard]] jsObject* deepCopy(const jsObject* value);

// Kind tests; false for a null pointer.
[[nodiscard]] bool isNull(const jsObject* value);
[[nodiscard]] bool isBoolean(const jsObject* value);
[[nodiscard]] bool isNumber(const jsObject* value);
[[nodiscard]] bool isString(const jsObject* value);
[[nodiscard]] bool isArray(const jsObject* value);
[[nodiscard]] bool isObject(const jsObject* value);

// `value` itself when it is of that kind, else null.
const jsObject* asNull(const jsObject* value);
const jsObject* asBoolean(const jsObject* value);
const jsObject* asNumber(const jsObject* value);
const jsObject* asString(const jsObject* value);
const jsObject* asArray(const jsObject* value);
const jsObject* asObject(const jsObject* value);
jsObject* asNull(jsObject* value);
jsObject* asBoolean(jsObject* value);
jsObject* asNumber(jsObject* value);
jsObject* asString(jsObject* value);
jsObject* asArray(jsObject* value);
jsObject* asObject(jsObject* value);

// Contents of scalars. The texts belong to the value. Only stringView shows bytes after a NUL.
[[nodiscard]] bool booleanValue(const jsObject* value);
double numberValue(const jsObject* value);
const char* stringText(const jsObject* value);
std::string_view stringView(const jsObject* value);

// Reading arrays. Null for an index outside the array.
std::size_t arraySize(const jsObject* array);
const jsObject* arrayAt(const jsObject* array, std::size_t index);
jsObject* arrayAt(jsObject* array, std::size_t index);

// Appending. A null `value` appends JSON null. All but the first return the appended value, which
// the array owns.
void appendValue(jsObject* array, jsObject* value);
jsObject* appendObject(jsObject* array);
jsObject* appendNull(jsObject* array);
jsObject* appendBoolean(jsObject* array, bool boolean);
jsObject* appendNumber(jsObject* array, double number);
jsObject* appendString(jsObject* array, std::string_view text);
jsObject* appendString(jsObject* array, const char* text);

// Replaces and releases the element at `index`; appends when `index` is the size. A null `value`
// stores JSON null. For an index beyond the size, `value` is released and nothing changes.
void setAt(jsObject* array, std::size_t index, jsObject* value);

// Removes the element at `index` and returns it; the caller owns it. Later elements move down by
// one. Null when there is no such element.
[[nodiscard]] jsObject* takeAt(jsObject* array, std::size_t index);
[[nodiscard]] jsObject* takeLast(jsObject* array);

// Removes and releases the element at `index`, if there is one.
void removeAt(jsObject* array, std::size_t index);

// Reading objects. Null or an empty name for an index outside the object.
std::size_t objectSize(const jsObject* object);
std::string_view memberName(const jsObject* object, std::size_t index);
const jsObject* memberValue(const jsObject* object, std::size_t index);
jsObject* memberValue(jsObject* object, std::size_t index);

// The index of the first member of that name, or -1. The second form ignores ASCII case and takes
// time linear in the number of members.
std::ptrdiff_t findMember(const jsObject* object, std::string_view name);
std::ptrdiff_t findMemberIgnoringCase(const jsObject* object, std::string_view name);

// Adds the member at the end, or replaces the value of the member of that name in its place and
// releases the old one. A null `value` removes the member: the last member takes its place. An
// empty name only releases `value`.
void setMember(jsObject* object, std::string_view name, jsObject* value);

// Sets a member to a string made by makeString. Returns the string, owned by the object, or null if
// it was not set.
jsObject* setStringMember(jsObject* object, std::string_view name, std::string_view text);
jsObject* setStringMember(jsObject* object, std::string_view name, const char* text);

// Removes the member and returns its value; the caller owns it. The last member takes its place.
// Null when there is no such member.
[[nodiscard]] jsObject* detachMember(jsObject* object, std::string_view name);

}  // namespace tunadm
