#include "tools/tarn7/front/candidates.h"

#include <algorithm>

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

/// Those of a command, and those of the tool that may stand behind it.
std::vector<std::string> OptionNames(const CLI::App& tool, const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* app : {&command, &tool}) {
    for (const CLI::Option* option : app->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        if (app == &command || TakesValue(*option)) {
          names.push_back("--" + name);
        }
      }
    }
    if (&command == &tool) {
      break;
    }
  }
  return names;
}

const CLI::Option* FindOption(const CLI::App& tool, const CLI::App& command, const std::string& name) {
  const CLI::Option* const option = command.get_option_no_throw(name);
  return option != nullptr ? option : tool.get_option_no_throw(name);
}

/// The place of the command's name behind the program's.
std::size_t FindName(const CLI::App& tool, const std::vector<std::string>& words) {
  std::size_t place = 1;
  for (; place < words.size() && IsOption(words[place]); ++place) {
    const CLI::Option* const option = tool.get_option_no_throw(words[place]);
    place += option != nullptr && TakesValue(*option) ? 1 : 0;
  }
  return place;
}

/// The name of a positional says what it takes.
std::vector<std::string> ValuesOf(const CLI::Option& positional, const InterfaceTable& interfaces) {
  const std::string kind = positional.get_name(true);
  std::vector<std::string> values;
  for (const Interface& interface : interfaces.All()) {
    if (kind == "INTERFACE" || kind == "TARGET") {
      values.push_back(interface.name);
    }
    if (kind == "FIELD" || kind == "TARGET") {
      for (const FieldAddress& address : interfaces.FindAddresses(interface.name)) {
        values.push_back(address.ToString());
      }
    }
  }
  return values;
}

/// What a command takes behind some words of its own.
std::vector<std::string> ArgumentsOf(const CLI::App& tool, const CLI::App& command, const InterfaceTable& interfaces,
                                     const std::vector<std::string>& words) {
  std::vector<const CLI::Option*> positionals =
      command.get_options([](const CLI::Option* option) { return option->get_positional(); });
  for (auto word = words.begin(); word != words.end(); ++word) {
    if (IsOption(*word)) {
      const CLI::Option* const option = FindOption(tool, command, *word);
      if (option != nullptr && TakesValue(*option) && ++word == words.end()) {
        return {};
      }
    } else if (!positionals.empty() && positionals.front()->get_items_expected_max() == 1) {
      positionals.erase(positionals.begin());
    }
  }
  return positionals.empty() ? std::vector<std::string>() : ValuesOf(*positionals.front(), interfaces);
}

}  // namespace

std::vector<std::string> Candidates(const CLI::App& tool, const InterfaceTable& interfaces,
                                    const std::vector<std::string>& words, const std::string& begun) {
  const std::size_t name = FindName(tool, words);
  std::vector<std::string> candidates;
  if (name > words.size()) {
    return candidates;  // the value of an option
  }
  const CLI::App* const command = name == words.size() ? &tool : FindCommand(tool, words[name]);
  if (command == nullptr) {
    return candidates;
  }
  if (!begun.empty() && begun.front() == '-') {
    candidates = OptionNames(tool, *command);
  } else if (command == &tool) {
    candidates = CommandNames(tool);
  } else {
    candidates =
        ArgumentsOf(tool, *command, interfaces, {words.begin() + static_cast<std::ptrdiff_t>(name) + 1, words.end()});
  }
  candidates.erase(
      std::remove_if(candidates.begin(), candidates.end(),
                     [&begun](const std::string& word) { return word.compare(0, begun.size(), begun) != 0; }),
      candidates.end());
  return candidates;
}

}  // namespace tarn7::tool
