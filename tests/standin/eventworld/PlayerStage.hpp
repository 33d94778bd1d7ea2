#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/eventworld/PluginCalls.hpp"
#include "support/Journal.hpp"
#include "support/VirtualLoop.hpp"

namespace support {

/// An object made of functions by name.
class StagedObject : public base::Object {
 public:
  using base::Object::call;
  std::map<std::string, std::function<base::Value(base::Args&)>> operations;
  std::map<std::string, std::function<base::Value()>> reads;
  std::map<std::string, std::function<void(const base::Value&)>> writes;

  base::Value call(std::string_view name, base::Args& args) override { return of(operations, name)(args); }
  base::Value get(std::string_view name) override { return of(reads, name)(); }
  void put(std::string_view name, const base::Value& value) override { of(writes, name)(value); }

 private:
  template <class Map>
  static typename Map::mapped_type& of(Map& map, std::string_view name) {
    const auto found = map.find(std::string(name));
    if (found == map.end()) throw base::Failure(base::number::kNoSuchMember, std::string(name));
    return found->second;
  }
};

/// A plug-in with a player in virtual time: what plays moves on by a quarter of a second at each look.
class StagedPlayer {
 public:
  struct List {
    std::string name;
    std::vector<std::string> sources;
  };

  StagedPlayer() {
    lists.push_back({"evening", {"a.mp3", "b.mp3", "c.mp3"}});
    const auto settings = std::make_shared<StagedObject>();
    settings->reads["volume"] = [this] { return base::Value(volume); };
    settings->writes["volume"] = [this](const base::Value& value) {
      volume = base::ToInt32(value);
      volumes.push_back(volume);
    };
    settings->reads["mute"] = [this] { return base::Value(muted); };
    settings->reads["autoStart"] = [this] { return base::Value(autoStart); };
    settings->writes["autoStart"] = [this](const base::Value& value) { autoStart = base::ToBoolean(value); };
    settings->operations["getMode"] = [this](base::Args&) { return base::Value(shuffled); };
    settings->operations["setMode"] = [this](base::Args& args) {
      shuffled = base::ToBoolean(args[1]);
      return base::Value();
    };
    const auto controls = std::make_shared<StagedObject>();
    controls->reads["currentPosition"] = [this] {
      if (state == 3 && !silent.contains(source())) position += 0.25;
      return base::Value(position);
    };
    controls->writes["currentPosition"] = [this](const base::Value& value) {
      position = base::ToDouble(value);
    };
    controls->operations["next"] = [this](base::Args&) {
      if (refusesItems) throw base::Failure(base::number::kInternal, "It can't");
      ++item;
      position = 0;
      return base::Value();
    };
    const auto player = std::make_shared<StagedObject>();
    player->reads["settings"] = [settings] { return base::Value(base::ObjectRef(settings)); };
    player->reads["controls"] = [controls] { return base::Value(base::ObjectRef(controls)); };
    player->reads["playState"] = [this] { return base::Value(state); };
    player->reads["currentPlaylist"] = [this] { return base::Value(objectOf(list)); };
    player->writes["currentPlaylist"] = [this](const base::Value& value) {
      list = numberOf(base::ToObject(value));
      item = 0;
      position = 0;
      state = autoStart ? 3 : 10;
    };
    player->reads["currentMedia"] = [this] { return base::Value(mediaOf(source())); };
    const auto script = std::make_shared<StagedObject>();
    script->reads["WMPObject"] = [player] { return base::Value(base::ObjectRef(player)); };
    script->writes["Mute"] = [this](const base::Value& value) { muted = base::ToBoolean(value); };
    script->operations["StopPlayer"] = [this](base::Args&) {
      journal.add("stop");
      state = 1;
      return base::Value();
    };
    script->operations["PausePlayer"] = [this](base::Args&) {
      journal.add("pause");
      state = 2;
      return base::Value();
    };
    vxif.reads["Scripting"] = [script] { return base::Value(base::ObjectRef(script)); };
    vxif.operations["TriggerAction"] = [this](base::Args& args) {
      const std::string choice = base::ToText(args[0]);
      journal.add("do " + choice);
      if (missing.contains(choice)) return base::Value();
      lists.push_back({choice, {choice + ".mp3"}});
      list = lists.size() - 1;
      item = 0;
      position = 0;
      state = 3;
      return base::Value();
    };
  }

