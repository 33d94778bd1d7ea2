#pragma once
#include <string>

#include "base/Object.hpp"
#include "bus/Connection.hpp"

namespace standin {

/// Where objects are put so that other processes reach them.
class Shelf {
 public:
  Shelf() = default;
  Shelf(const Shelf&) = delete;
  Shelf& operator=(const Shelf&) = delete;
  Shelf(Shelf&&) = delete;
  Shelf& operator=(Shelf&&) = delete;
  virtual ~Shelf() = default;

  virtual void show(const std::string& path, base::ObjectRef object) = 0;
  virtual void hide(const std::string& path) = 0;
};

/// On the bus.
class BusShelf : public Shelf {
 public:
  explicit BusShelf(bus::Connection& connection) : connection_(connection) {}
  void show(const std::string& path, base::ObjectRef object) override {
    connection_.exportObject(path, std::move(object));
  }
  void hide(const std::string& path) override { connection_.withdraw(path); }

 private:
  bus::Connection& connection_;
};

}  // namespace standin
