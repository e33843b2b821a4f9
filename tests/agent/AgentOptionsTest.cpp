// The notification options of the command line: their effect, their
// refusals and their place in the help text.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AgentOptions.h"

namespace {

ParsedOptions parse(std::vector<char const*> words) {
  words.insert(words.begin(), "lldp-snmp-agent");
  return parseAgentOptions(static_cast<int>(words.size()), words.data());
}

TEST(AgentOptions, NoNotificationsTurnsThemOffAndKeepsTheDelay) {
  auto const parsed = parse({"--no-notifications", "--notification-delay", "2.5"});
  ASSERT_TRUE(parsed.options);
  EXPECT_FALSE(parsed.options->notifications);
  EXPECT_EQ(parsed.options->notificationDelay, 2.5);
}

TEST(AgentOptions, NotificationDelayRefusesNegativeOrNonNumericSeconds) {
  for (char const* bad : {"-1", "soon", ""}) {
    SCOPED_TRACE(bad);
    testing::internal::CaptureStderr();
    auto const parsed = parse({"--notification-delay", bad});
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(parsed.options);
    EXPECT_EQ(parsed.exitCode, 2);
  }
}

TEST(AgentOptions, HelpNamesBothNotificationOptions) {
  testing::internal::CaptureStdout();
  auto const parsed = parse({"--help"});
  auto const help = testing::internal::GetCapturedStdout();
  EXPECT_FALSE(parsed.options);
  EXPECT_EQ(parsed.exitCode, 0);
  EXPECT_NE(help.find("--no-notifications"), std::string::npos);
  EXPECT_NE(help.find("--notification-delay SECONDS"), std::string::npos);
}

}  // namespace
