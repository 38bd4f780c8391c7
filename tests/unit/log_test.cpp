#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "fundkit/BasicLog.h"
#include "fundkit/LogLevel.h"
#include "service/LogExtract.h"

namespace tunadm {
namespace {

// Further texts are a matter of fuzz/small_texts.cpp.
TEST(LogLevel, Names) {
  std::string names;
  for (const LogLevelDescriptor& level : kLogLevels) {
    names += std::string(loglevel_shortname(&level)) + loglevel_fullname(&level) + " ";
    EXPECT_EQ(parseLevel(loglevel_fullname(&level)), &level);
  }
  EXPECT_EQ(names, "T~TRACE D~DEBUG I~INFO N~NOTICE W~WARNING E~ERROR F~FATAL ");
  EXPECT_STREQ(loglevel_shortname(kLogUnset), "X~");
  for (const char* text : {"err\ttext", "", "WARNINGS", "[F~]"})
    EXPECT_EQ(parseLevel(text), kLogInfo);
  for (const char* text : {"[Fatal] x", "panic", "\xc3 ALERT \xff"})
    EXPECT_EQ(parseLevel(text), kLogFatal);
}

TEST(LogStatement, OneLineOnStandardError) {
  testing::internal::CaptureStderr();
  TUNADM_LOG(getLogger("a\nb"), kLogWarning, "m", "f", "could not\rget")
      .detail("%s", "forged\nE~ line\x1b[31m gr\xc3\xbc");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "W~ a?b m f: could not?get; forged?E~ line?[31m gr\xc3\xbc\n");
}

// What is found in a log is a matter of fuzz/log_extract.cpp.
TEST(LogExtract, NoLogfile) {
  for (const char* path : {"", "/missing", "/"}) {
    LogExtract extract;
    EXPECT_EQ(extract.find(path, 50, kLogInfo).code(), 2);
    std::string printed;
    extract.print([&printed](std::string_view line) { printed += line; });
    EXPECT_EQ(printed, "no logfile available for this profile");
  }
}

}  // namespace
}  // namespace tunadm
