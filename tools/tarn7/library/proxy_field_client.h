#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

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
    field_.SetReceiveHandler(std::move(arrived));
    field_.Subscribe(kCacheSize);
  }

  std::vector<Payload> TakeSamples() override {
    std::vector<Payload> samples;
    field_.GetNewSamples([this, &samples](auto sample) {
      check_ = sample.GetProfileCheckStatus();
      samples.push_back(Encode(*sample));
    });
    return samples;
  }

  FieldState GetState() const override { return {field_.GetSubscriptionState(), check_}; }

 private:
  using Value = typename ProxyField::FieldType;

  static Payload Encode(const Value& value) {
    Payload payload;
    common::SequenceContainerSerializer<Value>(value).pushbackTo(payload);
    return payload;
  }

  /// What may arrive while a slow reader keeps standard output busy.
  static constexpr std::size_t kCacheSize = 256;

  std::shared_ptr<ara::com::internal::proxy::ProxyBindingBase> binding_;
  ProxyField& field_;
  ara::core::Future<Value> answer_;
  ara::com::e2exf::ProfileCheckStatus check_ = ara::com::e2exf::ProfileCheckStatus::kNotAvailable;
};

}  // namespace tarn7::tool
