#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

/// What may be meant by `begun`, the word that is being typed behind `words`, of which the first is the program: the
/// commands and options of `tool`, and where one belongs, interfaces and fields. Empty where any word may follow.
std::vector<std::string> Candidates(const CLI::App& tool, const InterfaceTable& interfaces,
                                    const std::vector<std::string>& words, const std::string& begun);

}  // namespace tarn7::tool
