#pragma once

#include <random>

#include "tools/tarn7/model/value_type.h"
#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

/// Makes up values of a type and lets them drift, as measured values do. The same in each run.
class ValueSource {
 public:
  /// A value with all members present, and two elements in each sequence.
  Json First(const ValueType& type);
  /// The value a moment later: numbers go up or down a little, between 0 and 100; now and then a bool changes.
  void Move(Json& value, const ValueType& type);

 private:
  int Random(int first, int last) { return std::uniform_int_distribution<int>(first, last)(random_); }
  /// `number` moved by up to `step`, kept between 0 and `max`.
  int Drift(int number, int step, int max);

  std::mt19937 random_;
};

}  // namespace tarn7::tool
