#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "ara/com/internal/proxy/field.h"
#include "ara/com/internal/proxy/proxy_binding_base.h"
#include "core_types/future.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"
#include "tools/tarn7/client/call_error.h"
#include "tools/tarn7/client/field_client.h"

namespace tarn7::tool {

/// Access through the library's own proxy: payloads become values, and values payloads, in the library's own codec.
template <typename ProxyField>
class ProxyFieldClient final : public FieldClient {
 public:
  /// `field` is part of `binding`.
  ProxyFieldClient(std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding, ProxyField& field)
      : binding_(std::move(binding)), field_(field) {}

  void StartGet(std::function<void()> answered) override {
    answer_ = field_.Get();
    answer_.then(std::move(answered));
  }

  void StartSet(const Payload& value, std::function<void()> answered) override {
    if constexpr (std::is_base_of_v<ara::com::internal::proxy::MutableField<Value>, ProxyField>) {
      answer_ = field_.Set(common::DeserializeFieldValue<Value>(value.data(), value.size()));
      answer_.then(std::move(answered));
    } else {
      throw std::logic_error("the field has no setter");
    }
  }

  Payload TakeAnswer() override {
    const ara::core::Result<Value> result = answer_.GetResult();
    if (!result) {
      ThrowCallError(result.error());
    }
    return Encode(result.value());
  }

  void Subscribe(std::function<void()> arrived) override {
    // Taken at once, because the library bounds by number only what waits in it.
    field_.SetReceiveHandler([&field = field_, samples = samples_, check = check_, arrived = std::move(arrived)] {
      field.GetNewSamples(
          [&](auto sample) {
            *check = sample.GetProfileCheckStatus();
            samples->Push(Encode(*sample));
          },
          1);
      arrived();
    });
    field_.Subscribe(kCacheSize);
  }

  FieldState GetState() const override { return {field_.GetSubscriptionState(), *check_}; }

 private:
  using Value = typename ProxyField::FieldType;
  using Check = std::atomic<ara::com::e2exf::ProfileCheckStatus>;

  static Payload Encode(const Value& value) {
    Payload payload;
    common::SequenceContainerSerializer<Value>(value).pushbackTo(payload);
    return payload;
  }

  /// What may arrive while a sample is taken.
  static constexpr std::size_t kCacheSize = 16;

  std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding_;
  ProxyField& field_;
  ara::core::Future<Value> answer_;
  const std::shared_ptr<Check> check_ = std::make_shared<Check>(ara::com::e2exf::ProfileCheckStatus::kNotAvailable);
};

}  // namespace tarn7::tool
