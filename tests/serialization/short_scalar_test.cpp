// Compiled twice: as the library was configured, and the other way.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "serialization/deserializer.h"
#include "tests/serialization/sample_records.h"
#include "tests/support/hex.h"

namespace {

void Decode(const char* hex) {
  const auto bytes = support::Bytes(hex);
  ara::com::internal::vsomeip::common::DeserializeFieldValue<std::vector<sample::Everything>>(bytes.data(),
                                                                                              bytes.size());
}

std::string ErrorOf(const char* hex) {
  try {
    Decode(hex);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST(ShortScalar, IsFatalOrAnError) {
  constexpr const char* kText = "Insufficient arguments from remote end";
  for (const char* const hex : {
           "00000007 00000003 0002 2a",                // one byte for a float
           "00000009 00000005 5009 02 002a",           // three, one of them a length, for eight
           "0000000d 00000009 4008 00000003 0000 2a",  // in a nested record
           "0000000b 00000003 0002 2a 0000000f",       // before an element that reaches beyond the sequence
       }) {
    if (EXPECT_FATAL) {
      EXPECT_DEATH(Decode(hex), kText) << hex;
    } else {
      EXPECT_EQ(ErrorOf(hex), kText) << hex;
    }
  }
}

}  // namespace
