#include "LldpdFeed.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>

#include <lldpctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <iostream>
#include <optional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "LldpdAtoms.h"
#include "LldpdMapping.h"
#include "Snmp/Conversions.h"
#include "Zet/System.h"
#include "Zet/Trace.h"

namespace {

Zet::TraceHandle const& trace() {
  static Zet::TraceHandle const handle("Feed", false);
  return handle;
}

// lldpd announces neighbours, not counters or local ports: those are read again this often.
constexpr double refreshSeconds = 5.0;
constexpr double firstRetrySeconds = 1.0;
constexpr double longestRetrySeconds = 10.0;
constexpr double startTimeoutSeconds = 10.0;
// A read that takes longer has stalled: the session is given up and made again.
constexpr double stalledReadSeconds = 30.0;
// Every this many refreshes, interfaces too large to read are tried again.
constexpr unsigned oversizedRetryEvery = 12;
// Bounds on the work of one wake-up, so that a flood of changes cannot hold the loop.
constexpr int readsPerWakeup = 64;
constexpr int notificationsPerRead = 100000;

// A session with lldpd that cannot go on; what() says why, for standard error.
class SessionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What liblldpctl first complained of since this was last cleared; it logs to standard error unless told otherwise.
std::string& libraryWarning() {
  static std::string warning;
  return warning;
}

void onLibraryLog(int severity, char const* message) {
  // Severities are syslog's; the library's debug lines are of no interest here.
  if (severity <= LOG_WARNING) {
    ZET_TRACE(trace(), 1) << "liblldpctl: " << message;
    if (libraryWarning().empty()) {
      libraryWarning() = message ? message : "";
    }
  }
}

std::string unreadable(std::string const& socket, std::string const& why) {
  return "lldpd at " + socket + " answered what liblldpctl " LLDPCTL_LIBRARY_VERSION " cannot read (" + why +
         "): is it an older lldpd?";
}

std::string describe(lldpctl_error_t error) {
  std::string text = lldpctl_strerror(error);
  if (error == LLDPCTL_ERR_SERIALIZATION || error == LLDPCTL_ERR_FATAL) {
    text += " (is it an lldpd older than liblldpctl " LLDPCTL_LIBRARY_VERSION "?)";
  }
  return text;
}

timeval timevalOf(double seconds) {
  timeval tv{};
  tv.tv_sec = static_cast<time_t>(seconds);
  tv.tv_usec = static_cast<suseconds_t>((seconds - std::floor(seconds)) * 1e6);
  return tv;
}

// The wall clock less the state database's: taken once, so that the wall
// clock at sysUpTime 0 is the same number while the uptime origin stays.
double wallLessStateClock() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  double const wall = static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
  return wall - Zet::System::currentTime();
}

// The wall clock at sysUpTime 0: lldpd stamps a neighbour's change on the wall clock.
double startEpoch() {
  static double const offset = wallLessStateClock();
  return offset + Snmp::uptimeOrigin();
}

// One liblldpctl connection on a non-blocking socket of its own.
class Connection {
 public:
  explicit Connection(std::string const& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
      throw SessionError("cannot connect to lldpd at " + path + ": the path is too long");
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    fd_ = socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd_ < 0) {
      throw SessionError(std::string("cannot make a socket: ") + std::strerror(errno));
    }
    if (connect(fd_, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
      int const error = errno;
      close(fd_);
      throw SessionError("cannot connect to lldpd at " + path + ": " + std::strerror(error));
    }
    conn_ = lldpctl_new(&Connection::send, &Connection::recv, this);
    if (!conn_) {
      close(fd_);
      throw SessionError("cannot make a liblldpctl connection");
    }
  }
  ~Connection() {
    lldpctl_release(conn_);
    close(fd_);
  }
  Connection(Connection const&) = delete;
  Connection& operator=(Connection const&) = delete;

  lldpctl_conn_t* get() const { return conn_; }
  int fd() const { return fd_; }

