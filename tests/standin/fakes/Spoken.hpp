#pragma once
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ear/Messages.hpp"
#include "support/TempFolder.hpp"

namespace support {

/// What a synthesiser makes of the text: 16,000 samples a second of one channel. Empty where it has failed.
inline std::vector<std::int16_t> Spoken(const std::string& text, const std::string& voice = "en-us") {
  const TempFolder folder;
  const std::string said = (folder.path() / "said.wav").string();
  const std::string sound = (folder.path() / "sound").string();
  const std::string command = "espeak-ng -v " + voice + " -s 150 -w " + said + " \"" + text +
                              "\" && ffmpeg -loglevel error -i " + said +
                              " -af adelay=300,apad=pad_dur=0.4 -ar 16000 -ac 1 -f s16le " + sound;
  if (std::system(command.c_str()) != 0)
    return {};  // NOLINT(cert-env33-c): a fixed command of the test's own
  std::ifstream in(sound, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return ear::SoundIn(bytes);
}

}  // namespace support
