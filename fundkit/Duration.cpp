#include "fundkit/Duration.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

namespace tunadm {
namespace {

struct UnitWord {
  std::string_view word;
  Duration length;
};

constexpr UnitWord kUnitWords[] = {
    {"usec", 1},
    {"usecs", 1},
    {"microsecond", 1},
    {"microseconds", 1},
    {"ms", kMillisecond},
    {"msec", kMillisecond},
    {"msecs", kMillisecond},
    {"milli", kMillisecond},
    {"millis", kMillisecond},
    {"millisecond", kMillisecond},
    {"milliseconds", kMillisecond},
    {"s", kSecond},
    {"sec", kSecond},
    {"secs", kSecond},
    {"second", kSecond},
    {"seconds", kSecond},
    {"m", kMinute},
    {"min", kMinute},
    {"mins", kMinute},
    {"minute", kMinute},
    {"minutes", kMinute},
    {"h", kHour},
    {"hr", kHour},
    {"hrs", kHour},
    {"hour", kHour},
    {"hours", kHour},
    {"d", kDay},
    {"day", kDay},
    {"days", kDay},
};

// Bytes from 128 on are not blanks, whatever the sign of char.
bool isBlank(char byte) { return static_cast<unsigned char>(byte) <= ' '; }

char lowerAscii(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

// The unit words are lower case already.
bool equalsWord(std::string_view text, std::string_view word) {
  if (text.size() != word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (lowerAscii(text[i]) != word[i]) return false;
  }
  return true;
}

// 0 when there is no such unit.
Duration unitLength(std::string_view text) {
  for (const UnitWord& unit : kUnitWords) {
    if (equalsWord(text, unit.word)) return unit.length;
  }
  return 0;
}

struct UnitForm {
  std::uint64_t length;
  const char* singular;
  const char* plural;
};

constexpr UnitForm kMicroseconds = {1, " usec", " usecs"};
constexpr UnitForm kMilliseconds = {kMillisecond, " ms", " ms"};
constexpr UnitForm kSeconds = {kSecond, " sec", " secs"};
constexpr UnitForm kMinutes = {kMinute, " min", " mins"};
constexpr UnitForm kHours = {kHour, " hr", " hrs"};
constexpr UnitForm kDays = {kDay, " day", " days"};

// The larger of two neighbouring units where the whole count of the smaller one fills it.
const UnitForm& largerIfWhole(std::uint64_t size, const UnitForm& small, const UnitForm& large) {
  return size / small.length % (large.length / small.length) == 0 ? large : small;
}

const UnitForm& formFor(std::uint64_t size) {
  if (size < 10 * kMilliseconds.length) return largerIfWhole(size, kMicroseconds, kMilliseconds);
  if (size < 10 * kSeconds.length) return largerIfWhole(size, kMilliseconds, kSeconds);
  if (size < 10 * kMinutes.length) return largerIfWhole(size, kSeconds, kMinutes);
  if (size < 10 * kHours.length) return largerIfWhole(size, kMinutes, kHours);
  if (size < 10 * kDays.length) return largerIfWhole(size, kHours, kDays);
  return kDays;
}

}  // namespace

Duration parseDuration(const char* text) {
  if (text == nullptr) return 0;
  char* rest = nullptr;
  const Duration number = std::strtoll(text, &rest, 10);
  while (*rest != '\0' && isBlank(*rest)) ++rest;
  const char* end = rest;
  while (!isBlank(*end)) ++end;
  const Duration unit = unitLength(std::string_view(rest, static_cast<std::size_t>(end - rest)));

  Duration product = 0;
  if (!__builtin_mul_overflow(number, unit, &product)) return product;
  using Limits = std::numeric_limits<Duration>;
  return number < 0 ? Limits::min() : Limits::max();
}

std::string formatDuration(Duration duration) {
  if (duration == 0) return "0 seconds";
  // Negated without a sign: the smallest duration has no positive counterpart.
  std::uint64_t size = static_cast<std::uint64_t>(duration);
  if (duration < 0) size = -size;
  const UnitForm& form = formFor(size);
  const std::uint64_t count = size / form.length;
  std::string text = duration < 0 ? "-" : "";
  return text.append(std::to_string(count)).append(count == 1 ? form.singular : form.plural);
}

}  // namespace tunadm
