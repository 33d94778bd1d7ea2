#include "scripting/Values.hpp"

#include <bit>
#include <cstdint>
#include <utility>

#include "base/Failure.hpp"
#include "scripting/ScriptHouse.hpp"

namespace scripting {
namespace {

using wire::Bytes;
using wire::PutNumber;
using wire::PutText;

constexpr int kDeepest = 64;

enum class Kind : std::uint8_t {
  kEmpty,
  kFalse,
  kTrue,
  kInt16,
  kInt32,
  kSingle,
  kDouble,
  kText,
  kNoObject,
  kObject,
  kArray,
  kRecord
};

void PutKind(std::string& out, Kind kind) { out += static_cast<char>(kind); }

void PutLong(std::string& out, std::uint64_t value) {
  PutNumber(out, static_cast<std::uint32_t>(value));
  PutNumber(out, static_cast<std::uint32_t>(value >> 32U));
}

void Take(std::size_t& left, std::size_t bytes) {
  if (bytes > left) throw base::Failure(base::number::kOverflow, "The value is too large");
  left -= bytes;
}

/// The same for what is read.
bool Takes(Bytes& in, std::size_t& left, std::size_t bytes) {
  if (bytes > left) {
    in.fail();
    return false;
  }
  left -= bytes;
  return true;
}

struct Writer {
  std::string& out;
  std::size_t& left;
  int depth;

  void operator()(std::monostate) const { PutKind(out, Kind::kEmpty); }
  void operator()(bool truth) const { PutKind(out, truth ? Kind::kTrue : Kind::kFalse); }
  void operator()(std::int16_t number) const {
    PutKind(out, Kind::kInt16);
    PutNumber(out, static_cast<std::uint32_t>(std::int32_t{number}));
  }
  void operator()(std::int32_t number) const {
    PutKind(out, Kind::kInt32);
    PutNumber(out, static_cast<std::uint32_t>(number));
  }
  void operator()(float number) const {
    PutKind(out, Kind::kSingle);
    PutNumber(out, std::bit_cast<std::uint32_t>(number));
  }
  void operator()(double number) const {
    PutKind(out, Kind::kDouble);
    PutLong(out, std::bit_cast<std::uint64_t>(number));
  }
  void operator()(const std::string& text) const {
    Take(left, text.size());
    PutKind(out, Kind::kText);
    PutText(out, text);
  }
  void operator()(const base::ObjectRef& object) const {
    const auto* handle = dynamic_cast<const ScriptHandle*>(object.get());
    PutKind(out, handle == nullptr ? Kind::kNoObject : Kind::kObject);
    if (handle != nullptr) PutNumber(out, static_cast<std::uint32_t>(handle->id()));
  }
  void operator()(const std::shared_ptr<const base::Array>& list) const {
    PutKind(out, Kind::kArray);
    PutNumber(out, static_cast<std::uint32_t>(list->size()));
    for (const base::Value& each : *list) PutValue(out, each, left, depth + 1);
  }
  void operator()(const std::shared_ptr<const base::Record>& record) const {
    PutKind(out, Kind::kRecord);
    PutNumber(out, static_cast<std::uint32_t>(record->size()));
    for (const auto& [key, each] : *record) {
      Take(left, key.size());
      PutText(out, key);
      PutValue(out, each, left, depth + 1);
    }
  }
};

base::Value ReadText(Bytes& in, std::size_t& left) {
  const std::string_view text = in.text();
  return Takes(in, left, text.size()) ? base::Value(text) : base::Value();
}

base::Value ReadInt16(Bytes& in) {
  const auto number = static_cast<std::int32_t>(in.number());
  const auto small = static_cast<std::int16_t>(number);
  if (small != number) in.fail();
  return small;
}

/// A count that is a lie is found out by the first value that isn't there: nothing is made room for.
base::Value ReadArray(Bytes& in, std::size_t& left, int depth) {
  base::Array list;
  for (std::uint32_t count = in.number(); count > 0 && in.good(); --count)
    list.push_back(ReadValue(in, left, depth + 1));
  return list;
}

base::Value ReadRecord(Bytes& in, std::size_t& left, int depth) {
  base::Record record;
  for (std::uint32_t count = in.number(); count > 0 && in.good(); --count) {
    const std::string_view key = in.text();
    if (!Takes(in, left, key.size())) break;
    record.emplace_back(key, ReadValue(in, left, depth + 1));
  }
  return record;
}

}  // namespace

void PutValue(std::string& out, const base::Value& value, std::size_t& left, int depth) {
  if (depth > kDeepest) throw base::Failure(base::number::kInvalidArgument, "The value is nested too deeply");
  Take(left, kOneValue);
  std::visit(Writer{out, left, depth}, value.held());
}

base::Value ReadValue(wire::Bytes& in, std::size_t& left, int depth) {
  const std::uint8_t kind = in.byte();
  if (!in.good() || depth > kDeepest || !Takes(in, left, kOneValue)) {
    in.fail();
    return {};
  }
  switch (static_cast<Kind>(kind)) {
    case Kind::kEmpty: return {};
    case Kind::kFalse: return false;
    case Kind::kTrue: return true;
    case Kind::kInt16: return ReadInt16(in);
    case Kind::kInt32: return static_cast<std::int32_t>(in.number());
    case Kind::kSingle: return std::bit_cast<float>(in.number());
    case Kind::kDouble: return std::bit_cast<double>(in.longNumber());
    case Kind::kText: return ReadText(in, left);
    case Kind::kNoObject: return base::ObjectRef();
    case Kind::kObject: return std::make_shared<ScriptHandle>(static_cast<std::int32_t>(in.number()));
    case Kind::kArray: return ReadArray(in, left, depth);
    case Kind::kRecord: return ReadRecord(in, left, depth);
  }
  in.fail();
  return {};
}

}  // namespace scripting
