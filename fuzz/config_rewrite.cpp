// A rewrite keeps every line that it does not own. The input's first line is the value to write.
#include "fuzz/Fuzz.h"
#include "profiles/ConfigText.h"

void tunadm::checkInput(const std::string& input) {
  const auto notOwned = [](std::string_view all) {
    std::string kept;
    for (const std::string& line : fgetsLines(all, 8000))
      if (!line.starts_with("log_level=") && !line.starts_with("map_uri=")) kept += line;
    return kept;
  };
  const std::string value = input.substr(0, std::min<std::size_t>(input.find('\n'), 1000));
  const std::string text = input.substr(value.size());
  std::string kept = notOwned(text);
  require(withoutLines(withoutLines(text, "log_level="), "map_uri=") == kept, "lines are removed");

  const Setting settings[] = {{"log_level=", value}, {"map_uri=", value}};
  const std::string after = withSettings(text, settings);
  for (const char* key : {"log_level=", "map_uri="})
    require(after.find(key + value + "\n") != after.npos, "a value is set");
  require(withSettings(after, settings) == after, "a second rewrite changes nothing");
  const std::string left = notOwned(after);
  // What is appended ends a line without an end.
  if (left.size() > kept.size() && !kept.ends_with('\n')) kept += '\n';
  require(left == kept, "what is not owned stays");
}
