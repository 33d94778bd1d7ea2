#include "demo/Sound.hpp"

#include <sndfile.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "base/Failure.hpp"

namespace engine::demo {
namespace {

struct Closer {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using File = std::unique_ptr<SNDFILE, Closer>;

int FormatCode(FileFormat format) {
  switch (format) {
    case FileFormat::kFlac: return SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    case FileFormat::kOgg: return SF_FORMAT_OGG | SF_FORMAT_VORBIS;
    case FileFormat::kWav: break;
  }
  return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
}

}  // namespace

Sound Tone(double hertz, double seconds, int rate) {
  Sound sound = Silence(seconds, rate);
  const double step = 2 * std::numbers::pi * hertz / rate;
  for (std::size_t i = 0; i < sound.samples.size(); ++i) {
    sound.samples[i] = static_cast<float>(0.5 * std::sin(step * static_cast<double>(i)));
  }
  return sound;
}

Sound Silence(double seconds, int rate) {
  Sound sound;
  sound.rate = rate;
  sound.samples.resize(static_cast<std::size_t>(std::lround(seconds * rate)));
  return sound;
}

void WriteSound(const std::string& path, const Sound& sound, FileFormat format) {
  SF_INFO info{};
  info.samplerate = sound.rate;
  info.channels = 1;
  info.format = FormatCode(format);
  const File file(sf_open(path.c_str(), SFM_WRITE, &info));
  const auto count = static_cast<sf_count_t>(sound.samples.size());
  if (!file || sf_writef_float(file.get(), sound.samples.data(), count) != count) {
    throw base::Failure(base::number::kDeviceIo, path + " can't be written");
  }
}

Sound ReadSound(const std::string& path) {
  SF_INFO info{};
  const File file(sf_open(path.c_str(), SFM_READ, &info));
  if (!file) throw base::Failure(base::number::kDeviceIo, path + " can't be read");
  std::vector<float> all(static_cast<std::size_t>(info.frames * info.channels));
  all.resize(static_cast<std::size_t>(sf_readf_float(file.get(), all.data(), info.frames) * info.channels));
  Sound sound;
  sound.rate = info.samplerate;
  for (std::size_t i = 0; i < all.size(); i += static_cast<std::size_t>(info.channels)) {
    sound.samples.push_back(all[i]);
  }
  return sound;
}

}  // namespace engine::demo
