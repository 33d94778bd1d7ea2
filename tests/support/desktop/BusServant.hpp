#pragma once
#include <systemd/sd-bus.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

namespace support {

/// A part of a desktop that serves the others over the bus, in a thread of its own. It dies with its owner.
class BusServant {
 public:
  virtual ~BusServant() = default;
  BusServant(const BusServant&) = delete;
  BusServant& operator=(const BusServant&) = delete;
  BusServant(BusServant&&) = delete;
  BusServant& operator=(BusServant&&) = delete;

 protected:
  BusServant() = default;
  /// Takes `name` and serves what `table` says at `path`; the table's functions are given `self`. `further`
  /// serves more, before anybody knows the name.
  void serve(
      const std::string& busAddress, const char* name, const char* path, const char* interface,
      const sd_bus_vtable* table, void* self, const std::function<void()>& further = [] {}) {
    check(sd_bus_new(&bus_));
    check(sd_bus_set_address(bus_, busAddress.c_str()));
    check(sd_bus_set_bus_client(bus_, 1));
    check(sd_bus_start(bus_));
    check(sd_bus_add_object_vtable(bus_, nullptr, path, interface, table, self));
    further();
    check(sd_bus_request_name(bus_, name, 0));
    thread_ = std::thread([this] { run(); });
  }
  /// To be called by the destructors of those who serve.
  void end() {
    ended_ = true;
    if (thread_.joinable()) thread_.join();
    sd_bus_close_unref(bus_);
  }
  /// Once a turn of its thread.
  virtual void turn() {}
  [[nodiscard]] sd_bus* bus() const { return bus_; }
  static void check(int result) {
    if (result < 0) throw std::runtime_error("the bus can't be served");
  }

 private:
  void run() {
    constexpr std::uint64_t kTurn = 10'000;  // microseconds
    while (!ended_) {
      turn();
      const int worked = sd_bus_process(bus_, nullptr);
      if (worked < 0) return;  // the bus has gone
      if (worked == 0) sd_bus_wait(bus_, kTurn);
    }
  }

  sd_bus* bus_ = nullptr;
  std::atomic<bool> ended_ = false;
  std::thread thread_;
};

}  // namespace support
