#include "profiles/TakenNames.h"

namespace tunadm {
namespace {

constexpr int kLastNumber = 999999;

}  // namespace

std::string TakenNames::uniqueName(const std::string& base) {
  if (!names_.contains(base)) return base;
  int& number = next_number_.try_emplace(base, 2).first->second;
  for (; number <= kLastNumber; ++number) {
    std::string candidate = base + "#" + std::to_string(number);
    if (!names_.contains(candidate)) return candidate;
  }
  return base;
}

}  // namespace tunadm
