#pragma once
#include <string>
#include <vector>

#include "PageHouse.hpp"

namespace support {

/// A house whose ear is the page's own: what the page says to it is kept, and the test chooses the answers.
class VoiceHouse : public PageHouse {
 protected:
  explicit VoiceHouse(int width = 1280)
      : PageHouse(width, 900, {"--use-fake-ui-for-media-stream", "--use-fake-device-for-media-stream"}) {}

  /// Before each page: `answers` by method and path, each a status and a body; `posts` as they were made;
  /// what was said in pieces is one of them when it ends, and `pieces` are where each of the last began, and
  /// its length; `hushed` what was asked of the player's quiet; `asked` for the microphone, and the `track`
  /// that was given last.
  static constexpr const char* kEar = R"(
    const say = (...words) => words.map((each) => ({say: each}));
    window.many = (count) => Array.from({length: count}, (_, at) => say(`Album ${at}`));
    window.answers = {
      'GET /api/voice': [200, {recogniser: {state: 'ready', missing: '', words: 1234, unspoken: []}, speaks: false,
        listen: {rate: 16000, seconds: 30, bytes: 1048576, type: 'audio/l16;rate=16000'},
        events: [
          {id: 5, name: 'Album VR', devices: ['Media Player Quick Album'], length: 90000, faults: [], version: 'a1', anew: true,
            tree: [[{say: 'Play'}, {optional: [say('Album')], count: 1}, {choice: many(100), count: 10000}]]},
          {id: 6, name: 'Control VR', devices: ['Media Player Status'], length: 20, faults: [], version: 'c1', anew: false,
            pattern: 'Player (stop|pause)', tree: [[{say: 'Player'}, {choice: [say('stop'), say('pause')], count: 2}]]}]}],
      'GET /api/voice/pattern': [200, {id: 5, pattern: 'the whole text', version: 'a1'}],
      'GET /api/voice/choices': [200, {names: ['Album 7777'], total: 1}],
      'POST /api/voice': [200, {kind: 'done', heard: 'stop', command: 'Player stop', events: ['Control VR'],
        says: 'Stopped', choices: [], done: 'Stopped'}],
      'POST /api/voice/listen': [200, {kind: 'done', heard: 'player stop', command: 'Player stop',
        events: ['Control VR'], says: 'Stopped', choices: [], confidence: 0.9, done: 'Stopped'}],
      'POST /api/voice/listen/begin': [200, {id: 7}],
      'POST /api/voice/listen/more': [200, {}],
      'POST /api/voice/pattern': [200, {faults: [], version: 'c2'}],
      'POST /api/voice/speaks': [200, {}],
      'POST /api/voice/quiet': [200, {}],
      'GET /api/voice/room': [200, {on: false, state: 'off', trouble: '', heard: 0}],
      'POST /api/voice/room': [200, {on: true, state: 'starting', trouble: '', heard: 0}],
    };
    window.posts = [];
    window.pieces = [];
    let spoken = [];
    const counted = (sound) => ({samples: sound.length, loudest: sound.reduce((most, each) => Math.max(most, Math.abs(each)), 0)});
    window.sought = [];
    window.hushed = [];
    const ask = window.fetch;
    window.fetch = async (path, options = {}) => {
      const [place, asked] = String(path).split('?');
      const ended = place.endsWith('listen/end');
      const answer = answers[`${options.method ?? 'GET'} ${place}`] ?? (ended ? answers['POST /api/voice/listen'] : undefined);
      if (!answer) return ask(path, options);
      if (place.endsWith('choices')) sought.push(path);
      if (place.endsWith('quiet')) hushed.push(JSON.parse(options.body).on);
      else if (place.endsWith('listen/begin')) {
        spoken = [];
        pieces = [];
      } else if (place.endsWith('listen/more')) {
        const sound = new Int16Array(options.body);
        pieces.push([new URLSearchParams(asked).get('id'), Number(new URLSearchParams(asked).get('at')), sound.length]);
        spoken.push(...sound);
      } else if (ended) {
        const {id, samples} = JSON.parse(options.body);
        posts.push({path: '/api/voice/listen', type: 'audio/l16;rate=16000', id, said: samples, ...counted(spoken)});
      } else if (options.method) {
        const {body} = options;
        const sound = typeof body === 'string' ? null : new Int16Array(body);
        posts.push({path: place, type: options.headers['Content-Type'], ...(sound
          ? counted(sound)
          : JSON.parse(body))});
      }
      return new Response(JSON.stringify(answer[1]), {status: answer[0], headers: {'Content-Type': 'application/json'}});
    };
    window.asked = [];
    const give = MediaDevices.prototype.getUserMedia;
    MediaDevices.prototype.getUserMedia = async function(wanted) {
      asked.push(wanted);
      const stream = await give.call(this, wanted);
      [window.track] = stream.getTracks();
      return stream;
    };)";

  void SetUp() override { browser.beforeEachPage(kEar); }
  void openVoice() {
    open("#voice");
    ASSERT_TRUE(has(".said-event"));
  }
  json run(const std::string& script, const json& arguments = json::array()) {
    return browser.run(script, arguments);
  }
  json posts() { return run("return posts"); }
  bool postsBecome(std::size_t count) {
    return browser.eventually("return posts.length === arguments[0]", {count});
  }
  /// The state of the button to speak.
  bool button(const std::string& state) {
    return browser.eventually("return document.querySelector('.talk').dataset.state === arguments[0]",
                              {state});
  }
  bool says(const std::string& text) {
    return browser.eventually(
        "return document.querySelector('.answer-now .says')?.textContent === arguments[0]", {text});
  }
  void typeIn(const std::string& text) {
    run("const form = document.querySelector('.voice'); form.elements.say.value = arguments[0];"
        "form.requestSubmit()",
        {text});
  }
  /// Presses the mouse on the button, and lets go of it where it is.
  void pressMouse() {
    const json at =
        run("const button = document.querySelector('.talk'); button.scrollIntoView({block: 'center'});"
            "const box = button.getBoundingClientRect();"
            "return [Math.round(box.x + box.width / 2), Math.round(box.y + box.height / 2)]");
    mouse({{{"type", "pointerMove"}, {"x", at[0]}, {"y", at[1]}}, {{"type", "pointerDown"}, {"button", 0}}});
  }
  void releaseMouse() { mouse({{{"type", "pointerUp"}, {"button", 0}}}); }
  void mouse(const json& actions) {
    browser.perform({{{"type", "pointer"},
                      {"id", "mouse"},
                      {"parameters", {{"pointerType", "mouse"}}},
                      {"actions", actions}}});
  }
  void key(const std::string& how, const std::string& key) {
    browser.perform({{{"type", "key"}, {"id", "keyboard"}, {"actions", {{{"type", how}, {"value", key}}}}}});
  }
  /// Waits until the microphone was heard for about a second.
  bool spoken() {
    return button("listening") &&
           browser.eventually("return parseInt(document.querySelector('.talk-time').textContent) >= 1");
  }
};

}  // namespace support
