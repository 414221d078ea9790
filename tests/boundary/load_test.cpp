#include <cstddef>
#include <cstdint>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/include/runtime.h"
#include "registry/service_mapping.h"

// This program is linked with neither the product nor the platform: it loads them as a plug-in is loaded.
namespace ara::com::internal {

namespace {

using vsomeip::runtime::VSomeIPServiceMapping;

constexpr std::uint16_t kEnergySystem = 56470;
constexpr const char* kGetMapping =
    "_ZN3ara3com8internal7vsomeip7runtime21VSomeIPServiceMapping22GetMappingForServiceIdEt";
constexpr const char* kCreateProxy = "_ZN3ara3com8internal7Runtime11CreateProxyEtRKNS0_18InstanceIdentifierE";

bool IsMapped() {
  std::ifstream maps("/proc/self/maps");
  const std::string text{std::istreambuf_iterator<char>(maps), {}};
  return text.find(std::filesystem::path(PRODUCT).filename().string()) != std::string::npos;
}

std::ptrdiff_t Threads() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

class Library {
 public:
  Library() : handle_(::dlopen(PRODUCT, RTLD_NOW | RTLD_LOCAL)) { EXPECT_NE(handle_, nullptr) << ::dlerror(); }
  ~Library() {
    if (handle_ != nullptr) {
      EXPECT_EQ(::dlclose(handle_), 0) << ::dlerror();
    }
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  template <typename Function>
  Function Get(const char* name) const {
    return handle_ != nullptr ? reinterpret_cast<Function>(::dlsym(handle_, name)) : nullptr;
  }

 private:
  void* const handle_;
};

}  // namespace

TEST(LoadTest, LoadsAndUnloadsWithoutAThreadOrALeakAndStaysOnceUsed) {
  const std::ptrdiff_t threads = Threads();
  const auto round = [&] {
    {
      const Library library;
      ASSERT_TRUE(IsMapped());
      const auto getMapping = library.Get<decltype(&VSomeIPServiceMapping::GetMappingForServiceId)>(kGetMapping);
      ASSERT_NE(getMapping, nullptr);
      ASSERT_NE(getMapping(kEnergySystem), nullptr);
      ASSERT_EQ(Threads(), threads);
    }
    ASSERT_FALSE(IsMapped());
  };
  const auto rounds = [&](int count) {
    for (int done = 0; done < count && !HasFatalFailure(); ++done) {
      round();
    }
  };
  constexpr int kRounds = 200;
  rounds(10);  // what is set up once, above all in the platform's libraries, which stay
  const auto before = static_cast<std::ptrdiff_t>(::mallinfo2().uordblks);
  rounds(kRounds);
  const auto after = static_cast<std::ptrdiff_t>(::mallinfo2().uordblks);
  EXPECT_LT(after - before, 8 * kRounds) << "less than the smallest block in each round";

  // The platform, which stays, looks for the service, and must not be left with pointers into nothing. That it is asked
  // for an instance that is none keeps it from starting the stack.
  {
    const Library library;
    const auto createProxy = library.Get<decltype(&Runtime::CreateProxy)>(kCreateProxy);
    ASSERT_NE(createProxy, nullptr);
    EXPECT_EQ(createProxy(kEnergySystem, InstanceIdentifier("none")), nullptr);
  }
  EXPECT_TRUE(IsMapped());
}

}  // namespace ara::com::internal
