#include "engine/decoder/MpvHandle.hpp"

#include <sys/mman.h>

#include <clocale>
#include <cstddef>

#include "base/Failure.hpp"

namespace engine {

// Where its first thread can't be started, the decoder waits for it for ever instead of failing; where
// memory ends a little later, it ends the process. So there must be room for all that it takes at first. Only
// what can be written counts against the bound on a title's memory.
void CheckRoomForDecoder() {
  constexpr std::size_t kRoom = std::size_t{512} << 20U;
  void* const room =
      ::mmap(nullptr, kRoom, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED)
    throw base::Failure(base::number::kCannotCreate, "There is too little memory for the decoder");
  ::munmap(room, kRoom);
}

void MpvHandle::Destroyer::operator()(mpv_handle* handle) const {
  library->onWakeup(handle, nullptr, nullptr);
  library->destroy(handle);
}

namespace {

/// Asked for before the library is loaded, which takes most of the room.
MpvLibrary Loaded() {
  CheckRoomForDecoder();
  return {};
}

}  // namespace

MpvHandle::MpvHandle(const MpvOptions& options) : library_(Loaded()), handle_(nullptr, Destroyer{&library_}) {
  std::setlocale(LC_NUMERIC, "C");  // it refuses to be created otherwise
  handle_.reset(library_.create());
  if (!handle_) throw base::Failure(base::number::kCannotCreate, "The decoder can't be created");
  for (const auto& [name, value] : options) {
    const int result = library_.setOption(handle_.get(), name.c_str(), value.c_str());
    if (result < 0) {
      std::string text = "The decoder does not take the option ";
      text.append(name).append("=").append(value).append(": ").append(textOf(result));
      throw base::Failure(base::number::kCannotCreate, text);
    }
  }
  const int result = library_.initialize(handle_.get());
  if (result < 0) {
    throw base::Failure(base::number::kCannotCreate,
                        std::string("The decoder can't be started: ") + textOf(result));
  }
}

void MpvHandle::command(std::uint64_t tag, const std::vector<std::string>& words) {
  std::vector<const char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(word.c_str());
  arguments.push_back(nullptr);
  library_.command(handle_.get(), tag, arguments.data());
}

void MpvHandle::set(const char* property, const std::string& value, std::uint64_t tag) {
  const char* text = value.c_str();
  library_.setProperty(handle_.get(), tag, property, MPV_FORMAT_STRING, static_cast<void*>(&text));
}

void MpvHandle::set(const char* property, double value) {
  library_.setProperty(handle_.get(), 0, property, MPV_FORMAT_DOUBLE, &value);
}

void MpvHandle::set(const char* property, bool value) {
  int flag = value ? 1 : 0;
  library_.setProperty(handle_.get(), 0, property, MPV_FORMAT_FLAG, &flag);
}

void MpvHandle::ask(std::uint64_t tag, const char* property, mpv_format format) {
  library_.askProperty(handle_.get(), tag, property, format);
}

void MpvHandle::observe(const char* property, mpv_format format) {
  library_.observe(handle_.get(), 0, property, format);
}

void MpvHandle::holdBeforeOpening() { library_.hook(handle_.get(), 0, "on_load", 0); }

void MpvHandle::open(std::uint64_t held) { library_.leaveHook(handle_.get(), held); }

void MpvHandle::onWakeup(void (*wake)(void*), void* context) {
  library_.onWakeup(handle_.get(), wake, context);
}

const mpv_event& MpvHandle::nextEvent() { return *library_.nextEvent(handle_.get(), 0); }

}  // namespace engine
