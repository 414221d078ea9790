#pragma once

#include <string>
#include <string_view>

namespace tarn7::tool {

/// The text with its control characters, U+0000 to U+001F and U+007F to U+009F, written as JSON does, such as \u001b: a
/// terminal must not obey what comes from a file or a peer. Those in `kept` stay as they are.
std::string Printable(std::string_view text, std::string_view kept = {});

}  // namespace tarn7::tool
