// The picture of what plays, and what the page does to have it; what it does not while nobody looks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "demo/Cover.hpp"
#include "house/player/Listener.hpp"
#include "support/Axe.hpp"
#include "support/SpoiltPictures.hpp"

namespace {

using nlohmann::json;
using support::Eventually;
using support::Listener;
using testing::IsEmpty;

/// What the page asks for and waits for; whether anybody looks, the test says.
constexpr const char* kCounts = R"(
  window.asked = []; window.waits = new Set(); window.away = false;
  const plain = {};
  for (const each of ['fetch', 'setTimeout', 'clearTimeout', 'setInterval', 'requestAnimationFrame'])
    plain[each] = window[each].bind(window);
  window.fetch = (path, options) => { asked.push(path); return plain.fetch(path, options); };
  window.setTimeout = (work, time, ...rest) => {
    const id = plain.setTimeout(() => { waits.delete(id); work(...rest); }, time);
    waits.add(id);
    return id;
  };
  window.clearTimeout = (id) => { waits.delete(id); plain.clearTimeout(id); };
  window.setInterval = (...given) => { waits.add('for ever'); return plain.setInterval(...given); };
  window.requestAnimationFrame = (work) => {
    const id = plain.requestAnimationFrame((time) => { waits.delete(`frame ${id}`); work(time); });
    waits.add(`frame ${id}`);
    return id;
  };
  Object.defineProperty(Document.prototype, 'hidden', {get: () => window.away});
  window.look = (value) => { away = !value; document.dispatchEvent(new Event('visibilitychange')); };)";

class PlayersPictures : public support::PlayerBar {
 protected:
  PlayersPictures() {
    engine::TrackTags tags;
    tags.title = "Inked";
    tags.artist = "The Painters";
    tags.album = "Framed";
    tags.track = 1;
    music.add("Inked", 300, tags, engine::demo::CoverPng(5, 300));
  }
  void play(const std::string& album, const std::string& title) {
    ASSERT_TRUE(Eventually([&] {
      return house.post("/api/play", {{"category", "Album"}, {"name", album}}) == 200;
    }));
    ASSERT_TRUE(house.textBecomes("Title", title));
  }
  static bool showsPicture(Listener& listener) {
    return listener.browser.eventually(
        "const image = document.querySelector('#player-bar .cover img:not([hidden])');"
        "return Boolean(image?.complete && image.naturalWidth && image.src.includes('key='))");
  }
};

TEST_F(PlayersPictures, AreToldWhenTheyMayBeOthers) {
  Listener listener(house, 1280);
  play("Framed", "Inked");
  listener.browser.run(
      "window.told = []; window.open = false; window.stream = new EventSource('/api/live');"
      "stream.onopen = () => { window.open = true; };"
      "stream.addEventListener('cover', (event) => told.push(event.data))");
  ASSERT_TRUE(listener.browser.eventually("return window.open"));
  ASSERT_TRUE(showsPicture(listener));
  const json key = support::JsonOf(house.get("/api/cover/key?playing")).at("key");
  EXPECT_EQ(player().at("cover"), key);
  EXPECT_EQ(
      listener.browser.run(
          "return new URL(document.querySelector('#player-bar .cover img').src).searchParams.get('key')"),
      key);
  play("Counting", "One");
  EXPECT_TRUE(listener.browser.eventually("return told.includes('{\"key\":\"\"}')"));
  EXPECT_EQ(player().at("cover"), "");
  listener.browser.run("stream.close()");
}

