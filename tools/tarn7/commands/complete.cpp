#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "tools/tarn7/commands/command.h"
#include "tools/tarn7/completion/candidates.h"
#include "tools/tarn7/error.h"

namespace tarn7::tool {

namespace {

/// `words`: which of those behind it is being typed, counted from 0, then the command line as it stands.
void Complete(Output& output, const CLI::App& tool, std::vector<std::string> words) {
  std::size_t typed = 0;
  const std::string number = words.empty() ? "" : words.front();
  if (std::from_chars(number.data(), number.data() + number.size(), typed).ec != std::errc()) {
    throw CommandError(Status::kUsage, "complete is for the shell: it needs a number and a command line");
  }
  words.erase(words.begin());
  const std::string begun = typed < words.size() ? words[typed] : "";
  words.resize(std::min(typed, words.size()));
  for (const std::string& candidate : Candidates(tool, words, begun)) {
    output.WriteLine(candidate);
  }
}

}  // namespace

void AddCompleteCommand(CLI::App& tool, Command& chosen) {
  auto* const command = tool.add_subcommand("complete", "Print what may come next on a command line, for the shell");
  command->group("");  // not shown
  command->prefix_command();
  command->callback([&chosen, &tool, command] {
    chosen = [&tool, words = command->remaining()](Output& output) { Complete(output, tool, words); };
  });
}

}  // namespace tarn7::tool
