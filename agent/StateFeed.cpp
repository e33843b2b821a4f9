#include "StateFeed.h"

#include <malloc.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <future>
#include <string>
#include <utility>

#include "LldpdFeed.h"
#include "Scenario.h"

namespace {

// A reload reads and parses the file on a thread of its own, so that the agent
// goes on answering meanwhile (parsing is most of a large reload's time); the
// event loop learns of the result through an eventfd it watches and writes it
// on its own thread, as every state is written. The parser touches nothing
// shared: it builds a DesiredState of its own.
class ScenarioFeed : public StateFeed {
 public:
  explicit ScenarioFeed(std::string path)
      : path_(std::move(path)), state_(path_.empty() ? demoScenario() : loadScenarioFile(path_)) {}

  ~ScenarioFeed() override {
    if (registered_) {
      unregister_readfd(done_.get());
    }
    if (reading_.valid()) {
      reading_.wait();
    }
  }

  // Once: a reload is compared with the state database, not with the file as first read.
  DesiredState initialState() override { return std::exchange(state_, DesiredState()); }

  void follow(StateWriter& writer) override {
    writer_ = &writer;
    if (!path_.empty() && !registered_) {
      done_.reset(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
      if (!done_) {
        throw FeedError(std::string("cannot create an eventfd: ") + std::strerror(errno));
      }
      register_readfd(done_.get(), &ScenarioFeed::onRead, this);
      registered_ = true;
    }
  }

  void reload() override {
    if (path_.empty() || !writer_) {
      return;  // the demo has nothing to re-read
    }
    if (reading_.valid()) {
      // The file may have changed after the read under way began: read it again then.
      again_ = true;
      return;
    }
    startReading();
  }

 private:
  struct Fd {
    int fd = -1;
    void reset(int f) {
      if (fd >= 0) {
        close(fd);
      }
      fd = f;
    }
    int get() const { return fd; }
    explicit operator bool() const { return fd >= 0; }
    ~Fd() { reset(-1); }
  };

  void startReading() {
    reading_ = std::async(std::launch::async, [path = path_, fd = done_.get()] {
      // Told on every way out, a refusal included.
      struct Tell {
        int fd;
        ~Tell() {
          std::uint64_t const one = 1;
          [[maybe_unused]] auto const ignored = write(fd, &one, sizeof one);
        }
      } const tell{fd};
      auto state = loadScenarioFile(path);
      // Parsing built and freed a whole JSON document, several times the size
      // of the state; malloc would keep its pages. Here, not on the event loop:
      // at 50,000 neighbours this takes half a second.
      malloc_trim(0);
      return state;
    });
  }

  static void onRead(int fd, void* self) {
    std::uint64_t count = 0;
    [[maybe_unused]] auto const ignored = read(fd, &count, sizeof count);
    static_cast<ScenarioFeed*>(self)->finishReading();
  }

  void finishReading() {
    if (!reading_.valid()) {
      return;
    }
    // The thread tells just before it returns: its result is a moment away at most.
    auto read = std::move(reading_);
    read.wait();
    if (std::exchange(again_, false)) {
      startReading();
      return;
    }
    try {
      writer_->write(read.get(), "reload applied", true);
    } catch (ScenarioError const& e) {
      writer_->refused(e.what());
    }
  }

  std::string path_;
  DesiredState state_;
  StateWriter* writer_ = nullptr;
  Fd done_;
  bool registered_ = false;
  std::future<DesiredState> reading_;  // after done_: its thread writes there
  bool again_ = false;
};

}  // namespace

std::unique_ptr<StateFeed> makeStateFeed(AgentOptions const& options) {
  if (options.feed) {
    return std::make_unique<LldpdFeed>(*options.feed);
  }
  return std::make_unique<ScenarioFeed>(options.scenario);
}
