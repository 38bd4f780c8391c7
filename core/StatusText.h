// Texts of status codes, from providers that are registered per module.
#pragma once

#include "core/Status.h"

namespace tunadm {

// Takes a full status code; returns its constant text, or null when it has none.
using StatusTextProvider = const char* (*)(StatusCode code);

// Adds `provider` for a 12-bit module number, after those already there; a null provider is
// ignored. If several share a module, the first that has a text wins. The generic provider of
// module 0 is always registered. Not locked: register before other threads look texts up.
void registerStatusTexts(int module, StatusTextProvider provider);

// The text of any 32-bit integer: a provider's, else a generic one by category. Never null.
const char* statusText(StatusCode code);

}  // namespace tunadm
