#include "tools/tarn7/doctor/finding.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "tools/tarn7/values/json.h"

namespace tarn7::tool {

namespace {

std::string Name(Finding::Level level) {
  switch (level) {
    case Finding::Level::kOk:
      return "ok";
    case Finding::Level::kWarning:
      return "warning";
    case Finding::Level::kProblem:
      break;
  }
  return "problem";
}

}  // namespace

Finding Finding::Ok(std::string check, std::string text) { return {Level::kOk, std::move(check), std::move(text), {}}; }

Finding Finding::Warning(std::string check, std::string text, std::string remedy) {
  return {Level::kWarning, std::move(check), std::move(text), std::move(remedy)};
}

Finding Finding::Problem(std::string check, std::string text, std::string remedy) {
  return {Level::kProblem, std::move(check), std::move(text), std::move(remedy)};
}

std::string ToText(const Finding& finding) {
  constexpr std::size_t kWidth = 9;
  std::string text = Name(finding.level);
  text.resize(kWidth, ' ');
  text += finding.check + ": " + finding.text;
  return finding.remedy.empty() ? text : text + " -> " + finding.remedy;
}

std::string ToJsonText(const Findings& findings) {
  Json array = Json::array();
  for (const Finding& finding : findings) {
    Json json = {{"level", Name(finding.level)}, {"check", finding.check}, {"text", finding.text}};
    if (!finding.remedy.empty()) {
      json["remedy"] = finding.remedy;
    }
    array.push_back(std::move(json));
  }
  return ToText(array);
}

}  // namespace tarn7::tool