  // What the socket holds now, without waiting; empty when nothing. Raises at the end of the stream.
  std::vector<std::uint8_t> readAvailable() const {
    std::vector<std::uint8_t> buffer(65536);
    ssize_t const n = read(fd_, buffer.data(), buffer.size());
    if (n == 0) {
      throw SessionError("lldpd closed the connection");
    }
    if (n < 0) {
      if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) {
        return {};
      }
      throw SessionError(std::string("reading from lldpd: ") + std::strerror(errno));
    }
    buffer.resize(static_cast<std::size_t>(n));
    return buffer;
  }

 private:
  static ssize_t send(lldpctl_conn_t*, std::uint8_t const* data, std::size_t length, void* self) {
    ssize_t const n = ::send(static_cast<Connection*>(self)->fd_, data, length, MSG_NOSIGNAL);
    if (n >= 0) {
      return n;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK ? LLDPCTL_ERR_WOULDBLOCK : LLDPCTL_ERR_CALLBACK_FAILURE;
  }
  static ssize_t recv(lldpctl_conn_t*, std::uint8_t const* data, std::size_t length, void* self) {
    // liblldpctl hands its buffer as const, but it is there to be filled.
    ssize_t const n = read(static_cast<Connection*>(self)->fd_, const_cast<std::uint8_t*>(data), length);
    if (n >= 0) {
      return n;
    }
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? LLDPCTL_ERR_WOULDBLOCK
                                                                      : LLDPCTL_ERR_CALLBACK_FAILURE;
  }

  int fd_ = -1;
  lldpctl_conn_t* conn_ = nullptr;
};

struct Change {
  lldpctl_change_t type;
  std::string interface;
  LldpdNeighbor neighbor;
  bool hidden;
};

struct FullRead {
  LldpdConfig config;
  LldpdChassis chassis;
  std::vector<LldpdInterface> interfaces;
  // Interfaces whose answer was larger than liblldpctl takes (as many neighbours as about 512 KiB hold).
  std::vector<std::string> unreadable;
};

// One session: a connection subscribed to changes, and one that reads the
// whole state, step by step as answers arrive. The read starts once the
// subscription stands, so that no change falls between the two.
class Session {
 public:
  explicit Session(std::string const& path)
      : path_(path), watch_(path), query_(std::make_unique<Connection>(path)) {}

  int watchFd() const { return watch_.fd(); }
  // Changes when an answer too large for liblldpctl made the connection useless.
  int queryFd() const { return query_->fd(); }
  bool reading() const { return read_.has_value(); }
  // Seconds the read under way has taken so far; 0 when none is.
  double readingFor() const { return read_ ? Zet::System::currentTime() - read_->started : 0.0; }

  // Goes as far as the answers at hand allow. Raises SessionError.
  void pump() {
    if (!subscribed_) {
      int const rc = lldpctl_watch_callback2(watch_.get(), &Session::onChange, this);
      if (rc == LLDPCTL_ERR_WOULDBLOCK) {
        return;
      }
      if (rc != 0) {
        throw SessionError("subscribing to lldpd's changes: " + describe(static_cast<lldpctl_error_t>(rc)));
      }
      subscribed_ = true;
      ZET_TRACE(trace(), 1) << "subscribed to lldpd's neighbour changes";
      startRead();
    } else {
      takeNotifications();
    }
    advanceRead();
  }

  // `skip`: interfaces known to be too large to read, left unread this time.
  void startRead(std::set<std::string> const& skip = {}) {
    if (subscribed_ && !read_) {
      read_.emplace();
      read_->skip = skip;
    }
  }
  std::optional<FullRead> takeRead() { return std::exchange(done_, std::nullopt); }
  std::vector<Change> takeChanges() { return std::exchange(changes_, {}); }

 private:
  enum class Step { config, chassis, interfaces, ports };
  struct Read {
    Step step = Step::config;
    double started = Zet::System::currentTime();
    FullRead result;
    std::vector<LldpctlAtom> interfaces;
    std::size_t next = 0;
    std::set<std::string> skip;

    bool done(std::string const& name) const {
      return std::ranges::find(result.unreadable, name) != result.unreadable.end() ||
             std::ranges::find(result.interfaces, name, &LldpdInterface::name) != result.interfaces.end();
    }
  };

  static std::string nameOf(lldpctl_atom_t* interface) {
    char const* const name = lldpctl_atom_get_str(interface, lldpctl_k_interface_name);
    return name ? name : "";
  }

  static void onChange(lldpctl_change_t type, lldpctl_atom_t* interface, lldpctl_atom_t* neighbor, void* data) {
    // Both atoms are lent for the call only.
    char const* const name = lldpctl_atom_get_str(interface, lldpctl_k_interface_name);
    static_cast<Session*>(data)->changes_.push_back({type, name ? name : "", readLldpdNeighbor(neighbor),
                                                     lldpctl_atom_get_int(neighbor, lldpctl_k_port_hidden) > 0});
  }

