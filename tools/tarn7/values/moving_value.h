#pragma once

#include <random>

#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// Makes up values of a type and lets them drift, as measured values do. The same in each run.
class ValueSource {
 public:
  /// A value with all members present, and two elements in each sequence.
  Payload First(const ValueType& type);
  /// The value, which First made, a moment later: numbers go up or down a little, between 0 and 100; now and then a
  /// bool changes. Its size stays.
  void Move(const ValueType& type, Payload& value);

 private:
  void Append(const ValueType& type, Payload& value);
  void MoveAt(const ValueType& type, const Extent& part, Payload& value);
  void MoveScalar(const ValueType& type, unsigned char* data);

  int Random(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }
  /// `number` moved by up to `step`, kept between 0 and `max`.
  int Drift(int number, int step, int max);

  std::mt19937 random_;
};

}  // namespace tarn7::tool