  [[nodiscard]] std::string source() const { return lists[list].sources.at(static_cast<std::size_t>(item)); }

  Journal journal{};
  std::deque<List> lists{};
  std::size_t list = 0;
  std::int32_t item = 1;
  double position = 42;
  std::int32_t state = 3;
  std::int32_t volume = 70;
  bool muted = false;
  bool autoStart = true;
  bool shuffled = false;
  bool refusesItems = false;
  std::set<std::string> missing{};  ///< actions that play nothing
  std::set<std::string> silent{};   ///< titles that don't move
  std::vector<std::int32_t> volumes{};
  StagedObject vxif{};

 private:
  base::ObjectRef objectOf(std::size_t number) {
    while (objects_.size() <= number) {
      const std::size_t at = objects_.size();
      const auto object = std::make_shared<StagedObject>();
      object->reads["name"] = [this, at] { return base::Value(lists[at].name); };
      object->reads["count"] = [this, at] {
        return base::Value(static_cast<std::int32_t>(lists[at].sources.size()));
      };
      object->operations["item"] = [this, at](base::Args& args) {
        return base::Value(mediaOf(lists[at].sources.at(static_cast<std::size_t>(base::ToInt32(args[0])))));
      };
      object->operations["readItems"] = [this, at](base::Args& args) {
        base::Array texts;
        for (std::int32_t i = base::ToInt32(args[1]); i < static_cast<std::int32_t>(lists[at].sources.size());
             ++i)
          texts.emplace_back(lists[at].sources[static_cast<std::size_t>(i)]);
        return base::Value(texts);
      };
      objects_.push_back(object);
    }
    return objects_[number];
  }
  std::size_t numberOf(const base::ObjectRef& object) {
    for (std::size_t i = 0; i < objects_.size(); ++i)
      if (objects_[i] == object) return i;
    throw base::Failure(base::number::kInvalidArgument);
  }
  static base::ObjectRef mediaOf(const std::string& source) {
    const auto media = std::make_shared<StagedObject>();
    media->reads["sourceURL"] = [source] { return base::Value(source); };
    return media;
  }
  std::vector<std::shared_ptr<StagedObject>> objects_;
};

/// Calls to that plug-in.
class StagedCalls : public standin::PluginCalls {
 public:
  StagedCalls(base::Loop& loop, base::Object& vxif) : loop_(loop), vxif_(vxif) {}

  std::unique_ptr<standin::Deed> call(standin::PluginKeeper::Command command,
                                      standin::EventWorld::Done done) override {
    const auto wanted = std::make_shared<bool>(true);
    take(std::move(command), std::move(done), wanted);
    return std::make_unique<Wanted>(wanted);
  }
  void callAnyway(standin::PluginKeeper::Command command, standin::EventWorld::Done done) override {
    take(std::move(command), std::move(done), std::make_shared<bool>(true));
  }

  std::string gone{};  ///< what every call fails with

 private:
  class Wanted : public standin::Deed {
   public:
    explicit Wanted(std::shared_ptr<bool> wanted) : wanted_(std::move(wanted)) {}
    ~Wanted() override { *wanted_ = false; }
    Wanted(const Wanted&) = delete;
    Wanted& operator=(const Wanted&) = delete;
    Wanted(Wanted&&) = delete;
    Wanted& operator=(Wanted&&) = delete;

   private:
    std::shared_ptr<bool> wanted_;
  };
  void take(standin::PluginKeeper::Command command, standin::EventWorld::Done done,
            std::shared_ptr<bool> wanted) {
    loop_.post([this, command = std::move(command), done = std::move(done), wanted = std::move(wanted)] {
      if (!*wanted) return;
      std::string failure = gone;
      try {
        if (failure.empty()) command(vxif_);
      } catch (const base::Failure& caught) {
        failure = caught.description();
      }
      if (done) done(failure);
    });
  }
  base::Loop& loop_;
  base::Object& vxif_;
};

}  // namespace support
