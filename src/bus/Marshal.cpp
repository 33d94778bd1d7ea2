#include "bus/Marshal.hpp"

#include <algorithm>
#include <cerrno>
#include <limits>

#include "base/Failure.hpp"
#include "base/Interchange.hpp"
#include "bus/Errors.hpp"

namespace bus {

using base::Array;
using base::ObjectRef;
using base::Record;
using base::Type;
using base::Value;

namespace {

using ArrayHolder = std::shared_ptr<const Array>;
using RecordHolder = std::shared_ptr<const Record>;

void CheckWritten(int result) {
  if (result < 0 && result != -ENOTCONN && result != -ECONNRESET)
    throw base::Failure(base::number::kInvalidArgument, "The value can't be sent");
  Check(result);
}

[[noreturn]] void ThrowTooLarge(const std::string& what, std::size_t limit) {
  throw base::Failure(base::number::kOverflow,
                      what + " on the bus can't be larger than " + std::to_string(limit >> 20U) + " MiB");
}

/// Appends a value whose type is chosen from the value and the declared type together.
class Writer {
 public:
  Writer(Draft& draft, References& references)
      : draft_(draft), message_(draft.get()), references_(references) {}

  void append(const Value& value, Type declared) {
    if (declared == Type::kAny) {
      variant(value);
    } else {
      plain(value, declared);
    }
  }

  /// kNone stands for a type that nobody has declared.
  void plain(const Value& value, Type declared = Type::kNone) {
    std::visit([&](const auto& held) { write(held, declared); }, value.held());
  }

  void variant(const Value& value) {
    if (const auto* values = std::get_if<ArrayHolder>(&value.held())) {
      // Looked through once: there may be many of them.
      const bool texts = allPlainTexts(**values);
      return inside(SD_BUS_TYPE_VARIANT, texts ? "as" : "av", [&] { list(**values, texts); });
    }
    inside(SD_BUS_TYPE_VARIANT, signature(value), [&] { plain(value); });
  }

 private:
  /// Counts what comes next, as it lies in the message.
  void place(std::size_t alignment, std::size_t bytes) {
    draft_.size = (draft_.size + alignment - 1) / alignment * alignment + bytes;
    if (draft_.size > kLongestMessage) ThrowTooLarge("A message", kLongestMessage);
  }
  void text(const std::string& value) {
    place(4, 4 + value.size() + 1);
    basic(SD_BUS_TYPE_STRING, value.c_str());
  }
  void bytes(const std::string& value) {
    if (value.size() > kLongestList) ThrowTooLarge("A text that has to be sent as bytes", kLongestList);
    place(4, 4 + value.size());
    CheckWritten(sd_bus_message_append_array(message_, SD_BUS_TYPE_BYTE, value.data(), value.size()));
  }
  template <class Number>
  void number(char type, Number value) {
    place(sizeof value, sizeof value);
    basic(type, &value);
  }
  void basic(char type, const void* data) { CheckWritten(sd_bus_message_append_basic(message_, type, data)); }

  /// Runs `body` inside a container.
  template <class Body>
  void inside(char type, const std::string& contents, Body&& body) {
    if (++depth_ > kDeepestContainer)
      throw base::Failure(base::number::kInvalidArgument, "Lists lie too deep within each other to be sent");
    if (type == SD_BUS_TYPE_VARIANT)
      place(1, contents.size() + 2);
    else if (type == SD_BUS_TYPE_ARRAY)
      place(4, 4);
    else
      place(8, 0);
    const std::size_t start = draft_.size;
    CheckWritten(sd_bus_message_open_container(message_, type, contents.c_str()));
    std::forward<Body>(body)();
    CheckWritten(sd_bus_message_close_container(message_));
    if (type == SD_BUS_TYPE_ARRAY && draft_.size - start > kLongestList)
      ThrowTooLarge("A list", kLongestList);
    --depth_;
  }

  /// Whether it goes as a text, or as bytes.
  static bool isText(const std::string& value) {
    if (value.size() > kLongestMessage) ThrowTooLarge("A message", kLongestMessage);
    return base::IsInterchangeUtf8(value);
  }

  /// An empty list counts as one of texts, as nearly all lists of the house are.
  static bool allPlainTexts(const Array& values) {
    return std::all_of(values.begin(), values.end(), [](const Value& value) {
      const auto* text = std::get_if<std::string>(&value.held());
      return text != nullptr && isText(*text);
    });
  }

  /// The bus takes no bytes for the key of a dictionary, so a record with other keys goes as a list of pairs.
  static bool allPlainKeys(const Record& record) {
    return std::all_of(record.begin(), record.end(), [](const auto& entry) { return isText(entry.first); });
  }

