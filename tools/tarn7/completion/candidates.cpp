#include "tools/tarn7/completion/candidates.h"

#include <algorithm>

#include "tools/tarn7/model/interface_table.h"

namespace tarn7::tool {

namespace {

bool IsOption(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

const CLI::App* FindCommand(const CLI::App& tool, const std::string& name) {
  const auto found = tool.get_subcommands([&name](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

std::vector<std::string> CommandNames(const CLI::App& tool) {
  std::vector<std::string> names;
  for (const CLI::App* command :
       tool.get_subcommands([](const CLI::App* candidate) { return !candidate->get_group().empty(); })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
  return names;
}

/// The name of a positional says what it takes.
std::vector<std::string> ValuesOf(const CLI::Option& positional) {
  const std::string kind = positional.get_name(true);
  std::vector<std::string> values;
  for (const Interface& interface : Interfaces()) {
    if (kind == "INTERFACE" || kind == "TARGET") {
      values.push_back(interface.name);
    }
    if (kind == "FIELD" || kind == "TARGET") {
      for (const FieldAddress& address : FindAddresses(interface.name)) {
        values.push_back(address.ToString());
      }
    }
  }
  return values;
}

/// What a command takes behind some words of its own.
std::vector<std::string> ArgumentsOf(const CLI::App& command, const std::vector<std::string>& words) {
  std::vector<const CLI::Option*> positionals =
      command.get_options([](const CLI::Option* option) { return option->get_positional(); });
  for (auto word = words.begin(); word != words.end(); ++word) {
    if (IsOption(*word)) {
      const CLI::Option* const option = command.get_option_no_throw(*word);
      if (option != nullptr && TakesValue(*option) && ++word == words.end()) {
        return {};
      }
    } else if (!positionals.empty() && positionals.front()->get_items_expected_max() == 1) {
      positionals.erase(positionals.begin());
    }
  }
  return positionals.empty() ? std::vector<std::string>() : ValuesOf(*positionals.front());
}

}  // namespace

std::vector<std::string> Candidates(const CLI::App& tool, const std::vector<std::string>& words,
                                    const std::string& begun) {
  const auto name = std::find_if(words.begin() + (words.empty() ? 0 : 1), words.end(),
                                 [](const std::string& word) { return !IsOption(word); });
  const CLI::App* const command = name == words.end() ? &tool : FindCommand(tool, *name);
  std::vector<std::string> candidates;
  if (command == nullptr) {
    return candidates;
  }
  if (!begun.empty() && begun.front() == '-') {
    candidates = OptionNames(*command);
  } else {
    candidates = command == &tool ? CommandNames(tool) : ArgumentsOf(*command, {name + 1, words.end()});
  }
  candidates.erase(
      std::remove_if(candidates.begin(), candidates.end(),
                     [&begun](const std::string& word) { return word.compare(0, begun.size(), begun) != 0; }),
      candidates.end());
  return candidates;
}

}  // namespace tarn7::tool
