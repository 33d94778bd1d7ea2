// The server's ear: learns what can be said, then hears one sound after the other, for as long as the server
// is there. A process of its own, as the decoder's library may hang, or die of a sound or a model.
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "ear/GrowingSound.hpp"
#include "ear/Messages.hpp"
#include "ear/decoder/Decoder.hpp"
#include "wire/Frames.hpp"

namespace {

using ear::MessageKind;

/// Whether the server has said something that wasn't read yet, or has gone.
bool MoreHasCome() {
  pollfd wait{STDIN_FILENO, POLLIN, 0};
  return ::poll(&wait, 1, 0) != 0;
}

/// The next message; until it comes, `idle` is called while nothing is there to be read. Throws
/// std::out_of_range once the server has gone.
template <class Idle>
ear::Message Next(std::string& come, const Idle& idle) {
  while (true) {
    if (auto message = ear::TakeMessage(come)) return std::move(*message);
    if (!MoreHasCome()) idle();
    if (!wire::ReadMore(STDIN_FILENO, come)) throw std::out_of_range("The server has gone");
  }
}

void Tell(MessageKind kind, const std::string& content) {
  if (!wire::WriteWhole(STDOUT_FILENO, ear::Framed(kind, content)))
    throw std::out_of_range("The server has gone");
}

/// A grammar that nobody could say takes more memory than any machine has.
void LimitMemory() {
#ifndef __SANITIZE_ADDRESS__
  constexpr rlim_t kMost = rlim_t{2} << 30U;
  const rlimit limit{kMost, kMost};
  ::setrlimit(RLIMIT_AS, &limit);
#endif
}

void Serve(const std::string& models) {
  std::string come;
  std::unique_ptr<ear::Decoder> decoder;
  ear::GrowingSound growing(
      [&decoder](const std::vector<std::int16_t>& sound) { return decoder->hear(sound).heard; });
  while (true) {
    const ear::Message message = Next(come, [&] {
      if (growing.pauses()) growing.hearPause();
    });
    if (message.kind == MessageKind::kLearn && !decoder) {
      const auto network = ear::NetworkIn(message.content);
      if (!network) throw std::runtime_error("What can be said was not understood");
      decoder = std::make_unique<ear::Decoder>(models);
      Tell(MessageKind::kReady, ear::Encoded(decoder->learn(*network)));
    } else if (!decoder) {
      continue;
    } else if (message.kind == MessageKind::kBegin) {
      growing.begin();
    } else if (message.kind == MessageKind::kMore) {
      growing.more(ear::SoundIn(message.content));
    } else if (message.kind == MessageKind::kEnd) {
      Tell(MessageKind::kHeard, ear::Encoded(growing.end()));
    } else if (message.kind == MessageKind::kHear) {
      Tell(MessageKind::kHeard, ear::Encoded(decoder->hear(ear::SoundIn(message.content)).heard));
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  LimitMemory();
  try {
    Serve(argc > 1 ? argv[1] : "/usr/share/pocketsphinx/model/en-us");
  } catch (const std::out_of_range&) {
    return 0;
  } catch (const std::exception& failure) {
    try {
      Tell(MessageKind::kFailed, failure.what());
    } catch (const std::exception&) {
      std::cerr << failure.what() << "\n";
    }
    return 1;
  }
}