  void takeNotifications() {
    for (int round = 0; round < readsPerWakeup; ++round) {
      auto const bytes = watch_.readAvailable();
      if (bytes.empty()) {
        return;
      }
      if (lldpctl_recv(watch_.get(), bytes.data(), bytes.size()) < 0) {
        throw SessionError("reading lldpd's changes: " + describe(lldpctl_last_error(watch_.get())));
      }
      for (int n = 0; n < notificationsPerRead && lldpctl_process_conn_buffer(watch_.get()) == 0; ++n) {
      }
    }
  }

  // True when the call is still waiting for its answer; raises when it failed.
  bool pending(char const* what) const {
    lldpctl_error_t const error = lldpctl_last_error(query_->get());
    if (error == LLDPCTL_ERR_WOULDBLOCK) {
      return true;
    }
    throw SessionError(std::string("reading ") + what + " from lldpd: " + describe(error));
  }

  void advanceRead() {
    while (read_) {
      Read& read = *read_;
      switch (read.step) {
        case Step::config: {
          LldpctlAtom const config(lldpctl_get_configuration(query_->get()));
          if (!config && pending("the configuration")) {
            return;
          }
          read.result.config = readLldpdConfig(config.get());
          read.step = Step::chassis;
          break;
        }
        case Step::chassis: {
          LldpctlAtom const chassis(lldpctl_get_local_chassis(query_->get()));
          if (!chassis && pending("the local chassis")) {
            return;
          }
          read.result.chassis = readLldpdChassis(chassis.get());
          read.step = Step::interfaces;
          break;
        }
        case Step::interfaces: {
          LldpctlAtom const list(lldpctl_get_interfaces(query_->get()));
          if (!list && pending("the interfaces")) {
            return;
          }
          lldpctl_atom_t* interface = nullptr;
          lldpctl_atom_foreach(list.get(), interface) {
            std::string const name = nameOf(interface);
            if (read.skip.contains(name)) {
              read.result.unreadable.push_back(name);
            } else if (!read.done(name)) {
              read.interfaces.push_back(LldpctlAtom::borrowed(interface));
            }
          }
          read.step = Step::ports;
          break;
        }
        case Step::ports: {
          if (read.next == read.interfaces.size()) {
            ZET_TRACE(trace(), 2) << "read lldpd's state: " << read.result.interfaces.size() << " interfaces";
            done_ = std::move(read.result);
            read_.reset();
            return;
          }
          lldpctl_atom_t* const interface = read.interfaces[read.next].get();
          libraryWarning().clear();
          LldpctlAtom const port(lldpctl_get_port(interface));
          if (!port) {
            if (lldpctl_last_error(query_->get()) == LLDPCTL_ERR_WOULDBLOCK) {
              return;
            }
            if (libraryWarning().find("too large") == std::string::npos) {
              pending("a port");
            }
            // The rest of the answer is still on its way: only a new connection, with
            // interfaces of its own, reads the next one.
            ZET_TRACE(trace(), 1) << "lldpd's answer for " << nameOf(interface) << " is too large for liblldpctl";
            read.result.unreadable.push_back(nameOf(interface));
            libraryWarning().clear();
            read.interfaces.clear();
            read.next = 0;
            read.step = Step::interfaces;
            query_ = std::make_unique<Connection>(path_);
            break;
          }
          read.result.interfaces.push_back(readLldpdInterface(port.get()));
          ++read.next;
          break;
        }
      }
    }
  }

  std::string path_;
  Connection watch_;
  std::unique_ptr<Connection> query_;
  bool subscribed_ = false;
  std::optional<Read> read_;
  std::optional<FullRead> done_;
  std::vector<Change> changes_;
};

}  // namespace

class LldpdFeed::Impl {
 public:
  // Connects at once, so that a socket that cannot be used stops the agent before anything else starts.
  explicit Impl(std::string socket) : socket_(std::move(socket)) {
    lldpctl_log_callback(&onLibraryLog);
    try {
      session_ = std::make_unique<Session>(socket_);
    } catch (SessionError const& e) {
      throw FeedError(e.what());
    }
  }
  ~Impl() {
    unregisterFds();
    for (unsigned const alarm : {retryAlarm_, refreshAlarm_}) {
      if (alarm != 0) {
        snmp_alarm_unregister(alarm);
      }
    }
  }
  Impl(Impl const&) = delete;
  Impl& operator=(Impl const&) = delete;

