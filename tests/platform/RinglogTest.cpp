#include "Ringlog/Ringlog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "Zet/System.h"

namespace {

class Ringlog : public ::testing::Test {
 protected:
  void SetUp() override {
    Zet::System::currentTimeSourceIs([this] {
      ++clockReads_;
      return now_;
    });
  }
  void TearDown() override {
    Zet::System::currentTimeSourceIs({});
    ::Ringlog::capacityIs(::Ringlog::defaultCapacity);
    ::Ringlog::levelsIs(~0u);
  }

  static std::string dumped(::Ringlog::Log const& log) {
    std::ostringstream os;
    log.dump(os);
    return os.str();
  }

  double now_ = 100.0;
  int clockReads_ = 0;
};

TEST_F(Ringlog, FullRingDropsOldestAndDumpsOldestFirstUntilCleared) {
  ::Ringlog::Log log(3);
  // The long first line's slot is reused by a short one, which must leave no tail.
  for (auto const* text : {"a rather long line that needs its own storage", "b", "c", "d", "e"}) {
    log.write(1, text);
    now_ += 1.0;
  }
  EXPECT_EQ(log.overwritten(), 2u);
  EXPECT_EQ(dumped(log),
            "(2 earlier lines overwritten)\n"
            "102.000000 [1] c\n"
            "103.000000 [1] d\n"
            "104.000000 [1] e\n");
  log.clear();
  EXPECT_EQ(dumped(log), "");
  log.writeParts(7, {"in ", "parts"});
  EXPECT_EQ(dumped(log), "105.000000 [7] in parts\n");
}

TEST_F(Ringlog, DisabledLevelRecordsNothingAndReadsNoClock) {
  ::Ringlog::Log log(4);
  log.levelsIs(1u << 2);
  log.write(3, "off");
  log.writeParts(0, {"off", "too"});
  log.write(-1, "no such level");
  log.write(32, "no such level");
  {
    ::Ringlog::BlockTimer timer(log, "quiet");
  }
  EXPECT_EQ(log.size(), 0u);
  EXPECT_EQ(clockReads_, 0);
  log.write(2, "on");
  EXPECT_EQ(dumped(log), "100.000000 [2] on\n");
}

TEST_F(Ringlog, BlockTimerRecordsNameAndElapsedAtEnd) {
  ::Ringlog::Log log(4);
  {
    ::Ringlog::BlockTimer timer(log, "void Lldp::Snmp::LldpSm::handleLastChangeTime()");
    EXPECT_EQ(log.size(), 0u);
    now_ = 100.25;
  }
  EXPECT_EQ(dumped(log), "100.250000 [8] void Lldp::Snmp::LldpSm::handleLastChangeTime() took 0.250000 s\n");
}

TEST_F(Ringlog, ProcessWideLogKeepsLevelsAcrossNewCapacityAndDumpsToAFile) {
  ::Ringlog::levelsIs(1u << 4);
  ::Ringlog::capacityIs(2);
  EXPECT_EQ(::Ringlog::defaultLog().capacity(), 2u);
  EXPECT_FALSE(::Ringlog::enabled(8));
  {
    ::Ringlog::BlockTimer timer("void f()");
  }
  ::Ringlog::write(4, "Generated lldpRemTablesChange notification at time 100 err= 0");
  auto const folder = std::filesystem::path(::testing::TempDir());
  EXPECT_FALSE(::Ringlog::dumpToFile(folder / "no-such-folder" / "ringlog"));
  ASSERT_TRUE(::Ringlog::dumpToFile(folder / "RinglogTest.dump"));
  std::ifstream file(folder / "RinglogTest.dump");
  std::stringstream content;
  content << file.rdbuf();
  std::filesystem::remove(folder / "RinglogTest.dump");
  EXPECT_EQ(content.str(), "100.000000 [4] Generated lldpRemTablesChange notification at time 100 err= 0\n");
}

TEST_F(Ringlog, ZeroCapacityIsRefused) {
  EXPECT_DEATH(::Ringlog::Log log(0), "Ringlog:[0-9]+: .*Assertion `capacity > 0' failed");
}

}  // namespace
