// The command line: the notification options' effect, refusals and place in
// the help text; the lldpd feed's socket and its refusals.

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