  // Before the agent serves: a feed that cannot start stops it with one line.
  void open() {
    state_.emplace(startEpoch());
    try {
      libraryWarning().clear();
      auto const deadline = Zet::System::currentTime() + startTimeoutSeconds;
      process();
      while (!haveRead_) {
        if (!libraryWarning().empty()) {
          throw SessionError(unreadable(socket_, libraryWarning()));
        }
        double const left = deadline - Zet::System::currentTime();
        if (left <= 0) {
          throw SessionError("lldpd at " + socket_ + " did not answer within " +
                             std::to_string(static_cast<int>(startTimeoutSeconds)) + " s");
        }
        std::array<pollfd, 2> fds{pollfd{session_->watchFd(), POLLIN, 0}, pollfd{session_->queryFd(), POLLIN, 0}};
        poll(fds.data(), fds.size(), static_cast<int>(std::ceil(left * 1000)));
        process();
      }
    } catch (SessionError const& e) {
      session_.reset();
      throw FeedError(e.what());
    }
    ZET_TRACE(trace(), 1) << "connected to lldpd at " << socket_;
  }

  DesiredState initialState() {
    if (!state_) {
      open();
    }
    return snapshot();
  }

  DesiredState snapshot() {
    if (state_->startEpoch() != startEpoch()) {
      state_->startEpochIs(startEpoch());
    }
    return state_->snapshot();
  }

  void follow(StateWriter& writer) {
    writer_ = &writer;
    registerFds();
    refreshAlarm_ = snmp_alarm_register_hr(timevalOf(refreshSeconds), SA_REPEAT, &Impl::onRefreshAlarm, this);
  }

  void reload() { guarded([&] { rereadNow(); }); }

 private:
  static void onReadable(int, void* self) { static_cast<Impl*>(self)->guarded([&] { static_cast<Impl*>(self)->process(); }); }
  static void onRefreshAlarm(unsigned, void* self) {
    static_cast<Impl*>(self)->guarded([&] { static_cast<Impl*>(self)->rereadNow(); });
  }
  static void onRetryAlarm(unsigned, void* self) {
    auto* const impl = static_cast<Impl*>(self);
    impl->retryAlarm_ = 0;
    impl->guarded([&] { impl->reconnect(); });
  }

  // What a session raises ends it; nothing else that goes wrong may end the agent.
  template <class Work>
  void guarded(Work const& work) {
    try {
      work();
    } catch (SessionError const& e) {
      lose(e.what());
    } catch (std::exception const& e) {
      std::cerr << "lldp-snmp-agent: lldpd feed: " << e.what() << std::endl;
    }
  }

  void rereadNow() {
    if (!session_) {
      return;
    }
    if (session_->readingFor() > stalledReadSeconds) {
      throw SessionError("lldpd did not answer within " + std::to_string(static_cast<int>(stalledReadSeconds)) +
                         " s" + (libraryWarning().empty() ? "" : " (liblldpctl: " + libraryWarning() + ")"));
    }
    // An answer too large for liblldpctl costs lldpd the whole answer and a connection: tried again only now and then.
    ++refreshes_;
    session_->startRead(refreshes_ % oversizedRetryEvery == 0 ? std::set<std::string>() : oversized_);
    process();
  }

  // Takes in whatever the session has for us, and writes the state when it changed.
  void process() {
    bool changed = false;
    // Bounded: a round that starts a read may find its answers already there.
    for (int round = 0; round < 4 && session_; ++round) {
      session_->pump();
      auto changes = session_->takeChanges();
      auto read = session_->takeRead();
      if (changes.empty() && !read) {
        break;
      }
      changed = true;
      for (Change& change : changes) {
        ZET_TRACE(trace(), 2) << "neighbour " << (change.type == lldpctl_c_deleted ? "deleted" : "added or updated")
                              << " on " << change.interface << ": " << change.neighbor.chassis.name;
        rereadWanted_ = !applyChange(change) || rereadWanted_;
        if (read || session_->reading()) {
          log_.push_back(std::move(change));
        }
      }
      if (read) {
        takeRead(*read);
      }
      if (rereadWanted_ && !session_->reading()) {
        // A change on an interface not read yet: read them all.
        rereadWanted_ = false;
        session_->startRead();
      }
    }
    if (session_ && !registered_.empty() && registered_[1] != session_->queryFd()) {
      unregisterFds();
      registerFds();
    }
    if (changed && writer_) {
      writer_->write(snapshot(), "lldpd changed", false);
    }
  }

