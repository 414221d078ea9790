#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <numeric>
#include <utility>
#include <vector>

#include "ara/com/sample_ptr.h"
#include "core_types/optional.h"

namespace ara::com::internal::proxy {

/// The sample cache of one subscription: a fixed number of slots, each for one decoded value. Samples keep it alive, so
/// it outlasts the subscription while the application holds any.
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

  explicit EventDataContainer(std::size_t slotCount) : slots_(slotCount), free_slots_(slotCount) {
    std::iota(free_slots_.begin(), free_slots_.end(), std::size_t{0});
  }

  std::size_t GetFreeSampleCount() const {
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    return free_slots_.size();
  }

  /// Takes the first free slot; empty when the application holds them all.
  Reservation Reserve() {
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    if (free_slots_.empty()) {
      return {};
    }
    const std::size_t slot = free_slots_.front();
    free_slots_.pop_front();
    return {this->shared_from_this(), slot};
  }

  /// Stores a value in a reserved slot and yields the pointer that gives the slot back.
  static SamplePtr<const T> Add(Reservation reservation, T value, e2exf::ProfileCheckStatus status) {
    EventDataContainer& container = *reservation.container_;
    const std::size_t slot = reservation.slot_;
    const T* sample = nullptr;
    {
      const std::lock_guard<std::mutex> lock(container.sample_mutex_);
      container.slots_[slot] = std::move(value);
      sample = &*container.slots_[slot];
    }
    return {sample, typename SamplePtr<const T>::Deleter(std::move(reservation.container_), slot), status};
  }

  void Release(std::size_t slot) noexcept override {
    ara::core::Optional<T> value;  // destroyed after the lock is released
    const std::lock_guard<std::mutex> lock(sample_mutex_);
    value.swap(slots_[slot]);
    free_slots_.push_back(slot);  // never grows past its first size
  }

 private:
  mutable std::mutex sample_mutex_;  // guards the slots and the free-slot queue
  std::vector<ara::core::Optional<T>> slots_;
  std::deque<std::size_t> free_slots_;
};

}  // namespace ara::com::internal::proxy
