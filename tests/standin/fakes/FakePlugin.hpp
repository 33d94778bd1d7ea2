#pragma once
#include <algorithm>
#include <chrono>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "standin/fakes/FakeScript.hpp"
#include "support/BusPeer.hpp"

namespace support {

/// What a plug-in does, as far as a server can tell: it answers under the plug-in's name and writes down what
/// it is asked.
class FakePlugin {
 public:
  struct Manner {
    std::function<bool()> ready{};                  ///< whether InterfaceStatus says so; without it, always
    std::function<void()> end;                      ///< what ShutdownIO does besides
    std::string refusal;                            ///< what InitIO answers
    std::function<void()> press;                    ///< what a button does besides
    std::function<void(base::Object& host)> act{};  ///< what a device's command does besides
    FakeLibrary library{};                          ///< what its script object knows
    std::function<void(base::Object& callback, base::Object& host, const base::ObjectRef& self)> init{};
    std::function<std::string(const std::string& link)> genPage{};  ///< in place of a line of its own
    std::function<std::string(const std::string& data)> pagePut{};
    std::vector<base::Member> more{};  ///< operations besides, or in place of its own
  };

  explicit FakePlugin(const std::string& address) : FakePlugin(address, Manner()) {}
  FakePlugin(const std::string& address, Manner manner)
      : manner_(std::move(manner)), peer_(address, [this](bus::Connection& connection, bus::PollLoop&) {
          connection.exportObject("/vxif", self_ = object());
          connection.exportObject(
              "/scriptclass",
              MakeFakeScript(manner_.library, [this](const std::string& call) { note(call); }));
          connection.claimName("org.vantorix.vxif_WMP9");
        }) {}
  ~FakePlugin() {
    peer_.stop();
    self_.reset();
  }
  FakePlugin(const FakePlugin&) = delete;
  FakePlugin& operator=(const FakePlugin&) = delete;
  FakePlugin(FakePlugin&&) = delete;
  FakePlugin& operator=(FakePlugin&&) = delete;

