#include "mpris/session/Value.hpp"

#include <cerrno>

#include "base/Failure.hpp"
#include "bus/Errors.hpp"

namespace mpris {

using bus::Check;

namespace {

/// The bus's booleans take as much room as an int.
void Write(sd_bus_message* message, bool value) {
  const int flag = value ? 1 : 0;
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_BOOLEAN, &flag));
}
void Write(sd_bus_message* message, std::int32_t value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_INT32, &value));
}
void Write(sd_bus_message* message, std::uint32_t value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT32, &value));
}
void Write(sd_bus_message* message, std::int64_t value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_INT64, &value));
}
void Write(sd_bus_message* message, double value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_DOUBLE, &value));
}
void Write(sd_bus_message* message, const std::string& value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, value.c_str()));
}
void Write(sd_bus_message* message, const Path& value) {
  Check(sd_bus_message_append_basic(message, SD_BUS_TYPE_OBJECT_PATH, value.text.c_str()));
}

template <class Body>
void Inside(sd_bus_message* message, char type, const std::string& contents, Body&& body) {
  Check(sd_bus_message_open_container(message, type, contents.c_str()));
  std::forward<Body>(body)();
  Check(sd_bus_message_close_container(message));
}

void Write(sd_bus_message* message, const Texts& values) {
  Inside(message, SD_BUS_TYPE_ARRAY, "s", [&] {
    for (const std::string& value : values) Write(message, value);
  });
}
void Write(sd_bus_message* message, const Dict& entries) {
  Inside(message, SD_BUS_TYPE_ARRAY, "{sv}", [&] {
    for (const auto& [key, value] : entries)
      Inside(message, SD_BUS_TYPE_DICT_ENTRY, "sv", [&, &name = key, &held = value] {
        Write(message, name);
        Append(message, held, "v");
      });
  });
}
void Write(sd_bus_message* message, const ListedPlaylist& playlist) {
  Inside(message, SD_BUS_TYPE_STRUCT, "oss", [&] {
    Write(message, playlist.id);
    Write(message, playlist.name);
    Write(message, playlist.icon);
  });
}
void Write(sd_bus_message* message, const std::vector<ListedPlaylist>& playlists) {
  Inside(message, SD_BUS_TYPE_ARRAY, "(oss)", [&] {
    for (const ListedPlaylist& playlist : playlists) Write(message, playlist);
  });
}
void Write(sd_bus_message* message, const ActivePlaylist& active) {
  Inside(message, SD_BUS_TYPE_STRUCT, "b(oss)", [&] {
    Write(message, active.valid);
    Write(message, active.playlist);
  });
}

template <class T>
T Basic(sd_bus_message* message, char type) {
  T value{};
  const int result = sd_bus_message_read_basic(message, type, &value);
  if (result == -EBADMSG) throw base::Failure(base::number::kTypeMismatch, "A text is no UTF-8");
  Check(result);
  return value;
}

Value Read(sd_bus_message* message) {
  char type = 0;
  const char* contents = nullptr;
  Check(sd_bus_message_peek_type(message, &type, &contents));
  switch (type) {
    case SD_BUS_TYPE_BOOLEAN: return Basic<int>(message, type) != 0;
    case SD_BUS_TYPE_INT32: return Basic<std::int32_t>(message, type);
    case SD_BUS_TYPE_UINT32: return Basic<std::uint32_t>(message, type);
    case SD_BUS_TYPE_INT64: return Basic<std::int64_t>(message, type);
    case SD_BUS_TYPE_DOUBLE: return Basic<double>(message, type);
    case SD_BUS_TYPE_STRING: return std::string(Basic<const char*>(message, type));
    case SD_BUS_TYPE_OBJECT_PATH: return Path{Basic<const char*>(message, type)};
    case SD_BUS_TYPE_VARIANT: {
      // Not even looked into where it could be deep.
      if (contents == nullptr || std::string_view(contents).size() != 1 || *contents == SD_BUS_TYPE_VARIANT)
        break;
      Check(sd_bus_message_enter_container(message, type, contents));
      Value value = Read(message);
      Check(sd_bus_message_exit_container(message));
      return value;
    }
    default: break;
  }
  throw base::Failure(base::number::kTypeMismatch);
}

}  // namespace

std::string SignatureOf(const Value& value) {
  struct {
    std::string operator()(bool) const { return "b"; }
    std::string operator()(std::int32_t) const { return "i"; }
    std::string operator()(std::uint32_t) const { return "u"; }
    std::string operator()(std::int64_t) const { return "x"; }
    std::string operator()(double) const { return "d"; }
    std::string operator()(const std::string&) const { return "s"; }
    std::string operator()(const Path&) const { return "o"; }
    std::string operator()(const Texts&) const { return "as"; }
    std::string operator()(const Dict&) const { return "a{sv}"; }
    std::string operator()(const std::vector<ListedPlaylist>&) const { return "a(oss)"; }
    std::string operator()(const ActivePlaylist&) const { return "(b(oss))"; }
  } const names;
  return std::visit(names, value.held);
}

void Append(sd_bus_message* message, const Value& value, const std::string& declared) {
  const auto write = [&] { std::visit([&](const auto& held) { Write(message, held); }, value.held); };
  if (declared == "v")
    Inside(message, SD_BUS_TYPE_VARIANT, SignatureOf(value), write);
  else
    write();
}

std::vector<Value> ReadAll(sd_bus_message* message) {
  std::vector<Value> values;
  for (;;) {
    const int end = sd_bus_message_at_end(message, 1);
    Check(end);
    if (end > 0) return values;
    values.push_back(Read(message));
  }
}

}  // namespace mpris
