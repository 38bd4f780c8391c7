#include <gtest/gtest.h>

#include <string>

#include "profiles/ConfigText.h"

namespace tunadm {
namespace {

const std::string kNul(1, '\0');

TEST(ConfigText, HelmsmanAddress) {
  const struct {
    const char* text;
    bool found;
    const char* host;
    const char* port;
  } cases[] = {
      {"map_uri=https://h.example:9000\n", true, "h.example", "9000"},
      {"map_uri=http://h.example:9000/a/b:1\n", true, "h.example", "9000"},
      {"map_uri=h.example", true, "h.example", "8096"},
      {"map_uri=\n", true, "", "8096"},
      {"map_uri=h:\n", true, "h", ""},
      {"map_uri=h:1:2\n", true, "h", "1:2"},
      {"# map_uri=x\n \t map_uri=https://a:1 \r\nmap_uri=b\n", true, "a", "1"},
      {"map_uri=h\xc3\xa4x:1\n", true, "h??x", "1"},
      {"MAP_URI=h\nmap_uri =h\n", false, "", ""},
      {"", false, "", ""},
  };
  for (const auto& c : cases) {
    std::string host = "old";
    std::string port = "old";
    EXPECT_EQ(parseHelmsmanAddress(c.text, &host, &port), c.found) << c.text;
    EXPECT_EQ(host, c.host) << c.text;
    EXPECT_EQ(port, c.port) << c.text;
  }
}

TEST(ConfigText, OverlaySettings) {
  const OverlaySettings settings = parseOverlaySettings(
      "#device_ip=9.9.9.9\n\n \x01 device_ip=1.1.1.1\r\ndevice_ip=2.2.2.2 \nunknown=1\n"
      "device_mask=255.0.0.0" +
      kNul + "hidden\nactivation_code=  a\xc3\xa4z\xff\n");
  EXPECT_EQ(settings.device_ip, "2.2.2.2");
  EXPECT_EQ(settings.device_mask, "255.0.0.0");
  EXPECT_EQ(settings.invitation, "a??z");
}

TEST(ConfigText, SingleValues) {
  std::string name = "old";
  EXPECT_FALSE(parseMasterInterface("#master_interface=eth9\nmaster=eth8\n", &name));
  EXPECT_EQ(name, "");
  EXPECT_TRUE(parseMasterInterface("x\n\tmaster_interface=eth1 \nmaster_interface=eth2", &name));
  EXPECT_EQ(name, "eth1");
  EXPECT_EQ(firstNonEmptyLine("\n \t\r\n\x7f\n  ID 7 \nother\n"), "ID 7");
  EXPECT_EQ(firstNonEmptyLine("\n\n"), "");
}

TEST(ConfigText, RewritingKeepsWhatItDoesNotOwn) {
  const std::string before(7990, 'x');
  const struct {
    std::string text;
    std::string expected;
  } cases[] = {
      {"", "k=v\nlong.k=v\n"},
      {"a\r\n#k=1\n k=2\nb", "a\r\n#k=1\n k=2\nb\nk=v\nlong.k=v\n"},
      {"k=1\r\nm\nk=2\n", "k=v\nm\nk=v\nlong.k=v\n"},
      {"long.k=1\nx\nk=", "long.k=v\nx\nk=v\n"},
      {"\xff\xfe" + kNul + "k=1\n", "\xff\xfe" + kNul + "k=1\nk=v\nlong.k=v\n"},
      {"\n\n", "\n\nk=v\nlong.k=v\n"},
      // A line that fills the buffer of 7,999 bytes goes on as a line of its own.
      {before + "123456789k=1\n", before + "123456789k=v\nlong.k=v\n"},
      {before + "12345678k=1\n", before + "12345678k=1\nk=v\nlong.k=v\n"},
  };
  const Setting settings[] = {{"k=", "v"}, {"long.k=", "v"}};
  for (const auto& c : cases) EXPECT_EQ(withSettings(c.text, settings), c.expected) << c.text;
}

TEST(ConfigText, RemovingLines) {
  EXPECT_EQ(withoutLines("a=1\nb=2\r\na=3\n a=4\n#a=\na=", "a="), "b=2\r\n a=4\n#a=\n");
  EXPECT_EQ(withoutLines("", "a="), "");
}

}  // namespace
}  // namespace tunadm
