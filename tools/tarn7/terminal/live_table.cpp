#include "tools/tarn7/terminal/live_table.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "tools/tarn7/values/payload_text.h"

namespace tarn7::tool {

namespace {

constexpr std::chrono::seconds kRateWindow{5};
constexpr std::size_t kLongestValue = 500;  // characters; no terminal is that wide
constexpr std::size_t kGap = 2;             // between columns
constexpr std::size_t kNameColumns = 12;    // at least
constexpr std::size_t kValueColumns = 24;   // where there is room for it

std::string WithOneDigit(double number, const char* unit) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.1f%s", number, unit);
  return text;
}

std::string Subscription(const TableRow& row) {
  if (!row.is_offered) {
    return "not offered";
  }
  switch (row.state.subscription) {
    case ara::com::SubscriptionState::kSubscribed:
      return "subscribed";
    case ara::com::SubscriptionState::kSubscriptionPending:
      return "pending";
    case ara::com::SubscriptionState::kNotSubscribed:
      break;
  }
  return "refused";
}

std::string EndToEnd(ara::com::e2exf::ProfileCheckStatus status) {
  using Status = ara::com::e2exf::ProfileCheckStatus;
  switch (status) {
    case Status::kOk:
      return "ok";
    case Status::kRepeated:
      return "repeated";
    case Status::kWrongSequence:
      return "wrong sequence";
    case Status::kError:
      return "error";
    case Status::kNoNewData:
      return "no new data";
    case Status::kNotAvailable:
      break;
  }
  return "-";
}

/// An ASCII text in exactly that many columns.
std::string EndOf(const std::string& text, std::size_t columns) {
  return text.size() > columns ? "…" + text.substr(text.size() - columns + 1)
                               : text + std::string(columns - text.size(), ' ');
}

}  // namespace

void FollowedField::Add(Payload value, Loop::TimePoint now) {
  value_ = std::move(value);
  is_new_ = true;
  last_ = now;
  recent_.push_back(now);
  Forget(now);
}

void FollowedField::Forget(Loop::TimePoint now) {
  while (!recent_.empty() && recent_.front() < now - kRateWindow) {
    recent_.pop_front();
  }
}

const std::string& FollowedField::Value() {
  if (is_new_) {
    text_ = CutTo(PayloadText(type_, value_), kLongestValue);
    is_new_ = false;
  }
  return text_;
}

std::string FollowedField::Age(Loop::TimePoint now) const {
  if (!last_) {
    return "-";
  }
  constexpr double kMinute = 60;
  const double seconds = std::chrono::duration<double>(now - *last_).count();
  return seconds < kMinute ? WithOneDigit(seconds, " s") : WithOneDigit(seconds / kMinute, " min");
}

std::string FollowedField::Rate(Loop::TimePoint now) {
  Forget(now);
  const auto window = std::clamp<Loop::Clock::duration>(now - begin_, std::chrono::seconds(1), kRateWindow);
  return WithOneDigit(static_cast<double>(recent_.size()) / std::chrono::duration<double>(window).count(), "/s");
}

std::vector<std::string> FormatTable(const std::vector<TableRow>& rows, Loop::TimePoint now, Terminal::Size space) {
  using Cells = std::vector<std::string>;
  std::vector<Cells> table = {{"FIELD", "AGE", "RATE", "SUBSCRIPTION", "E2E", "VALUE"}};
  const bool isWhole = rows.size() < space.rows;
  const std::size_t shown = isWhole ? rows.size() : space.rows - std::min<std::size_t>(space.rows, 2);
  for (std::size_t i = 0; i < shown; ++i) {
    FollowedField& field = *rows[i].field;
    table.push_back({field.Name(), field.Age(now), field.Rate(now), Subscription(rows[i]),
                     EndToEnd(rows[i].state.check), field.Value()});
  }
  std::vector<std::size_t> widths(table.front().size() - 1);  // the last column takes what is left
  for (const Cells& cells : table) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      widths[column] = std::max(widths[column], cells[column].size());
    }
  }
  const std::size_t others = std::accumulate(widths.begin() + 1, widths.end(), kGap * widths.size() + kValueColumns);
  widths[0] = std::min(widths[0], std::max(kNameColumns, space.columns - std::min(space.columns, others)));
  std::vector<std::string> lines;
  for (const Cells& cells : table) {
    std::string line = EndOf(cells[0], widths[0]);
    for (std::size_t column = 1; column < widths.size(); ++column) {
      line += std::string(kGap, ' ') + cells[column] + std::string(widths[column] - cells[column].size(), ' ');
    }
    line += std::string(kGap, ' ');
    lines.push_back(line + cells.back());
  }
  if (!isWhole) {
    lines.push_back("… and " + std::to_string(rows.size() - shown) + " more fields");
  }
  return lines;
}

}  // namespace tarn7::tool
