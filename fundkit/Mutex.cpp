#include "fundkit/Mutex.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <string>
#include <utility>

#include "fundkit/DescriptorIo.h"
#include "fundkit/ThreadUtils.h"

namespace tunadm {
namespace {

// Constant from the start: locks may be taken before main() begins and after it ends.
constinit std::atomic<LockWarningHandler> contention_handler{&warnOfContention};
constinit std::atomic<LockWarningHandler> long_hold_handler{&warnOfLongHold};

std::unique_ptr<Lockable> makeImplementation(const char* name, Duration acquire_threshold,
                                             Duration hold_threshold) {
  if (acquire_threshold < 1 || hold_threshold < 1) return std::make_unique<BasicMutex>();
  return std::make_unique<TimedMutex>(name, acquire_threshold, hold_threshold);
}

std::int32_t wholeMilliseconds(Duration duration) {
  return static_cast<std::int32_t>(duration / kMillisecond);
}

}  // namespace

// A mutex with default attributes reports no failure when it is used as the header demands, so the
// results of these calls are of no interest.
BasicMutex::~BasicMutex() { pthread_mutex_destroy(&mutex_); }

void BasicMutex::lock() { pthread_mutex_lock(&mutex_); }

void BasicMutex::unlock() { pthread_mutex_unlock(&mutex_); }

TimedMutex::TimedMutex(const char* name, Duration acquire_threshold, Duration hold_threshold)
    : name_(name == nullptr || *name == '\0' ? "<unnamed mutex>" : name),
      acquire_threshold_(std::max<Duration>(acquire_threshold, 0)),
      hold_threshold_(std::max<Duration>(hold_threshold, 0)) {}

TimedMutex::~TimedMutex() { pthread_mutex_destroy(&mutex_); }

void TimedMutex::lock() {
  std::string caller = threadName();
  const TimePoint asked_at = monotonicTime();
  pthread_mutex_lock(&mutex_);
  acquired_at_ = monotonicTime();
  holder_ = std::move(caller);
  const Duration waited = acquired_at_ - asked_at;
  if (waited > acquire_threshold_) {
    contention_handler.load()(name_.c_str(), holder_.c_str(), acquire_threshold_, waited);
  }
}

void TimedMutex::unlock() {
  const std::string holder = std::exchange(holder_, std::string());
  const Duration held = monotonicTime() - acquired_at_;
  acquired_at_ = 0;
  // Once it is unlocked, another thread may take the mutex for the last time and destroy it: what
  // the warning needs is copied first.
  const Duration threshold = hold_threshold_;
  const std::string name = held > threshold ? name_ : std::string();
  pthread_mutex_unlock(&mutex_);
  if (held > threshold) long_hold_handler.load()(name.c_str(), holder.c_str(), threshold, held);
}

PortableMutex::PortableMutex() : implementation_(std::make_unique<BasicMutex>()) {}

PortableMutex::PortableMutex(const char* name, Duration acquire_threshold, Duration hold_threshold)
    : implementation_(makeImplementation(name, acquire_threshold, hold_threshold)) {}

void setContentionHandler(LockWarningHandler handler) {
  contention_handler.store(handler == nullptr ? &warnOfContention : handler);
}

void setLongHoldHandler(LockWarningHandler handler) {
  long_hold_handler.store(handler == nullptr ? &warnOfLongHold : handler);
}

void warnOfContention(const char* mutex_name, const char* /*holder*/, Duration /*threshold*/,
                      Duration measured) {
  writeOutput(STDERR_FILENO, std::string("lock contention warning, '") + mutex_name + "' took " +
                                 std::to_string(wholeMilliseconds(measured)) + "ms to acquire\n");
}

void warnOfLongHold(const char* mutex_name, const char* /*holder*/, Duration /*threshold*/,
                    Duration measured) {
  writeOutput(STDERR_FILENO, std::string("lock warning, '") + mutex_name + "' held for " +
                                 std::to_string(wholeMilliseconds(measured)) + "ms\n");
}

}  // namespace tunadm
