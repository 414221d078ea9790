#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "ara/com/internal/skeleton/service_base.h"
#include "platform/include/runtime.h"
#include "registry/service_mapping.h"

// This program is linked with neither the product nor the platform: it loads them as a plug-in is loaded.
namespace ara::com::internal {

namespace {

using vsomeip::runtime::VSomeIPServiceMapping;

constexpr std::uint16_t kEnergySystem = 56470;
constexpr const char* kGetMapping =
    "_ZN3ara3com8internal7vsomeip7runtime21VSomeIPServiceMapping22GetMappingForServiceIdEt";
constexpr std::uint16_t kPsd2 = 9235;
constexpr const char* kOfferService =
    "_ZN3ara3com8internal7Runtime12OfferServiceERNS1_8skeleton11ServiceBaseEtNS0_18InstanceIdentifierE";
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

/// What becomes of an offer of something that is no skeleton: the error says whether the service is known.
std::string Offer(void* platform) {
  struct Stranger : skeleton::ServiceBase {
  } stranger;
  const auto function = reinterpret_cast<decltype(&Runtime::OfferService)>(::dlsym(platform, kOfferService));
  try {
    function(stranger, kPsd2, InstanceIdentifier("1"));
  } catch (const std::exception& error) {
    return error.what();
  }
  return "offered";
}

}  // namespace

// The platform is there first, as with a program that is linked with it, and the product comes as a plug-in. In a
// process of its own, because the product then stays.
TEST(LoadDeathTest, IsFoundWhenItIsLoadedForItselfAfterThePlatform) {
  const auto run = [] {
    void* const platform = ::dlopen(PLATFORM, RTLD_NOW | RTLD_GLOBAL);
    std::cerr << "without: " << Offer(platform) << '\n';
    {
      const Library library;
      std::cerr << "with: " << Offer(platform) << '\n';
    }
    std::cerr << "used: " << Offer(platform) << '\n';
    std::_Exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0),
              "without: std::exception\n"
              "with: Given service interface does not fit to the binding adapter!\n"
              "used: Given service interface does not fit to the binding adapter!\n");
}

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
