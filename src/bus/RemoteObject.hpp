#pragma once
#include <memory>
#include <string>
#include <vector>

#include "base/CallEach.hpp"
#include "base/Object.hpp"
#include "bus/Message.hpp"

namespace bus {

class Link;

/// An object of another process. Every access is one call over the bus; calls of which nothing is wanted back
/// may share one.
class RemoteObject : public base::Object, public base::TakesManyCalls {
 public:
  /// `counted`: the owner keeps the object for as long as this proxy lives.
  RemoteObject(std::shared_ptr<Link> link, std::string name, std::string path, bool counted);
  ~RemoteObject() override;
  RemoteObject(const RemoteObject&) = delete;
  RemoteObject& operator=(const RemoteObject&) = delete;
  RemoteObject(RemoteObject&&) = delete;
  RemoteObject& operator=(RemoteObject&&) = delete;

  using Object::call;
  base::Value call(std::string_view name, base::Args& args) override;
  base::Value get(std::string_view name) override;
  void put(std::string_view name, const base::Value& value) override;
  /// In one message where the object says that it takes one. When that has no reply, each call has failed
  /// with what it failed with.
  std::vector<base::FailedCall> callEach(std::vector<base::Call> calls) override;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool isOn(const Link& link) const { return link_.get() == &link; }

 private:
  base::Value distribute(std::string_view operation, std::vector<base::Value> values, base::Args& args);

  std::shared_ptr<Link> link_;
  std::string name_;
  std::string path_;
  bool counted_;
};

}  // namespace bus
