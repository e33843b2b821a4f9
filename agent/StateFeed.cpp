#include "StateFeed.h"

#include <string>
#include <utility>

#include "LldpdFeed.h"
#include "Scenario.h"

namespace {

class ScenarioFeed : public StateFeed {
 public:
  explicit ScenarioFeed(std::string path)
      : path_(std::move(path)), state_(path_.empty() ? demoScenario() : loadScenarioFile(path_)) {}

  // Once: a reload is compared with the state database, not with the file as first read.
  DesiredState initialState() override { return std::exchange(state_, DesiredState()); }
  void follow(StateWriter& writer) override { writer_ = &writer; }
  void reload() override {
    if (path_.empty() || !writer_) {
      return;  // the demo has nothing to re-read
    }
    try {
      // Read whole before anything is written; the port driver follows the ports inside the write.
      writer_->write(loadScenarioFile(path_), "reload applied", true);
    } catch (ScenarioError const& e) {
      writer_->refused(e.what());
    }
  }

 private:
  std::string path_;
  DesiredState state_;
  StateWriter* writer_ = nullptr;
};

}  // namespace

std::unique_ptr<StateFeed> makeStateFeed(AgentOptions const& options) {
  if (options.feed) {
    return std::make_unique<LldpdFeed>(*options.feed);
  }
  return std::make_unique<ScenarioFeed>(options.scenario);
}
