#include "standin/room/CapturePrograms.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>
#include <utility>

namespace standin {
namespace {

struct Advice {
  std::string_view sign;  ///< in what a program complains of
  const char* what;
};
constexpr std::array kAdvice{
    Advice{"busy", "Another program is using the microphone: end that, or let a server of sound share it"},
    Advice{"Connection refused", "The system’s server of sound is not running for the user of this server"},
    Advice{"Permission denied", "The user of this server may not record: add it to the group “audio”"},
    Advice{"No such", "Plug a microphone in, and make it the system’s default source"},
    Advice{"cannot find card", "Plug a microphone in, and make it the system’s default source"},
    Advice{"It has ended", "See whether the microphone is plugged in and is the system’s default source"}};

}  // namespace

const std::vector<CaptureProgram>& CapturePrograms() {
  static const std::vector<CaptureProgram> all{
      {"parec",
       {"--raw", "--format=s16le", "--rate=16000", "--channels=1", "--latency-msec=50",
        "--client-name=Vantorix"},
       "pulseaudio-utils"},
      {"arecord", {"-q", "-t", "raw", "-f", "S16_LE", "-r", "16000", "-c", "1"}, "alsa-utils"}};
  return all;
}

ChildProgram::Command CommandOf(const CaptureProgram& program) {
  // What says where the user's server of sound and his settings of it are.
  ChildProgram::Command command{
      .program = {},
      .arguments = program.arguments,
      .environment = {"PATH", "LANG", "LD_LIBRARY_PATH", "HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME",
                      "PULSE_SERVER", "PULSE_COOKIE", "PULSE_SOURCE", "ALSA_CONFIG_PATH"}};
  const char* path = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe): nobody changes it
  std::istringstream folders(path != nullptr ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');) {
    const std::filesystem::path file = std::filesystem::path(folder) / program.name;
    if (::access(file.c_str(), X_OK) != 0) continue;
    command.program = file;
    break;
  }
  return command;
}

std::string WithAdvice(const std::string& complaint) {
  const auto* const advice = std::find_if(kAdvice.begin(), kAdvice.end(), [&](const Advice& each) {
    return complaint.find(each.sign) != std::string::npos;
  });
  return advice == kAdvice.end() ? complaint : complaint + ". " + advice->what;
}

}  // namespace standin
