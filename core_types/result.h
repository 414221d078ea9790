#pragma once

#include <cstdio>
#include <exception>
#include <type_traits>
#include <utility>

#include <boost/variant.hpp>

#include "core_types/error_code.h"

namespace ara::core {

/// A value or an error: exactly one of the two at any time.
template <typename T, typename E = ErrorCode>
class Result {
  static_assert(!std::is_same_v<T, E>, "a Result's value type must differ from its error type");

 public:
  using value_type = T;
  using error_type = E;

  Result(const T& value) : held_(value) {}
  Result(T&& value) : held_(std::move(value)) {}
  Result(const E& error) : held_(error) {}
  Result(E&& error) : held_(std::move(error)) {}

  bool HasValue() const noexcept { return held_.which() == kValue; }
  explicit operator bool() const noexcept { return HasValue(); }

  /// The value. Asking a result that holds an error ends the process: misuse is never turned into an exception.
  const T& value() const& { return RequireValue(held_); }
  T& value() & { return RequireValue(held_); }
  T&& value() && { return std::move(RequireValue(held_)); }

  /// The error. Asking a result that holds a value ends the process.
  const E& error() const& { return RequireError(held_); }
  E& error() & { return RequireError(held_); }
  E&& error() && { return std::move(RequireError(held_)); }

  const T& Value() const& { return value(); }
  T&& Value() && { return std::move(*this).value(); }
  const E& Error() const& { return error(); }
  E&& Error() && { return std::move(*this).error(); }

  template <typename U>
  T ValueOr(U&& fallback) const& {
    return HasValue() ? value() : static_cast<T>(std::forward<U>(fallback));
  }
  template <typename U>
  T ValueOr(U&& fallback) && {
    return HasValue() ? std::move(*this).value() : static_cast<T>(std::forward<U>(fallback));
  }

  /// The value, or the error thrown as its domain's exception.
  const T& ValueOrThrow() const& {
    ThrowIfError();
    return value();
  }
  T ValueOrThrow() && {
    ThrowIfError();
    return std::move(*this).value();
  }

  /// Equal are two that hold equal values, and two that hold equal errors.
  friend bool operator==(const Result& left, const Result& right) {
    return left.HasValue() == right.HasValue() &&
           (left.HasValue() ? left.value() == right.value() : left.error() == right.error());
  }
  friend bool operator!=(const Result& left, const Result& right) { return !(left == right); }

 private:
  static constexpr int kValue = 0;

  void ThrowIfError() const {
    if (!HasValue()) {
      error().ThrowAsException();
    }
  }

  template <typename Variant>
  static auto& RequireValue(Variant& held) {
    auto* const value = boost::get<T>(&held);
    if (value == nullptr) {
      Terminate("__ value() called but NOT a value!\n");
    }
    return *value;
  }
  template <typename Variant>
  static auto& RequireError(Variant& held) {
    auto* const error = boost::get<E>(&held);
    if (error == nullptr) {
      Terminate("__ error() called but NOT an error!\n");
    }
    return *error;
  }

  [[noreturn]] static void Terminate(const char* text) noexcept {
    std::fputs(text, stdout);
    std::fflush(stdout);  // std::terminate() does not flush it
    std::terminate();
  }

  boost::variant<T, E> held_;
};

}  // namespace ara::core
