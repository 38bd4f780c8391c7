// What the commands print with output=json.

#include <algorithm>

#include "tests/support/TestHost.h"

namespace tunadm {
namespace {

// A friendly name that JSON cannot hold as it is, and how it is shown there.
const std::string kOddName = "\"\\\x01\xc3\xa4\xff\t!";
const std::string kOddShown = "\\\"\\\\\\u0001\xc3\xa4\xef\xbf\xbd\\t!";

// What a command of that name prints: its outcome, and after that of a success its own members.
// They are given with ' instead of ".
std::string result(const std::string& method, const std::string& members,
                   const std::string& status = "1,'status_text':'success'") {
  std::string line = "{'method':'" + method + "','status_code':" + status + members + "}\n";
  std::ranges::replace(line, '\'', '"');
  return line;
}

std::string failed(const std::string& method, const std::string& status) {
  return result(method, "", status);
}

// The host's interfaces as an array.
std::string networks(const TestHost& host) {
  std::string array;
  std::istringstream lines(host.says("list interfaces"));
  for (std::string line; std::getline(lines, line);)
    array.append(array.empty() ? "'" : ",'").append(line).append("'");
  return "[" + array + "]";
}

// The details of a profile with the settings of the test host's factory profile.
std::string details(const TestHost& host, const std::string& dir, const std::string& name,
                    const std::string& helmsman) {
  return ",'details':{'profile_dir':'" + dir + "','profile_name':'" + name +
         "','network':'auto','networks':" + networks(host) +
         ",'deviceID':'device-1','overlay_device_ip':'1.2.3.4','overlay_mask':'255.0.0.0',"
         "'invitation':''," +
         helmsman + "'log_level':'info'}";
}

TEST(JsonOutput, SuccessAndFailureOfEveryCommand) {
  TestHost host;
  host.factory().profile("b", kOddName).file("b/hip.log", "I~ a\nE~ \xc3\"\xa4\"\nE~\n");
  host.file("/opt/vrx/.systemctl", "").standIn("/bin/systemctl");
  host.file("/tmp/stand-in-output", "from the child\n");
  host.file("/tmp/stand-in-end", "exit 0\nexit 0\nexit 0\nexit 3\nexit 3\nexit 3\n");
  host.file("/opt/vrx/bin/vrx-sendbundle.sh",
            "#!/bin/sh\n[ -e /tmp/bundled ] && exit 3\necho x >/tmp/bundled\ncat /tmp/bundled\n",
            0755);
  const std::string not_found = "301993985,'status_text':'profile not found'";
  const std::string refused = "268435459,'status_text':'invalid argument'";
  const std::string application = "301989889,'status_text':'application error'";
  const std::string child = "369102849,'status_text':'child process returned nonzero exit code'";
  const std::string office = details(host, "profile-123123", "office", "'helmsman':'h:9',");
  const std::string name = ",'profile_name':'office'";
  const std::pair<std::string, std::string> cases[] = {
      {"list profiles",
       result("list profiles", ",'profiles':[{'profile_dir':'b','profile_name':'" + kOddShown +
                                   "'}],'current_dir':'','current_name':'','root_dir':"
                                   "'/opt/vrx//profiles/'")},
      {"list interfaces", result("list interfaces", ",'interfaces':" + networks(host))},
      {"profile create office helmsman=h:9", result("profile create", office + name)},
      {"profile create office helmsman=h allow_rename=no", failed("profile create", application)},
      {"profile details office --quiet", result("profile details", office)},
      {"profile details .factory",
       result("profile details", details(host, ".factory", ".factory", ""))},
      {"profile modify office log_level=info", result("profile modify", office)},
      {"profile rename dir=b new_name=b", result("profile rename", ",'profile_name':'b'")},
      {"profile rename office new_name=b requestID=7",
       "{\"requestID\":\"7\"," +
           failed("profile rename", refused + ",'status_details':'invalid profile name',"
                                              "'status_context':'profile rename'")
               .substr(1)},
      {"support reset office", result("support reset", name)},
      {"show log b log_level=error",
       result("list log",
              ",'log':['E~ \xef\xbf\xbd\\\"\xef\xbf\xbd\\\"','E~'],'profile_name':'b'")},
      {"list versions",
       result("list versions", ",'hipapp_version':'3.1.0','tunadm_version':'2.2'")},
      {"json {}", result("json <object>", ",'subcommand':[]")},
      {"service start", result("service start", "")},
      {"service stop", result("service stop", "")},
      {"service bounce", result("service restart", "")},
      {"service start", failed("service start", child)},
      {"service stop", failed("service stop", child)},
      {"service restart", failed("service restart", child)},
      {"service status",
       result("service status", ",'running':false,'helmsman':false,'tunnel':false")},
      {"support bundle", result("support bundle", "")},
      {"support bundle", failed("support bundle", application)},
      {"profile delete .factory", failed("profile delete", refused)},
      {"profile delete office", result("profile delete", "")},
      {"profile activate b", result("profile activate", ",'profile_name':'b'")},
  };
  const auto expect = [&host](const std::string& words, const std::string& line) {
    const Outcome outcome = host.run("/usr/sbin/tunadm " + words + " output=json");
    EXPECT_EQ(outcome.out, line) << words;
    EXPECT_EQ(outcome.exit, 0) << words;
  };
  for (const auto& [words, line] : cases) expect(words, line);
  for (const std::string method : {"profile details", "profile modify", "profile activate",
                                   "profile delete", "support reset", "list log"})
    expect(method + " x", failed(method, not_found));
  host.remove("/opt/vrx/profiles");
  expect("list profiles", failed("list profiles", application));
}

}  // namespace
}  // namespace tunadm
