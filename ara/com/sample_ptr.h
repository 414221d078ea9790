#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/include/e2e_status_handler.h"

namespace ara::com {

namespace internal::proxy {

/// Whatever keeps received samples in numbered slots and takes them back.
class SampleSlots {
 public:
  virtual void Release(std::size_t slot) noexcept = 0;
  virtual std::size_t GetFreeSampleCount() const = 0;

 protected:
  ~SampleSlots() = default;
};

}  // namespace internal::proxy

/// A received sample. It stays valid for as long as the pointer lives, whatever becomes of the subscription or the
/// proxy. Movable; destroying it gives its place in the sample cache back.
template <typename T>
class SamplePtr {
 public:
  /// Gives the slot back to the cache, which it keeps alive.
  class Deleter {
   public:
    Deleter() noexcept = default;
    Deleter(std::shared_ptr<internal::proxy::SampleSlots> slots, std::size_t slot) noexcept
        : slots_(std::move(slots)), slot_(slot) {}

    void operator()(T*) const noexcept { slots_->Release(slot_); }

   private:
    std::shared_ptr<internal::proxy::SampleSlots> slots_;
    std::size_t slot_ = 0;
  };

  SamplePtr() noexcept = default;
  SamplePtr(std::nullptr_t) noexcept {}
  SamplePtr(T* sample, Deleter deleter, e2exf::ProfileCheckStatus status) noexcept
      : sample_(sample, std::move(deleter)), status_(status) {}

  T& operator*() const noexcept { return *sample_; }
  T* operator->() const noexcept { return sample_.get(); }
  T* Get() const noexcept { return sample_.get(); }
  explicit operator bool() const noexcept { return sample_ != nullptr; }
  void Reset() noexcept { sample_.reset(); }

  /// The outcome of the end-to-end check of the message that carried the sample.
  e2exf::ProfileCheckStatus GetProfileCheckStatus() const noexcept { return status_; }

 private:
  std::unique_ptr<T, Deleter> sample_;
  e2exf::ProfileCheckStatus status_ = e2exf::ProfileCheckStatus::kNotAvailable;
};

}  // namespace ara::com
