#pragma once

#include <cstdint>

namespace ara::core {

class ErrorCode;

/// Gives the numeric value of an ErrorCode its meaning.
///
/// Domain objects are static and immutable. One domain may exist as several objects (each unit that needs one may have
/// a copy of its own), so a domain is identified by its id and never by its address.
class ErrorDomain {
 public:
  using IdType = std::uint64_t;

  ErrorDomain(const ErrorDomain&) = delete;
  ErrorDomain& operator=(const ErrorDomain&) = delete;

  constexpr IdType Id() const noexcept { return id_; }

  /// The domain's name: a static, NUL-terminated text.
  virtual const char* Name() const noexcept = 0;
  /// The text for a code: static, NUL-terminated. An unknown code yields the domain's fallback text.
  virtual const char* Message(int code) const noexcept = 0;
  /// Throws the domain's own exception type, holding a copy of `code`.
  [[noreturn]] virtual void ThrowAsException(const ErrorCode& code) const = 0;

 protected:
  explicit constexpr ErrorDomain(IdType id) noexcept : id_(id) {}
  ~ErrorDomain() = default;

 private:
  const IdType id_;
};

inline bool operator==(const ErrorDomain& left, const ErrorDomain& right) noexcept { return left.Id() == right.Id(); }
inline bool operator!=(const ErrorDomain& left, const ErrorDomain& right) noexcept { return !(left == right); }

}  // namespace ara::core
