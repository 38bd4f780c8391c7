// Value trees as one line of JSON text.
#pragma once

#include <string>
#include <vector>

#include "json/JsonValue.h"

namespace tunadm {

// Appends the text of `value` to `out`, without a newline; a null pointer appends nothing. The form
// is this program's own and fixed: "{ "a":1, "b":[ true ] }". Member names and backslashes are not
// escaped, each byte from 0x80 on prints as "?", and a number prints without decimals only when it
// is (nearly) whole, above -1e-5 and fits an int.
void printJson(const jsObject* value, std::string* out);

// One word for each element of `array`: the text of a string, the printed form of anything else.
// Empty when `array` is null or not an array.
std::vector<std::string> arrayToWords(const jsObject* array);

}  // namespace tunadm
