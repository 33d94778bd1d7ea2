#pragma once
#include <optional>
#include <string>
#include <vector>

#include "base/CallEach.hpp"

namespace plugin {

class HostServices;

/// The calls that wait to be sent to the host together, in their order, and whose they are.
class UnwaitedCalls {
 public:
  class Owner {
   public:
    Owner() = default;
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    Owner(Owner&&) = delete;
    Owner& operator=(Owner&&) = delete;
    virtual ~Owner() = default;
    /// One of its calls has failed.
    virtual void failed(const base::Failure& failure) = 0;
  };

  explicit UnwaitedCalls(const base::ObjectRef& host) : host_(host) {}

  /// Sends them all when they have become many.
  void add(base::Call call, Owner& owner);
  /// Makes them all; their owners hear of failures. Never throws.
  void send();

 private:
  const base::ObjectRef& host_;
  std::vector<base::Call> calls_;
  std::vector<Owner*> owners_;  // of each
};

/// What one procedure asks of the host without wanting anything back: such calls go together and in their
/// order, before whatever else the plug-in asks of the host, and cost little more than one. The procedure
/// meets their failures where it settles them, or gives the host a turn.
class Unwaited : private UnwaitedCalls::Owner {
 public:
  explicit Unwaited(HostServices& host);
  /// What has not been settled is sent all the same; whether it fails is nobody's to hear then.
  ~Unwaited() override;
  Unwaited(const Unwaited&) = delete;
  Unwaited& operator=(const Unwaited&) = delete;
  Unwaited(Unwaited&&) = delete;
  Unwaited& operator=(Unwaited&&) = delete;

  void SaveINISetting(const std::string& section, const std::string& key, const base::Value& value,
                      const std::string& file);
  /// Returns when all calls have ended. Throws the first of their failures since the last time.
  void settle();
  /// The same with a turn for the host and the plug-in's own events behind the calls, in one go with them.
  void WaitEvents();

 private:
  void failed(const base::Failure& failure) override;
  void meetFailure();

  HostServices& host_;
  std::optional<base::Failure> first_;
};

}  // namespace plugin
