#pragma once

#include <string>
#include <string_view>

namespace tarn7::tool {

/// The text with what a terminal would obey instead of showing it written as JSON does, such as \u001b: control
/// characters, U+0000 to U+001F and U+007F to U+009F, marks that turn the direction of text, and separators of lines
/// and paragraphs. A byte that is no UTF-8 becomes such as \xff, which is in no JSON text. Characters of ASCII in
/// `kept` stay as they are. For whatever comes from a file, another process or a peer.
std::string Printable(std::string_view text, std::string_view kept = {});

/// The text as one word of a command that somebody may copy into a shell: as it is, 'in quotes', or, where it has more
/// than printable ASCII, as bash's $'\x1b'.
std::string ShellWord(std::string_view text);

}  // namespace tarn7::tool
