// The server's ear: learns what can be said, then hears one sound after the other, for as long as the server
// is there. A process of its own, as the decoder's library may hang, or die of a sound or a model.
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "ear/Messages.hpp"
#include "ear/decoder/Decoder.hpp"

namespace {

using ear::MessageKind;

/// The next message; throws std::runtime_error once the server has gone.
ear::Message Next(std::string& come) {
  std::array<char, 65536> part{};
  while (true) {
    if (auto message = ear::TakeMessage(come)) return std::move(*message);
    const ssize_t got = ::read(STDIN_FILENO, part.data(), part.size());
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) throw std::out_of_range("The server has gone");
    come.append(part.data(), static_cast<std::size_t>(got));
  }
}

void Tell(MessageKind kind, const std::string& content) {
  const std::string framed = ear::Framed(kind, content);
  for (std::size_t sent = 0; sent < framed.size();) {
    const ssize_t count = ::write(STDOUT_FILENO, framed.data() + sent, framed.size() - sent);
    if (count < 0 && errno != EINTR) throw std::out_of_range("The server has gone");
    if (count > 0) sent += static_cast<std::size_t>(count);
  }
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
  while (true) {
    const ear::Message message = Next(come);
    if (message.kind == MessageKind::kLearn && !decoder) {
      const auto network = ear::NetworkIn(message.content);
      if (!network) throw std::runtime_error("What can be said was not understood");
      decoder = std::make_unique<ear::Decoder>(models);
      Tell(MessageKind::kReady, ear::Encoded(decoder->learn(*network)));
    } else if (message.kind == MessageKind::kHear && decoder) {
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
