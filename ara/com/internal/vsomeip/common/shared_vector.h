#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace ara::com::internal::vsomeip::common {

/// A vector that is walked without a lock while it changes: who walks it shares it as it is then, and the next change
/// is made in a copy. So sharing copies nothing, and of many changes in a row only one does. Guarded by a mutex of its
/// owner.
template <typename T>
class SharedVector {
 public:
  std::shared_ptr<const std::vector<T>> Share() noexcept {
    is_shared_ = true;
    return elements_;
  }

  const std::vector<T>& Get() const noexcept { return *elements_; }

  std::vector<T>& Change() {
    if (is_shared_) {
      elements_ = std::make_shared<std::vector<T>>(*elements_);
      is_shared_ = false;
    }
    return *elements_;
  }

 private:
  std::shared_ptr<std::vector<T>> elements_ = std::make_shared<std::vector<T>>();
  bool is_shared_ = false;
};

}  // namespace ara::com::internal::vsomeip::common
