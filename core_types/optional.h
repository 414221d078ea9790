#pragma once

#include <cstring>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace ara::core {

template <typename T>
class Optional;

namespace internal {

template <typename T>
inline constexpr bool kIsOptional = false;
template <typename T>
inline constexpr bool kIsOptional<Optional<T>> = true;
template <>
inline constexpr bool kIsOptional<std::nullopt_t> = true;

/// Where an Optional<T> takes a U that is no T. Numbers are left to the language's own conversions, and its warnings.
template <typename T, typename U, bool Condition = true, typename V = std::remove_cv_t<std::remove_reference_t<U>>>
using EnableMaking = std::enable_if_t<Condition && std::is_class_v<T> && !std::is_same_v<V, T> && !kIsOptional<V> &&
                                      std::is_constructible_v<T, U&&>>;

/// Whether two values are equal: numbers by what they are worth, whatever their types; a bool by its storage, which may
/// hold any byte when it came from the network.
template <typename T, typename U>
bool AreEqual(const T& left, const U& right) {
  if constexpr (std::is_same_v<T, bool> && std::is_same_v<U, bool>) {
    return std::memcmp(&left, &right, sizeof(bool)) == 0;
  } else if constexpr (std::is_arithmetic_v<T> && std::is_arithmetic_v<U>) {
    using Common = std::common_type_t<T, U>;
    if constexpr (std::is_signed_v<T> != std::is_signed_v<U> && std::is_unsigned_v<Common>) {
      if (left < T{} || right < U{}) {
        return false;
      }
    }
    return static_cast<Common>(left) == static_cast<Common>(right);
  } else {
    return left == right;
  }
}

}  // namespace internal

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
  /// From what T is made of without saying so: `Optional<std::string> name = "x"`.
  template <typename U, typename = internal::EnableMaking<T, U, std::is_convertible_v<U&&, T>>>
  Optional(U&& value) : Optional(std::make_unique<T>(std::forward<U>(value))) {}
  Optional(const Optional& other) : Optional(other.present_ ? Clone(*other.value_) : nullptr) {}
  Optional(Optional&& other) noexcept
      : present_(std::exchange(other.present_, false)), value_(std::move(other.value_)) {}
  ~Optional() = default;

  /// Each assignment of a value makes a new allocation and frees the old one: if it throws, the old value stays.
  Optional& operator=(Optional other) noexcept {
    swap(other);
    return *this;
  }

  template <typename U, typename = internal::EnableMaking<T, U>>
  Optional& operator=(U&& value) {
    emplace(std::forward<U>(value));
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

/// Equal are two that hold nothing, and two whose values are equal.
template <typename T>
bool operator==(const Optional<T>& left, const Optional<T>& right) {
  return left.has_value() == right.has_value() && (!left.has_value() || internal::AreEqual(*left, *right));
}
template <typename T>
bool operator==(const Optional<T>& left, std::nullopt_t) noexcept {
  return !left.has_value();
}
/// Whether the value is there and equals `right`.
template <typename T, typename U, typename = std::enable_if_t<!internal::kIsOptional<U>>>
bool operator==(const Optional<T>& left, const U& right) {
  return left.has_value() && internal::AreEqual(*left, right);
}
template <typename T, typename U,
          typename = std::enable_if_t<!internal::kIsOptional<U> || std::is_same_v<U, std::nullopt_t>>>
bool operator==(const U& left, const Optional<T>& right) {
  return right == left;
}
template <typename T, typename U>
bool operator!=(const Optional<T>& left, const U& right) {
  return !(left == right);
}
template <typename T, typename U,
          typename = std::enable_if_t<!internal::kIsOptional<U> || std::is_same_v<U, std::nullopt_t>>>
bool operator!=(const U& left, const Optional<T>& right) {
  return !(right == left);
}

}  // namespace ara::core
