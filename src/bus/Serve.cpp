#include "bus/Serve.hpp"

#include <exception>
#include <string>

#include "base/Failure.hpp"
#include "bus/Errors.hpp"
#include "bus/Introspection.hpp"
#include "bus/Link.hpp"
#include "bus/Marshal.hpp"
#include "bus/Paths.hpp"

namespace bus {

using base::Args;
using base::Member;
using base::Value;

namespace {

/// One incoming call.
class Service {
 public:
  Service(Link& link, sd_bus_message* call)
      : link_(link),
        call_(call),
        path_(OrEmpty(sd_bus_message_get_path(call))),
        interface_(OrEmpty(sd_bus_message_get_interface(call))),
        member_(OrEmpty(sd_bus_message_get_member(call))) {}

  /// Runs the call and answers its reply; null when there is nothing to say.
  Message run() {
    if (interface_ == kReferences && member_ == kRelease) {
      link_.exports().release(path_, OrEmpty(sd_bus_message_get_sender(call_)));
      return nullptr;
    }
    const base::ObjectRef object = link_.exports().find(path_);
    if (interface_ == kIntrospectable && member_ == "Introspect") return introspection(object.get());
    if (!object) throw base::Failure(base::number::kNoSuchMember, "There is no object at " + path_);
    // Only from here on may a call call in its turn; without an end to that, calls in a circle end the
    // process.
    if (link_.depth() > Link::kDeepest)
      throw base::Failure(base::number::kOutOfStackSpace, "Too many calls are within each other");
    if (interface_ == kProperties) return property(*object);
    return operation(*object);
  }

 private:
  Message newReply() {
    sd_bus_message* reply = nullptr;
    Check(sd_bus_message_new_method_return(call_, &reply));
    return Message(reply);
  }

  Message introspection(const base::Object* object) {
    const auto children = link_.exports().childrenOf(path_);
    if (object == nullptr && children.empty() && path_ != "/")
      throw base::Failure(base::number::kNoSuchMember, "There is no object at " + path_);
    Message reply = newReply();
    const auto* table = object == nullptr ? nullptr : object->members();
    AppendPlain(reply.get(), DescribeNode(table, children), link_);
    return reply;
  }

  Message property(base::Object& object) {
    const Args args = ReadAll(call_, link_);
    if (member_ == "Get" && args.size() == 2) {
      const Value value = object.get(base::ToText(args[1]));
      Message reply = newReply();
      AppendVariant(reply.get(), value, link_);
      return reply;
    }
    if (member_ == "Set" && args.size() == 3) {
      object.put(base::ToText(args[1]), args[2]);
      return newReply();
    }
    if (member_ == "GetAll" && args.size() == 1) {
      const Value fields = allFields(object);
      Message reply = newReply();
      Append(reply.get(), fields, base::Type::kRecord, link_);
      return reply;
    }
    throw base::Failure(base::number::kNoSuchMember, "Properties have no such member: " + member_);
  }

  /// A field that can't be read just now is left out, so that the others can be seen.
  static Value allFields(base::Object& object) {
    base::Record fields;
    if (object.members() == nullptr) return fields;
    for (const Member& member : object.members()->list()) {
      if (member.kind != base::MemberKind::kField && member.kind != base::MemberKind::kReadField) continue;
      try {
        fields.emplace_back(member.name, object.get(member.name));
      } catch (const base::Failure&) {
        continue;
      }
    }
    return fields;
  }

  Message operation(base::Object& object) {
    Args args = ReadAll(call_, link_);
    const Value result = object.call(member_, args);
    Message reply = newReply();
    const Member* member = object.members() == nullptr ? nullptr : object.members()->find(member_);
    if (member == nullptr) {
      if (!result.empty()) AppendPlain(reply.get(), result, link_);
      return reply;
    }
    if (member->result != base::Type::kNone) Append(reply.get(), result, member->result, link_);
    for (std::size_t i = 0; i < member->params.size() && i < args.size(); ++i) {
      const auto& param = member->params[i];
      if (param.inOut) Append(reply.get(), base::Convert(args[i], param.type), param.type, link_);
    }
    return reply;
  }

  Link& link_;
  sd_bus_message* call_;
  std::string path_;
  std::string interface_;
  std::string member_;
};

Message ErrorReply(sd_bus_message* call, const base::Failure& failure) {
  sd_bus_message* reply = nullptr;
  const std::string name = ErrorNameOf(failure.number());
  const std::string text = CarriableText(failure.description());
  const sd_bus_error error{name.c_str(), text.c_str(), 0};
  Check(sd_bus_message_new_method_error(call, &reply, &error));
  return Message(reply);
}

}  // namespace

void Serve(const std::shared_ptr<Link>& link, const Message& call) {
  const bool wanted = sd_bus_message_get_expect_reply(call.get()) > 0;
  try {
    try {
      const Message reply = Service(*link, call.get()).run();
      if (reply && wanted) link->send(reply);
    } catch (...) {
      const Message reply = ErrorReply(call.get(), base::CurrentFailure());
      if (wanted) link->send(reply);
    }
  } catch (const std::exception&) {
    return;  // the bus has gone, and the caller with it
  }
}

}  // namespace bus