  static std::string signature(const Value& value) {
    struct {
      std::string operator()(std::monostate) const { return "g"; }
      std::string operator()(bool) const { return "b"; }
      std::string operator()(std::int16_t) const { return "n"; }
      std::string operator()(std::int32_t) const { return "i"; }
      std::string operator()(float) const { return "d"; }
      std::string operator()(double) const { return "d"; }
      std::string operator()(const std::string& text) const { return isText(text) ? "s" : "ay"; }
      std::string operator()(const ObjectRef&) const { return "(so)"; }
      std::string operator()(const ArrayHolder& values) const { return allPlainTexts(*values) ? "as" : "av"; }
      std::string operator()(const RecordHolder& record) const {
        return allPlainKeys(*record) ? "a{sv}" : "a(ayv)";
      }
    } const names;
    return std::visit(names, value.held());
  }

  void write(std::monostate, Type) {
    place(1, 2);
    basic(SD_BUS_TYPE_SIGNATURE, "");
  }
  void write(bool value, Type) { number(SD_BUS_TYPE_BOOLEAN, value ? 1 : 0); }
  void write(std::int16_t value, Type) { number(SD_BUS_TYPE_INT16, value); }
  void write(std::int32_t value, Type) { number(SD_BUS_TYPE_INT32, value); }
  void write(float value, Type) { number(SD_BUS_TYPE_DOUBLE, static_cast<double>(value)); }
  void write(double value, Type) { number(SD_BUS_TYPE_DOUBLE, value); }
  void write(const std::string& value, Type) {
    if (isText(value))
      text(value);
    else
      bytes(value);
  }

  void write(const ObjectRef& object, Type) {
    const Address address = object ? references_.addressOf(object, OrEmpty(receiver())) : Address{"", "/"};
    inside(SD_BUS_TYPE_STRUCT, "so", [&] {
      text(address.name);
      place(4, 4 + address.path.size() + 1);
      basic(SD_BUS_TYPE_OBJECT_PATH, address.path.c_str());
    });
  }

  void write(const ArrayHolder& values, Type declared) {
    list(*values, declared != Type::kArray && allPlainTexts(*values));
  }
  void list(const Array& values, bool texts) {
    inside(SD_BUS_TYPE_ARRAY, texts ? "s" : "v", [&] {
      for (const Value& value : values) {
        if (texts)
          text(std::get<std::string>(value.held()));
        else
          variant(value);
      }
    });
  }

  void write(const RecordHolder& record, Type) {
    const bool plainKeys = allPlainKeys(*record);
    inside(SD_BUS_TYPE_ARRAY, plainKeys ? "{sv}" : "(ayv)", [&] {
      for (const auto& [key, value] : *record) entry(key, value, plainKeys);
    });
  }
  void entry(const std::string& key, const Value& value, bool plainKey) {
    inside(plainKey ? SD_BUS_TYPE_DICT_ENTRY : SD_BUS_TYPE_STRUCT, plainKey ? "sv" : "ayv", [&] {
      if (plainKey)
        text(key);
      else
        bytes(key);
      variant(value);
    });
  }

  const char* receiver() { return sd_bus_message_get_destination(message_); }

  Draft& draft_;
  sd_bus_message* message_;
  References& references_;
  int depth_ = 0;
};

template <class Number>
Value Narrowed(Number number) {
  if (std::in_range<std::int32_t>(number)) return static_cast<std::int32_t>(number);
  return static_cast<double>(number);
}

class Reader {
 public:
  Reader(sd_bus_message* message, References& references)
      : message_(message), references_(references), sender_(OrEmpty(sd_bus_message_get_sender(message))) {}

  bool atEnd() {
    const int result = sd_bus_message_at_end(message_, 0);
    Check(result);
    return result > 0;
  }

