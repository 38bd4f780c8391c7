#include "core/ResultParam.h"

#include <cstdio>

#include "core/StatusText.h"

namespace tunadm {

ResultParamBase::ResultParamBase(ResultList* list, std::string_view name) : name_(name) {
  list->push_back(this);
}

void StringResult::render(ValueBinder& out) const {
  if (emit_) out.addText(name(), value_);
}

void StatusCodeResultField::render(ValueBinder& out) const {
  if (out.addStatus(method_, status_)) return;
  const bool failed = !status_.ok();
  if (flags_->verbose) out.addText("method", method_);
  if (flags_->verbose || (failed && !flags_->quiet)) {
    std::string text = statusText(status_.code());
    if (!status_.details().empty()) text += " (" + status_.details() + ")";
    out.addText("status_text", text);
  }
  if (flags_->verbose || failed) {
    char code[sizeof("0x00000000")];
    std::snprintf(code, sizeof(code), "0x%08x",
                  static_cast<unsigned>(status_.code()));  // always fits
    out.addText("status_code", code);
  }
}

}  // namespace tunadm
