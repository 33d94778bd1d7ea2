#include "mpris/session/Exported.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/Attempt.hpp"
#include "bus/Errors.hpp"
#include "bus/Paths.hpp"
#include "mpris/session/BusText.hpp"
#include "mpris/session/Introspection.hpp"

namespace mpris {

namespace {

constexpr std::size_t kLongestArguments = std::size_t{16} << 10U;
constexpr const char* kIntrospect = "Introspect";

std::string SignatureOf(const std::vector<Argument>& arguments) {
  std::string signature;
  for (const Argument& argument : arguments) signature += argument.type;
  return signature;
}

std::size_t LengthOf(const Values& values) {
  std::size_t length = 0;
  for (const Value& value : values) {
    if (const auto* text = std::get_if<std::string>(&value.held)) length += text->size();
    if (const auto* path = std::get_if<Path>(&value.held)) length += path->text.size();
  }
  return length;
}

Values ArgumentsOf(sd_bus_message* message, const Method& method) {
  if (SignatureOf(method.in) != bus::OrEmpty(sd_bus_message_get_signature(message, 1)))
    throw Refusal(kInvalidArgs, method.name + " takes \"" + SignatureOf(method.in) + "\"");
  Values arguments = base::Handled(
      [&] { return ReadAll(message); },
      [&](const base::Failure& failure) -> Values { throw Refusal(kInvalidArgs, failure.description()); });
  if (LengthOf(arguments) > kLongestArguments) throw Refusal(kInvalidArgs, "The arguments are too long");
  return arguments;
}

Dict ValuesOf(const Interface& interface, bool toldOnly) {
  Dict values;
  for (const Property& each : interface.properties)
    if (!toldOnly || each.told == Told::kEverybody) values.emplace_back(each.name, each.read());
  return values;
}

bus::Message Refused(sd_bus_message* message, const Refusal& refusal) {
  sd_bus_message* made = nullptr;
  bus::Check(sd_bus_message_new_method_errorf(message, &made, refusal.name().c_str(), "%s",
                                              BusText(refusal.description()).c_str()));
  return bus::Message(made);
}

bus::Message ReplyTo(const Exported::Call& call, const Values& results) {
  sd_bus_message* made = nullptr;
  bus::Check(sd_bus_message_new_method_return(call.message.get(), &made));
  bus::Message reply(made);
  for (std::size_t i = 0; i < results.size(); ++i) Append(made, results[i], call.method->out.at(i).type);
  return reply;
}

}  // namespace

Exported::Exported(std::string path, std::vector<Interface> interfaces, std::function<void()> before)
    : path_(std::move(path)),
      interfaces_(std::move(interfaces)),
      before_(std::move(before)),
      onTheWay_{kIntrospect, {}, {{"xml_data", "s"}}, [this](const Values& arguments) {
                  return Values{IntrospectedOnTheWay(At<Path>(arguments, 0).text, path_)};
                }} {
  standard_.push_back(propertiesTable());
  standard_.push_back(introspectionTable());
}

Interface Exported::propertiesTable() {
  return {bus::kProperties,
          {{"Get",
            {{"interface_name", "s"}, {"property_name", "s"}},
            {{"value", "v"}},
            [this](const Values& in) {
              return Values{property(At<std::string>(in, 0), At<std::string>(in, 1)).read()};
            }},
           {"GetAll",
            {{"interface_name", "s"}},
            {{"properties", "a{sv}"}},
            [this](const Values& in) {
              const auto& name = At<std::string>(in, 0);
              const bool standard = std::any_of(standard_.begin(), standard_.end(),
                                                [&](const Interface& each) { return each.name == name; });
              return Values{standard ? Dict() : ValuesOf(named(name), false)};
            }},
           {"Set",
            {{"interface_name", "s"}, {"property_name", "s"}, {"value", "v"}},
            {},
            [this](const Values& in) {
              const Property& wanted = property(At<std::string>(in, 0), At<std::string>(in, 1));
              if (!wanted.write) throw Refusal(kPropertyReadOnly, wanted.name + " is only read");
              if (mpris::SignatureOf(in[2]) != wanted.type)
                throw Refusal(kInvalidArgs, wanted.name + " is of the type \"" + wanted.type + "\"");
              wanted.write(in[2]);
              return Values();
            }}},
          {},
          {{"PropertiesChanged",
            {{"interface_name", "s"}, {"changed_properties", "a{sv}"}, {"invalidated_properties", "as"}}}}};
}

Interface Exported::introspectionTable() {
  return {
      bus::kIntrospectable,
      {{kIntrospect, {}, {{"xml_data", "s"}}, [this](const Values&) { return Values{Introspected(all())}; }}},
      {},
      {}};
}

std::vector<const Interface*> Exported::all() const {
  std::vector<const Interface*> found;
  for (const auto* list : {&standard_, &interfaces_})
    for (const Interface& each : *list) found.push_back(&each);
  return found;
}

const Method& Exported::find(const char* interface, const std::string& member) const {
  bool known = interface == nullptr;  // a caller need not name it
  for (const Interface* each : all()) {
    if (interface != nullptr && each->name != interface) continue;
    known = true;
    for (const Method& method : each->methods)
      if (method.name == member) return method;
  }
  if (!known) throw Refusal(kUnknownInterface, std::string("There is no interface ") + interface);
  throw Refusal(kUnknownMethod, "There is no method " + member);
}

const Interface& Exported::named(const std::string& interface) const {
  for (const Interface& each : interfaces_)
    if (each.name == interface) return each;
  throw Refusal(kUnknownInterface, "There is no interface " + interface);
}

const Property& Exported::property(const std::string& interface, const std::string& name) const {
  for (const Property& each : named(interface).properties)
    if (each.name == name) return each;
  throw Refusal(kUnknownProperty, "There is no property " + name);
}

Exported::Call Exported::fitting(sd_bus_message* message) const {
  const std::string path = bus::OrEmpty(sd_bus_message_get_path(message));
  const char* interface = sd_bus_message_get_interface(message);
  const std::string member = bus::OrEmpty(sd_bus_message_get_member(message));
  const auto kept = [&] { return bus::Message(sd_bus_message_ref(message)); };
  if (path != path_) {
    const bool asks = member == kIntrospect &&
                      (interface == nullptr || std::string_view(interface) == bus::kIntrospectable);
    if (!asks || IntrospectedOnTheWay(path, path_).empty())
      throw Refusal(kUnknownObject, "There is no object " + path);
    static_cast<void>(ArgumentsOf(message, onTheWay_));
    return {kept(), &onTheWay_, {Path{path}}};
  }
  const Method& method = find(interface, member);
  Values arguments = ArgumentsOf(message, method);
  return {kept(), &method, std::move(arguments)};
}

Exported::Call Exported::admit(sd_bus_message* message) const {
  try {
    return fitting(message);
  } catch (const Refusal& refusal) {
    return {.refusal = Refused(message, refusal)};
  }
}

bus::Message Exported::answer(Call call) const {
  if (call.refusal) return std::move(call.refusal);
  try {
    before_();
    return ReplyTo(call, call.method->run(call.arguments));
  } catch (const Refusal& refusal) {
    return Refused(call.message.get(), refusal);
  } catch (...) {
    return Refused(call.message.get(), Refusal("Failed", base::CurrentFailure().description()));
  }
}

Dict Exported::told(const Interface& interface) { return ValuesOf(interface, true); }

}  // namespace mpris
