// Odd texts, and values that depend on the host, with output=json. docs/RESULTS.md, which is run as
// a test too, shows the result of each command.

#include "tests/support/Rows.h"
#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

// A friendly name that JSON cannot hold as it is, and how it is shown there.
const std::string kOddName = "\"\\\x01\xc3\xa4\xff\t!";
const std::string kOddShown = "\\\"\\\\\\u0001\xc3\xa4\xef\xbf\xbd\\t!";

// The members that every success begins with.
std::string success(const std::string& method) {
  return R"({"method":")" + method + R"(","status_code":1,"status_text":"success")";
}

TEST(JsonOutput, OddTextsAndWhatTheHostHas) {
  TestHost host;
  host.factory().profile("b", kOddName).file("b/hip.log", "I~ a\nE~ \xc3\"\xa4\"\nE~\n");
  host.file("/opt/vrx/.systemctl", "").standIn("/bin/systemctl");
  host.file("/tmp/stand-in-output", "from the child\n");
  std::string networks;
  std::istringstream lines(host.says("list interfaces"));
  for (std::string line; std::getline(lines, line);)
    networks += (networks.empty() ? "\"" : ",\"") + line + "\"";
  expectRows(
      {"list profiles -> " + success("list profiles") +
           R"(,"profiles":[{"profile_dir":"b","profile_name":")" + kOddShown +
           R"("}],"current_dir":"","current_name":"","root_dir":"/opt/vrx//profiles/"})",
       "show log dir=b log_level=error -> " + success("list log") +
           ",\"log\":[\"E~ \xef\xbf\xbd\\\"\xef\xbf\xbd\\\"\",\"E~\"],\"profile_name\":\"" +
           kOddShown + "\"}",
       "list interfaces -> " + success("list interfaces") + R"(,"interfaces":[)" + networks + "]}",
       "profile details .factory --quiet -> " + success("profile details") +
           R"(,"details":{"profile_dir":".factory","profile_name":".factory","network":"auto",)"
           R"("networks":[)" +
           networks +
           R"(],"deviceID":"device-1","overlay_device_ip":"1.2.3.4","overlay_mask":"255.0.0.0",)"
           R"("invitation":"","log_level":"info"}})",
       "service bounce -> " + success("service restart") + "}"},
      [&host](const std::string& words) {
        const Outcome outcome = host.run("/usr/sbin/tunadm " + words + " output=json");
        EXPECT_EQ(outcome.exit, 0) << words;
        EXPECT_EQ(outcome.err, words == "service bounce" ? "from the child\n" : "") << words;
        return outcome.out.substr(0, outcome.out.size() - 1);
      });
  host.remove("/opt/vrx/profiles");
  EXPECT_EQ(host.says("list profiles output=json"),
            "{\"method\":\"list profiles\",\"status_code\":301989889,"
            "\"status_text\":\"application error\"}\n");
}

}  // namespace
}  // namespace tunadm
