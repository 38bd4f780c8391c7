// Locks, plain or watched: a watched one reports which thread waited for it, or held it, for too
// long.
//
// Hold them with std::lock_guard<Lockable>. None may be locked twice by one thread, unlocked by a
// thread that does not hold it, or destroyed while it is held.
#pragma once

#include <pthread.h>

#include <memory>
#include <string>

#include "fundkit/TimeUtils.h"

namespace tunadm {

class Lockable {
 public:
  virtual ~Lockable() = default;
  Lockable(const Lockable&) = delete;
  Lockable& operator=(const Lockable&) = delete;

  // Waits until the lock is free and takes it.
  virtual void lock() = 0;
  virtual void unlock() = 0;

 protected:
  Lockable() = default;
};

class BasicMutex final : public Lockable {
 public:
  BasicMutex() = default;
  ~BasicMutex() override;

  void lock() override;
  void unlock() override;

 private:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
};

// Measures each wait and each hold and calls a warning handler for what exceeds its threshold.
class TimedMutex final : public Lockable {
 public:
  // A null or empty name becomes "<unnamed mutex>", a negative threshold 0.
  TimedMutex(const char* name, Duration acquire_threshold, Duration hold_threshold);
  ~TimedMutex() override;

  // The contention handler runs in here with the lock taken, so it must not take this lock.
  void lock() override;

  // The hold handler runs in here when other threads may have taken the lock or destroyed it.
  void unlock() override;

 private:
  pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
  const std::string name_;
  const Duration acquire_threshold_;
  const Duration hold_threshold_;
  // Both belong to the thread that has the lock.
  TimePoint acquired_at_ = 0;  // on the monotonic clock; 0 when free
  std::string holder_;         // thread name; empty when free
};

// The lock that the other modules use: watched if both thresholds are at least 1, else plain.
class PortableMutex final : public Lockable {
 public:
  PortableMutex();
  PortableMutex(const char* name, Duration acquire_threshold, Duration hold_threshold);

  void lock() override { implementation_->lock(); }
  void unlock() override { implementation_->unlock(); }

 private:
  const std::unique_ptr<Lockable> implementation_;
};

// Called with the name of the mutex, the thread that has or had it, the threshold and what was
// measured. The texts are valid until the handler returns. Any thread that uses a lock may be the
// caller.
using LockWarningHandler = void (*)(const char* mutex_name, const char* holder, Duration threshold,
                                    Duration measured);

// Install a handler for the whole process; null restores the default. Safe at any time, though a
// warning under way may still reach the previous handler.
void setContentionHandler(LockWarningHandler handler);
void setLongHoldHandler(LockWarningHandler handler);

// The default handlers: one line on standard error, with `measured` in whole milliseconds. What
// exceeds 32 bits (24 days) keeps its lower 32 bits.
void warnOfContention(const char* mutex_name, const char* holder, Duration threshold,
                      Duration measured);
void warnOfLongHold(const char* mutex_name, const char* holder, Duration threshold,
                    Duration measured);

}  // namespace tunadm
