#include "fundkit/Duration.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "json/AsciiCase.h"

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

// Bytes of 128 and above are not blanks, whether char is signed or not.
bool isBlank(char byte) { return static_cast<unsigned char>(byte) <= ' '; }

// 0 when there is no such unit.
Duration unitLength(std::string_view text) {
  for (const UnitWord& unit : kUnitWords) {
    if (equalIgnoringCase(text, unit.word)) return unit.length;
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

// The larger of two neighbouring units if the whole count of the smaller one is a multiple of it.
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
  char* word = nullptr;
  const Duration number = std::strtoll(text, &word, 10);
  while (*word != '\0' && isBlank(*word)) ++word;
  const char* end = word;
  while (!isBlank(*end)) ++end;
  const Duration unit = unitLength(std::string_view(word, static_cast<std::size_t>(end - word)));

  Duration product = 0;
  if (!__builtin_mul_overflow(number, unit, &product)) return product;
  using Limits = std::numeric_limits<Duration>;
  return number < 0 ? Limits::min() : Limits::max();
}

std::string formatDuration(Duration duration) {
  if (duration == 0) return "0 seconds";
  // Negated as an unsigned number: the smallest duration has no positive counterpart.
  std::uint64_t size = static_cast<std::uint64_t>(duration);
  if (duration < 0) size = -size;
  const UnitForm& form = formFor(size);
  const std::uint64_t count = size / form.length;
  std::string text = duration < 0 ? "-" : "";
  return text.append(std::to_string(count)).append(count == 1 ? form.singular : form.plural);
}

}  // namespace tunadm
