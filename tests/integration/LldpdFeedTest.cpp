// The live feed from lldpd, over real SNMP: two lldpd in network namespaces of
// the test's own, the agent following the near one. The far end is in every
// table that has a row for it with the values lldpcli shows, the local tables
// match lldpcli's, a shutdown LLDPDU removes the neighbour, and after a
// restart of the near lldpd the agent reconnects and serves lldpd's new state.
// Also the faults that stop the agent at start, which need no lldpd at all.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <variant>
#include <vector>

#include "AgentProcess.h"
#include "LldpdLab.h"
#include "SnmpClient.h"

namespace {

using Json = nlohmann::json;

std::string const remSysName = "1.0.8802.1.1.2.1.4.1.1.9";
std::string const remEntry = "1.0.8802.1.1.2.1.4.1.1.";
std::string const remManAddrIfSubtype = "1.0.8802.1.1.2.1.4.2.1.3";
std::string const remManAddrIfId = "1.0.8802.1.1.2.1.4.2.1.4";
std::string const remOrgDefInfo = "1.0.8802.1.1.2.1.4.4.1.4";
std::string const remDot3Port = "1.0.8802.1.1.2.1.5.4623.1.3.1.1.";
std::string const remDot3Power = "1.0.8802.1.1.2.1.5.4623.1.3.2.1.";
std::string const remVlanName = "1.0.8802.1.1.2.1.5.32962.1.3.3.1.2";
std::string const remPortVlanId = "1.0.8802.1.1.2.1.5.32962.1.3.1.1.1";
std::string const remProtoVlan = "1.0.8802.1.1.2.1.5.32962.1.3.2.1.";
std::string const remProtocolId = "1.0.8802.1.1.2.1.5.32962.1.3.4.1.2";
std::string const remAdvertisedCap = "1.0.8802.1.1.2.1.5.4623.1.3.1.1.3";
std::string const remLinkAgg = "1.0.8802.1.1.2.1.5.4623.1.3.3.1.";
std::string const remMaxFrameSize = "1.0.8802.1.1.2.1.5.4623.1.3.4.1.1";
std::string const locSystem = "1.0.8802.1.1.2.1.3.";
std::string const locPortEntry = "1.0.8802.1.1.2.1.3.7.1.";
std::string const locManAddrIfId = "1.0.8802.1.1.2.1.3.8.1.5";
std::string const portConfigAdminStatus = "1.0.8802.1.1.2.1.1.6.1.2.";
std::string const statsTxFrames = "1.0.8802.1.1.2.1.2.6.1.2.";
std::string const statsInserts = "1.0.8802.1.1.2.1.2.2.0";
std::string const statsDeletes = "1.0.8802.1.1.2.1.2.3.0";

Json cli(std::string const& socket, std::string const& command) {
  return Json::parse(LldpdLab::lldpcli(socket, "-f json " + command));
}

// lldpcli writes a list of one as the element alone.
std::vector<Json> listOf(Json const& json) {
  if (json.is_array()) {
    return {json.begin(), json.end()};
  }
  return {json};
}

// "02:00:5e", "88 8e" or "33,44,55" as bytes.
std::string bytesOf(std::string const& text) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < text.size(); i += 3) {
    bytes.push_back(static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

// lldpcli's id types as the MIB numbers them.
long chassisSubtype(std::string const& type) {
  std::map<std::string, long> const numbers{{"ifalias", 2}, {"mac", 4}, {"ip", 5}, {"ifname", 6}, {"local", 7}};
  return numbers.at(type);
}

long portSubtype(std::string const& type) {
  std::map<std::string, long> const numbers{{"ifalias", 1}, {"mac", 3}, {"ip", 4}, {"ifname", 5}, {"local", 7}};
  return numbers.at(type);
}

// BITS as served: named bit n is bit 7 - n % 8 of octet n / 8.
std::string capabilityBits(Json const& capabilities, bool enabledOnly) {
  std::map<std::string, int> const bits{{"Other", 0},  {"Repeater", 1},  {"Bridge", 2}, {"Wlan", 3},
                                        {"Router", 4}, {"Telephone", 5}, {"Docsis", 6}, {"Station", 7}};
  std::string octets(2, '\0');
  for (Json const& capability : listOf(capabilities)) {
    if (!enabledOnly || capability["enabled"].get<bool>()) {
      int const bit = bits.at(capability["type"].get<std::string>());
      octets[static_cast<std::size_t>(bit / 8)] |= static_cast<char>(0x80 >> (bit % 8));
    }
  }
  return octets;
}

// The details lldpcli gives of the neighbour named `name`; null when it gives none.
Json neighbourNamed(Json const& shown, std::string const& name) {
  if (!shown["lldp"].contains("interface")) {
    return nullptr;
  }
  // One neighbour is {interface: details}; more are a list of those.
  for (Json const& entry : listOf(shown["lldp"]["interface"])) {
    for (auto const& [interface, details] : entry.items()) {
      if (details["chassis"].contains(name)) {
        return details;
      }
    }
  }
  return nullptr;
}

// lldpcli's advertised modes as ifMauAutoNegCapAdvertisedBits, served as BITS.
std::string advertisedBits(Json const& advertised) {
  std::map<std::string, std::pair<int, int>> const bits{{"10Base-T", {1, 2}},   {"100Base-T4", {3, 3}},
                                                        {"100Base-TX", {4, 5}}, {"100Base-T2", {6, 7}},
                                                        {"1000Base-X", {12, 13}}, {"1000Base-T", {14, 15}}};
  std::string octets(2, '\0');
  for (Json const& mode : listOf(advertised)) {
    auto const [half, full] = bits.at(mode["type"].get<std::string>());
    for (auto const& [flag, bit] : {std::pair{"hd", half}, std::pair{"fd", full}}) {
      if (mode[flag].get<bool>()) {
        octets[static_cast<std::size_t>(bit / 8)] |= static_cast<char>(0x80 >> (bit % 8));
      }
    }
  }
  return octets;
}

// What one GET of the OIDs must answer: a number, or the bytes of a string.
using Served = std::vector<std::pair<std::string, std::variant<long, std::string>>>;

void expectServed(SnmpClient client, Served const& wants) {
  std::vector<std::string> oids;
  for (auto const& want : wants) {
    oids.push_back(want.first);
  }
  auto const r = client.get(oids);
  ASSERT_EQ(r.varBinds.size(), wants.size());
  for (std::size_t i = 0; i < wants.size(); ++i) {
    if (auto const* number = std::get_if<long>(&wants[i].second)) {
      EXPECT_EQ(r.varBinds[i].integer, *number) << wants[i].first;
    } else {
      EXPECT_EQ(r.varBinds[i].bytes, std::get<std::string>(wants[i].second)) << wants[i].first;
    }
  }
}

class LldpdFeed : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string const why = LldpdLab::unavailable(); !why.empty()) {
      GTEST_SKIP() << "no lab of two lldpd in network namespaces: " << why;
    }
    lab_ = std::make_unique<LldpdLab>();
    std::string const far = lab_->farSocket();
    lab_->inFar(std::string("ip addr add 192.0.2.2/24 dev ") + LldpdLab::farInterface);
    lab_->inFar(std::string("ip addr add 2001:db8::2/64 dev ") + LldpdLab::farInterface + " nodad");
    try {
      lab_->inFar(std::string("ip link add link ") + LldpdLab::farInterface + " name lfar0.10 type vlan id 10");
      lab_->inFar("ip link set lfar0.10 up");
      vlan_ = true;
    } catch (std::runtime_error const&) {
      vlan_ = false;  // a kernel without 802.1Q: the VLAN TLV cannot be had
    }
    LldpdLab::lldpcli(far, "configure system hostname far-host");
    LldpdLab::lldpcli(far, "configure system description far-switch");
    LldpdLab::lldpcli(far, "configure system ip management pattern 192.0.2.2,2001:db8::2");
    LldpdLab::lldpcli(far, "configure system capabilities enabled bridge,router");
    LldpdLab::lldpcli(far, "configure lldp custom-tlv oui 33,44,55 subtype 44 oui-info 45,46,47");
    LldpdLab::lldpcli(far, std::string("configure ports ") + LldpdLab::farInterface +
                               " dot3 power pse supported enabled paircontrol powerpairs spare class class-3");
    agent_ = std::make_unique<AgentProcess>(
        std::vector<std::string>{"--feed", "lldpd:" + lab_->nearSocket(), "--trace", "Feed=1"});
  }
  void TearDown() override {
    agent_.reset();
    lab_.reset();
  }

  SnmpClient client() const { return SnmpClient(agent_->peer(), "public"); }

  // The index suffix "timeMark.port.index" of the neighbour named `name` on the near port; empty when none.
  std::string rowOf(std::string const& name) const {
    std::string const port = "." + std::to_string(lab_->nearIfIndex()) + ".";
    for (VarBind const& v : client().walk(remSysName)) {
      std::string const suffix = v.oid.substr(remSysName.size() + 1);
      if (v.bytes == name && suffix.find(port) != std::string::npos) {
        return suffix;
      }
    }
    return "";
  }

  // The near lldpd's view of the far end once it has all that the far end was told to send.
  Json farAsLldpcliShowsIt() const {
    Json neighbor;
    bool const complete = waitUntil(
        [&] {
          neighbor = neighbourNamed(cli(lab_->nearSocket(), "show neighbors details"), "far-host");
          return !neighbor.is_null() && neighbor.contains("unknown-tlvs") &&
                 listOf(neighbor["chassis"]["far-host"]["mgmt-ip"]).size() == 2 &&
                 neighbor["port"].contains("power") && (!vlan_ || neighbor.contains("vlan"));
        },
        15.0);
    EXPECT_TRUE(complete) << neighbor.dump(2);
    return neighbor;
  }

  long scalar(std::string const& oid) const {
    auto const r = client().get({oid});
    return r.varBinds.size() == 1 ? r.varBinds[0].integer : -1;
  }

  std::unique_ptr<LldpdLab> lab_;
  std::unique_ptr<AgentProcess> agent_;
  bool vlan_ = false;
};

