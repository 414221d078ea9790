#include <dlfcn.h>
#include <exception>
#include <string>

#include <gtest/gtest.h>

#include "ara/com/internal/skeleton/service_base.h"
#include "platform/include/runtime.h"

// This program is linked with the platform, and loads the product as a plug-in, for itself alone.
namespace ara::com::internal {

namespace {

constexpr std::uint16_t kPsd2 = 9235;

/// What becomes of an offer of something that is no skeleton: the error says whether the service is known.
std::string Offer() {
  struct Stranger : skeleton::ServiceBase {
  } stranger;
  try {
    Runtime::OfferService(stranger, kPsd2, InstanceIdentifier("1"));
  } catch (const std::exception& error) {
    return error.what();
  }
  return "offered";
}

TEST(PluginTest, ServicesOfALibraryThatIsLoadedForItselfAreFound) {
  constexpr const char* kMisfit = "Given service interface does not fit to the binding adapter!";
  EXPECT_NE(Offer(), kMisfit) << "the product is not loaded yet";
  void* const product = ::dlopen(PRODUCT, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(product, nullptr) << ::dlerror();
  EXPECT_EQ(Offer(), kMisfit);
  EXPECT_EQ(::dlclose(product), 0);
  EXPECT_EQ(Offer(), kMisfit) << "what was used stays";
}

}  // namespace

}  // namespace ara::com::internal
