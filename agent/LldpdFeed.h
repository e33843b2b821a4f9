#pragma once
// The live feed from lldpd, through liblldpctl on sockets of its own that
// net-snmp's event loop watches: one connection subscribed to lldpd's
// neighbour changes, one that reads lldpd's whole state (at connect, and
// every few seconds for the counters and the local ports, which lldpd does
// not announce). Every change becomes a whole snapshot written through the
// host's StateWriter. When lldpd goes, the last state stays served and the feed
// reconnects with a backoff, then reads everything again.

#include <memory>
#include <string>

#include "StateFeed.h"

class LldpdFeed : public StateFeed {
 public:
  // `socket`: lldpd's control socket; empty for liblldpctl's default.
  explicit LldpdFeed(std::string const& socket);
  ~LldpdFeed() override;
  LldpdFeed(LldpdFeed const&) = delete;
  LldpdFeed& operator=(LldpdFeed const&) = delete;

  // Connects and reads lldpd's whole state, waiting at most a few seconds;
  // raises FeedError with the reason (no socket, no permission, no lldpd
  // listening, an lldpd that answers what this liblldpctl cannot read).
  void open() override;
  // What open() read, its times counted from the uptime origin as it is now.
  DesiredState initialState() override;
  void follow(StateWriter& writer) override;
  // Reads lldpd's whole state again.
  void reload() override;

  class Impl;

 private:
  std::unique_ptr<Impl> impl_;
};
