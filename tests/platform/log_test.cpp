#include "platform/include/log.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ara::log {
namespace {

// The entries on standard error, without their times.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    lines.push_back(text.substr(text.find('[', begin), end - text.find('[', begin)));
  }
  return lines;
}

TEST(Log, TheEnvironmentDecidesWhatIsWritten) {
  const struct {
    const char* level;
    const char* sink;
    int written;                 // that many of the six levels
    const char* complaint = "";  // said once, however many loggers there are
  } cases[] = {{nullptr, nullptr, 3},
               {"off", nullptr, 0},
               {"fatal", nullptr, 1},
               {"error", nullptr, 2},
               {"warn", "stderr", 3},
               {"info", nullptr, 4},
               {"debug", nullptr, 5},
               {"verbose", nullptr, 6},
               {"WARN", nullptr, 3, "TARN7_LOG_LEVEL is 'WARN'"},
               {"", nullptr, 3, "TARN7_LOG_LEVEL is ''"},
               {"fatal", "paper", 1, "TARN7_LOG_SINK is 'paper'"}};
  for (const auto& test : cases) {
    const auto log_every_level = [&test] {
      unsetenv("TARN7_LOG_LEVEL");
      unsetenv("TARN7_LOG_SINK");
      if (test.level != nullptr) setenv("TARN7_LOG_LEVEL", test.level, 1);
      if (test.sink != nullptr) setenv("TARN7_LOG_SINK", test.sink, 1);
      for (const char* context : {"ONE", "TWO"}) {
        const LoggerImpl& logger = CreateLogger(context, "a test", LogLevel::kWarn);
        logger.LogFatal() << 1;
        logger.LogError() << 2;
        logger.LogWarn() << 3;
        logger.LogInfo() << 4;
        logger.LogDebug() << 5;
        logger.LogVerbose() << 6;
      }
      std::exit(0);
    };
    std::vector<testing::Matcher<std::string>> expected;
    if (*test.complaint != '\0') {
      expected.emplace_back(testing::StartsWith(std::string("[warning] [LOG] ") + test.complaint));
    }
    for (const std::string context : {"ONE", "TWO"}) {
      const char* const names[] = {"fatal", "error", "warning", "info", "debug", "verbose"};
      for (int i = 0; i < test.written; ++i) {
        expected.emplace_back("[" + std::string(names[i]) + "] [" + context + "] " + std::to_string(i + 1));
      }
    }
    SCOPED_TRACE(test.level == nullptr ? "unset" : test.level);
    EXPECT_EXIT(log_every_level(), testing::ExitedWithCode(0),
                testing::ResultOf(Lines, testing::ElementsAreArray(expected)));
  }
}

TEST(Log, AnEntryTellsTimeLevelContextAndPlace) {
  const auto log = [] {
    std::atexit([] {  // runs after the static objects that the first entry makes are gone
      CreateLogger("T7GN", "a test").LogWarn().WithLocation("proxy/vsomeip_method_impl_delegate", "onMessage", 57)
          << "Incorrect client id: '" << std::uint8_t{5} << "', should be " << std::uint16_t{0};
    });
    CreateLogger("T7GNtoo long for DLT", "a test").LogError() << "first";
    std::exit(0);
  };
  EXPECT_EXIT(log(), testing::ExitedWithCode(0),
              testing::MatchesRegex(".* \\[error\\] \\[T7GN\\] first\n"
                                    "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} "
                                    "\\[warning\\] \\[T7GN\\] proxy/vsomeip_method_impl_delegate:onMessage:57: "
                                    "Incorrect client id: '5', should be 0\n"));
}

}  // namespace
}  // namespace ara::log
