// The scoped holders: one pointer, released when the holder is destroyed.
#pragma once

namespace tunadm {

// Owns at most one T and releases it by a function that the concrete holder supplies. The function
// is never called for a null pointer. A moved-from holder is empty.
template <typename T>
class ScopedRelease {
 public:
  ScopedRelease(const ScopedRelease&) = delete;
  ScopedRelease& operator=(const ScopedRelease&) = delete;

  T* get() const { return held_; }
  T* operator->() const { return held_; }
  T& operator*() const { return *held_; }
  explicit operator bool() const { return held_ != nullptr; }

  // Returns the pointer, which the caller then owns, and leaves the holder empty.
  [[nodiscard]] T* take() {
    T* taken = held_;
    held_ = nullptr;
    return taken;
  }

  // Releases what is held, then takes ownership of `held`. Does nothing if it is held already.
  void reset(T* held = nullptr) {
    if (held == held_) return;
    // Emptied first, so that a release that looks at its own holder finds nothing.
    if (T* old = take(); old != nullptr) release_(old);
    held_ = held;
  }

 protected:
  using Release = void (*)(T*);

  ScopedRelease(T* held, Release release) : held_(held), release_(release) {}
  ScopedRelease(ScopedRelease&& other) noexcept : held_(other.take()), release_(other.release_) {}
  ScopedRelease& operator=(ScopedRelease&& other) noexcept {
    if (this != &other) reset(other.take());
    return *this;
  }
  ~ScopedRelease() { reset(); }

 private:
  T* held_;
  Release release_;
};

// Deletes what it holds. A T that is a base class needs a virtual destructor.
template <typename T>
class ScopedPtr final : public ScopedRelease<T> {
 public:
  explicit ScopedPtr(T* held = nullptr) : ScopedRelease<T>(held, &destroy) {}

 private:
  static void destroy(T* held) { delete held; }
};

}  // namespace tunadm