TEST_F(LldpdFeed, TheFarEndIsInEveryTableWithWhatLldpcliShows) {
  Json const far = farAsLldpcliShowsIt();
  ASSERT_TRUE(waitUntil([&] { return !rowOf("far-host").empty() && !client().walk(remOrgDefInfo).empty(); }))
      << agent_->standardError();
  std::string const row = rowOf("far-host");
  Json const chassis = far["chassis"]["far-host"];
  Json const port = far["port"];

  expectServed(client(), {{remEntry + "4." + row, chassisSubtype(chassis["id"]["type"])},
                          {remEntry + "5." + row, bytesOf(chassis["id"]["value"])},
                          {remEntry + "6." + row, portSubtype(port["id"]["type"])},
                          {remEntry + "7." + row, bytesOf(port["id"]["value"])},
                          {remEntry + "8." + row, port["descr"].get<std::string>()},
                          {remEntry + "10." + row, chassis["descr"].get<std::string>()},
                          {remEntry + "11." + row, capabilityBits(chassis["capability"], false)},
                          {remEntry + "12." + row, capabilityBits(chassis["capability"], true)}});

  // Every management address, with the interface lldpd knows it by.
  auto const ifIds = client().walk(remManAddrIfId + "." + row);
  auto const addresses = listOf(chassis["mgmt-ip"]);
  auto const interfaces = listOf(chassis["mgmt-iface"]);
  ASSERT_EQ(ifIds.size(), addresses.size());
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    bool const v4 = addresses[i].get<std::string>().find(':') == std::string::npos;
    std::string const index = v4 ? ".1.4.192.0.2.2" : ".2.16.32.1.13.184.0.0.0.0.0.0.0.0.0.0.0.2";
    SCOPED_TRACE(addresses[i].get<std::string>());
    ASSERT_EQ(addresses[i].get<std::string>(), v4 ? "192.0.2.2" : "2001:db8::2");
    expectServed(client(), {{remManAddrIfSubtype + "." + row + index, 2L},  // ifIndex
                            {remManAddrIfId + "." + row + index, std::stol(interfaces[i].get<std::string>())}});
  }

  // The custom TLV, under its OUI and subtype.
  Json const tlv = listOf(far["unknown-tlvs"]["unknown-tlv"]).at(0);
  std::string const oui = bytesOf(tlv["oui"]);
  std::string const orgIndex = "." + row + "." + std::to_string(static_cast<unsigned char>(oui[0])) + "." +
                               std::to_string(static_cast<unsigned char>(oui[1])) + "." +
                               std::to_string(static_cast<unsigned char>(oui[2])) + "." +
                               tlv["subtype"].get<std::string>() + ".1";
  expectServed(client(), {{remOrgDefInfo + orgIndex, bytesOf(tlv["value"])}});

  // 802.3: MAC/PHY and power via MDI.
  Json const autoneg = port["auto-negotiation"];
  Json const power = port["power"];
  auto const truthValue = [](Json const& b) { return b.get<bool>() ? 1L : 2L; };
  expectServed(client(), {{remDot3Port + "1." + row, truthValue(autoneg["supported"])},
                          {remDot3Port + "2." + row, truthValue(autoneg["enabled"])},
                          {remDot3Power + "1." + row, power["device-type"] == "PSE" ? 1L : 2L},
                          {remDot3Power + "2." + row, truthValue(power["supported"])},
                          {remDot3Power + "3." + row, truthValue(power["enabled"])},
                          {remDot3Power + "4." + row, truthValue(power["paircontrol"])},
                          {remDot3Power + "5." + row, power["pairs"] == "spare" ? 2L : 1L},
                          // "class 3" is class3(4).
                          {remDot3Power + "6." + row, std::stol(power["class"].get<std::string>().substr(6)) + 1}});

  if (vlan_) {
    Json const vlan = listOf(far["vlan"]).at(0);
    expectServed(client(), {{remVlanName + "." + row + "." + vlan["vlan-id"].get<std::string>(),
                             vlan["value"].get<std::string>()}});
  }
}

