#pragma once

#include <string>
#include <vector>

namespace tarn7::tool {

/// What one check found, and what to do about it.
struct Finding {
  enum class Level { kOk, kWarning, kProblem };

  static Finding Ok(std::string check, std::string text);
  static Finding Warning(std::string check, std::string text, std::string remedy);
  static Finding Problem(std::string check, std::string text, std::string remedy);

  Level level;
  std::string check;   ///< "unicast"
  std::string text;    ///< one line
  std::string remedy;  ///< empty where all is well
};

using Findings = std::vector<Finding>;

/// On one line: "problem  unicast: ... -> ...".
std::string ToText(const Finding& finding);
/// A JSON array of them, on one line.
std::string ToJsonText(const Findings& findings);

}  // namespace tarn7::tool
