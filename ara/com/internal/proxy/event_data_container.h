#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "ara/com/sample_ptr.h"

namespace ara::com::internal::proxy {

/// The sample cache of one subscription: a fixed number of slots, each for one decoded value. Samples keep it alive, so
/// it outlasts the subscription while the application holds any. All operations may be called from any thread.
template <typename T>
class EventDataContainer final : public SampleSlots, public std::enable_shared_from_this<EventDataContainer<T>> {
 public:
  /// One slot taken from the free ones; it goes back unless Add() has put a value into it.
  class Reservation {
   public:
    Reservation() noexcept = default;
    Reservation(std::shared_ptr<EventDataContainer> container, std::size_t slot) noexcept
        : container_(std::move(container)), slot_(slot) {}
    Reservation(Reservation&&) noexcept = default;
    Reservation& operator=(Reservation&&) = delete;
    ~Reservation() {
      if (container_ != nullptr) {
        container_->Release(slot_);
      }
    }

    explicit operator bool() const noexcept { return container_ != nullptr; }

   private:
    friend class EventDataContainer;

    std::shared_ptr<EventDataContainer> container_;
    std::size_t slot_ = 0;
  };

  explicit EventDataContainer(std::size_t slotCount) : slots_(slotCount), free_slots_(slotCount), free_(slotCount) {
    std::iota(free_slots_.begin(), free_slots_.end(), std::size_t{0});
  }

  std::size_t GetFreeSampleCount() const override {
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    return free_;
  }

  /// Takes the slot that is free for the longest time; empty when the application holds them all.
  Reservation Reserve() {
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    if (free_ == 0) {
      return {};
    }
    const std::size_t slot = free_slots_[first_free_];
    first_free_ = (first_free_ + 1) % free_slots_.size();
    --free_;
    return {this->shared_from_this(), slot};
  }

  /// Stores a value in a reserved slot and yields the pointer that gives the slot back.
  static SamplePtr<const T> Add(Reservation reservation, T value, e2exf::ProfileCheckStatus status) {
    const std::size_t slot = reservation.slot_;
    const T& sample = reservation.container_->slots_[slot].emplace(std::move(value));
    return {&sample, typename SamplePtr<const T>::Deleter(std::move(reservation.container_), slot), status};
  }

  void Release(std::size_t slot) noexcept override {
    slots_[slot].reset();
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    free_slots_[(first_free_ + free_) % free_slots_.size()] = slot;
    ++free_;
  }

 private:
  std::vector<std::optional<T>> slots_;  // each belongs to whoever has taken it from the free ones

  mutable std::mutex sample_mutex_;      // guards the members below
  std::vector<std::size_t> free_slots_;  // a ring: giving a slot back never allocates
  std::size_t first_free_ = 0;
  std::size_t free_;
};

}  // namespace ara::com::internal::proxy