TEST_F(LldpdFeed, TheLiveStateWrittenAsAScenarioIsServedTheSame) {
  farAsLldpcliShowsIt();
  ASSERT_TRUE(waitUntil([&] { return !rowOf("far-host").empty(); })) << agent_->standardError();
  std::string const directory = makeTempDirectory();
  std::string const path = directory + "/live.json";
  auto const written = runAgentToEnd({"--feed", "lldpd:" + lab_->nearSocket(), "--write-scenario", path});
  EXPECT_EQ(written.exitCode, 0) << written.standardError;
  EXPECT_EQ(written.standardError, "");

  // The neighbours' time marks count from another start; everything else is the same.
  AgentProcess const fromFile({"--scenario", path});
  SnmpClient fileClient(fromFile.peer(), "public");
  for (std::string const& subtree : {locSystem.substr(0, locSystem.size() - 1), remSysName, remOrgDefInfo,
                                     std::string("1.0.8802.1.1.2.1.5.4623.1.3.2")}) {
    SCOPED_TRACE(subtree);
    auto const live = client().walk(subtree);
    auto const loaded = fileClient.walk(subtree);
    ASSERT_EQ(live.size(), loaded.size());
    ASSERT_FALSE(live.empty());
    for (std::size_t i = 0; i < live.size(); ++i) {
      EXPECT_EQ(live[i].bytes, loaded[i].bytes) << live[i].oid;
      EXPECT_EQ(live[i].integer, loaded[i].integer) << live[i].oid;
    }
  }
  std::filesystem::remove_all(directory);
}

