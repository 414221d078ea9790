// The deep tree of a psd2 link layer: encoded, beside a memcpy of the same bytes and beside protobuf with a message of
// the same tree; decoded, beside protobuf's parsing of that message; built and copied. Every member but the layer's
// description is present; the sequences in a link hold two elements each.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <link_layer.pb.h>
#include <stdexcept>
#include <string>

#include <benchmark/benchmark.h>

#include "benchmarks/allocation_counter.h"
#include "benchmarks/comparison.h"
#include "benchmarks/link_layer.h"
#include "serialization/deserializer.h"
#include "serialization/serializer.h"

namespace {

using ara::com::internal::vsomeip::common::ByteVector;
using ara::com::internal::vsomeip::common::SequenceContainerSerializer;
using benchmarks::BuildLayer;
using benchmarks::LinkLayer;
namespace common = ara::com::internal::vsomeip::common;
namespace datatypes = kro::services::psd2::datatypes;
using Protobuf = google::protobuf::Message;

constexpr std::size_t kLinksPerBatch = 2000;  // so that small values fill a batch that a clock can measure

/// Gives a message the values of a record: the field of a member has its data id plus one as its number.
class ProtobufFiller {
 public:
  explicit ProtobufFiller(Protobuf& message) noexcept : message_(message) {}

  template <typename T>
  void operator()(std::uint16_t dataId, const char*, const ara::core::Optional<T>& member) {
    const auto* const reflection = message_.GetReflection();
    const auto* const field = message_.GetDescriptor()->FindFieldByNumber(dataId + 1);
    if (!member) {
      return;
    }
    const T& value = *member;
    if constexpr (sizeof(T) == sizeof(std::uint64_t) && common::kIsScalar<T>) {
      reflection->SetUInt64(&message_, field, value);
    } else if constexpr (common::kIsScalar<T>) {
      reflection->SetUInt32(&message_, field, value);
    } else if constexpr (common::kIsSequence<T>) {
      for (const auto& element : value) {
        ProtobufFiller filler(*reflection->AddMessage(&message_, field));
        T::value_type::enumerate(element, filler);
      }
    } else {
      ProtobufFiller filler(*reflection->MutableMessage(&message_, field));
      T::enumerate(value, filler);
    }
  }

 private:
  Protobuf& message_;
};

benchmarks::proto::LinkLayer ToProtobuf(const LinkLayer& value) {
  benchmarks::proto::LinkLayer message;
  for (const auto& layer : value) {
    auto& layerMessage = *message.add_layers();
    layerMessage.set_member0(layer.member0->data(), layer.member0->size());
    for (const auto& link : *layer.member1) {
      ProtobufFiller filler(*layerMessage.add_member1());
      datatypes::DT_link::enumerate(link, filler);
    }
  }
  return message;
}

ByteVector Encode(const LinkLayer& value) {
  ByteVector bytes;
  SequenceContainerSerializer<LinkLayer>(value).pushbackTo(bytes);
  return bytes;
}

int CallsPerBatch(std::size_t links) { return static_cast<int>(std::max<std::size_t>(1, kLinksPerBatch / links)); }

/// Compares `ours` with `baseline`; reports the bytes of `value` on the wire, and the allocations of one call of ours.
template <typename Ours, typename Baseline>
void Compare(benchmark::State& state, const LinkLayer& value, Ours ours, Baseline baseline) {
  const std::size_t before = benchmarks::AllocationCount();
  ours();
  state.counters["allocations"] = static_cast<double>(benchmarks::AllocationCount() - before);
  state.counters["bytes"] = static_cast<double>(Encode(value).size());
  benchmarks::Compare(state, CallsPerBatch(value[0].member1->size()), ours, baseline);
}

auto CopyOfBytes(const LinkLayer& value) {
  return [bytes = Encode(value), copy = ByteVector(Encode(value).size())]() mutable {
    std::memcpy(copy.data(), bytes.data(), bytes.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  };
}

void EncodeBesideCopy(benchmark::State& state, std::size_t links) {
  const LinkLayer value = BuildLayer(links);
  const auto encode = [&] { benchmark::DoNotOptimize(Encode(value).data()); };
  Compare(state, value, encode, CopyOfBytes(value));
  state.SetLabel("memcpy");
}

void EncodeBesideProtobuf(benchmark::State& state, std::size_t links) {
  const LinkLayer value = BuildLayer(links);
  const auto message = ToProtobuf(value);
  const auto encode = [&] { benchmark::DoNotOptimize(Encode(value).data()); };
  Compare(state, value, encode, [&] {
    std::string out;
    message.SerializeToString(&out);
    benchmark::DoNotOptimize(out.data());
  });
  state.counters["at_most"] = 1;
  state.SetLabel("protobuf, " + std::to_string(message.ByteSizeLong()) + " bytes");
}

/// Each side makes a fresh value of its own bytes and destroys it, both within the time.
void DecodeBesideProtobuf(benchmark::State& state, std::size_t links) {
  const LinkLayer value = BuildLayer(links);
  const ByteVector bytes = Encode(value);
  const std::string message = ToProtobuf(value).SerializeAsString();
  const auto decode = [&] {
    const auto decoded = common::DeserializeFieldValue<LinkLayer>(bytes.data(), bytes.size());
    benchmark::DoNotOptimize(decoded.data());
  };
  Compare(state, value, decode, [&] {
    benchmarks::proto::LinkLayer parsed;
    if (!parsed.ParseFromString(message)) {
      throw std::runtime_error("protobuf does not parse what it wrote");
    }
    benchmark::DoNotOptimize(parsed.layers_size());
  });
  state.SetLabel("protobuf");
}

void Build(benchmark::State& state, std::size_t links) {
  const LinkLayer value = BuildLayer(links);
  Compare(
      state, value, [&] { benchmark::DoNotOptimize(BuildLayer(links).data()); }, CopyOfBytes(value));
  state.SetLabel("memcpy");
}

void CopyBesideProtobuf(benchmark::State& state, std::size_t links) {
  const LinkLayer value = BuildLayer(links);
  const auto message = ToProtobuf(value);
  const auto copy = [&] {
    const LinkLayer copied = value;
    benchmark::DoNotOptimize(copied.data());
  };
  Compare(state, value, copy, [&] {
    const auto copied = message;
    benchmark::DoNotOptimize(copied.layers_size());
  });
  state.SetLabel("protobuf");
}

}  // namespace

int main(int argc, char** argv) {
  for (const std::size_t links : {10U, 1000U, 10'000U}) {
    const auto add = [&](const char* what, void (*function)(benchmark::State&, std::size_t)) {
      const std::string name = std::string(what) + " psd2 link layer, links: " + std::to_string(links);
      benchmark::RegisterBenchmark(name.c_str(), function, links)->UseManualTime()->Iterations(benchmarks::Rounds(20));
    };
    add("encode", EncodeBesideCopy);
    add("encode beside protobuf", EncodeBesideProtobuf);
    add("decode beside protobuf", DecodeBesideProtobuf);
    add("build", Build);
    add("copy", CopyBesideProtobuf);
  }
  benchmarks::TakeOptions(argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
