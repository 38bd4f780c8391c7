#include "core/Status.h"

#include <gtest/gtest.h>

#include "core/ProgramStatus.h"
#include "core/StatusText.h"

namespace tunadm {
namespace {

StatusCode codeOf(unsigned bits) { return static_cast<StatusCode>(bits); }

TEST(Status, CategoryZeroIsSuccess) {
  const struct {
    unsigned code;
    bool success;
  } cases[] = {{0, true},           {1, true},           {0x00001002, true},  {0x10000003, false},
               {0x20000001, false}, {0x22000001, false}, {0x80000000, false}, {0xffffffff, false}};
  for (const auto& c : cases) EXPECT_EQ(isSuccess(codeOf(c.code)), c.success) << c.code;
}

TEST(Status, ResetKeepsTheContextOfAnEarlierStep) {
  Status status(kInvalidArgument, "parameter not a string", "binding input args");
  status.reset();
  EXPECT_EQ(status.code(), 1);
  EXPECT_EQ(status.details(), "");
  EXPECT_EQ(status.context(), "binding input args");
}

TEST(StatusText, Texts) {
  EXPECT_STREQ(statusText(codeOf(0x12001001)), "generic application error") << "nobody's yet";
  registerStatusTexts(kProgramModule, nullptr);
  registerStatusTexts(kProgramModule, &programStatusText);
  // A later provider of the same module fills the gaps of the first.
  registerStatusTexts(kProgramModule, [](StatusCode code) -> const char* {
    return code == codeOf(0x12001fff) ? "from the second" : nullptr;
  });
  const struct {
    unsigned code;
    const char* text;
  } cases[] = {
      {0x00000001, "success"},
      {0x00000002, "success with warnings"},
      {0x10000001, "client error"},
      {0x10000002, "invalid command"},
      {0x10000003, "invalid argument"},
      {0x12000001, "application error"},
      {0x12000002, "authentication error (tunadm requires sudo for this command)"},
      {0x14000001, "error on host system"},
      {0x16000001, "error on external system"},
      {0x20000001, "multiple results"},
      {0x24000001, "internal error"},
      {0x24000002, "unimplemented"},
      {0x14000002, "stdlib error: opendir"},
      {0x14000003, "stdlib error: readlink"},
      {0x14000004, "stdlib error: file stat"},
      {0x14000005, "stdlib error: file open"},
      {0x14000006, "stdlib error: file read"},
      {0x14000007, "stdlib error: file write"},
      {0x14000008, "stdlib error: chmod"},
      {0x14000009, "stdlib error: getifaddrs"},
      {0x1400000a, "stdlib error: fork"},
      {0x1400000b, "stdlib error: waitpid"},
      {0x1400000c, "stdlib error: unlink"},
      {0x1400000d, "stdlib error: unlink(directory)"},
      {0x1400000e, "stdlib error: rmdir"},
      {0x1400000f, "stdlib error: mkdir"},
      {0x14000010, "stdlib error: rename"},
      {0x14000011, "stdlib error: copyfile"},
      {0x14000012, "stdlib error: getcwd"},
      {0x14000013, "stdlib error: system"},
      {0x00000000, "invalid status code"},
      {0x00001001, "profile is active"},
      {0x00001002, "profile is currently running"},
      {0x12001001, "profile not found"},
      {0x12001002, "command cannot be executed while the profile is running"},
      {0x16001001, "child process returned nonzero exit code"},
      {0x16001002, "child process terminated by a signal"},
      {0x00000003, "generic success"},
      {0x10000099, "generic client error"},
      {0x12002001, "generic application error"},
      {0x14000099, "generic host error"},
      {0x16000099, "generic external-dependency error"},
      {0x20000002, "unrecognized informational status code"},
      {0x22000001, "unrecognized transient-error status code"},
      {0x24000009, "unrecognized internal-error status code"},
      {0x11000000, "generic error code"},
      {0x15000000, "generic error code"},
      {0x17000000, "unrecognized status code value"},
      {0x25000001, "unrecognized status code value"},
      {0x80000000, "integer is not a status code"},
      {0xffffffff, "integer is not a status code"},
      {0x12001fff, "from the second"},
  };
  for (const auto& c : cases)
    EXPECT_STREQ(statusText(codeOf(c.code)), c.text) << std::hex << c.code;
}

}  // namespace
}  // namespace tunadm
