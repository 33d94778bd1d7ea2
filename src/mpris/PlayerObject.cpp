#include "mpris/PlayerObject.hpp"

#include "base/Attempt.hpp"

namespace mpris {

using base::Attempt;

base::ObjectRef PlayerObject::raw() {
  // There is nothing before the plug-in's start is over.
  base::ObjectRef player = base::ToObject(script_->get("WMPObject"));
  base::Deref(player);
  return player;
}

base::ObjectRef PlayerObject::part(const char* name) {
  base::ObjectRef found = base::ToObject(raw()->get(name));
  base::Deref(found);
  return found;
}

bool PlayerObject::ready() {
  Attempt step;
  return step([&] { raw(); });
}

Now PlayerObject::now() {
  Now now;
  Attempt step;
  step([&] { now = NowOf(raw()->call("now")); });
  return now;
}

std::string PlayerObject::info(const char* attribute) {
  std::string text;
  Attempt step;
  step([&] { text = base::ToText(part("currentMedia")->invoke("getItemInfo", attribute)); });
  return text;
}

std::string PlayerObject::picture() {
  std::string url;
  Attempt step;
  step([&] {
    const base::Value picture = part("currentMedia")->invoke("getItemInfoByType", "WM/Picture", "", 0);
    url = base::ToText(base::Deref(picture).get("URL"));
  });
  return url;
}

void PlayerObject::act(const char* operation) {
  Attempt step;
  step([&] { script_->call(operation); });
}

void PlayerObject::set(const char* field, const base::Value& value) {
  Attempt step;
  step([&] { script_->put(field, value); });
}

void PlayerObject::hold() {
  Attempt step;
  step([&] { part("controls")->call("pause"); });
}

void PlayerObject::goOn() {
  Attempt step;
  step([&] { part("controls")->call("play"); });
}

void PlayerObject::seek(double seconds) {
  Attempt step;
  step([&] { part("controls")->put("currentPosition", base::Value(seconds)); });
}

void PlayerObject::open(const std::string& address) {
  Attempt step;
  step([&] { script_->invoke("PlayURL", address); });
}

std::int32_t PlayerObject::playlistCount() {
  std::int32_t count = 0;
  Attempt step;
  step([&] {
    const base::Value all = part("playlistCollection")->call("getAll");
    count = base::ToInt32(base::Deref(all).get("count"));
  });
  return count;
}

std::vector<std::string> PlayerObject::playlistNames() {
  std::vector<std::string> names;
  Attempt step;
  step([&] {
    const base::ObjectRef all = base::ToObject(part("playlistCollection")->call("getAll"));
    const std::int32_t count = base::ToInt32(base::Deref(all).get("count"));
    for (std::int32_t i = 0; i < count; ++i) {
      const base::Value list = all->invoke("item", i);
      names.push_back(base::ToText(base::Deref(list).get("name")));
    }
  });
  return names;
}

bool PlayerObject::hasPlaylist(const std::string& name) {
  bool has = false;
  Attempt step;
  step([&] {
    const base::Value found = part("playlistCollection")->invoke("getByName", name);
    has = base::ToInt32(base::Deref(found).get("count")) > 0;
  });
  return has;
}

void PlayerObject::playPlaylist(const std::string& name) {
  Attempt step;
  step([&] { script_->invoke("Play", "PlayList", name, ""); });
}

PlayerObject::Played PlayerObject::played() {
  Played played;
  Attempt step;
  step([&] {
    const base::ObjectRef list = part("currentPlaylist");
    // Lists that are not stored have no count of their changes.
    if (base::ToDouble(list->get("revision")) != 0) played = {true, base::ToText(list->get("name"))};
  });
  return played;
}

}  // namespace mpris
