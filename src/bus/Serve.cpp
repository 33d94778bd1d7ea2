#include "bus/Serve.hpp"

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Interchange.hpp"
#include "bus/CallList.hpp"
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
    if (interface_ == kProperties) return property(*object);
    if (interface_ == kCalls && member_ == kCallEach) return calls(*object);
    return operation(*object);
  }

 private:
  Draft newReply() {
    sd_bus_message* reply = nullptr;
    Check(sd_bus_message_new_method_return(call_, &reply));
    return {Message(reply)};
  }

  Message introspection(const base::Object* object) {
    const auto children = link_.exports().childrenOf(path_);
    if (object == nullptr && children.empty() && path_ != "/")
      throw base::Failure(base::number::kNoSuchMember, "There is no object at " + path_);
    Draft reply = newReply();
    const auto* table = object == nullptr ? nullptr : object->members();
    AppendPlain(reply, DescribeNode(table, children), link_);
    return std::move(reply.message);
  }

  Message property(base::Object& object) {
    const Args args = ReadAll(call_, link_);
    if (member_ == "Get" && args.size() == 2) {
      const Value value = object.get(base::ToText(args[1]));
      Draft reply = newReply();
      AppendVariant(reply, value, link_);
      return std::move(reply.message);
    }
    if (member_ == "Set" && args.size() == 3) {
      object.put(base::ToText(args[1]), args[2]);
      return newReply().message;
    }
    if (member_ == "GetAll" && args.size() == 1) {
      const Value fields = allFields(object);
      Draft reply = newReply();
      Append(reply, fields, base::Type::kRecord, link_);
      return std::move(reply.message);
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

  /// All of them are read before the first is made.
  Message calls(base::Object& object) {
    std::vector<base::Call> wanted = CallsIn(Read(call_, link_));
    const Value failed = ListOfFailures(base::CallOneByOne(object, std::move(wanted)));
    Draft reply = newReply();
    AppendPlain(reply, failed, link_);
    return std::move(reply.message);
  }

  Message operation(base::Object& object) {
    Args args = ReadAll(call_, link_);
    const Value result = object.call(member_, args);
    Draft reply = newReply();
    const Member* member = object.members() == nullptr ? nullptr : object.members()->find(member_);
    if (member == nullptr) {
      if (!result.empty()) AppendPlain(reply, result, link_);
      return std::move(reply.message);
    }
    if (member->result != base::Type::kNone) Append(reply, result, member->result, link_);
    for (std::size_t i = 0; i < member->params.size() && i < args.size(); ++i) {
      const auto& param = member->params[i];
      if (param.inOut) Append(reply, base::Convert(args[i], param.type), param.type, link_);
    }
    return std::move(reply.message);
  }

  Link& link_;
  sd_bus_message* call_;
  std::string path_;
  std::string interface_;
  std::string member_;
};

bool IsWanted(const Message& call) { return sd_bus_message_get_expect_reply(call.get()) > 0; }

/// The description of an error has to be a text, which is followed by the very bytes of one that is not. What
/// a failure has to say is bounded by what people read.
Message ErrorReply(Link& link, sd_bus_message* call, const base::Failure& failure) {
  constexpr std::size_t kLongestDescription = std::size_t{1} << 20U;
  const std::string told = failure.description().substr(0, kLongestDescription);
  const std::string name = ErrorNameOf(failure.number());
  const std::string text = base::InterchangeUtf8(told);
  const sd_bus_error error{name.c_str(), text.c_str(), 0};
  sd_bus_message* reply = nullptr;
  Check(sd_bus_message_new_method_error(call, &reply, &error));
  Draft draft{Message(reply)};
  if (text != told) AppendPlain(draft, told, link);
  return std::move(draft.message);
}

}  // namespace

void Serve(const std::shared_ptr<Link>& link, const Message& call) {
  try {
    const Message reply = Service(*link, call.get()).run();
    if (reply && IsWanted(call)) link->send(reply);
  } catch (...) {
    Refuse(*link, call, base::CurrentFailure());
  }
}

void Refuse(Link& link, const Message& call, const base::Failure& failure) {
  if (!IsWanted(call)) return;
  try {
    link.send(ErrorReply(link, call.get(), failure));
  } catch (const std::exception&) {
    return;  // the bus has gone, and the caller with it
  }
}

}  // namespace bus
