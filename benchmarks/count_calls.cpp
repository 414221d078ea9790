// Counts what a getter and a sample cost at the client, in allocations and mutex locks of the whole process: the
// product, the platform and the stack. The bare interface's count is what remains without the first two.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <new>
#include <pthread.h>

#include "benchmarks/bare_client.h"
#include "benchmarks/provider.h"
#include "benchmarks/values.h"
#include "interfaces/energysystem/energysystem_proxy.h"
#include "platform/include/connection.h"
#include "platform/include/runtime.h"

namespace {
std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> locks{0};
}  // namespace

// Not inlined: the compiler would take malloc and delete, or new and free, for a pair.
__attribute__((noinline)) void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) {
    return memory;
  }
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept { std::free(memory); }
__attribute__((noinline)) void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// Takes the place of the C library's own for the whole process.
extern "C" __attribute__((visibility("default"))) int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  using Lock = int (*)(pthread_mutex_t*);
  static const auto lock = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  ++locks;
  return lock(mutex);
}

namespace {

using benchmarks::SmallField;
using kro::services::energysystem::proxy::EnergySystemProxy;

constexpr std::size_t kRounds = 2000;

/// Prints the average of one call, once the first ones have made what is made once.
template <typename Call>
void Count(const char* what, Call call) {
  for (std::size_t i = 0; i < kRounds / 10; ++i) {
    call();
  }
  const std::size_t allocationsBefore = allocations;
  const std::size_t locksBefore = locks;
  for (std::size_t i = 0; i < kRounds; ++i) {
    call();
  }
  const auto average = [](std::size_t count) { return static_cast<double>(count) / kRounds; };
  std::fprintf(stderr, "| %-24s | %11.2f | %5.2f |\n", what, average(allocations - allocationsBefore),
               average(locks - locksBefore));
}

void Run(const benchmarks::Provider& provider) {
  ara::com::internal::Runtime::Init();  // starts the stack
  const auto application = ara::com::internal::vsomeip::runtime::VSomeIPConnection::instance_.Application();
  const auto bareClientOf = [&](std::uint16_t instance) {
    return std::make_unique<benchmarks::BareClient>(application, SmallField::Service::service_id, instance,
                                                    SmallField::Service::major_version);
  };
  const auto bare = bareClientOf(provider.BareInstance());
  const auto trigger = bareClientOf(provider.Instance());
  EnergySystemProxy proxy(EnergySystemProxy::HandleType(std::to_string(provider.Instance())));
  auto& field = proxy.highVoltageBatteries;
  const auto payload =
      vsomeip::runtime::get()->create_payload(benchmarks::FilledPayload<SmallField>(benchmarks::kSmallRecords));
  const auto type = vsomeip::message_type_e::MT_REQUEST_NO_RETURN;

  std::fprintf(stderr, "| at the client            | allocations | locks |\n");
  std::fprintf(stderr, "| ------------------------ | ----------- | ----- |\n");
  Count("getter", [&] { field.Get().get(); });
  bare->Listen(SmallField::getter_method_id);
  Count("bare request, response", [&] { bare->Call(SmallField::getter_method_id, nullptr); });

  Count("trigger of a sample", [&] { trigger->Send(benchmarks::kNotifyMethod, payload, type); });
  field.Get().get();  // by now the provider has done all that, and no notification of it is on its way
  benchmarks::Signal sampled;
  field.SetReceiveHandler([&] { field.GetNewSamples([&](auto) { sampled.Raise(); }); });
  field.Subscribe(4);
  sampled.Await();  // the value as it stands
  Count("trigger, sample", [&] {
    trigger->Send(benchmarks::kNotifyMethod, payload, type);
    sampled.Await();
  });
  field.UnsetReceiveHandler();
  field.Unsubscribe();
  bare->Follow(SmallField::event_id);
  Count("trigger, bare message", [&] {
    bare->Send(benchmarks::kNotifyMethod, payload, type);
    bare->Receive();
  });
}

}  // namespace

int main() {
  const benchmarks::Provider provider(BENCHMARK_PROVIDER);
  Run(provider);
}
