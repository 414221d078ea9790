#include "tools/tarn7/values/place.h"

#include "tools/tarn7/error.h"

namespace tarn7::tool {

std::string Place::ToString() const {
  std::string text;
  AppendTo(text);
  return text.empty() ? "the value" : text;
}

void Place::Fail(const std::string& text) const { throw ValueError(ToString() + ": " + text); }

void Place::AppendTo(std::string& text) const {
  if (parent_ == nullptr) {
    return;
  }
  parent_->AppendTo(text);
  if (index_) {
    text += '[' + std::to_string(*index_) + ']';
  } else {
    text += text.empty() ? "" : ".";
    text += name_;
  }
}

}  // namespace tarn7::tool
