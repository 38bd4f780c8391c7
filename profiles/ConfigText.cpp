#include "profiles/ConfigText.h"

#include <cstddef>
#include <vector>

#include "fundkit/AsciiText.h"
#include "fundkit/LineReader.h"

namespace tunadm {
namespace {

constexpr std::size_t kLineBuffer = 8000;

bool takePrefix(std::string_view* text, std::string_view prefix) {
  if (!text->starts_with(prefix)) return false;
  text->remove_prefix(prefix.size());
  return true;
}

bool isSetting(std::string_view line) { return !line.empty() && line.front() != '#'; }

// "http://host:port/path" in its parts.
void splitUri(std::string_view uri, std::string* host, std::string* port) {
  if (!takePrefix(&uri, "http://")) (void)takePrefix(&uri, "https://");  // may have neither
  uri = uri.substr(0, uri.find('/'));
  const std::size_t colon = uri.find(':');
  *host = uri.substr(0, colon);
  *port = colon == std::string_view::npos ? std::to_string(kHelmsmanPort)
                                          : std::string(uri.substr(colon + 1));
}

void appendLine(std::string* text, const Setting& setting) {
  text->append(setting.key).append(setting.value).append("\n");
}

}  // namespace

std::string firstNonEmptyLine(std::string_view text) {
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    const std::string_view line = trimGraphic(piece.text);
    if (!line.empty()) return std::string(line);
  }
  return "";
}

bool parseHelmsmanAddress(std::string_view text, std::string* host, std::string* port) {
  host->clear();
  port->clear();
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    const std::string line = maskNonAscii(trimGraphic(piece.text));
    std::string_view uri = line;
    if (!takePrefix(&uri, kMapUriKey)) continue;
    splitUri(uri, host, port);
    return true;
  }
  return false;
}

OverlaySettings parseOverlaySettings(std::string_view text) {
  OverlaySettings settings;
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    const std::string line = maskNonAscii(trimGraphic(piece.text));
    if (!isSetting(line)) continue;
    std::string_view value = line;
    if (takePrefix(&value, "device_ip=")) {
      settings.device_ip = value;
    } else if (takePrefix(&value, "device_mask=")) {
      settings.device_mask = value;
    } else if (takePrefix(&value, kActivationCodeKey)) {
      settings.invitation = trimGraphic(value);
    }
  }
  return settings;
}

bool parseMasterInterface(std::string_view text, std::string* name) {
  name->clear();
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    std::string_view line = trimGraphic(piece.text);
    if (!takePrefix(&line, kMasterInterfaceKey)) continue;
    *name = line;
    return true;
  }
  return false;
}

std::string withSettings(std::string_view text, std::span<const Setting> settings) {
  std::string result;
  result.reserve(text.size() + 256);
  std::vector<bool> written(settings.size(), false);
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    std::size_t owner = 0;
    while (owner < settings.size() && !piece.raw.starts_with(settings[owner].key)) ++owner;
    if (owner == settings.size()) {
      result.append(piece.raw);
    } else {
      appendLine(&result, settings[owner]);
      written[owner] = true;
    }
  }
  for (std::size_t i = 0; i < settings.size(); ++i) {
    if (written[i]) continue;
    if (!result.empty() && result.back() != '\n') result.push_back('\n');
    appendLine(&result, settings[i]);
  }
  return result;
}

std::string withoutLines(std::string_view text, std::string_view prefix) {
  std::string result;
  result.reserve(text.size());
  LineReader lines(text, kLineBuffer);
  LinePiece piece;
  while (lines.next(&piece)) {
    if (!piece.raw.starts_with(prefix)) result.append(piece.raw);
  }
  return result;
}

}  // namespace tunadm
