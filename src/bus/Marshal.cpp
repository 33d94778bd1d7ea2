#include "bus/Marshal.hpp"

#include <algorithm>
#include <limits>

#include "base/Failure.hpp"
#include "base/Text.hpp"
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

/// Appends a value whose type is chosen from the value and the declared type together.
class Writer {
 public:
  Writer(sd_bus_message* message, References& references) : message_(message), references_(references) {}

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
    open(SD_BUS_TYPE_VARIANT, signature(value));
    plain(value);
    close();
  }

 private:
  void basic(char type, const void* data) { CheckWritten(sd_bus_message_append_basic(message_, type, data)); }
  void open(char type, const std::string& contents) {
    CheckWritten(sd_bus_message_open_container(message_, type, contents.c_str()));
  }
  void close() { CheckWritten(sd_bus_message_close_container(message_)); }

  /// An empty list counts as one of texts, as nearly all lists of the house are.
  static bool allPlainTexts(const Array& values) {
    return std::all_of(values.begin(), values.end(), [](const Value& value) {
      const auto* text = std::get_if<std::string>(&value.held());
      return text != nullptr && base::IsPlainUtf8(*text);
    });
  }

  static std::string signature(const Value& value) {
    struct {
      std::string operator()(std::monostate) const { return "g"; }
      std::string operator()(bool) const { return "b"; }
      std::string operator()(std::int16_t) const { return "n"; }
      std::string operator()(std::int32_t) const { return "i"; }
      std::string operator()(float) const { return "d"; }
      std::string operator()(double) const { return "d"; }
      std::string operator()(const std::string& text) const { return base::IsPlainUtf8(text) ? "s" : "ay"; }
      std::string operator()(const ObjectRef&) const { return "(so)"; }
      std::string operator()(const ArrayHolder& values) const { return allPlainTexts(*values) ? "as" : "av"; }
      std::string operator()(const RecordHolder&) const { return "a{sv}"; }
    } const names;
    return std::visit(names, value.held());
  }

  void write(std::monostate, Type) { basic(SD_BUS_TYPE_SIGNATURE, ""); }
  void write(bool value, Type) {
    const int number = value ? 1 : 0;
    basic(SD_BUS_TYPE_BOOLEAN, &number);
  }
  void write(std::int16_t value, Type) { basic(SD_BUS_TYPE_INT16, &value); }
  void write(std::int32_t value, Type) { basic(SD_BUS_TYPE_INT32, &value); }
  void write(float value, Type) { write(static_cast<double>(value), Type::kDouble); }
  void write(double value, Type) { basic(SD_BUS_TYPE_DOUBLE, &value); }
  void write(const std::string& text, Type) {
    if (base::IsPlainUtf8(text)) {
      basic(SD_BUS_TYPE_STRING, text.c_str());
    } else {
      CheckWritten(sd_bus_message_append_array(message_, SD_BUS_TYPE_BYTE, text.data(), text.size()));
    }
  }

  void write(const ObjectRef& object, Type) {
    const Address address = object ? references_.addressOf(object, OrEmpty(receiver())) : Address{"", "/"};
    open(SD_BUS_TYPE_STRUCT, "so");
    basic(SD_BUS_TYPE_STRING, address.name.c_str());
    basic(SD_BUS_TYPE_OBJECT_PATH, address.path.c_str());
    close();
  }

  void write(const ArrayHolder& values, Type declared) {
    if (declared != Type::kArray && allPlainTexts(*values)) {
      open(SD_BUS_TYPE_ARRAY, "s");
      for (const Value& value : *values)
        basic(SD_BUS_TYPE_STRING, std::get<std::string>(value.held()).c_str());
    } else {
      open(SD_BUS_TYPE_ARRAY, "v");
      for (const Value& value : *values) variant(value);
    }
    close();
  }

  void write(const RecordHolder& record, Type) {
    open(SD_BUS_TYPE_ARRAY, "{sv}");
    for (const auto& [key, value] : *record) {
      open(SD_BUS_TYPE_DICT_ENTRY, "sv");
      basic(SD_BUS_TYPE_STRING, CarriableText(key).c_str());
      variant(value);
      close();
    }
    close();
  }

  const char* receiver() { return sd_bus_message_get_destination(message_); }

  sd_bus_message* message_;
  References& references_;
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
    Check(sd_bus_message_read_basic(message_, type, &value));
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
                  [&]() -> Value { return contents.starts_with('{') ? entries(contents) : elements(); });
  }

  Value elements() {
    Array values;
    while (!atEnd()) values.push_back(read());
    return values;
  }

  Value entries(const std::string& contents) {
    const std::string pair = contents.substr(1, contents.size() - 2);
    Record record;
    while (!atEnd()) {
      inside(SD_BUS_TYPE_DICT_ENTRY, pair, [&] {
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

void Append(sd_bus_message* message, const Value& value, Type declared, References& references) {
  Writer(message, references).append(value, declared);
}

void AppendPlain(sd_bus_message* message, const Value& value, References& references) {
  Writer(message, references).plain(value);
}

void AppendVariant(sd_bus_message* message, const Value& value, References& references) {
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
