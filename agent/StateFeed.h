#pragma once
// Where the LLDP state comes from: a scenario file, the built-in demo, or the
// LLDP daemon lldpd. The host reads the first state, writes it, and then lets
// the feed keep the Reconciler current on the agent's event loop.

#include <memory>
#include <stdexcept>

#include "AgentOptions.h"
#include "DesiredState.h"
#include "StateWriter.h"

// A feed that cannot start; what() is one line for standard error.
class FeedError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class StateFeed {
 public:
  virtual ~StateFeed() = default;
  // Reaches the source and reads its first state, before the agent sets up
  // anything of its own. Raises FeedError when the source cannot be had.
  virtual void open() {}
  // The whole state now. Times in it count from the uptime origin, which must
  // be set before. Raises FeedError or ScenarioError when there is none to be had.
  virtual DesiredState initialState() = 0;
  // Keeps the state current from now on through `writer`, whose reconciler
  // has applied initialState(). `writer` must outlive this.
  virtual void follow(StateWriter& writer) = 0;
  // SIGHUP: read the source again.
  virtual void reload() = 0;
};

// The feed the options name; a scenario file is read here, so that a refused
// one stops the agent before anything else is set up.
std::unique_ptr<StateFeed> makeStateFeed(AgentOptions const& options);
