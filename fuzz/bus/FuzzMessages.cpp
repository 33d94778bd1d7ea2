// Values on their way through a message of the bus: each comes out as it went in, whatever its texts hold.
// The first bytes choose the shape, the rest are its texts.
#include <sys/socket.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "bus/Marshal.hpp"
#include "fuzz/Alphabet.hpp"

namespace {

using base::Array;
using base::Record;
using base::Value;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// A connection that is never answered: good enough to make messages for.
bus::Bus Unanswered() {
  std::array<int, 2> ends{};
  Require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) == 0);
  sd_bus* made = nullptr;
  Require(sd_bus_new(&made) >= 0);
  Require(sd_bus_set_fd(made, ends[0], ends[0]) >= 0);
  Require(sd_bus_start(made) >= 0);
  return bus::Bus(made);
}

class NoReferences : public bus::References {
 public:
  base::ObjectRef resolve(const bus::Address& /*address*/, const std::string& /*sender*/) override {
    return nullptr;
  }
  bus::Address addressOf(const base::ObjectRef& /*object*/, const std::string& /*receiver*/) override {
    return {"", "/"};
  }
};

/// The value that the text is cut into, piece by piece.
class Maker {
 public:
  explicit Maker(const std::string& text) : text_(text) {}
  Value make(int depth = 0) {
    const auto kind = static_cast<unsigned char>(next(1).empty() ? 0 : text_[at_ - 1]) % 8U;
    switch (depth > 6 ? 0 : kind) {
      case 1: return Value();
      case 2: return true;
      case 3: return static_cast<std::int16_t>(at_);
      case 4: return static_cast<double>(at_) / 3;
      case 5: return Array{make(depth + 1), make(depth + 1)};
      case 6: return Array{next(9), next(9), next(9)};
      case 7: return Record{{next(5), make(depth + 1)}, {next(5), next(9)}};
      default: return next(20);
    }
  }

 private:
  std::string next(std::size_t most) {
    std::string piece = text_.substr(at_, most);
    at_ += piece.size();
    return piece;
  }
  const std::string& text_;
  std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bus::Bus bus = Unanswered();
  const std::string text = support::Spelled(data, size);
  const Value value = Maker(text).make();
  NoReferences references;
  sd_bus_message* made = nullptr;
  Require(sd_bus_message_new_method_call(bus.get(), &made, "org.example.Any", "/any", nullptr, "Any") >= 0);
  bus::Draft draft{bus::Message(made)};
  bus::AppendPlain(draft, value, references);
  bus::AppendVariant(draft, value, references);
  Require(sd_bus_message_seal(made, 1, 0) >= 0);
  Require(sd_bus_message_rewind(made, 1) >= 0);
  Require(bus::ReadAll(made, references) == std::vector<Value>{value, value});
  return 0;
}
