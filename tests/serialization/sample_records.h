#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "core_types/optional.h"

/// Records that hold every kind of member, so that the codec is tested apart from the interfaces.
namespace sample {

enum class Colour : std::uint8_t { kRed = 1, kBlue = 2 };

struct Inner {
  ara::core::Optional<std::uint32_t> member0;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
  }
};

struct Everything {
  ara::core::Optional<std::uint64_t> member9;  // first on the wire, though its id is not the lowest
  ara::core::Optional<bool> member0;
  ara::core::Optional<std::int16_t> member1;
  ara::core::Optional<float> member2;
  ara::core::Optional<double> member3;
  ara::core::Optional<Colour> member4;
  ara::core::Optional<std::string> member5;
  ara::core::Optional<std::array<std::uint8_t, 3>> member6;
  ara::core::Optional<std::vector<std::uint16_t>> member7;
  ara::core::Optional<Inner> member8;
  ara::core::Optional<std::vector<Inner>> member4095;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(9, "member9", record.member9);
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
    enumerator(2, "member2", record.member2);
    enumerator(3, "member3", record.member3);
    enumerator(4, "member4", record.member4);
    enumerator(5, "member5", record.member5);
    enumerator(6, "member6", record.member6);
    enumerator(7, "member7", record.member7);
    enumerator(8, "member8", record.member8);
    enumerator(4095, "member4095", record.member4095);
  }
};

/// One member that must be there.
struct Strict {
  std::uint8_t member0 = 0;
  ara::core::Optional<std::uint8_t> member1;

  template <typename Record, typename Enumerator>
  static void enumerate(Record& record, Enumerator&& enumerator) {
    enumerator(0, "member0", record.member0);
    enumerator(1, "member1", record.member1);
  }
};

}  // namespace sample
