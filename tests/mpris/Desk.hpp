#pragma once
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "RecordingPlayer.hpp"
#include "mpris/Face.hpp"
#include "support/VirtualLoop.hpp"

namespace mpris_test {

using mpris::Value;
using mpris::Values;

/// A listener on the desk of the player, in virtual time and without a bus.
class Desk : public ::testing::Test {
 protected:
  static constexpr const char* kRoot = "org.mpris.MediaPlayer2";
  static constexpr const char* kPlayer = "org.mpris.MediaPlayer2.Player";
  static constexpr const char* kPlaylists = "org.mpris.MediaPlayer2.Playlists";
  static constexpr base::Milliseconds kSettled{30};

  /// Calls a method, with the look before it that every call of the bus has.
  Values call(const std::string& name, const Values& arguments = {}, const std::string& interface = kPlayer) {
    for (const auto& each : face.object().interfaces())
      for (const auto& method : each.methods)
        if (each.name == interface && method.name == name) {
          face.object().before();
          return method.run(arguments);
        }
    throw std::runtime_error("no method " + name);
  }
  Value get(const std::string& name, const std::string& interface = kPlayer) {
    face.object().before();
    return property(name, interface).read();
  }
  void set(const std::string& name, const Value& value) {
    face.object().before();
    property(name, kPlayer).write(value);
  }
  /// What a call with these arguments is refused with.
  template <class Act>
  std::string refusal(Act&& act) {
    try {
      act();
    } catch (const mpris::Refusal& refused) {
      return refused.name();
    }
    return "";
  }
  /// Lets the player tell that it has changed, and what is told of that come.
  void changes() {
    face.changed();
    settle();
  }
  void settle() { loop.advance(kSettled); }
  /// So much later the item has come so much further. What is told of that by `changes` takes the rest of the
  /// time.
  void goesOn(std::chrono::seconds time) {
    loop.advance(time - kSettled);
    player.now["position"] = base::ToDouble(player.now["position"]) + static_cast<double>(time.count());
  }
  [[nodiscard]] std::string track() { return std::get<mpris::Path>(metadata("mpris:trackid").held).text; }
  /// An entry of what plays; the text "none" where there is none.
  Value metadata(const std::string& key) {
    const Value all = get("Metadata");
    for (const auto& [name, value] : std::get<mpris::Dict>(all.held))
      if (name == key) return value;
    return "none";
  }

  struct Signal {
    std::string name;
    Values values;
  };
  /// The names of the properties told so far, in order, with "Seeked" among them.
  [[nodiscard]] std::vector<std::string> told() const {
    std::vector<std::string> names;
    for (const Signal& signal : signals) {
      if (signal.name == "PropertiesChanged")
        for (const auto& [name, value] : std::get<mpris::Dict>(signal.values[1].held)) names.push_back(name);
      else
        names.push_back(signal.name);
    }
    return names;
  }

  support::VirtualLoop loop;
  RecordingPlayer player;
  std::vector<Signal> signals;
  bool listening = true;
  bool window = true;
  mpris::Face face{{loop, player.script, [this] { return window; }, [this] { return listening; },
                    [this](const std::string&, const std::string& name, const Values& values) {
                      signals.push_back({name, values});
                    }}};

 private:
  const mpris::Property& property(const std::string& name, const std::string& interface) {
    for (const auto& each : face.object().interfaces())
      for (const auto& found : each.properties)
        if (each.name == interface && found.name == name) return found;
    throw std::runtime_error("no property " + name);
  }
};

}  // namespace mpris_test
