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

TEST_F(Ringlog, FullRingDropsOldestAndDumpsOldestFirst) {
  ::Ringlog::Log log(3);
  for (auto const* text : {"a", "b", "c", "d", "e"}) {
    log.write(1, text);
    now_ += 1.0;
  }
  EXPECT_EQ(log.size(), 3u);
  EXPECT_EQ(log.overwritten(), 2u);
  EXPECT_EQ(dumped(log),
            "(2 earlier lines overwritten)\n"
            "102.000000 [1] c\n"
            "103.000000 [1] d\n"
            "104.000000 [1] e\n");
}

TEST_F(Ringlog, PartlyFilledRingDumpsOnlyItsLines) {
  ::Ringlog::Log log(4);
  log.write(0, "first");
  log.writeParts(7, {"second ", "in ", "parts"});
  EXPECT_EQ(dumped(log), "100.000000 [0] first\n100.000000 [7] second in parts\n");
}

TEST_F(Ringlog, DisabledLevelRecordsNothing) {
  ::Ringlog::Log log(4);
  log.levelsIs(1u << 2);
  log.write(3, "off");
  log.writeParts(0, {"off", "too"});
  log.write(-1, "no such level");
  log.write(32, "no such level");
  EXPECT_EQ(log.size(), 0u);
  EXPECT_EQ(clockReads_, 0);
  log.write(2, "on");
  EXPECT_EQ(dumped(log), "100.000000 [2] on\n");
}

TEST_F(Ringlog, ShorterTextReplacingLongerLeavesNoTail) {
  ::Ringlog::Log log(1);
  log.write(1, "a rather long line that needs its own storage");
  log.write(1, "short");
  EXPECT_EQ(dumped(log), "(1 earlier lines overwritten)\n100.000000 [1] short\n");
}

TEST_F(Ringlog, ClearForgetsLinesAndLosses) {
  ::Ringlog::Log log(1);
  log.write(1, "x");
  log.write(1, "y");
  log.clear();
  EXPECT_EQ(log.size(), 0u);
  EXPECT_EQ(dumped(log), "");
  log.write(1, "z");
  EXPECT_EQ(dumped(log), "100.000000 [1] z\n");
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

TEST_F(Ringlog, BlockTimerWithLevelOffReadsNoClock) {
  ::Ringlog::Log log(4);
  log.levelsIs(~(1u << ::Ringlog::timerLevel));
  {
    ::Ringlog::BlockTimer timer(log, "quiet");
  }
  EXPECT_EQ(clockReads_, 0);
  EXPECT_EQ(log.size(), 0u);
}

TEST_F(Ringlog, ProcessWideLogKeepsLevelsAcrossNewCapacity) {
  ::Ringlog::levelsIs(1u << 4);
  ::Ringlog::capacityIs(2);
  EXPECT_EQ(::Ringlog::defaultLog().capacity(), 2u);
  EXPECT_EQ(::Ringlog::levels(), 1u << 4);
  EXPECT_FALSE(::Ringlog::enabled(8));
  {
    ::Ringlog::BlockTimer timer("void f()");
  }
  ::Ringlog::write(4, "Generated lldpRemTablesChange notification at time 100 err= 0");
  std::ostringstream os;
  ::Ringlog::dump(os);
  EXPECT_EQ(os.str(), "100.000000 [4] Generated lldpRemTablesChange notification at time 100 err= 0\n");
}

TEST_F(Ringlog, DumpToFileWritesTheProcessWideLog) {
  ::Ringlog::capacityIs(8);
  ::Ringlog::write(1, "to the file");
  auto const path = std::filesystem::path(::testing::TempDir()) / "RinglogTest.dump";
  ASSERT_TRUE(::Ringlog::dumpToFile(path));
  std::ifstream file(path);
  std::stringstream content;
  content << file.rdbuf();
  EXPECT_EQ(content.str(), "100.000000 [1] to the file\n");
  std::filesystem::remove(path);
}

TEST_F(Ringlog, DumpToFileInMissingFolderFails) {
  auto const path = std::filesystem::path(::testing::TempDir()) / "no-such-folder" / "x" / "ringlog";
  EXPECT_FALSE(::Ringlog::dumpToFile(path));
}

TEST_F(Ringlog, ZeroCapacityIsRefused) {
  EXPECT_DEATH(::Ringlog::Log log(0), "Ringlog:[0-9]+: .*Assertion `capacity > 0' failed");
}

}  // namespace
