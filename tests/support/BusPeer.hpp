#pragma once
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"
#include "bus/Connection.hpp"
#include "bus/PollLoop.hpp"
#include "support/FailureNumber.hpp"

namespace support {

/// An object made of nothing but its table.
class TableOf : public base::TableObject {
 public:
  TableOf(std::string interfaceName, std::vector<base::Member> members)
      : TableObject(base::MemberTable(std::move(interfaceName), std::move(members))) {}
};

/// An object made of these members.
inline std::shared_ptr<TableOf> ObjectOf(std::string interfaceName, std::vector<base::Member> members = {}) {
  return std::make_shared<TableOf>(std::move(interfaceName), std::move(members));
}

/// Another party on the bus: a thread with a loop and a connection of its own.
class BusPeer {
 public:
  /// `setUp` runs on the peer's thread before the constructor returns.
  BusPeer(std::string address, std::function<void(bus::Connection&, bus::PollLoop&)> setUp) {
    std::promise<void> ready;
    auto started = ready.get_future();
    thread_ = std::thread([this, address = std::move(address), setUp = std::move(setUp), &ready] {
      bus::PollLoop loop;
      try {
        bus::Connection connection(loop, address);
        setUp(connection, loop);
        loop_ = &loop;
        connection_ = &connection;
        uniqueName_ = connection.uniqueName();
        ready.set_value();
        loop.run();
      } catch (...) {
        if (loop_ != nullptr) throw;  // the test ends here: a peer's loop must not fail
        ready.set_exception(std::current_exception());
      }
    });
    try {
      started.get();
    } catch (...) {
      thread_.join();
      throw;
    }
  }
  ~BusPeer() { stop(); }
  BusPeer(const BusPeer&) = delete;
  BusPeer& operator=(const BusPeer&) = delete;
  BusPeer(BusPeer&&) = delete;
  BusPeer& operator=(BusPeer&&) = delete;

  [[nodiscard]] const std::string& uniqueName() const { return uniqueName_; }
  /// Runs work on the peer's thread and waits until it has run.
  void run(const std::function<void(bus::Connection&, bus::PollLoop&)>& work) {
    std::promise<void> done;
    loop_->post([&] {
      work(*connection_, *loop_);
      done.set_value();
    });
    done.get_future().get();
  }
  /// Ends the peer's loop and connection.
  void stop() {
    if (!thread_.joinable()) return;
    loop_->post([this] { loop_->quit(0); });
    thread_.join();
  }

 private:
  bus::PollLoop* loop_ = nullptr;
  bus::Connection* connection_ = nullptr;
  std::string uniqueName_;
  std::thread thread_;
};

/// Turns the loop until `done` or until the deadline; answers `done()`.
inline bool TurnUntil(bus::PollLoop& loop, const std::function<bool()>& done,
                      base::Milliseconds deadline = std::chrono::seconds(60)) {
  const auto end = loop.now() + deadline;
  while (!done() && loop.now() < end) loop.turn(base::Milliseconds(20));
  return done();
}

}  // namespace support
