#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <future>
#include <list>
#include <memory>
#include <mutex>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "ara/com/internal/skeleton/typed_service_impl_base.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_field_impl.h"
#include "ara/com/internal/vsomeip/skeleton/vsomeip_service_impl_base.h"
#include "core_types/core_error_domain.h"
#include "core_types/optional.h"
#include "core_types/promise.h"
#include "interfaces/chargetimemanager/chargetimemanager_impl.h"
#include "interfaces/energysystem/energysystem_impl.h"
#include "interfaces/psd2/psd2_service_adapter.h"
#include "interfaces/routebasedconsumption/routebasedconsumption_impl.h"
#include "interfaces/routebasedenergycontents/routebasedenergycontents_service_adapter.h"
#include "platform/include/service_instance.h"
#include "registry/proxy_factory.h"
#include "registry/service_mapping.h"

// The order of virtual functions and members that others have been compiled against. A failure here means that the
// platform, or an application that was built before, no longer fits.
namespace ara::com::internal {

namespace {

constexpr std::size_t kFirstSlot = 2;  // after the destructor's two

/// Where a virtual function stands in its class's virtual table: the C++ ABI writes it into a pointer to the function.
template <typename Function>
std::size_t SlotOf(Function function) {
  struct {
    std::uintptr_t pointer;
    std::ptrdiff_t adjustment;
  } words{};
  static_assert(sizeof(words) == sizeof(function));
  std::memcpy(&words, &function, sizeof(words));
#if defined(__aarch64__) || defined(__arm__)
  EXPECT_NE(words.adjustment & 1, 0) << "not virtual";
  return words.pointer / sizeof(void*);
#else
  EXPECT_NE(words.pointer & 1, 0U) << "not virtual";
  return (words.pointer - 1) / sizeof(void*);
#endif
}

template <typename... Functions>
std::vector<std::size_t> SlotsOf(Functions... functions) {
  return {SlotOf(functions)...};
}

std::vector<std::size_t> Slots(std::size_t count, std::size_t first = kFirstSlot) {
  std::vector<std::size_t> slots;
  for (std::size_t slot = first; slot < first + count; ++slot) {
    slots.push_back(slot);
  }
  return slots;
}

template <typename Interface>
std::vector<std::size_t> AccessorSlots() {
  std::vector<std::size_t> slots;
  vsomeip::common::ForEachType(typename Interface::Fields{},
                               [&](auto field) { slots.push_back(SlotOf(decltype(field)::accessor)); });
  return slots;
}

template <typename Derived, typename Base>
std::ptrdiff_t BaseOffset() {
  auto* const derived = reinterpret_cast<Derived*>(std::uintptr_t{0x1000});
  return reinterpret_cast<char*>(static_cast<Base*>(derived)) - reinterpret_cast<char*>(derived);
}

/// The bytes of an object from an offset on, as what should be there.
template <typename Expected, typename Object>
Expected At(const Object& object, std::size_t offset) {
  EXPECT_LE(offset + sizeof(Expected), sizeof(object));
  Expected value;
  std::memcpy(&value, reinterpret_cast<const char*>(&object) + offset, sizeof(value));
  return value;
}

}  // namespace

TEST(LayoutTest, VirtualFunctionsKeepTheirSlots) {
  using Mapping = vsomeip::runtime::VSomeIPServiceMapping::Mapping;
  EXPECT_EQ(SlotsOf(&Mapping::GetProxy, &Mapping::GetServiceId, &Mapping::GetVSomeIPService, &Mapping::GetSkeleton,
                    &Mapping::GetVSomeIPServiceVersionMajor, &Mapping::GetVSomeIPServiceVersionMinor,
                    &Mapping::GetVSomeIPRequiredServiceVersionMinor, &Mapping::IsMinimumMinorPolicyEnabled,
                    &Mapping::GetNumberOfBlacklistedVersions, &Mapping::GetBlacklistedVersions),
            Slots(10));
  using Domain = ara::core::ErrorDomain;  // has no virtual destructor
  EXPECT_EQ(SlotsOf(&Domain::Name, &Domain::Message, &Domain::ThrowAsException), Slots(3, 0));
  using Factory = proxy::ProxyFactory;
  EXPECT_EQ(SlotsOf(&Factory::Create, &Factory::GetInstanceIdentifier, &Factory::SetInstanceIdentifier), Slots(3));

  namespace services = kro::services;
  EXPECT_EQ(AccessorSlots<services::energysystem::energysystem_binding::vsomeip::descriptors::Interface>(), Slots(4));
  EXPECT_EQ(
      AccessorSlots<services::routebasedconsumption::routebasedconsumption_binding::vsomeip::descriptors::Interface>(),
      Slots(11));
  EXPECT_EQ(AccessorSlots<services::chargetimemanager::chargetimemanager_binding::vsomeip::descriptors::Interface>(),
            Slots(1));

  const auto skeletonSlots = [](auto* type) {
    using Type = std::remove_pointer_t<decltype(type)>;
    return SlotsOf(&Type::SetMethodCallProcessingMode, &Type::ProcessNextMethodCall);
  };
  EXPECT_EQ(skeletonSlots(static_cast<skeleton::ServiceImplBase*>(nullptr)), Slots(2));
  EXPECT_EQ(skeletonSlots(static_cast<vsomeip::skeleton::ServiceImplBase*>(nullptr)), Slots(2));

  using Descriptor = services::psd2::psd2_binding::vsomeip::descriptors::egoPositionLayer;
  using Value = Descriptor::ValueType;
  const auto eventSlots = [](auto* type) {
    using Type = std::remove_pointer_t<decltype(type)>;
    return SlotsOf(static_cast<void (Type::*)(const Value&)>(&Type::Send), &Type::Allocate,
                   static_cast<void (Type::*)(std::unique_ptr<Value>)>(&Type::Send));
  };
  using Field = vsomeip::skeleton::FieldImpl<Value, Descriptor>;
  EXPECT_EQ(eventSlots(static_cast<skeleton::Event<Value>*>(nullptr)), Slots(3));
  EXPECT_EQ(eventSlots(static_cast<Field*>(nullptr)), Slots(3));
  EXPECT_EQ(SlotsOf(&skeleton::Field<Value>::RegisterGetHandler, &skeleton::Field<Value>::Update), Slots(2));
  EXPECT_EQ(SlotsOf(&Field::RegisterGetHandler, &Field::Update), Slots(2, kFirstSlot + 3));
}

TEST(LayoutTest, MembersKeepTheirPlaces) {
  using ara::core::ErrorCode;
  static const ara::core::CoreErrorDomain domain;
  const ErrorCode code(0x11223344, 0x55667788, domain);
  static_assert(sizeof(code) == 8 + sizeof(void*));
  EXPECT_EQ(At<std::int32_t>(code, 0), 0x11223344);
  EXPECT_EQ(At<std::int32_t>(code, 4), 0x55667788);
  EXPECT_EQ(At<const ara::core::ErrorDomain*>(code, 8), &domain);
  static_assert(sizeof(domain) == 16);
  EXPECT_EQ(At<std::uint64_t>(domain, 8), domain.Id());
  static_assert(sizeof(ara::core::CoreException) == sizeof(std::exception) + sizeof(ErrorCode));

  const ara::core::Optional<std::uint32_t> optional(7);
  static_assert(sizeof(optional) == 2 * sizeof(void*));
  EXPECT_EQ(At<std::uint8_t>(optional, 0), 1);
  EXPECT_EQ(At<const std::uint32_t*>(optional, sizeof(void*)), &*optional);

  // A lock, its holder, the standard library's part, and the state that both share.
  using Lock = std::unique_lock<std::mutex>;
  using Result = ara::core::Result<int, ErrorCode>;
  ara::core::Promise<int> promise;
  ara::core::Future<int> future;
  constexpr std::size_t kStandardPart = sizeof(std::mutex) + sizeof(Lock);
  EXPECT_EQ(At<const void*>(promise, sizeof(std::mutex)), &promise);
  EXPECT_EQ(At<const void*>(future, sizeof(std::mutex)), &future);
  future = promise.get_future();
  const auto shared = At<void*>(promise, kStandardPart + sizeof(std::promise<Result>));
  EXPECT_EQ(At<void*>(future, kStandardPart + sizeof(std::future<Result>)), shared);
  EXPECT_NE(shared, nullptr);
  const ara::core::internal::State state;
  EXPECT_EQ(static_cast<const void*>(&state.continuation), &state);
  EXPECT_EQ(static_cast<const void*>(&state.lock), &state.continuation + 1);
  static_assert(sizeof(state) == sizeof(std::function<void()>) + sizeof(std::mutex));
  static_assert(sizeof(promise) == kStandardPart + sizeof(std::promise<Result>) + sizeof(std::shared_ptr<void>));
  static_assert(sizeof(future) == kStandardPart + sizeof(std::future<Result>) + sizeof(std::shared_ptr<void>));

  using vsomeip::common::ServiceInstance;
  static_assert(offsetof(ServiceInstance, service) == 0 && offsetof(ServiceInstance, instance) == 2 &&
                offsetof(ServiceInstance, major) == 4 && offsetof(ServiceInstance, minor) == 8 &&
                sizeof(ServiceInstance) == 12);
  static_assert(sizeof(MethodCallProcessingMode) == 4);

  using Impl = kro::services::energysystem::energysystem_binding::vsomeip::EnergySystemImpl;
  EXPECT_EQ((BaseOffset<Impl, kro::services::energysystem::proxy::EnergySystemProxyBase>()), 0);
  EXPECT_EQ((BaseOffset<Impl, vsomeip::proxy::ProxyImplBase>()), std::ptrdiff_t{sizeof(void*)});
  // The handle that the runtime gets is the skeleton itself, and an adapter that of its binding base.
  using Skeleton = kro::services::psd2::skeleton::Psd2Skeleton;
  EXPECT_EQ((BaseOffset<Skeleton, skeleton::ServiceBase>()), 0);
  EXPECT_EQ((BaseOffset<kro::services::psd2::psd2_binding::vsomeip::Psd2ServiceAdapter, skeleton::ServiceImplBase>()),
            0);
}

namespace {

/// A binding whose members hold what can be recognised.
class Binding : public vsomeip::skeleton::ServiceImplBase {
 public:
  explicit Binding(skeleton::ServiceBase& service) : ServiceImplBase(service, 0x1122) {}
  using ServiceImplBase::DispatchMethodCall;
  using ServiceImplBase::SetMethodCallProcessingMode;
};

}  // namespace

TEST(LayoutTest, SkeletonsKeepTheirMembersInPlace) {
  using Instances = InstanceIdentifierContainer;
  constexpr std::size_t kList = sizeof(void*);  // after the virtual table's pointer, with its element count
  constexpr std::size_t kInstances = kList + sizeof(std::list<void*>) + sizeof(std::mutex);
  constexpr std::size_t kMode = kInstances + sizeof(Instances);

  kro::services::psd2::skeleton::Psd2Skeleton map({"1", "2"});
  skeleton::ServiceImplBase& neutral = map;
  Binding binding(map);
  map.SetMethodCallProcessingMode(MethodCallProcessingMode::kEventSingleThread);
  neutral.Attach(binding);
  EXPECT_EQ(At<std::size_t>(neutral, kList + 2 * sizeof(void*)), 1U) << "the list's element count";
  EXPECT_EQ(At<const void*>(neutral, kInstances), map.GetInstanceIdentifiers().data());
  EXPECT_EQ(At<MethodCallProcessingMode>(neutral, kMode), MethodCallProcessingMode::kEventSingleThread);
  neutral.Detach(binding);
  EXPECT_EQ(At<std::size_t>(neutral, kList + 2 * sizeof(void*)), 0U);

  constexpr std::size_t kService = sizeof(skeleton::ServiceImplBase);
  constexpr std::size_t kQueue = kService + sizeof(void*);
  constexpr std::size_t kBindingMode = kQueue + sizeof(std::deque<std::function<void()>>);
  constexpr std::size_t kInstance = kBindingMode + sizeof(void*) + sizeof(std::mutex);
  binding.SetMethodCallProcessingMode(MethodCallProcessingMode::kEventSingleThread);
  EXPECT_EQ(At<const void*>(binding, kService), &map);
  EXPECT_EQ(At<MethodCallProcessingMode>(binding, kBindingMode), MethodCallProcessingMode::kEventSingleThread);
  EXPECT_EQ(At<std::uint16_t>(binding, kInstance), 0x1122);

  // A field's event part, then a mutex and the get handler.
  using Descriptor = kro::services::psd2::psd2_binding::vsomeip::descriptors::egoPositionLayer;
  using Value = Descriptor::ValueType;
  vsomeip::skeleton::FieldImpl<Value, Descriptor> field(0x1122);
  EXPECT_EQ(At<std::uint16_t>(field, sizeof(void*)), 0x1122);
  constexpr std::size_t kHandler = 2 * sizeof(void*) + sizeof(std::mutex);
  using Handler = skeleton::GetHandler<Value>;
  EXPECT_FALSE(*reinterpret_cast<const Handler*>(reinterpret_cast<const char*>(&field) + kHandler));
  static int calls = 0;
  field.RegisterGetHandler([] {
    ++calls;
    return ara::core::Future<Value>();
  });
  (*reinterpret_cast<const Handler*>(reinterpret_cast<const char*>(&field) + kHandler))();
  EXPECT_EQ(calls, 1);
}

}  // namespace ara::com::internal
