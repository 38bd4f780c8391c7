#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include "fundkit/Mutex.h"
#include "fundkit/ThreadUtils.h"

namespace tunadm {
namespace {

// Without a lock of their own: the mutex under test has to keep the threads apart.
std::string contention, long_hold;
std::atomic<bool> next_has_lock{true};

// Spins for ten seconds at most, so that a lock that fails does not stop the tests.
bool becomesTrue(const std::function<bool()>& condition) {
  for (const TimePoint start = monotonicTime(); monotonicTime() - start < 10 * kSecond;) {
    if (condition()) return true;
  }
  return false;
}

// Every wait and hold that is noted takes 3 milliseconds at least.
void passTime() {
  (void)becomesTrue([start = monotonicTime()] { return monotonicTime() - start >= 3000; });
}

void noteContention(const char* name, const char* holder, Duration threshold, Duration measured) {
  EXPECT_TRUE(measured >= 3000 && measured < kMinute);
  contention = std::string(name) + "," + holder + "," + std::to_string(threshold);
  next_has_lock = true;
}

void noteLongHold(const char* name, const char* holder, Duration threshold, Duration measured) {
  if (threadName() == "waiter") return;
  EXPECT_TRUE(becomesTrue([] { return next_has_lock.load(); })) << "the lock is not open yet";
  EXPECT_TRUE(measured >= 3000 && measured < kMinute);
  long_hold = std::string(name) + "," + holder + "," + std::to_string(threshold);
}

bool isAsleep(pid_t thread) {
  std::string line;
  std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
  return std::getline(file, line) && line.find(") S ") != std::string::npos;
}

TEST(Mutex, HoldThresholds) {
  EXPECT_FALSE(setThreadName("sixteen bytes !!"));
  setLongHoldHandler(&noteLongHold);
  ASSERT_TRUE(setThreadName("holder"));
  const auto reportOf = [](Lockable&& mutex) {
    long_hold.clear();
    mutex.lock();
    passTime();
    mutex.unlock();
    return long_hold;
  };
  EXPECT_EQ(reportOf(TimedMutex("", kDay, 500)), "<unnamed mutex>,holder,500");
  EXPECT_EQ(reportOf(TimedMutex(nullptr, kDay, -5)), "<unnamed mutex>,holder,0");
  EXPECT_EQ(reportOf(PortableMutex("a", kDay, 1)), "a,holder,1");
  EXPECT_EQ(reportOf(PortableMutex("b", 0, 500)), "");
  EXPECT_EQ(reportOf(PortableMutex("c", kDay, 0)), "");
  EXPECT_EQ(reportOf(PortableMutex("d", kDay, kDay)), "");
  setLongHoldHandler(nullptr);
  testing::internal::CaptureStderr();
  (void)reportOf(TimedMutex("e", kDay, 0));
  warnOfContention("m", "holder", 1000, 2500);
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_EQ(text.rfind("lock warning, 'e' held for ", 0), 0u);
  EXPECT_NE(text.find("ms\nlock contention warning, 'm' took 2ms to acquire\n"), text.npos);
}

TEST(Mutex, WarnsOfTheWaiterAndOfTheOneWhoLetItWait) {
  setContentionHandler(&noteContention);
  setLongHoldHandler(&noteLongHold);
  TimedMutex mutex("m", 2000, 1000);
  std::atomic<pid_t> waiter{0};
  next_has_lock = false;
  mutex.lock();
  std::thread thread([&] {
    EXPECT_TRUE(setThreadName("waiter"));
    waiter = gettid();
    const std::lock_guard<Lockable> hold(mutex);
  });
  EXPECT_TRUE(becomesTrue([&] { return waiter != 0 && isAsleep(waiter); }));
  passTime();
  mutex.unlock();
  thread.join();
  EXPECT_EQ(contention, "m,waiter,2000");
  EXPECT_EQ(long_hold, "m," + threadName() + ",1000");
}

TEST(Mutex, KeepsThreadsApart) {
  PortableMutex plain, watched("w", 1, kDay);
  for (PortableMutex* mutex : {&plain, &watched}) {
    int counter = 0;
    const auto work = [&] {
      for (int i = 0; i < 100000; ++i) {
        setContentionHandler([](const char*, const char*, Duration, Duration) {});
        const std::lock_guard<Lockable> hold(*mutex);
        ++counter;
      }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(counter, 200000);
  }
}

}  // namespace
}  // namespace tunadm
