// The button that is held to speak, with a microphone that beeps.
#include <gmock/gmock.h>

#include "VoiceHouse.hpp"
#include "support/Keys.hpp"

namespace {

using nlohmann::json;
using testing::IsEmpty;

constexpr const char* kEscape = "\uE00C";

class VoiceButton : public support::VoiceHouse {
 protected:
  using VoiceHouse::VoiceHouse;
  bool microphoneIsOff() { return browser.eventually("return track.readyState === 'ended'"); }
  /// Has asking for the microphone fail as browsers name it.
  void refuse(const std::string& name) {
    run("MediaDevices.prototype.getUserMedia = () => Promise.reject(new DOMException('', arguments[0]))",
        {name});
  }
  /// Before each page: the sound comes from the test in place of the microphone.
  void soundFromTheTest() {
    browser.beforeEachPage(
        "window.AudioWorkletNode = class { constructor() { window.ear = this;"
        "  this.port = {postMessage: () => this.port.onmessage({data: {sound: new Int16Array(0), level: 0, "
        "last: "
        "true}})}; } };"
        "MediaStreamAudioSourceNode.prototype.connect = () => {};"
        "window.hear = (seconds) => ear.port.onmessage({data: {sound: new Int16Array(seconds * "
        "16000).fill(9), "
        "level: 0.5}})");
  }
};

/// Of a tone of some frequency and as many seconds, what is left after it was brought to 16,000 samples a
/// second piece by piece: {"samples": …, "loudness": its effective value without the ends, the tone's own
/// being 1}.
constexpr const char* kTone = R"(
  const [rate, frequency, done] = arguments;
  import(document.querySelector('script[src$="app.js"]').src.replace('app.js', 'voice/resampler.js')).then(({Resampler}) => {
    const resampler = new Resampler(rate, 16000);
    const out = [];
    for (let at = 0; at < rate; at += 128) {
      const size = Math.min(128, rate - at);
      out.push(...resampler.push(Float32Array.from({length: size}, (_, i) => Math.sin(2 * Math.PI * frequency * (at + i) / rate))));
    }
    out.push(...resampler.end());
    const middle = out.slice(1000, 15000);
    done({samples: out.length, loudness: Math.sqrt(2 * middle.reduce((sum, each) => sum + each * each, 0) / middle.length)});
  }, (error) => done(String(error))))";

TEST_F(VoiceButton, AnotherRateKeepsWhatCanBeHeardAndTakesAwayTheRest) {
  openVoice();
  const auto left = [&](int rate, int frequency) { return browser.runAsync(kTone, {rate, frequency}); };
  for (const int rate : {44100, 48000, 96000, 22050}) {
    for (const int frequency : {300, 1000, 3000, 6000}) {
      const json told = left(rate, frequency);
      EXPECT_NEAR(told["loudness"].get<double>(), 1, 0.01) << frequency << " Hz of " << rate;
      EXPECT_NEAR(told["samples"].get<int>(), 16000, 1) << rate;
    }
  }
  // These would come back as tones of 6,000, 4,000 and 1,000 Hz.
  for (const int frequency : {10000, 12000, 17000})
    EXPECT_LT(left(48000, frequency)["loudness"].get<double>(), 0.001) << frequency;
  EXPECT_NEAR(left(8000, 1000)["loudness"].get<double>(), 1, 0.01);
  EXPECT_NEAR(left(16000, 1000)["loudness"].get<double>(), 1, 0.01);
}

TEST_F(VoiceButton, ListensWhileTheMouseHoldsIt) {
  openVoice();
  pressMouse();
  ASSERT_TRUE(spoken());
  EXPECT_EQ(run("return document.querySelector('.talk').ariaPressed"), "true");
  EXPECT_TRUE(browser.eventually(
      "return Number(document.querySelector('.talk-level').style.getPropertyValue('--level')) > 0.1"))
      << "it beeps";
  EXPECT_THAT(posts(), IsEmpty()) << "nothing before it is let go of";
  EXPECT_EQ(run("return hushed"), json({true})) << "the player makes room";
  releaseMouse();
  EXPECT_TRUE(says("Stopped"));
  EXPECT_EQ(run("return hushed"), json({true})) << "the house ends it when it has the sound";
  const json post = posts().at(0);
  EXPECT_EQ(post["path"], "/api/voice/listen");
  EXPECT_EQ(post["type"], "audio/l16;rate=16000");
  EXPECT_GE(post["samples"].get<int>(), 16000);
  EXPECT_GT(post["loudest"].get<int>(), 500);
  EXPECT_EQ(run("return document.querySelector('.answer-now .heard').textContent"),
            "You said: “player stop”");
  EXPECT_TRUE(microphoneIsOff());
  EXPECT_TRUE(button("idle"));
  const json wanted = run("return asked[0].audio");
  for (const char* each : {"echoCancellation", "noiseSuppression", "autoGainControl"})
    EXPECT_EQ(wanted[each], true) << each;
}

