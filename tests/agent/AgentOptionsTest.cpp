// The notification options of the command line: their effect. Refusals and
// the help text are in CommandLineTest, through the real program.

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

}  // namespace