// What lldpd cannot be made to send here (802.1 VLANs, protocol identities, link
// aggregation, the frame size) comes from a raw LLDPDU in the far namespace.
TEST_F(LldpdFeed, The8021And8023TlvsOfANeighbourAreInTheirTablesAsLldpcliShowsThem) {
  lab_->inFar("sh -c 'echo send 1 1 120 | python3 " + std::string(LLDP_SNMP_SOURCE_DIR) +
              "/bench/lldpdu-sender.py " + LldpdLab::farInterface + "'");
  Json bench;
  ASSERT_TRUE(waitUntil([&] {
    bench = neighbourNamed(cli(lab_->nearSocket(), "show neighbors details"), "bench-1");
    return !bench.is_null();
  })) << "lldpd did not take in the LLDPDU";
  ASSERT_TRUE(waitUntil([&] { return !rowOf("bench-1").empty(); })) << agent_->standardError();
  std::string const row = rowOf("bench-1");
  Json const vlan = bench["vlan"];
  Json const ppvid = bench["ppvid"];
  Json const port = bench["port"];

  ASSERT_TRUE(vlan["pvid"].get<bool>());
  std::string const ppvidIndex = "." + row + "." + ppvid["value"].get<std::string>();
  expectServed(client(), {{remPortVlanId + "." + row, std::stol(vlan["vlan-id"].get<std::string>())},
                          {remVlanName + "." + row + "." + vlan["vlan-id"].get<std::string>(), vlan["value"].get<std::string>()},
                          {remProtoVlan + "2" + ppvidIndex, ppvid["supported"].get<bool>() ? 1L : 2L},
                          {remProtoVlan + "3" + ppvidIndex, ppvid["enabled"].get<bool>() ? 1L : 2L},
                          {remProtocolId + "." + row + ".1", bytesOf(bench["pi"].get<std::string>())},
                          {remAdvertisedCap + "." + row, advertisedBits(port["auto-negotiation"]["advertised"])},
                          // lldpd keeps the aggregate's ID alone: an aggregated port is capable and enabled.
                          {remLinkAgg + "1." + row, std::string("\xc0", 1)},
                          {remLinkAgg + "2." + row, std::stol(port["aggregation"].get<std::string>())},
                          {remMaxFrameSize + "." + row, std::stol(port["mfs"].get<std::string>())}});
}

