#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>

namespace tarn7::tool {

/// The text of one of Wireshark's user tables: a row on each line, its values in quotes.
class UserTable {
 public:
  class Value {
   public:
    Value(const char* text) : text_(text) {}
    Value(std::string text) : text_(std::move(text)) {}
    /// A number is decimal.
    template <typename T, typename = std::enable_if_t<std::is_integral_v<T>>>
    Value(T value) {
      if constexpr (std::is_same_v<T, bool>) {
        text_ = value ? "TRUE" : "FALSE";
      } else {
        text_ = std::to_string(value);
      }
    }

    const std::string& Text() const noexcept { return text_; }

   private:
    std::string text_;
  };

  /// Identifiers are hexadecimal in these tables, without a prefix.
  static Value Hex(std::uint64_t id);

  /// No text holds a quote.
  void AddRow(std::initializer_list<Value> values);

  const std::string& Text() const noexcept { return text_; }

 private:
  std::string text_;
};

}  // namespace tarn7::tool
