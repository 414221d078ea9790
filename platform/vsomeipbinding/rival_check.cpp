#include "platform/vsomeipbinding/rival_check.h"

#include <algorithm>
#include <cstdio>

#include "platform/vsomeipbinding/platform_log.h"

namespace ara::com::internal::vsomeip::runtime {

RivalCheck& RivalCheck::Get() {
  static RivalCheck& check = *new RivalCheck;  // never destroyed: the stack's threads may come late
  return check;
}

void RivalCheck::Ask(::vsomeip::application& application, std::uint16_t service, std::uint16_t instance) {
  const std::lock_guard<std::mutex> lock(mutex_);  // the stack answers on a thread of its own
  asked_.emplace_back(service, instance);
  // The stack keeps one handler, and calls it with every answer: the answers come in the order of the questions.
  application.get_offered_services_async(::vsomeip::offer_type_e::OT_ALL,
                                         [](const std::vector<Instance>& offered) { Get().OnAnswer(offered); });
}

void RivalCheck::Forget() {
  const std::lock_guard<std::mutex> lock(mutex_);
  asked_.clear();
}

void RivalCheck::OnAnswer(const std::vector<Instance>& offered) {
  Instance wanted;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (asked_.empty()) {
      return;
    }
    wanted = asked_.front();
    asked_.pop_front();
  }
  if (std::find(offered.begin(), offered.end(), wanted) == offered.end()) {
    return;
  }
  char name[32];
  std::snprintf(name, sizeof(name), "0x%04x, instance 0x%04x", static_cast<unsigned>(wanted.first),
                static_cast<unsigned>(wanted.second));
  PlatformLog().LogWarn().WithLocation("vsomeipbinding/rival_check", __func__, __LINE__)
      << "Service " << name
      << " is offered by another process already, and clients go on using that one: end it and offer again, or offer "
         "another instance";
}

}  // namespace ara::com::internal::vsomeip::runtime
