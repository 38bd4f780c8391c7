// The holder of a value tree.
#pragma once

#include "json/JsonValue.h"
#include "json/ScopedRelease.h"

namespace tunadm {

// Owns one value tree, or nothing, and releases it with releaseJson.
class ScopedJson final : public ScopedRelease<jsObject> {
 public:
  explicit ScopedJson(jsObject* held = nullptr) : ScopedRelease<jsObject>(held, &releaseJson) {}
};

}  // namespace tunadm
