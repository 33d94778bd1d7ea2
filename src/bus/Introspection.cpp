#include "bus/Introspection.hpp"

#include <expat.h>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "base/Failure.hpp"
#include "base/Interchange.hpp"
#include "base/Text.hpp"
#include "bus/Marshal.hpp"
#include "bus/Paths.hpp"

namespace bus {

namespace {

constexpr std::string_view kBusOwn = "org.freedesktop.DBus.";
constexpr std::string_view kDefaultNote = "org.vantorix.Default";

constexpr const char* kStandardInterfaces = R"( <interface name="org.freedesktop.DBus.Introspectable">
  <method name="Introspect">
   <arg name="xml_data" type="s" direction="out"/>
  </method>
 </interface>
 <interface name="org.freedesktop.DBus.Peer">
  <method name="Ping"/>
  <method name="GetMachineId">
   <arg name="machine_uuid" type="s" direction="out"/>
  </method>
 </interface>
 <interface name="org.freedesktop.DBus.Properties">
  <method name="Get">
   <arg name="interface_name" type="s" direction="in"/>
   <arg name="property_name" type="s" direction="in"/>
   <arg name="value" type="v" direction="out"/>
  </method>
  <method name="Set">
   <arg name="interface_name" type="s" direction="in"/>
   <arg name="property_name" type="s" direction="in"/>
   <arg name="value" type="v" direction="in"/>
  </method>
  <method name="GetAll">
   <arg name="interface_name" type="s" direction="in"/>
   <arg name="properties" type="a{sv}" direction="out"/>
  </method>
 </interface>
)";

constexpr const char* kManyCalls = R"( <interface name="org.vantorix.Calls">
  <method name="CallEach">
   <arg name="calls" type="av" direction="in"/>
   <arg name="failed" type="av" direction="out"/>
  </method>
 </interface>
)";

/// A text inside an XML attribute. Control characters, which XML can't hold, become blanks.
std::string Quoted(const std::string& text) {
  std::string quoted;
  for (const char c : base::InterchangeUtf8(text)) {
    switch (c) {
      case '&': quoted += "&amp;"; break;
      case '<': quoted += "&lt;"; break;
      case '>': quoted += "&gt;"; break;
      case '"': quoted += "&quot;"; break;
      default: quoted += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  return quoted;
}

std::string FallbackText(const base::Value& value) {
  try {
    return base::ToText(value);
  } catch (const base::Failure&) {
    return {};  // a list or an object has no text
  }
}

void DescribeArgument(std::string& text, const std::string& name, base::Type type, const char* direction,
                      const std::optional<base::Value>& fallback) {
  text +=
      R"(   <arg name=")" + Quoted(name) + R"(" type=")" + SignatureOf(type) + R"(" direction=")" + direction;
  if (!fallback) {
    text += "\"/>\n";
    return;
  }
  text += "\">\n    <annotation name=\"" + std::string(kDefaultNote) + R"(" value=")" +
          Quoted(FallbackText(*fallback)) + "\"/>\n   </arg>\n";
}

void DescribeOperation(std::string& text, const base::Member& member) {
  text += R"(  <method name=")" + Quoted(member.name) + "\">\n";
  for (const auto& param : member.params)
    DescribeArgument(text, param.name, param.type, "in", param.fallback);
  if (member.result != base::Type::kNone)
    DescribeArgument(text, kResultName, member.result, "out", std::nullopt);
  for (const auto& param : member.params) {
    if (param.inOut) DescribeArgument(text, param.name, param.type, "out", std::nullopt);
  }
  text += "  </method>\n";
}

void DescribeField(std::string& text, const base::Member& member) {
  const char* access = member.kind == base::MemberKind::kReadField    ? "read"
                       : member.kind == base::MemberKind::kWriteField ? "write"
                                                                      : "readwrite";
  text += R"(  <property name=")" + Quoted(member.name) + R"(" type=")" + SignatureOf(member.result) +
          R"(" access=")" + access + "\">\n" +
          R"(   <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>)" +
          "\n  </property>\n";
}

/// Collects what the XML parser reports.
class NodeReader {
 public:
  NodeInfo node;

