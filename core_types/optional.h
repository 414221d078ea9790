#pragma once

#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace ara::core {

/// A value that may be absent. The value lives in a heap allocation of its own; an absent one holds none. Copies are
/// deep.
template <typename T>
class Optional {
 public:
  using value_type = T;

  Optional() noexcept = default;
  Optional(std::nullopt_t) noexcept {}
  Optional(const T& value) : Optional(Clone(value)) {}
  Optional(T&& value) : Optional(std::make_unique<T>(std::move(value))) {}
  Optional(const Optional& other) : Optional(other.present_ ? Clone(*other.value_) : nullptr) {}
  Optional(Optional&& other) noexcept
      : present_(std::exchange(other.present_, false)), value_(std::move(other.value_)) {}
  ~Optional() = default;

  /// Each assignment of a value makes a new allocation and frees the old one: if it throws, the old value stays.
  Optional& operator=(Optional other) noexcept {
    swap(other);
    return *this;
  }

  bool has_value() const noexcept { return present_; }
  explicit operator bool() const noexcept { return present_; }

  /// Throws std::bad_optional_access when absent.
  const T& value() const& {
    RequirePresent();
    return *value_;
  }
  T& value() & {
    RequirePresent();
    return *value_;
  }
  template <typename U>
  T value_or(U&& fallback) const {
    return present_ ? *value_ : static_cast<T>(std::forward<U>(fallback));
  }

  /// The value must be present.
  const T& operator*() const noexcept { return *value_; }
  T& operator*() noexcept { return *value_; }
  const T* operator->() const noexcept { return value_.get(); }
  T* operator->() noexcept { return value_.get(); }

  /// Replaces the value by one made of `arguments`; without any it is value-initialised.
  template <typename... Arguments>
  T& emplace(Arguments&&... arguments) {
    *this = Optional(std::make_unique<T>(std::forward<Arguments>(arguments)...));
    return *value_;
  }
  void reset() noexcept {
    present_ = false;
    value_.reset();
  }
  void swap(Optional& other) noexcept {
    std::swap(present_, other.present_);
    value_.swap(other.value_);
  }

 private:
  explicit Optional(std::unique_ptr<T> value) noexcept : present_(value != nullptr), value_(std::move(value)) {}

  static std::unique_ptr<T> Clone(const T& value) {
    if constexpr (std::is_trivially_copyable_v<T> && std::is_default_constructible_v<T>) {
      // Byte for byte: a bool that came from the network may hold any byte, which only its storage can carry on.
      auto copy = std::make_unique<T>();
      std::memcpy(copy.get(), &value, sizeof(T));
      return copy;
    } else {
      return std::make_unique<T>(value);
    }
  }

  void RequirePresent() const {
    if (!present_) {
      throw std::bad_optional_access();
    }
  }

  bool present_ = false;
  std::unique_ptr<T> value_;
};

template <typename T>
bool operator==(const Optional<T>& left, const Optional<T>& right) {
  return left.has_value() == right.has_value() && (!left.has_value() || *left == *right);
}
/// Whether the value is there and equals `right`.
template <typename T>
bool operator==(const Optional<T>& left, const T& right) {
  return left.has_value() && *left == right;
}
template <typename T>
bool operator!=(const Optional<T>& left, const Optional<T>& right) {
  return !(left == right);
}
template <typename T>
bool operator!=(const Optional<T>& left, const T& right) {
  return !(left == right);
}

}  // namespace ara::core