TEST_F(LldpdFeed, TheLocalTablesAreWhatLldpcliShowsOfTheNearSide) {
  Json const chassis = cli(lab_->nearSocket(), "show chassis")["local-chassis"]["chassis"];
  ASSERT_EQ(chassis.size(), 1u);
  std::string const name = chassis.begin().key();
  Json const local = chassis.begin().value();
  Json const interface = cli(lab_->nearSocket(), "show interfaces")["lldp"]["interface"][LldpdLab::nearInterface];
  std::string const port = std::to_string(lab_->nearIfIndex());

  ASSERT_EQ(interface["status"], "RX and TX");
  expectServed(client(), {{locSystem + "1.0", chassisSubtype(local["id"]["type"])},
                          {locSystem + "2.0", bytesOf(local["id"]["value"])},
                          {locSystem + "3.0", name},
                          {locSystem + "4.0", local["descr"].get<std::string>()},
                          {locSystem + "5.0", capabilityBits(local["capability"], false)},
                          {locSystem + "6.0", capabilityBits(local["capability"], true)},
                          {locPortEntry + "2." + port, portSubtype(interface["port"]["id"]["type"])},
                          {locPortEntry + "3." + port, bytesOf(interface["port"]["id"]["value"])},
                          {locPortEntry + "4." + port, interface["port"]["descr"].get<std::string>()},
                          {portConfigAdminStatus + port, 3L}});  // txAndRx

  // One row per management address lldpd announces, each with its interface.
  auto const ifIds = client().walk(locManAddrIfId);
  auto const interfaces = local.contains("mgmt-iface") ? listOf(local["mgmt-iface"]) : std::vector<Json>{};
  ASSERT_EQ(ifIds.size(), interfaces.size());
  for (std::size_t i = 0; i < ifIds.size(); ++i) {
    EXPECT_EQ(ifIds[i].integer, std::stol(interfaces[i].get<std::string>()));
  }

  // The counters are lldpd's, read again every few seconds: the agent's lag behind lldpcli's a little.
  long const sent = std::stol(
      cli(lab_->nearSocket(), "show statistics")["lldp"]["interface"][LldpdLab::nearInterface]["tx"]["tx"]
          .get<std::string>());
  EXPECT_TRUE(waitUntil([&] { return scalar(statsTxFrames + port) >= sent; }, 10.0));
}

TEST_F(LldpdFeed, AShutdownLldpduRemovesTheNeighbour) {
  farAsLldpcliShowsIt();
  ASSERT_TRUE(waitUntil([&] { return !rowOf("far-host").empty(); })) << agent_->standardError();
  long const deletes = scalar(statsDeletes);

  lab_->stopFar();
  EXPECT_TRUE(waitUntil([&] { return client().walk(remSysName).empty(); })) << agent_->standardError();
  EXPECT_TRUE(client().walk(remOrgDefInfo).empty());
  EXPECT_EQ(scalar(statsDeletes), deletes + 1);
  // lldpd counts the same.
  Json const stats = cli(lab_->nearSocket(), "show statistics")["lldp"]["interface"][LldpdLab::nearInterface];
  EXPECT_EQ(scalar(statsDeletes), std::stol(stats["delete_cnt"]["delete_cnt"].get<std::string>()));
}

TEST_F(LldpdFeed, AfterLldpdRestartsTheAgentReconnectsAndServesItsNewState) {
  farAsLldpcliShowsIt();
  ASSERT_TRUE(waitUntil([&] { return !rowOf("far-host").empty(); })) << agent_->standardError();

  lab_->stopNear();
  std::string const lost = "lldp-snmp-agent: lost lldpd";
  ASSERT_TRUE(waitUntil([&] { return agent_->standardError().find(lost) != std::string::npos; }))
      << agent_->standardError();
  // The last known state stays served.
  EXPECT_FALSE(rowOf("far-host").empty());

  LldpdLab::lldpcli(lab_->farSocket(), "configure system hostname far-renamed");
  lab_->startNear();
  // Reconnects come at most 10 s apart.
  EXPECT_TRUE(waitUntil([&] { return !rowOf("far-renamed").empty() && rowOf("far-host").empty(); }, 25.0))
      << agent_->standardError();
  EXPECT_EQ(client().walk(remSysName).size(), 1u);
  std::string const errors = agent_->standardError();
  EXPECT_EQ(errors.find(lost), errors.rfind(lost)) << errors;
  EXPECT_NE(errors.find("is back"), std::string::npos) << errors;
  // The counters are the new lldpd's.
  EXPECT_TRUE(waitUntil(
      [&] {
        Json const stats = cli(lab_->nearSocket(), "show statistics")["lldp"]["interface"][LldpdLab::nearInterface];
        return scalar(statsInserts) == std::stol(stats["insert_cnt"]["insert_cnt"].get<std::string>());
      },
      10.0));
}

