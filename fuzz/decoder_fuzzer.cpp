// Every field of every interface: what is read from any bytes is written and read again without a change. The first
// byte of an input chooses the field.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/check.h"
#include "fuzz/fields.h"
#include "serialization/byte_order.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"

namespace {

namespace common = ara::com::internal::vsomeip::common;
using common::ByteVector;

template <typename Value>
ByteVector Encode(const Value& value) {
  ByteVector bytes;
  common::SequenceContainerSerializer<Value>(value).pushbackTo(bytes);
  return bytes;
}

template <typename Value>
void RoundTrip(const std::uint8_t* data, std::size_t size) {
  ByteVector written;
  try {
    written = Encode(common::DeserializeFieldValue<Value>(data, size));
  } catch (const std::runtime_error&) {
    return;  // the one way to refuse bytes
  }
  fuzz::Require(written.size() <= size, "a value takes no more bytes than it was read from");
  const ByteVector again = Encode(common::DeserializeFieldValue<Value>(written.data(), written.size()));
  fuzz::Require(again == written, "a value that was read and written reads and writes the same");
}

struct Field {
  std::string name;
  void (*round_trip)(const std::uint8_t*, std::size_t);
  std::uint64_t runs = 0;
};

std::vector<Field>& Fields() {
  static std::vector<Field> fields = [] {
    std::vector<Field> all;
    fuzz::ForEachField([&all](const std::string& name, auto field) {
      all.push_back({name, &RoundTrip<typename decltype(field)::ValueType>});
    });
    return all;
  }();
  return fields;
}

void PrintRuns() {
  const auto [fewest, most] = std::minmax_element(
      Fields().begin(), Fields().end(), [](const Field& left, const Field& right) { return left.runs < right.runs; });
  std::fprintf(stderr, "%zu fields: %llu runs (%s) to %llu runs (%s)\n", Fields().size(),
               static_cast<unsigned long long>(fewest->runs), fewest->name.c_str(),
               static_cast<unsigned long long>(most->runs), most->name.c_str());
}

}  // namespace

extern "C" {

std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max_size);

int LLVMFuzzerInitialize(int*, char***) {
  Fields();  // made before, and so destroyed after, what prints it
  std::atexit(PrintRuns);
  return 0;
}

// A change of length nearly always contradicts the lengths of the value and of its first record, and would be refused
// there. So they are often set right again, and the fields take turns.
std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size, unsigned int seed) {
  constexpr std::size_t kChoice = 1;
  std::minstd_rand random(seed);
  size = LLVMFuzzerMutate(data, size, max_size);
  if (size > 0 && random() % 4 == 0) {
    data[0] = static_cast<std::uint8_t>(random());
  }
  for (std::size_t at = kChoice; at <= kChoice + common::kLengthFieldSize; at += common::kLengthFieldSize) {
    const std::size_t end = at + common::kLengthFieldSize;
    if (size >= end && random() % 2 == 0) {
      common::StoreBigEndian(static_cast<std::uint32_t>(size - end), data + at);
    }
  }
  return size;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) {
    Field& field = Fields()[data[0] % Fields().size()];
    ++field.runs;
    field.round_trip(data + 1, size - 1);
  }
  return 0;
}

}  // extern "C"
