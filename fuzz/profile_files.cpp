// The readers of the daemon's files against the same in other words.
#include <map>

#include "fundkit/FileUtils.h"
#include "fundkit/KeyValueFile.h"
#include "fuzz/Fuzz.h"
#include "profiles/ConfigText.h"

void tunadm::checkInput(const std::string& text) {
  std::map<std::string_view, std::string> expected;
  const std::vector<std::string> pieces = fgetsLines(text, 1024);
  for (const std::string& piece : pieces) {
    const std::string_view seen = piece.c_str();
    const std::size_t split = std::min(seen.find('='), seen.size());
    const std::size_t end = seen.find('#') < split ? seen.npos : seen.find('#');
    const std::string_view key = trimmed(seen.substr(0, split));
    if (split < seen.size() && !key.empty())
      expected[key] = trimmed(seen.substr(0, end).substr(split + 1));
  }
  KeyValueTable table;
  require(readKeyValueFile(fileWith(text), '=', '#', &table), "a file can be read");
  require(table.keys().size() == expected.size(), "each key once");
  for (std::size_t i = 0; i < table.keys().size(); ++i)
    require(expected[table.keys()[i]] == table.values()[i], "each key has its last value");

  std::string first, interface, code, name, port;
  for (const std::string& raw : fgetsLines(text, 8000)) {
    std::string line(trimmed(raw.c_str()));
    if (first.empty()) first = line;
    if (interface.empty() && line.starts_with("master_interface=")) interface = line;
    for (char& byte : line) byte = (byte & 0x80) != 0 ? '?' : byte;  // not ASCII
    if (line.starts_with("activation_code=")) code = trimmed(&line[16]);
  }
  require(firstNonEmptyLine(text) == first, "the first line that shows something");
  require(parseOverlaySettings(text).invitation == code, "the last code");
  const std::string key = parseMasterInterface(text, &name) ? "master_interface=" : "";
  require(key + name == interface, "the first interface");
  (void)parseHelmsmanAddress(text, &name, &port);  // an address is all that comes
  require(name.find_first_of(":/") == name.npos, "the host only");
  require(readFirstLine(fileWith(text), &name) == LineRead::kRead, "a file has a first line");
  require(name == text.substr(0, std::min(text.find('\n'), text.find('\0'))), "it ends there");
}