  [[nodiscard]] std::vector<std::string> calls() {
    const std::lock_guard lock(mutex_);
    return calls_;
  }
  /// Waits until the call has come.
  bool heard(const std::string& call) {
    for (int i = 0; i < 3000; ++i) {
      const auto all = calls();
      if (std::find(all.begin(), all.end(), call) != all.end()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
  }
  void note(const std::string& call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
  }
  /// Runs on the plug-in's thread with the host.
  void withHost(const std::function<void(base::Object& callback, base::Object& host)>& work) {
    peer_.run([&](bus::Connection&, bus::PollLoop&) { work(*callback_, *host_); });
  }

 private:
  using Args = base::Args;
  using Value = base::Value;
  using Member = base::Member;
  using Type = base::Type;
  static constexpr auto kOperation = base::MemberKind::kOperation;

  static Member constant(const std::string& name, const std::string& text) {
    return {name, base::MemberKind::kReadField, {}, Type::kText, [text](Args&) { return Value(text); }};
  }
  /// The last field, with the operation's name before it.
  Member wording(const std::string& name) {
    return {name, kOperation, {{"text", Type::kText, {}, true}}, Type::kText, [this, name](Args& args) {
              const std::string text = base::ToText(args[0]);
              note(name + " " + text);
              return Value(name + " of " + text.substr(text.rfind('\2') + 1));
            }};
  }
  /// Of two members of one name the first counts.
  std::vector<Member> withMore(std::vector<Member> own) {
    std::vector<Member> all = manner_.more;
    std::move(own.begin(), own.end(), std::back_inserter(all));
    return all;
  }
  base::ObjectRef object() {
    return std::make_shared<TableOf>("vxif", withMore(
                                                 std::vector<Member>{
                                                     constant("Link", "WMP_PListEdit"),
                                                     constant("LinkText", "PlayList Editor"),
                                                     constant("Page_Title", "Vantorix Media Player"),
                                                     wording("TriggerUIFormat"),
                                                     wording("ConditionUIFormat"),
                                                     wording("ActionUIFormat"),
                                                     {"Name",
                                                      kOperation,
                                                      {},
                                                      Type::kText,
                                                      [](Args&) { return Value("Media Player"); }},
                                                     {"RegisterCallback",
                                                      kOperation,
                                                      {{"frm", Type::kObject}},
                                                      Type::kNone,
                                                      [this](Args& args) {
                                                        note("RegisterCallback");
                                                        callback_ = base::ToObject(args[0]);
                                                        host_ = base::ToObject(callback_->call("GetVXIface"));
                                                        return Value();
                                                      }},
                                                     {"InitIO",
                                                      kOperation,
                                                      {{"port", Type::kInt32}},
                                                      Type::kText,
                                                      [this](Args& args) {
                                                        note("InitIO " + base::ToText(args[0]));
                                                        if (manner_.init)
                                                          manner_.init(*callback_, *host_, self_);
                                                        return Value(manner_.refusal);
                                                      }},
                                                     {"InterfaceStatus",
                                                      kOperation,
                                                      {},
                                                      Type::kInt16,
                                                      [this](Args&) {
                                                        const bool ready = !manner_.ready || manner_.ready();
                                                        return Value(
                                                            static_cast<std::int16_t>(ready ? 0 : 2));
                                                      }},
                                                     {"ShutdownIO",
                                                      kOperation,
                                                      {},
                                                      Type::kNone,
                                                      [this](Args&) {
                                                        note("ShutdownIO");
                                                        if (manner_.end) manner_.end();
                                                        return Value();
                                                      }},
                                                     {"SetIO",
                                                      kOperation,
                                                      {{"dv", Type::kObject},
                                                       {"hc", Type::kText},
                                                       {"dc", Type::kText},
                                                       {"Command", Type::kInt16},
                                                       {"Brightness", Type::kInt16},
                                                       {"data1", Type::kInt16},
                                                       {"data2", Type::kInt16}},
                                                      Type::kNone,
                                                      [this](Args& args) {
                                                        std::string line =
                                                            "SetIO " +
                                                            base::ToText(base::Deref(args[0]).get("name"));
                                                        for (std::size_t i = 1; i < args.size(); ++i)
                                                          line += " " + base::ToText(args[i]);
                                                        if (manner_.act) manner_.act(*host_);
                                                        note(line + " after " +
                                                             base::ToText(base::Deref(host_->call("System"))
                                                                              .get("LastVoiceCommand")));
                                                        return Value();
                                                      }},
                                                     {"ButtonPress",
                                                      kOperation,
                                                      {{"button", Type::kText}},
                                                      Type::kNone,
                                                      [this](Args& args) {
                                                        note("ButtonPress " + base::ToText(args[0]));
                                                        if (manner_.press) manner_.press();
                                                        return Value();
                                                      }},
                                                     {"SelectMenu",
                                                      kOperation,
                                                      {{"menu", Type::kText}},
                                                      Type::kNone,
                                                      [this](Args& args) {
                                                        note("SelectMenu " + base::ToText(args[0]));
                                                        return Value();
                                                      }},
                                                     {"GenPage",
                                                      kOperation,
                                                      {{"lnk", Type::kText}},
                                                      Type::kText,
                                                      [this](Args& args) {
                                                        if (manner_.genPage)
                                                          return Value(
                                                              manner_.genPage(base::ToText(args[0])));
                                                        return Value(
                                                            "<p>page " + base::ToText(args[0]) + " for " +
                                                            base::ToText(host_->call("WEBLoggedInUser")) +
                                                            "</p><form method=\"post\"><input class=formtext "
                                                            "name=\"a\"></form>");
                                                      }},
                                                     {"PagePut",
                                                      kOperation,
                                                      {{"data", Type::kText}},
                                                      Type::kText,
                                                      [this](Args& args) {
                                                        const std::string data = base::ToText(args[0]);
                                                        if (manner_.pagePut)
                                                          return Value(manner_.pagePut(data));
                                                        return Value("<p>put " + std::to_string(data.size()) +
                                                                     ":" + data.substr(0, 40) + "</p>");
                                                      }}}));
  }

  Manner manner_;
  std::mutex mutex_;
  std::vector<std::string> calls_;
  base::ObjectRef self_;
  base::ObjectRef callback_;
  base::ObjectRef host_;
  BusPeer peer_;
};

}  // namespace support
