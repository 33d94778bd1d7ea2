#include "vxcall/Client.hpp"

#include "base/Failure.hpp"
#include "bus/Introspection.hpp"
#include "vxcall/Print.hpp"

namespace vxcall {

namespace {

bus::NodeInfo DescriptionOf(bus::Connection& connection, const std::string& name, const std::string& path) {
  try {
    return bus::ParseNode(connection.introspect(name, path));
  } catch (const base::Failure& failure) {
    if (failure.number() == base::number::kNoSuchMember) throw Unreachable(name + " has no object " + path);
    throw Unreachable(name + " doesn't answer: " + failure.description());
  }
}

/// An object, and what it says of itself.
struct Target {
  base::ObjectRef object;
  bus::NodeInfo node;
};

/// The object behind a field, or behind an operation that takes nothing. Throws number 91 where nothing is.
Target StepTo(bus::Connection& connection, const Target& from, const std::string& step) {
  const base::Value next =
      from.node.findMethod(step) != nullptr ? from.object->invoke(step) : from.object->get(step);
  const base::ObjectRef object = base::ToObject(next);
  if (!object) throw base::Failure(base::number::kObjectMissing, step + " is nothing");
  return {object,
          DescriptionOf(connection, bus::Connection::peerOf(*object), bus::Connection::pathOf(*object))};
}

/// The declared types of the operation's arguments, as far as they are known.
std::vector<std::string> ArgumentTypes(const bus::MethodInfo* method) {
  std::vector<std::string> types;
  if (method == nullptr) return types;
  for (const auto& argument : method->arguments) {
    if (!argument.out) types.push_back(argument.type);
  }
  return types;
}

void Call(const Request& request, base::Object& target, const bus::MethodInfo* method,
          const ObjectMaker& objects, std::ostream& out) {
  const auto types = ArgumentTypes(method);
  base::Args args;
  for (std::size_t i = 0; i < request.arguments.size(); ++i)
    args.push_back(ParseValue(request.arguments[i], i < types.size() ? types[i] : "", objects));
  const base::Value result = target.call(request.member, args);
  PrintValue(out, result);
  if (method == nullptr) return;
  for (const std::size_t index : bus::ShapeOf(*method).inOut) {
    if (index < args.size()) PrintValue(out, args[index]);
  }
}

}  // namespace

void Perform(bus::Connection& connection, const Request& request, std::ostream& out) {
  Target target;
  try {
    target.object = connection.proxy(request.name, request.path);
  } catch (const base::Failure& failure) {
    throw UsageError(failure.description());
  }
  if (!connection.hasOwner(request.name)) throw Unreachable(request.name + " isn't running");
  target.node = DescriptionOf(connection, request.name, request.path);
  for (const std::string& step : request.steps) target = StepTo(connection, target, step);
  const ObjectMaker objects = [&](const std::string& name, const std::string& path) {
    return connection.proxy(name.empty() ? request.name : name, path);
  };
  switch (request.action) {
    case Action::kGet: return PrintValue(out, target.object->get(request.member));
    case Action::kPut: {
      const auto* field = target.node.findProperty(request.member);
      const std::string type = field == nullptr ? "" : field->type;
      return target.object->put(request.member, ParseValue(request.arguments.front(), type, objects));
    }
    case Action::kList: return PrintMembers(out, target.node);
    case Action::kCall:
      return Call(request, *target.object, target.node.findMethod(request.member), objects, out);
    case Action::kHelp:
    case Action::kVersion: return;
  }
}

}  // namespace vxcall
