// Calls to the host that nobody waits for, of several procedures, among others that are waited for: each
// comes once and in its procedure's order, before whatever is waited for next, and each procedure meets the
// first of its own failures, once. The host may ask the plug-in back while it works on one, or take many at
// once.
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Value.hpp"
#include "fuzz/Input.hpp"
#include "plugin/host/HostServices.hpp"

namespace {

using support::Require;

/// Nothing ever happens in it.
class StillLoop : public base::Loop {
 public:
  std::unique_ptr<base::Timer> makeTimer(base::Milliseconds /*interval*/,
                                         std::function<void()> /*event*/) override {
    return nullptr;
  }
  void post(std::function<void()> /*work*/) override {}
  void pump() override {}
  void whileOpen(const std::function<void()>& body) override { body(); }
  [[nodiscard]] base::Milliseconds now() const override { return {}; }
};

/// Tells of each call that comes, by its name and first argument; what that throws, the call does.
class Host : public base::Object {
 public:
  explicit Host(std::function<void(std::string_view name, base::Args& args)> come) : come_(std::move(come)) {}
  using base::Object::call;
  base::Value call(std::string_view name, base::Args& args) override {
    come_(name, args);
    return {};
  }
  base::Value get(std::string_view /*name*/) override { return {}; }
  void put(std::string_view /*name*/, const base::Value& /*value*/) override {}

 private:
  std::function<void(std::string_view name, base::Args& args)> come_;
};

/// One that is reached at the price of a few.
class LargeHost : public Host, public base::TakesManyCalls {
 public:
  using Host::Host;
  std::vector<base::FailedCall> callEach(std::vector<base::Call> calls) override {
    return base::CallOneByOne(*this, std::move(calls));
  }
};

/// A run: the bytes say who does what.
class House {
 public:
  explicit House(std::string_view bytes) : bytes_(bytes) {
    const auto come = [this](std::string_view name, base::Args& args) { heard(name, args); };
    const bool large = next() % 2 == 0;
    services_.Host = large ? std::make_shared<LargeHost>(come) : std::make_shared<Host>(come);
    for (Procedure& each : procedures_) each.calls.emplace(services_);
  }
  void run() {
    while (!bytes_.empty()) step(procedures_[next() % procedures_.size()]);
    for (Procedure& each : procedures_) {
      each.calls.reset();
      Require(each.come == each.made);
    }
  }

 private:
  struct Procedure {
    std::optional<plugin::Unwaited> calls;
    std::uint32_t made = 0;
    std::uint32_t come = 0;
    std::vector<std::uint32_t> fail;  ///< of those made since a failure was met last
  };
  static constexpr const char* kNobody = "nobody";
  static constexpr std::uint32_t kFails = 1;
  static constexpr std::uint32_t kAsksBack = 2;

  unsigned next() {
    if (bytes_.empty()) return 0;
    const unsigned value = static_cast<unsigned char>(bytes_.front());
    bytes_.remove_prefix(1);
    return value;
  }
  [[nodiscard]] std::size_t numberOf(const Procedure& who) const {
    return static_cast<std::size_t>(&who - procedures_.data());
  }
  void step(Procedure& who) {
    const unsigned what = next();
    switch (what % 8) {
      case 0: return meet(who, [&] { who.calls->settle(); });
      case 1: return meet(who, [&] { who.calls->WaitEvents(); });
      case 2: services_.WriteLog("type", "text"); return allHaveCome();
      case 3:
        who.calls.emplace(services_);  // the one before has ended, and its failures with it
        who.fail.clear();
        return allHaveCome();
      default: return make(who, what / 8);
    }
  }
  void make(Procedure& who, std::uint32_t how) {
    const std::uint32_t call = who.made++;
    const bool fails = (how & kFails) != 0;
    if (fails) who.fail.push_back(call);
    who.calls->SaveINISetting(std::to_string(numberOf(who)), std::to_string(call),
                              static_cast<std::int32_t>(how), "file");
  }
  template <class Work>
  void meet(Procedure& who, const Work& work) {
    const std::vector<std::uint32_t> fail = std::exchange(who.fail, {});
    std::optional<std::string> met;
    try {
      work();
    } catch (const base::Failure& failure) {
      met = failure.description();
    }
    Require(met.has_value() == !fail.empty());
    if (met) Require(*met == std::to_string(fail.front()));
    allHaveCome();
  }
  void allHaveCome() const {
    if (within_) return;  // those made before the host asked back may still be on their way
    for (const Procedure& each : procedures_) Require(each.come == each.made);
  }

  void heard(std::string_view name, base::Args& args) {
    if (name != "SaveINISetting") return;
    if (base::ToText(args.at(0)) == kNobody) return;
    Procedure& who = procedures_.at(std::stoul(base::ToText(args.at(0))));
    const std::uint32_t call = who.come++;
    Require(base::ToText(args.at(1)) == std::to_string(call));
    const auto how = static_cast<std::uint32_t>(base::ToInt32(args.at(2)));
    if ((how & kAsksBack) != 0 && !within_) askBack();
    if ((how & kFails) != 0) throw base::Failure(base::number::kDiskFull, std::to_string(call));
  }
  /// The plug-in is asked something while the host works, and asks the host itself for that.
  void askBack() {
    within_ = true;
    {
      plugin::Unwaited calls(services_);
      calls.SaveINISetting(kNobody, "", "", "");
      services_.WriteLog("type", "text");
    }
    within_ = false;
  }

  std::string_view bytes_;
  StillLoop loop_;
  plugin::HostServices services_{loop_};
  bool within_ = false;
  std::array<Procedure, 3> procedures_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  House(std::string_view(reinterpret_cast<const char*>(data), size)).run();
  return 0;
}