// A unix socket at `path` that accepts one connection and answers whatever it
// is asked with bytes no lldpd sends; gone when the object goes.
class NotLldpd {
 public:
  explicit NotLldpd(std::string const& path) {
    listener_ = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    bind(listener_, reinterpret_cast<sockaddr const*>(&address), sizeof address);
    listen(listener_, 4);
    thread_ = std::thread([this] {
      // Bounded: answers the connections that come within 10 s.
      for (int round = 0; round < 100; ++round) {
        pollfd fd{listener_, POLLIN, 0};
        if (poll(&fd, 1, 100) <= 0) {
          continue;
        }
        int const peer = accept(listener_, nullptr, nullptr);
        char request[256];
        if (read(peer, request, sizeof request) > 0) {
          std::string const garbage(64, '\xff');
          [[maybe_unused]] auto const written = write(peer, garbage.data(), garbage.size());
        }
        peers_.push_back(peer);
        if (peers_.size() == 2) {
          return;
        }
      }
    });
  }
  ~NotLldpd() {
    thread_.join();
    for (int const peer : peers_) {
      close(peer);
    }
    close(listener_);
  }
  NotLldpd(NotLldpd const&) = delete;
  NotLldpd& operator=(NotLldpd const&) = delete;

 private:
  int listener_ = -1;
  std::vector<int> peers_;
  std::thread thread_;
};

class LldpdFeedStart : public testing::Test {
 protected:
  void SetUp() override { directory_ = makeTempDirectory(); }
  void TearDown() override { std::filesystem::remove_all(directory_); }
  std::string directory_;
};

TEST_F(LldpdFeedStart, WithoutAnLldpdTheAgentEndsWithOneLine) {
  std::string const none = directory_ + "/none.socket";
  auto const missing = runAgentToEnd({"--feed", "lldpd:" + none});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_EQ(missing.standardError, "lldp-snmp-agent: cannot connect to lldpd at " + none + ": No such file or directory\n");

  // A socket that nobody listens on any more.
  std::string const stale = directory_ + "/stale.socket";
  {
    int const fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    stale.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address), 0);
    close(fd);
  }
  auto const refused = runAgentToEnd({"--feed", "lldpd:" + stale});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.standardError, "lldp-snmp-agent: cannot connect to lldpd at " + stale + ": Connection refused\n");
}

TEST_F(LldpdFeedStart, APeerThatIsNoLldpdOfThisVersionIsRefused) {
  std::string const path = directory_ + "/odd.socket";
  NotLldpd const peer(path);
  auto const run = runAgentToEnd({"--feed", "lldpd:" + path});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.standardError.find("lldp-snmp-agent: lldpd at " + path + " answered what liblldpctl "), 0u)
      << run.standardError;
  EXPECT_NE(run.standardError.find("is it an older lldpd?"), std::string::npos) << run.standardError;
  EXPECT_EQ(run.standardError.find('\n'), run.standardError.size() - 1) << run.standardError;
}

TEST_F(LldpdFeedStart, ASocketTheAgentMayNotUseIsRefused) {
  if (!agentRunsAsNobody()) {
    GTEST_SKIP() << "the agent cannot run as nobody here (not root, or a build tree closed to other users)";
  }
  // Behind a directory only root may enter, for an agent run as nobody.
  std::string const closed = directory_ + "/closed";
  std::filesystem::create_directory(closed);
  chmod(closed.c_str(), 0700);
  chmod(directory_.c_str(), 0755);
  std::string const path = closed + "/lldpd.socket";
  int status = 0;
  std::string const output =
      runCommand("setpriv --reuid=65534 --regid=65534 --clear-groups " + std::string(LLDP_SNMP_AGENT_PATH) +
                     " --feed lldpd:" + path + " 2>&1",
                 &status);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(output, "lldp-snmp-agent: cannot connect to lldpd at " + path + ": Permission denied\n");
}

}  // namespace
