#include "StateFeed.h"

#include <iostream>
#include <string>
#include <utility>

#include "LldpdFeed.h"
#include "Scenario.h"

namespace {

class ScenarioFeed : public StateFeed {
 public:
  explicit ScenarioFeed(std::string path)
      : path_(std::move(path)), state_(path_.empty() ? demoScenario() : loadScenarioFile(path_)) {}

  DesiredState initialState() override { return state_; }
  void follow(Reconciler& reconciler) override { reconciler_ = &reconciler; }
  void reload() override {
    if (path_.empty() || !reconciler_) {
      return;  // the demo has nothing to re-read
    }
    try {
      // Read whole before anything is written.
      state_ = loadScenarioFile(path_);
      reconciler_->apply(state_);
    } catch (ScenarioError const& e) {
      std::cerr << "lldp-snmp-agent: reload refused, still serving the previous state: " << e.what() << std::endl;
    }
  }

 private:
  std::string path_;
  DesiredState state_;
  Reconciler* reconciler_ = nullptr;
};

}  // namespace

std::unique_ptr<StateFeed> makeStateFeed(AgentOptions const& options) {
  if (options.feed) {
    return std::make_unique<LldpdFeed>(*options.feed);
  }
  return std::make_unique<ScenarioFeed>(options.scenario);
}
