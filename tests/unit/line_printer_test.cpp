#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "fundkit/LinePrinter.h"
#include "fundkit/ScopedFd.h"

namespace tunadm {
namespace {

// What is logged while 70,000 bytes in two writes, and then a line, go to the descriptor.
std::string loggedFor(const ScopedFd& descriptor) {
  testing::internal::CaptureStderr();
  {
    LinePrinter out(descriptor.get());
    out.append(std::string(35000, 'x'));
    out.print(std::string(35000, 'x'));
    out.print("y");
  }
  return testing::internal::GetCapturedStderr();
}

TEST(LinePrinter, SaysOnceWhyItsOutputIsLost) {
  EXPECT_EQ(loggedFor(ScopedFd(open("/dev/full", O_WRONLY | O_CLOEXEC))),
            "E~ tunadm LinePrinter.cpp write: write output: No space left on device\n");
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  ASSERT_EQ(close(ends[0]), 0);
  EXPECT_EQ(loggedFor(ScopedFd(ends[1])), "") << "no reader needs no reason";
}

TEST(LinePrinter, JoinsPiecesAndEndsLines) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const ScopedFd reader(ends[0]);
  {
    const ScopedFd writer(ends[1]);
    LinePrinter out(writer.get());
    out.append("one, ");
    out.append("");
    out.print("two\nthree");
    out.print("");
  }
  char bytes[100];
  const ssize_t count = read(reader.get(), bytes, sizeof(bytes));
  ASSERT_GT(count, 0);
  EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), "one, two\nthree\n\n");
}

}  // namespace
}  // namespace tunadm