TEST_F(VoiceButton, ListensWhileAKeyHoldsIt) {
  openVoice();
  for (const std::string held : {support::kSpace, support::kEnter}) {
    run("posts.length = 0; document.querySelector('.talk').focus()");
    key("keyDown", held);
    ASSERT_TRUE(spoken());
    key("keyUp", held);
    ASSERT_TRUE(postsBecome(1));
    EXPECT_TRUE(button("idle"));
  }
  run("posts.length = 0");
  key("keyDown", support::kSpace);
  ASSERT_TRUE(spoken());
  key("keyDown", kEscape);
  EXPECT_TRUE(says("It was let go of: nothing was done"));
  key("keyUp", kEscape);
  key("keyUp", support::kSpace);
  EXPECT_TRUE(button("idle"));
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(VoiceButton, AScreenReadersClicksBeginAndEndIt) {
  openVoice();
  run("document.querySelector('.talk').click()");
  ASSERT_TRUE(spoken());
  run("document.querySelector('.talk').click()");
  EXPECT_TRUE(says("Stopped"));
  run("document.querySelector('.talk').click()");
  EXPECT_TRUE(button("listening")) << "and again";
}

class VoiceButtonOnAPhone : public VoiceButton {
 protected:
  VoiceButtonOnAPhone() : VoiceButton(360) {}
};

TEST_F(VoiceButtonOnAPhone, ListensWhileAFingerHoldsIt) {
  openVoice();
  browser.click("//h1");  // some browsers let no sound begin before a first touch
  const json at =
      run("const box = document.querySelector('.talk').getBoundingClientRect(); return [box.x + box.width / "
          "2, box.y + "
          "box.height / 2]");
  browser.putFinger("touchStart", at[0], at[1]);
  ASSERT_TRUE(spoken());
  browser.putFinger("touchMove", at[0].get<double>() + 60, at[1].get<double>() + 90);
  EXPECT_EQ(run("return document.querySelector('.talk').dataset.state"), "listening")
      << "it may leave the button";
  browser.liftFinger();
  EXPECT_TRUE(says("Stopped"));
}

TEST_F(VoiceButton, WhatIsLetGoOfBeforeItListensIsNotSent) {
  soundFromTheTest();
  openVoice();
  pressMouse();
  ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
  EXPECT_TRUE(button("opening")) << "nothing has been heard yet";
  releaseMouse();
  EXPECT_TRUE(
      says("Hold the button until it listens, and while you speak. If the browser asks for the microphone, "
           "allow it first."));
  EXPECT_TRUE(microphoneIsOff());
  // The browser's own question whether the page may listen takes the focus.
  run("delete window.ear; document.querySelector('.talk').click()");
  ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
  run("dispatchEvent(new Event('blur'))");
  EXPECT_TRUE(button("idle"));
  EXPECT_EQ(run("return document.querySelectorAll('.answers-before .says')[0]?.textContent ?? ''"),
            run("return document.querySelector('.answer-now .says').textContent"));
  // And a moment is no word.
  pressMouse();
  ASSERT_TRUE(browser.eventually("return track.readyState === 'live'"));
  ASSERT_TRUE(
      browser.eventually("hear(0.1); return document.querySelector('.talk').dataset.state === 'listening'"));
  releaseMouse();
  EXPECT_TRUE(says("Hold the button while you speak"));
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(VoiceButton, EndsByItselfAfterHalfAMinute) {
  soundFromTheTest();
  openVoice();
  pressMouse();
  ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
  run("for (let i = 0; i < 29; i++) hear(1)");
  EXPECT_THAT(posts(), IsEmpty());
  run("hear(1.5)");
  EXPECT_TRUE(says("Stopped"));
  EXPECT_EQ(posts().at(0)["samples"], 30 * 16000);
  EXPECT_TRUE(shows("30 seconds are the most that the house listens to at once"));
  releaseMouse();
  EXPECT_EQ(posts().size(), 1U);
}

TEST_F(VoiceButton, WhatIsSaidIsSentWhileItIsSpoken) {
  soundFromTheTest();
  openVoice();
  pressMouse();
  ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
  run("hear(1); hear(0.2)");
  EXPECT_TRUE(browser.eventually("return pieces.length === 1")) << "little things wait for more";
  run("hear(0.5)");
  EXPECT_TRUE(browser.eventually("return pieces.length === 2"));
  run("hear(0.1)");
  EXPECT_THAT(posts(), IsEmpty()) << "he still speaks";
  releaseMouse();
  EXPECT_TRUE(says("Stopped"));
  EXPECT_EQ(run("return pieces"), json({{"7", 0, 16000}, {"7", 16000, 11200}, {"7", 27200, 1600}}));
  const json post = posts().at(0);
  EXPECT_EQ(post.at("said"), 28800);
  EXPECT_EQ(post.at("samples"), 28800);
  EXPECT_EQ(posts().size(), 1U);
}

TEST_F(VoiceButton, WherePiecesAreLostAllOfItIsSentAgain) {
  soundFromTheTest();
  openVoice();
  const json lost = {
      "answers['POST /api/voice/listen/begin'] = [503, {error: 'Too many are speaking at once'}]",
      "answers['POST /api/voice/listen/begin'] = [200, {id: 7}];"
      "answers['POST /api/voice/listen/more'] = [404, {error: 'It is forgotten'}]",
      "answers['POST /api/voice/listen/more'] = [200, {}];"
      "answers['POST /api/voice/listen/end'] = [409, {error: 'A piece is missing'}]"};
  for (const json& each : lost) {
    run("posts.length = 0; delete window.ear; " + each.get<std::string>());
    pressMouse();
    ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
    run("hear(1); hear(1)");
    releaseMouse();
    ASSERT_TRUE(browser.eventually(
        "return posts.some(({path, said}) => path === '/api/voice/listen' && said === undefined)"))
        << each;
    EXPECT_EQ(posts().back().at("samples"), 32000);
    EXPECT_TRUE(button("idle"));
    EXPECT_TRUE(says("Stopped"));
  }
  // What may have been done is not done a second time.
  run("posts.length = 0; delete window.ear; answers['POST /api/voice/listen/end'] = [504, {error: 'No answer "
      "in time'}]");
  pressMouse();
  ASSERT_TRUE(browser.eventually("return window.ear !== undefined"));
  run("hear(1)");
  releaseMouse();
  EXPECT_TRUE(says("No answer in time"));
  EXPECT_EQ(posts().size(), 1U);
}

TEST_F(VoiceButton, NobodyListensToAPageThatIsLeft) {
  openVoice();
  const char* const away[] = {"dispatchEvent(new Event('blur'))", "dispatchEvent(new Event('pagehide'))",
                              "location.hash = '#log'"};
  for (const char* way : away) {
    run("document.querySelector('.talk').click()");
    ASSERT_TRUE(button("listening")) << way;
    run(way);
    EXPECT_TRUE(microphoneIsOff()) << way;
  }
  ASSERT_TRUE(has(".log li"));
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(VoiceButton, AMicrophoneThatGoesIsTold) {
  openVoice();
  pressMouse();
  ASSERT_TRUE(button("listening"));
  run("track.dispatchEvent(new Event('ended'))");
  EXPECT_TRUE(says("The microphone is gone"));
  EXPECT_TRUE(browser.eventually("return String(hushed) === 'true,false'"));
  releaseMouse();
  pressMouse();
  ASSERT_TRUE(button("listening"));
  run("document.querySelector('.talk').dispatchEvent(new PointerEvent('pointercancel', {pointerId: 1}))");
  EXPECT_TRUE(says("It was let go of: nothing was done"));
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(VoiceButton, EveryReasonForNoMicrophoneHasItsWords) {
  openVoice();
  for (const auto& [name, words] :
       {std::pair("NotAllowedError", "The browser doesn’t give this page the microphone."),
        std::pair("NotFoundError", "No microphone was found."),
        std::pair("NotReadableError", "The microphone doesn’t answer:"),
        std::pair("TypeError", "The microphone can’t be used: TypeError")}) {
    refuse(name);
    run("document.querySelector('.talk').click()");
    EXPECT_TRUE(browser.eventually(
        "return document.querySelector('.answer-now .says')?.textContent.startsWith(arguments[0])", {words}))
        << name;
    EXPECT_TRUE(button("idle"));
  }
  EXPECT_THAT(posts(), IsEmpty());
}

TEST_F(VoiceButton, AnAddressWithoutMicrophoneSaysWhy) {
  browser.beforeEachPage("Object.defineProperty(window, 'isSecureContext', {value: false})");
  openVoice();
  EXPECT_TRUE(shows("the address is the reason, not your browser"));
  EXPECT_TRUE(shows("http://127.0.0.1:" + std::to_string(server->port()) + "/#voice"));
  EXPECT_EQ(run("return document.querySelector('.talk')"), nullptr);
  EXPECT_TRUE(has(".talk-file"));
  typeIn("stop");
  EXPECT_TRUE(says("Stopped"));
  run("location.hash = '#devices'");
  ASSERT_TRUE(has("#say"));
  EXPECT_EQ(run("return document.querySelector('.talk')"), nullptr);
}

/// Chooses a file of sound: `seconds` of a tone in two channels, and of a larger size if wished.
constexpr const char* kRecorded = R"(
  const [rate, seconds, name] = arguments;
  const samples = new Int16Array(rate * seconds * 2).map((_, i) => 8000 * Math.sin((i >> 1) * 2 * Math.PI * 440 / rate));
  const head = new DataView(new ArrayBuffer(44));
  const text = (at, words) => [...words].forEach((letter, i) => head.setUint8(at + i, letter.charCodeAt(0)));
  text(0, 'RIFF'); head.setUint32(4, 36 + samples.byteLength, true); text(8, 'WAVEfmt '); head.setUint32(16, 16, true);
  head.setUint16(20, 1, true); head.setUint16(22, 2, true); head.setUint32(24, rate, true); head.setUint32(28, rate * 4, true);
  head.setUint16(32, 4, true); head.setUint16(34, 16, true); text(36, 'data'); head.setUint32(40, samples.byteLength, true);
  const chosen = new DataTransfer();
  chosen.items.add(new File(name.endsWith('.wav') ? [head, samples] : ['no sound'], name));
  const field = document.querySelector('[type=file]');
  field.files = chosen.files;
  field.dispatchEvent(new Event('change', {bubbles: true})))";

TEST_F(VoiceButton, ARecordedFileIsHeardToo) {
  openVoice();
  run(kRecorded, {44100, 2, "said.wav"});
  EXPECT_TRUE(says("Stopped"));
  const json post = posts().at(0);
  EXPECT_EQ(post["type"], "audio/l16;rate=16000");
  EXPECT_NEAR(post["samples"].get<int>(), 32000, 20);
  EXPECT_NEAR(post["loudest"].get<int>(), 8000, 200);
}

TEST_F(VoiceButton, AFileThatIsNoRecordingOrTooLongIsNot) {
  openVoice();
  run(kRecorded, {8000, 1, "note.txt"});
  EXPECT_TRUE(says("note.txt is no recording that this browser can read"));
  run(kRecorded, {8000, 31, "long.wav"});
  EXPECT_TRUE(says("long.wav is longer than 30 seconds"));
  run(kRecorded, {48000, 40, "large.wav"});
  EXPECT_TRUE(says("large.wav is too large: a recording of up to 30 seconds is enough"));
  EXPECT_THAT(posts(), IsEmpty());
  EXPECT_TRUE(button("idle"));
}

TEST_F(VoiceButton, AHouseThatDoesNotUnderstandSaysSo) {
  openVoice();
  run("answers['POST /api/voice/listen'] = [503, {kind: 'deaf', heard: '', says: 'The house can’t listen: no "
      "model', "
      "choices: []}]");
  pressMouse();
  ASSERT_TRUE(spoken());
  releaseMouse();
  EXPECT_TRUE(says("The house can’t listen: no model"));
  run("answers['POST /api/voice/listen'] = [413, {error: 'That is too much'}]");
  pressMouse();
  ASSERT_TRUE(spoken());
  releaseMouse();
  EXPECT_TRUE(says("That is too much"));
  EXPECT_EQ(run("return hushed"), json({true, true, false})) << "the music goes on at once";
}

TEST_F(VoiceButton, StandsSmallBesideTheBoxOfTheDevices) {
  open("#devices");
  ASSERT_TRUE(has(".talk-small"));
  EXPECT_EQ(run("return document.querySelector('.talk').innerText.trim()"), "Hold to speak")
      << "for who can't see it";
  pressMouse();
  ASSERT_TRUE(spoken());
  releaseMouse();
  EXPECT_TRUE(says("Stopped"));
}

}  // namespace
