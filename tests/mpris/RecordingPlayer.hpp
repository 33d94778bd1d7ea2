#pragma once
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/MemberWords.hpp"
#include "support/BusPeer.hpp"
#include "support/Journal.hpp"

namespace mpris_test {

/// The plug-in's script object and the raw player behind it, by name: they remember in order what was wanted
/// of them and tell of the player what the test says.
class RecordingPlayer {
 public:
  RecordingPlayer() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    const auto operation = [this](const char* name) {
      return Command(name, {}, [this, name] {
        journal.add(name);
        if (onAct) onAct(name);
      });
    };
    const auto setter = [this](const char* name) {
      return WriteField(name, Type::kAny, [this, name](const Value& value) {
        journal.add(std::string(name) + " = " + base::ToText(value));
        if (onAct) onAct(name);
      });
    };
    script = support::ObjectOf(
        "ScriptClass",
        {operation("ResumePlayer"), operation("PausePlayer"), operation("StopPlayer"), operation("PlayNext"),
         operation("PlayPrev"), operation("FastForward"), operation("FastReverse"), setter("Volume"),
         setter("ShuffleMode"), setter("LoopMode"), setter("ShowPopupControls"),
         Operation("PlayURL", {Text("URL")}, Type::kInt32,
                   [this](Args& args) {
                     journal.add("PlayURL " + TextAt(args, 0));
                     return 0;
                   }),
         Operation("Play", {Text("CategoryType"), Text("CategoryName"), Text("Title", "")}, Type::kInt32,
                   [this](Args& args) {
                     journal.add("Play " + TextAt(args, 0) + " " + TextAt(args, 1));
                     return 0;
                   }),
         ReadField("WMPObject", Type::kObject, [this] { return ready ? raw() : base::ObjectRef(); })});
  }

  /// "One", three minutes long, the first of three, plays.
  void plays(const std::string& name = "One", std::int32_t place = 0) {
    now["playState"] = 3;
    now["position"] = 0.0;
    now["volume"] = 50;
    now["pause"] = true;
    now["play"] = true;
    now["next"] = true;
    now["name"] = name;
    now["source"] = "/music/" + name + ".flac";
    now["duration"] = 180.0;
    now["place"] = place;
    now["count"] = 3;
  }
  /// And is only on its way to that.
  void opens() {
    plays();
    now["playState"] = 9;
    now["play"] = false;
  }

  support::Journal journal;
  bool ready = true;  ///< the plug-in's start is over
  std::map<std::string, base::Value> now;
  std::map<std::string, std::string> info;
  std::string picture;
  std::vector<std::string> playlists;
  std::string playedStored;  ///< the stored playlist that is played
  int nowRead = 0;
  int namesRead = 0;                              ///< of playlists
  std::function<void(const std::string&)> onAct;  ///< while a word or a setting is handled
  base::ObjectRef script;

 private:
  base::ObjectRef raw() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf(
        "WMP9", {Operation("now", {}, Type::kRecord,
                           [this] {
                             ++nowRead;
                             base::Record record;
                             for (const auto& [key, value] : now) record.emplace_back(key, value);
                             return record;
                           }),
                 ReadField("controls", Type::kObject, [this] { return controls(); }),
                 ReadField("currentMedia", Type::kObject, [this] { return media(); }),
                 ReadField("currentPlaylist", Type::kObject, [this] { return played(); }),
                 ReadField("playlistCollection", Type::kObject, [this] { return collection(); })});
  }
  void held(const std::string& word, bool value) {
    journal.add(word);
    now["play"] = value;
    now["pause"] = !value;
  }
  base::ObjectRef controls() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf("Controls",
                             {Command("play", {}, [this] { held("controls.play", false); }),
                              Command("pause", {}, [this] { held("controls.pause", true); }),
                              WriteField("currentPosition", Type::kDouble, [this](const Value& to) {
                                journal.add("controls.currentPosition = " + base::ToText(to));
                                now["position"] = to;
                              })});
  }
  base::ObjectRef media() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf(
        "Media", {Operation("getItemInfo", {Text("attribute")}, Type::kText,
                            [this](Args& args) { return info[TextAt(args, 0)]; }),
                  Operation("getItemInfoByType", {Text("attribute"), Text("language"), Number("index")},
                            Type::kObject, [this](Args&) {
                              return support::ObjectOf(
                                  "Picture", {ReadField("URL", Type::kText, [this] { return picture; })});
                            })});
  }
  base::ObjectRef played() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf("Playlist", {ReadField("name", Type::kText, [this] { return playedStored; }),
                                          ReadField("revision", Type::kDouble,
                                                    [this] { return playedStored.empty() ? 0.0 : 17.0; })});
  }
  base::ObjectRef listed(const std::vector<std::string>& names) {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf(
        "PlaylistArray",
        {ReadField("count", Type::kInt32, [names] { return static_cast<std::int32_t>(names.size()); }),
         Operation("item", {Number("index")}, Type::kObject, [this, names](Args& args) {
           const std::string name = names.at(static_cast<std::size_t>(NumberAt(args, 0)));
           ++namesRead;
           return support::ObjectOf("Playlist", {ReadField("name", Type::kText, [name] { return name; })});
         })});
  }
  base::ObjectRef collection() {
    using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
    return support::ObjectOf("PlaylistCollection",
                             {Operation("getAll", {}, Type::kObject, [this] { return listed(playlists); }),
                              Operation("getByName", {Text("name")}, Type::kObject, [this](Args& args) {
                                std::vector<std::string> found;
                                for (const std::string& name : playlists)
                                  if (name == TextAt(args, 0)) found.push_back(name);
                                return listed(found);
                              })});
  }
};

}  // namespace mpris_test
