#include "tools/tarn7/client/limited_report.h"

#include <iostream>

#include "tools/tarn7/values/printable.h"

namespace tarn7::tool {

void LimitedReport::Write(const std::string& text) {
  if (const auto leftOut = limit_.Admit()) {
    std::string line = Printable(text);
    if (*leftOut > 0) {
      line += " (" + std::to_string(*leftOut) + " further of this kind were left out)";
    }
    std::cerr << line + '\n' << std::flush;  // in one piece, because other threads write, too
  }
}

}  // namespace tarn7::tool