TEST_F(PlayersPictures, AreToldOnceWhileTheyStayTheSame) {
  for (const int track : {1, 2}) {
    engine::TrackTags tags;
    tags.title = track == 1 ? "Front" : "Back";
    tags.artist = "The Painters";
    tags.album = "Framed Twice";
    tags.track = track;
    music.add(tags.title, 60, tags, engine::demo::CoverPng(6, 300));
  }
  const char* rows = "/api/library?category=Album&group=Framed%20Twice&limit=9&fresh=1";
  ASSERT_TRUE(Eventually([&] {
    const std::string all = house.get(rows);
    return all.find("Front") != std::string::npos && all.find("Back") != std::string::npos;
  }));
  Listener listener(house, 1280);
  listener.browser.run(
      "window.told = []; window.open = false; window.stream = new EventSource('/api/live');"
      "stream.onopen = () => { window.open = true; };"
      "for (const kind of ['cover', 'player']) stream.addEventListener(kind, (event) => {"
      "  const {key, cover, title} = JSON.parse(event.data);"
      "  told.push(kind === 'cover' ? `picture ${key}` : `${title}: ${cover}`); })");
  ASSERT_TRUE(listener.browser.eventually("return window.open"));
  play("Framed Twice", "Front");
  ASSERT_TRUE(Eventually([&] { return player().at("cover").is_string() && player().at("cover") != ""; }));
  const std::string key = player().at("cover").get<std::string>();
  ASSERT_TRUE(listener.browser.eventually("return told.includes(`Front: ${arguments[0]}`)", {key}));
  ASSERT_EQ(house.post("/api/player/next", json::object()), 200);
  ASSERT_TRUE(listener.browser.eventually("return told.includes(`Back: ${arguments[0]}`)", {key}));
  // Something that is told behind it, when it has been looked for.
  play("Counting", "One");
  ASSERT_TRUE(listener.browser.eventually("return told.includes('picture ')"));
  EXPECT_EQ(listener.browser.run("return told.filter(each => each.startsWith('picture '))"),
            json({"picture " + key, "picture "}));
  EXPECT_EQ(listener.browser.run("return told.filter(each => each.startsWith('Back: null'))"), json::array())
      << "an album mostly has one picture";
  listener.browser.run("stream.close()");
}

TEST_F(PlayersPictures, ThatDidNotComeAreAskedForAgain) {
  play("Framed", "Inked");
  Listener listener(house, 1280);
  listener.browser.beforeEachPage(support::kSpoilsPictures);
  listener.open("#devices");
  ASSERT_TRUE(listener.browser.eventually(
      "return failed > 0 && document.querySelector('#player-bar .cover img').hidden"));
  listener.browser.run("spoils = false");
  EXPECT_TRUE(showsPicture(listener)) << "though nothing else has happened";
}

TEST_F(PlayersPictures, AndTimeCostNothingWhileNobodyLooks) {
  Listener listener(house, 1280);
  play("Framed", "Inked");
  listener.browser.beforeEachPage(kCounts);
  listener.open("#devices");
  ASSERT_TRUE(listener.plays("Inked"));
  ASSERT_TRUE(showsPicture(listener));
  ASSERT_TRUE(listener.browser.eventually("return waits.size > 0")) << "the position moves on";
  EXPECT_EQ(listener.browser.run("return [...waits].filter(each => String(each).startsWith('frame')).length"),
            0);
  listener.browser.run("look(false)");
  EXPECT_TRUE(listener.browser.eventually("asked = []; return waits.size === 0"))
      << listener.browser.run("return [...waits]");
  EXPECT_EQ(listener.browser.run("return [asked, waits.size]"), json({json::array(), 0}))
      << "with nothing to wait for, nothing begins";
  listener.browser.run("look(true)");
  EXPECT_TRUE(listener.browser.eventually("return waits.size > 0"));
}

TEST_F(PlayersPictures, OfDiscsAreAskedForOnceTheOwnerSaysSo) {
  Listener listener(house, 1280);
  for (const char* scheme : {"light", "dark"}) {
    listener.browser.likes(scheme);
    listener.open("#account");
    ASSERT_TRUE(listener.shows("form input[type=checkbox][name=on]"));
    EXPECT_THAT(support::Barriers(listener.browser), IsEmpty()) << scheme;
  }
  const auto on = [&] { return support::JsonOf(house.get("/api/covers/services")).at("on"); };
  EXPECT_EQ(on(), false);
  ASSERT_TRUE(listener.walkTo("form input[type=checkbox][name=on]"));
  listener.browser.press({support::kSpace});
  listener.browser.press({support::kTab, support::kEnter});
  EXPECT_TRUE(Eventually([&] { return on() == true; }));
  listener.open("#account");
  EXPECT_TRUE(listener.shows("form input[type=checkbox][name=on]:checked"));
}

}  // namespace
