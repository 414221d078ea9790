#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "tools/tarn7/client/field_client.h"
#include "tools/tarn7/loop.h"
#include "tools/tarn7/terminal/terminal.h"
#include "tools/tarn7/values/payload.h"

namespace tarn7::tool {

/// The samples of one followed field.
class FollowedField {
 public:
  FollowedField(std::string name, const ValueType& type) : name_(std::move(name)), type_(type) {}

  void Add(Payload value, Loop::TimePoint now);

  const std::string& Name() const noexcept { return name_; }
  /// The beginning of the last sample; empty before the first one.
  const std::string& Value();
  /// Since the last sample, as "0.4 s"; "-" before the first one.
  std::string Age(Loop::TimePoint now) const;
  /// Samples in a second, over the last few seconds, as "2.0/s".
  std::string Rate(Loop::TimePoint now);

 private:
  void Forget(Loop::TimePoint now);

  std::string name_;
  const ValueType& type_;
  Loop::TimePoint begin_ = Loop::Clock::now();
  Payload value_;
  bool is_new_ = false;  // its text, which takes long to make where it is large, was not asked for
  std::string text_;
  std::optional<Loop::TimePoint> last_;
  std::deque<Loop::TimePoint> recent_;  // when samples came
};

struct TableRow {
  FollowedField* field;
  bool is_offered;
  FieldState state;
};

/// The table's lines: a heading, and one for each row. Where that were more than `space.rows`, the last one says how
/// many fields are missing. Where names are long for `space.columns`, they lose their beginning, so that something of
/// the values can be seen; lines may be longer all the same.
std::vector<std::string> FormatTable(const std::vector<TableRow>& rows, Loop::TimePoint now, Terminal::Size space);

}  // namespace tarn7::tool
