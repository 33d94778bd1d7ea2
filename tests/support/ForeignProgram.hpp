#pragma once
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "bus/Message.hpp"

namespace support {

/// A program that knows nothing of the system: it sends its calls without waiting, and answers those of the
/// others as they come.
class ForeignProgram {
 public:
  explicit ForeignProgram(const std::string& address) {
    sd_bus* raw = nullptr;
    EXPECT_LE(0, sd_bus_new(&raw));
    bus_.reset(raw);
    EXPECT_LE(0, sd_bus_set_address(raw, address.c_str()));
    EXPECT_LE(0, sd_bus_set_bus_client(raw, 1));
    EXPECT_LE(0, sd_bus_start(raw));
    const char* name = nullptr;
    EXPECT_LE(0, sd_bus_get_unique_name(raw, &name));
    name_ = name;
    EXPECT_LE(0, sd_bus_add_filter(raw, nullptr, &ForeignProgram::take, this));
  }
  [[nodiscard]] const std::string& name() const { return name_; }

  /// Sends a call; `types` and `arguments` as the bus library takes them.
  template <class... Arguments>
  void send(const std::string& to, const char* path, const char* member, const char* types,
            Arguments... arguments) {
    sd_bus_message* raw = nullptr;
    ASSERT_LE(0, sd_bus_message_new_method_call(bus_.get(), &raw, to.c_str(), path, interface, member));
    const bus::Message call(raw);
    ASSERT_LE(0, sd_bus_message_append(raw, types, arguments...));
    ASSERT_LE(0, sd_bus_call_async(bus_.get(), nullptr, raw, &ForeignProgram::hear, this, UINT64_MAX));
  }
  /// Answers calls and takes replies.
  void serveWhile(const std::function<bool()>& wanted) {
    while (wanted()) {
      const int result = sd_bus_process(bus_.get(), nullptr);
      ASSERT_LE(0, result);
      if (result == 0) sd_bus_wait(bus_.get(), 50'000);
    }
  }

  std::vector<std::string> answers;    ///< the errors' names, empty for success
  int asked = 0;                       ///< how many calls have come
  bool hangs = false;                  ///< takes calls and never answers them
  const char* interface = "any.text";  ///< of the calls that it sends

 private:
  static int take(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    std::uint8_t type = 0;
    sd_bus_message_get_type(message, &type);
    if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
    auto* program = static_cast<ForeignProgram*>(self);
    ++program->asked;
    if (!program->hangs) {
      EXPECT_LE(0, sd_bus_reply_method_return(message, "s", "answer"));
    }
    return 1;
  }
  static int hear(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const sd_bus_error* error = sd_bus_message_get_error(message);
    static_cast<ForeignProgram*>(self)->answers.emplace_back(error == nullptr ? "" : error->name);
    return 1;
  }

  bus::Bus bus_;
  std::string name_;
};

}  // namespace support