  Value read() {
    char type = 0;
    const char* contents = nullptr;
    Check(sd_bus_message_peek_type(message_, &type, &contents));
    switch (type) {
      case SD_BUS_TYPE_BOOLEAN: return basic<int>(type) != 0;
      case SD_BUS_TYPE_BYTE: return static_cast<std::int16_t>(basic<std::uint8_t>(type));
      case SD_BUS_TYPE_INT16: return basic<std::int16_t>(type);
      case SD_BUS_TYPE_UINT16: {
        const auto number = basic<std::uint16_t>(type);
        if (std::in_range<std::int16_t>(number)) return static_cast<std::int16_t>(number);
        return static_cast<std::int32_t>(number);
      }
      case SD_BUS_TYPE_INT32: return basic<std::int32_t>(type);
      case SD_BUS_TYPE_UINT32: return Narrowed(basic<std::uint32_t>(type));
      case SD_BUS_TYPE_INT64: return Narrowed(basic<std::int64_t>(type));
      case SD_BUS_TYPE_UINT64: return Narrowed(basic<std::uint64_t>(type));
      case SD_BUS_TYPE_DOUBLE: return basic<double>(type);
      case SD_BUS_TYPE_STRING: return basic<const char*>(type);
      case SD_BUS_TYPE_SIGNATURE: {
        const std::string text = basic<const char*>(type);
        return text.empty() ? Value() : Value(text);
      }
      case SD_BUS_TYPE_OBJECT_PATH: return references_.resolve({"", basic<const char*>(type)}, sender_);
      case SD_BUS_TYPE_VARIANT: return inside(type, contents, [&] { return read(); });
      case SD_BUS_TYPE_STRUCT: return structure(contents);
      case SD_BUS_TYPE_ARRAY: return array(contents);
      default: break;
    }
    throw base::Failure(base::number::kTypeMismatch);
  }

 private:
  template <class T>
  T basic(char type) {
    T value{};
    const int result = sd_bus_message_read_basic(message_, type, &value);
    if (result == -EBADMSG)
      throw base::Failure(base::number::kTypeMismatch,
                          "A text holds what the bus library takes for no text; it has to be sent as bytes");
    Check(result);
    return value;
  }

  template <class Body>
  Value inside(char type, const std::string& contents, Body&& body) {
    Check(sd_bus_message_enter_container(message_, type, contents.c_str()));
    Value value = std::forward<Body>(body)();
    Check(sd_bus_message_exit_container(message_));
    return value;
  }

  Value structure(const std::string& contents) {
    return inside(SD_BUS_TYPE_STRUCT, contents, [&]() -> Value {
      if (contents != "so") return elements();
      const std::string name = basic<const char*>(SD_BUS_TYPE_STRING);
      return references_.resolve({name, basic<const char*>(SD_BUS_TYPE_OBJECT_PATH)}, sender_);
    });
  }

  Value array(const std::string& contents) {
    if (contents == "y") {
      const void* data = nullptr;
      std::size_t size = 0;
      Check(sd_bus_message_read_array(message_, SD_BUS_TYPE_BYTE, &data, &size));
      return size == 0 ? std::string() : std::string(static_cast<const char*>(data), size);
    }
    return inside(SD_BUS_TYPE_ARRAY, contents,
                  [&]() -> Value { return isRecord(contents) ? entries(contents) : elements(); });
  }

  Value elements() {
    Array values;
    while (!atEnd()) values.push_back(read());
    return values;
  }

  static bool isRecord(const std::string& contents) {
    return contents.starts_with('{') || contents == "(ayv)";
  }

  Value entries(const std::string& contents) {
    const char type = contents.starts_with('{') ? SD_BUS_TYPE_DICT_ENTRY : SD_BUS_TYPE_STRUCT;
    const std::string pair = contents.substr(1, contents.size() - 2);
    Record record;
    while (!atEnd()) {
      inside(type, pair, [&] {
        std::string key = base::ToText(read());
        record.emplace_back(std::move(key), read());
        return Value();
      });
    }
    return record;
  }

  sd_bus_message* message_;
  References& references_;
  std::string sender_;
};

}  // namespace

std::string SignatureOf(Type type) {
  switch (type) {
    case Type::kNone: return "";
    case Type::kAny: return "v";
    case Type::kBoolean: return "b";
    case Type::kInt16: return "n";
    case Type::kInt32: return "i";
    case Type::kSingle:
    case Type::kDouble: return "d";
    case Type::kText: return "s";
    case Type::kObject: return "(so)";
    case Type::kTextList: return "as";
    case Type::kArray: return "av";
    case Type::kRecord: return "a{sv}";
  }
  return "v";
}

void Append(Draft& message, const Value& value, Type declared, References& references) {
  Writer(message, references).append(value, declared);
}

void AppendPlain(Draft& message, const Value& value, References& references) {
  Writer(message, references).plain(value);
}

void AppendVariant(Draft& message, const Value& value, References& references) {
  Writer(message, references).variant(value);
}

Value Read(sd_bus_message* message, References& references) { return Reader(message, references).read(); }

std::vector<Value> ReadAll(sd_bus_message* message, References& references) {
  Reader reader(message, references);
  std::vector<Value> values;
  while (!reader.atEnd()) values.push_back(reader.read());
  return values;
}

}  // namespace bus
