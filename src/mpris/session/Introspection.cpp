#include "mpris/session/Introspection.hpp"

namespace mpris {

namespace {

constexpr const char* kHead =
    "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
    " \"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n";

void Write(std::string& text, const std::vector<Argument>& arguments, const char* direction) {
  for (const Argument& argument : arguments) {
    text += "   <arg name=\"" + argument.name + "\" type=\"" + argument.type + "\"";
    if (*direction != '\0') text += std::string(" direction=\"") + direction + "\"";
    text += "/>\n";
  }
}

void Write(std::string& text, const Property& property) {
  text += "  <property name=\"" + property.name + "\" type=\"" + property.type + "\" access=\"" +
          (property.write ? "readwrite" : "read") + "\"";
  if (property.told == Told::kEverybody)
    text += "/>\n";
  else
    text +=
        ">\n   <annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" value=\"false\"/>\n"
        "  </property>\n";
}

void Write(std::string& text, const Interface& interface) {
  text += " <interface name=\"" + interface.name + "\">\n";
  for (const Method& method : interface.methods) {
    text += "  <method name=\"" + method.name + "\">\n";
    Write(text, method.in, "in");
    Write(text, method.out, "out");
    text += "  </method>\n";
  }
  for (const Signal& signal : interface.signals) {
    text += "  <signal name=\"" + signal.name + "\">\n";
    Write(text, signal.arguments, "");
    text += "  </signal>\n";
  }
  for (const Property& property : interface.properties) Write(text, property);
  text += " </interface>\n";
}

}  // namespace

std::string Introspected(const std::vector<const Interface*>& interfaces) {
  std::string text = std::string(kHead) + "<node>\n";
  for (const Interface* interface : interfaces) Write(text, *interface);
  return text + "</node>\n";
}

std::string IntrospectedOnTheWay(const std::string& path, const std::string& object) {
  const std::string before = path == "/" ? path : path + "/";
  if (!object.starts_with(before)) return {};
  const std::string rest = object.substr(before.size());
  return std::string(kHead) + "<node>\n <node name=\"" + rest.substr(0, rest.find('/')) + "\"/>\n</node>\n";
}

}  // namespace mpris