  void start(std::string_view element, const XML_Char** attributes) {
    if (element == "node" && depth_++ > 0) {
      node.children.push_back(attribute(attributes, "name"));
    } else if (element == "interface") {
      inMethod_ = false;  // the methods of this one are still to come, wherever it stands
      node.interfaces.push_back({attribute(attributes, "name"), {}, {}});
    } else if (node.interfaces.empty()) {
      return;
    } else if (element == "method") {
      node.interfaces.back().methods.push_back({attribute(attributes, "name"), {}});
      inMethod_ = true;
    } else if (element == "property") {
      const std::string access = attribute(attributes, "access");
      node.interfaces.back().properties.push_back({attribute(attributes, "name"),
                                                   attribute(attributes, "type"), access != "write",
                                                   access != "read"});
    } else if (inMethod_) {
      startInMethod(element, attributes);
    }
  }

  void end(std::string_view element) {
    if (element == "method") inMethod_ = false;
    if (element == "node") --depth_;
  }

 private:
  void startInMethod(std::string_view element, const XML_Char** attributes) {
    auto& arguments = node.interfaces.back().methods.back().arguments;
    if (element == "arg") {
      arguments.push_back({attribute(attributes, "name"), attribute(attributes, "type"),
                           attribute(attributes, "direction") == "out"});
    } else if (element == "annotation" && !arguments.empty() &&
               attribute(attributes, "name") == kDefaultNote) {
      arguments.back().fallback = attribute(attributes, "value");
    }
  }

  static std::string attribute(const XML_Char** attributes, std::string_view name) {
    for (; *attributes != nullptr; attributes += 2) {
      if (name == attributes[0]) return attributes[1];
    }
    return {};
  }

  int depth_ = 0;
  bool inMethod_ = false;
};

template <class Infos>
auto FindByName(const std::vector<InterfaceInfo>& interfaces, Infos InterfaceInfo::*infos,
                std::string_view name) -> const typename Infos::value_type* {
  for (const auto& interface : interfaces) {
    if (!IsOwnInterface(interface.name)) continue;
    for (const auto& info : interface.*infos) {
      if (base::SameText(info.name, name)) return &info;
    }
  }
  return nullptr;
}

}  // namespace

const MethodInfo* NodeInfo::findMethod(std::string_view name) const {
  return FindByName(interfaces, &InterfaceInfo::methods, name);
}

const PropertyInfo* NodeInfo::findProperty(std::string_view name) const {
  return FindByName(interfaces, &InterfaceInfo::properties, name);
}

bool NodeInfo::hasInterface(std::string_view name) const {
  return std::any_of(interfaces.begin(), interfaces.end(),
                     [&](const InterfaceInfo& interface) { return interface.name == name; });
}

bool IsOwnInterface(std::string_view name) { return !name.starts_with(kBusOwn) && name != kCalls; }

ReplyShape ShapeOf(const MethodInfo& method) {
  ReplyShape shape;
  std::vector<std::string> ins;
  for (const auto& argument : method.arguments) {
    if (!argument.out) ins.push_back(argument.name);
  }
  bool first = true;
  for (const auto& argument : method.arguments) {
    if (!argument.out) continue;
    const auto in = std::find(ins.begin(), ins.end(), argument.name);
    if (in != ins.end() && !(first && argument.name == kResultName)) {
      shape.inOut.push_back(static_cast<std::size_t>(in - ins.begin()));
    } else if (first) {
      shape.result = true;
    }
    first = false;
  }
  return shape;
}

std::string DescribeNode(const base::MemberTable* table, const std::vector<std::string>& children) {
  std::string text =
      "<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object Introspection 1.0//EN\"\n"
      "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n<node>\n";
  text += kStandardInterfaces;
  if (table != nullptr) {
    text += kManyCalls;
    text += R"( <interface name="org.vantorix.)" + Quoted(table->interfaceName()) + "\">\n";
    for (const auto& member : table->list()) {
      if (member.kind == base::MemberKind::kOperation) {
        DescribeOperation(text, member);
      } else {
        DescribeField(text, member);
      }
    }
    text += " </interface>\n";
  }
  for (const auto& child : children) text += R"( <node name=")" + Quoted(child) + "\"/>\n";
  return text + "</node>\n";
}

NodeInfo ParseNode(const std::string& text) {
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
      XML_ParserCreate("UTF-8"), &XML_ParserFree);
  NodeReader reader;
  XML_SetUserData(parser.get(), &reader);
  XML_SetElementHandler(
      parser.get(),
      [](void* self, const XML_Char* element, const XML_Char** attributes) {
        static_cast<NodeReader*>(self)->start(element, attributes);
      },
      [](void* self, const XML_Char* element) { static_cast<NodeReader*>(self)->end(element); });
  if (XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) != XML_STATUS_OK)
    throw base::Failure(base::number::kInternal, "The introspection text is no XML");
  return std::move(reader.node);
}

}  // namespace bus
