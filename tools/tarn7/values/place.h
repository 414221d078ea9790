#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tarn7::tool {

/// A place in a JSON value, as in "[2].member0": a chain towards the root, made while the value is read. A place must
/// not outlive its parent, nor the text of its name.
class Place {
 public:
  Place() noexcept = default;
  Place(const Place& parent, std::string_view name) noexcept : parent_(&parent), name_(name) {}
  Place(const Place& parent, std::size_t index) noexcept : parent_(&parent), index_(index) {}

  std::string ToString() const;

  /// Throws ValueError with the place in front of the text.
  [[noreturn]] void Fail(const std::string& text) const;

 private:
  void AppendTo(std::string& text) const;

  const Place* parent_ = nullptr;
  std::string_view name_;
  std::optional<std::size_t> index_;  // of an element of an array
};

}  // namespace tarn7::tool
