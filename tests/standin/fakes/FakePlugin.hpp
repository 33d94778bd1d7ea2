#pragma once
#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "base/MemberWords.hpp"
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
  using Member = base::Member;

  /// The last field, with the operation's name before it.
  Member wording(const std::string& name) {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return Operation(name, {InOut(Text("text"))}, Type::kText, [this, name](Args& args) {
      const std::string text = TextAt(args, 0);
      note(name + " " + text);
      return name + " of " + text.substr(text.rfind('\2') + 1);
    });
  }
  /// Of two members of one name the first counts.
  base::ObjectRef object() {
    return std::make_shared<TableOf>("vxif",
                                     base::words::Joined(manner_.more, ownMembers(), commandMembers()));
  }
  std::vector<Member> ownMembers() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return {ReadField("Link", Type::kText, [] { return "WMP_PListEdit"; }),
            ReadField("LinkText", Type::kText, [] { return "PlayList Editor"; }),
            ReadField("Page_Title", Type::kText, [] { return "Vantorix Media Player"; }),
            Constant("Name", Type::kText, "Media Player"),
            Command("RegisterCallback", {Reference("frm")},
                    [this](Args& args) {
                      note("RegisterCallback");
                      callback_ = ReferenceAt(args, 0);
                      host_ = base::ToObject(callback_->call("GetVXIface"));
                    }),
            Operation("InitIO", {Number("port")}, Type::kText,
                      [this](Args& args) {
                        note("InitIO " + TextAt(args, 0));
                        if (manner_.init) manner_.init(*callback_, *host_, self_);
                        return manner_.refusal;
                      }),
            Operation("InterfaceStatus", {}, Type::kInt16,
                      [this] {
                        const bool ready = !manner_.ready || manner_.ready();
                        return static_cast<std::int16_t>(ready ? 0 : 2);
                      }),
            Command("ShutdownIO", {}, [this] {
              note("ShutdownIO");
              if (manner_.end) manner_.end();
            })};
  }
  std::vector<Member> commandMembers() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return {
        wording("TriggerUIFormat"),
        wording("ConditionUIFormat"),
        wording("ActionUIFormat"),
        Command("SetIO",
                {Reference("dv"), Text("hc"), Text("dc"), Short("Command"), Short("Brightness"),
                 Short("data1"), Short("data2")},
                [this](Args& args) {
                  std::string line = "SetIO " + base::ToText(base::Deref(args[0]).get("name"));
                  for (std::size_t i = 1; i < args.size(); ++i) line += " " + TextAt(args, i);
                  if (manner_.act) manner_.act(*host_);
                  note(line + " after " +
                       base::ToText(base::Deref(host_->call("System")).get("LastVoiceCommand")));
                }),
        Command("ButtonPress", {Text("button")},
                [this](Args& args) {
                  note("ButtonPress " + TextAt(args, 0));
                  if (manner_.press) manner_.press();
                }),
        Command("SelectMenu", {Text("menu")}, [this](Args& args) { note("SelectMenu " + TextAt(args, 0)); }),
        Operation("GenPage", {Text("lnk")}, Type::kText,
                  [this](Args& args) {
                    if (manner_.genPage) return manner_.genPage(TextAt(args, 0));
                    return "<p>page " + TextAt(args, 0) + " for " +
                           base::ToText(host_->call("WEBLoggedInUser")) +
                           "</p><form method=\"post\"><input class=formtext name=\"a\"></form>";
                  }),
        Operation("PagePut", {Text("data")}, Type::kText, [this](Args& args) {
          const std::string data = TextAt(args, 0);
          if (manner_.pagePut) return manner_.pagePut(data);
          return "<p>put " + std::to_string(data.size()) + ":" + data.substr(0, 40) + "</p>";
        })};
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
