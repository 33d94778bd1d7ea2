#include "standin/voice/AudioEvents.hpp"

#include <cstdint>
#include <vector>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr std::int16_t kAudioEvents = 8;

}  // namespace

void AudioEvents::tell(bool started) {
  if (started) {
    ++begun_;
  } else if (ended_ > 0) {
    --ended_;
    return;
  } else {
    --begun_;
  }
  send(started);
}

void AudioEvents::endAll() {
  ++commands_;
  while (begun_ > 0) {
    // Counted before it is told: others begin and end while a listener is waited for.
    --begun_;
    ++ended_;
    send(false);
  }
}

void AudioEvents::goOn() {
  --commands_;
  while (commands_ == 0 && ended_ > 0) {
    --ended_;
    ++begun_;
    send(true);
  }
}

void AudioEvents::send(bool started) {
  ++telling_;
  const std::vector<EventSink> sinks = house_.eventSinks;  // they may change while one is told
  for (const EventSink& sink : sinks) {
    if ((sink.mask & kAudioEvents) == 0 || !sink.object) continue;
    try {
      loop_.whileOpen([&] {
        sink.object->invoke("VXEvent", base::Array{base::Value(kAudioEvents), base::Value(started)});
      });
    } catch (...) {
      house_.log.write("Warning",
                       "A listener to audio events is dropped: " + base::CurrentFailure().description());
      std::erase_if(house_.eventSinks, [&](const EventSink& each) { return each.object == sink.object; });
    }
  }
  --telling_;
}

}  // namespace standin