  void takeRead(FullRead const& read) {
    state_->configIs(read.config);
    state_->localChassisIs(read.chassis);
    state_->interfacesIs(read.interfaces, read.unreadable);
    for (LldpdInterface const& interface : read.interfaces) {
      oversized_.erase(interface.name);
    }
    for (std::string const& name : read.unreadable) {
      if (oversized_.insert(name).second) {
        std::cerr << "lldp-snmp-agent: lldpd's answer for " << name
                  << " is larger than liblldpctl reads; its neighbours follow lldpd's changes only, its counters "
                     "are not read"
                  << std::endl;
      }
    }
    // The read answers for a moment before some of the changes that arrived
    // meanwhile: replayed in order, each change again has the last word.
    rereadWanted_ = false;
    for (Change const& change : log_) {
      rereadWanted_ = !applyChange(change) || rereadWanted_;
    }
    log_.clear();
    if (!haveRead_ || lost_) {
      ZET_TRACE(trace(), 1) << "resynchronised with lldpd: " << read.interfaces.size() << " interfaces";
    }
    if (lost_) {
      std::cerr << "lldp-snmp-agent: lldpd at " << socket_ << " is back; its state is read again" << std::endl;
      lost_ = false;
    }
    haveRead_ = true;
    retryDelay_ = firstRetrySeconds;
  }

  // False when the interface is not known yet.
  bool applyChange(Change const& change) {
    if (change.type == lldpctl_c_deleted || change.hidden) {
      return state_->neighborDel(change.interface, change.neighbor);
    }
    return state_->neighborIs(change.interface, change.neighbor);
  }

  void lose(std::string const& reason) {
    ZET_TRACE(trace(), 1) << "disconnected from lldpd: " << reason;
    if (!lost_) {
      std::cerr << "lldp-snmp-agent: lost lldpd (" << reason << "); serving the last known state and reconnecting"
                << std::endl;
      lost_ = true;
    }
    unregisterFds();
    session_.reset();
    log_.clear();
    scheduleRetry();
  }

  void scheduleRetry() {
    if (retryAlarm_ == 0) {
      retryAlarm_ = snmp_alarm_register_hr(timevalOf(retryDelay_), 0, &Impl::onRetryAlarm, this);
      retryDelay_ = std::min(retryDelay_ * 2, longestRetrySeconds);
    }
  }

  void reconnect() {
    try {
      session_ = std::make_unique<Session>(socket_);
      ZET_TRACE(trace(), 1) << "reconnected to lldpd at " << socket_;
      registerFds();
      process();
    } catch (SessionError const& e) {
      ZET_TRACE(trace(), 1) << "reconnecting: " << e.what();
      unregisterFds();
      session_.reset();
      scheduleRetry();
    }
  }

  void registerFds() {
    if (session_ && writer_ && registered_.empty()) {
      registered_ = {session_->watchFd(), session_->queryFd()};
      for (int const fd : registered_) {
        register_readfd(fd, &Impl::onReadable, this);
      }
    }
  }

  void unregisterFds() {
    for (int const fd : registered_) {
      unregister_readfd(fd);
    }
    registered_.clear();
  }

  std::string socket_;
  std::optional<LldpdState> state_;
  std::unique_ptr<Session> session_;
  StateWriter* writer_ = nullptr;
  std::vector<Change> log_;  // the changes since the read under way began
  std::vector<int> registered_;  // the watch connection's, then the query connection's
  std::set<std::string> oversized_;  // interfaces too large to read, said so once each
  unsigned refreshes_ = 0;
  unsigned retryAlarm_ = 0;
  unsigned refreshAlarm_ = 0;
  double retryDelay_ = firstRetrySeconds;
  bool haveRead_ = false;
  bool lost_ = false;
  bool rereadWanted_ = false;
};

LldpdFeed::LldpdFeed(std::string const& socket)
    : impl_(std::make_unique<Impl>(socket.empty() ? std::string(lldpctl_get_default_transport()) : socket)) {}

LldpdFeed::~LldpdFeed() = default;

void LldpdFeed::open() { impl_->open(); }

DesiredState LldpdFeed::initialState() { return impl_->initialState(); }

void LldpdFeed::follow(StateWriter& writer) { impl_->follow(writer); }

void LldpdFeed::reload() { impl_->reload(); }
