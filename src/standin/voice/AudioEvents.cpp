#include "standin/voice/AudioEvents.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "bus/Connection.hpp"

namespace standin {
namespace {

constexpr std::int16_t kAudioEvents = 8;

/// The program that has asked, empty for this one.
std::string PeerOf(const EventSink& sink) {
  return sink.object ? bus::Connection::peerOf(*sink.object) : std::string();
}

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

bool AudioEvents::isKept(const EventSink& sink) const {
  return std::any_of(house_.eventSinks.begin(), house_.eventSinks.end(),
                     [&](const EventSink& each) { return each.object == sink.object; });
}

void AudioEvents::send(bool started) {
  ++telling_;
  const std::vector<EventSink> sinks = house_.eventSinks;  // they may change while one is told
  for (const EventSink& sink : sinks) {
    if ((sink.mask & kAudioEvents) == 0 || !sink.object || !isKept(sink)) continue;
    try {
      loop_.whileOpen([&] {
        sink.object->invoke("VXEvent", base::Array{base::Value(kAudioEvents), base::Value(started)});
      });
    } catch (...) {
      house_.log.write("Warning",
                       "A listener to audio events is dropped: " + base::CurrentFailure().description());
      // A program that doesn't answer for one of its objects would have each of the others waited for too.
      const std::string peer = PeerOf(sink);
      std::erase_if(house_.eventSinks, [&](const EventSink& each) {
        return each.object == sink.object || (!peer.empty() && PeerOf(each) == peer);
      });
    }
  }
  --telling_;
}

}  // namespace standin
