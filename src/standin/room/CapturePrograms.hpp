#pragma once
#include <string>
#include <vector>

#include "standin/process/ChildProgram.hpp"

namespace standin {

/// A program that writes the sound of the system's default source to its output, with one channel of 16,000
/// samples a second of 16 bits, the lower byte first.
struct CaptureProgram {
  std::string name;
  std::vector<std::string> arguments;
  std::string package;  ///< that it comes with
};

/// Those that are tried, one after the other: first the one of a desktop's server of sound, which others can
/// use beside it, then the one of the bare system.
const std::vector<CaptureProgram>& CapturePrograms();

/// How it is started; without a program where it is not installed.
ChildProgram::Command CommandOf(const CaptureProgram& program);

/// What it has complained of, with what to do about it.
std::string WithAdvice(const std::string& complaint);

}  // namespace standin
