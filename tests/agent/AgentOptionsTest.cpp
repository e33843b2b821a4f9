// The notification options' effect and the lldpd feed's socket. Refusals
// and the help text are in CommandLineTest, through the real program, but
// for the feed's, which need no process.

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

TEST(AgentOptions, FeedNamesLldpdWithOrWithoutItsSocket) {
  auto const plain = parse({"--feed", "lldpd"});
  ASSERT_TRUE(plain.options);
  ASSERT_TRUE(plain.options->feed);
  EXPECT_TRUE(plain.options->feed->empty());

  auto const socket = parse({"--feed", "lldpd:/run/lldpd.socket", "--write-scenario", "out.json"});
  ASSERT_TRUE(socket.options);
  EXPECT_EQ(socket.options->feed, "/run/lldpd.socket");
  EXPECT_EQ(socket.options->writeScenario, "out.json");

  auto const none = parse({});
  ASSERT_TRUE(none.options);
  EXPECT_FALSE(none.options->feed);
}

TEST(AgentOptions, FeedRefusesOtherSourcesAndAScenarioBesideIt) {
  for (auto const& words : std::vector<std::vector<char const*>>{
           {"--feed", "lldp"}, {"--feed", "snmpd:/x"}, {"--feed", "lldpd", "--scenario", "lab.json"}}) {
    testing::internal::CaptureStderr();
    auto const parsed = parse(words);
    std::string const error = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(parsed.options) << words[1];
    EXPECT_EQ(parsed.exitCode, 2) << words[1];
    EXPECT_FALSE(error.empty());
  }
}

}  // namespace
