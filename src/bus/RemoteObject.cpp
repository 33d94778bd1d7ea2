#include "bus/RemoteObject.hpp"

#include <exception>
#include <utility>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "bus/CallList.hpp"
#include "bus/Link.hpp"
#include "bus/Paths.hpp"

namespace bus {

RemoteObject::RemoteObject(std::shared_ptr<Link> link, std::string name, std::string path, bool counted)
    : link_(std::move(link)), name_(std::move(name)), path_(std::move(path)), counted_(counted) {}

RemoteObject::~RemoteObject() {
  if (!counted_) return;
  try {
    link_->release(name_, path_);
  } catch (const std::exception&) {  // the bus has gone, and the owner's count with it
    counted_ = false;
  }
}

base::Value RemoteObject::call(std::string_view name, base::Args& args) {
  Draft message = link_->newCall(name_, path_, nullptr, std::string(name));
  for (const auto& arg : args) AppendPlain(message, arg, *link_);
  const Message reply = link_->call(message.message);
  return distribute(name, ReadAll(reply.get(), *link_), args);
}

/// A reply alone doesn't tell whether its first value is the result or an argument that comes back; the
/// operation's description does.
base::Value RemoteObject::distribute(std::string_view operation, std::vector<base::Value> values,
                                     base::Args& args) {
  if (values.empty()) return {};
  const auto node = args.empty() ? nullptr : link_->describe(name_, path_);
  const MethodInfo* method = node ? node->findMethod(operation) : nullptr;
  if (method == nullptr) return std::move(values.front());
  const ReplyShape shape = ShapeOf(*method);
  auto next = values.begin();
  base::Value result = shape.result ? std::move(*next++) : base::Value();
  for (const std::size_t index : shape.inOut) {
    if (next == values.end()) break;
    if (index < args.size()) args[index] = std::move(*next);
    ++next;
  }
  return result;
}

base::Value RemoteObject::get(std::string_view name) {
  Draft message = link_->newCall(name_, path_, kProperties, "Get");
  AppendPlain(message, "", *link_);
  AppendPlain(message, name, *link_);
  const Message reply = link_->call(message.message, Patience::kField);
  return Read(reply.get(), *link_);
}

void RemoteObject::put(std::string_view name, const base::Value& value) {
  Draft message = link_->newCall(name_, path_, kProperties, "Set");
  AppendPlain(message, "", *link_);
  AppendPlain(message, name, *link_);
  AppendVariant(message, value, *link_);
  link_->call(message.message);
}

std::vector<base::FailedCall> RemoteObject::callEach(std::vector<base::Call> calls) {
  const auto node = link_->alive() ? link_->describe(name_, path_) : nullptr;
  if (!node || !node->hasInterface(kCalls)) return base::CallOneByOne(*this, std::move(calls));
  const std::size_t count = calls.size();
  const base::Value list = ListOfCalls(std::move(calls));
  Draft message;
  const auto write = [&] {
    message = link_->newCall(name_, path_, kCalls, kCallEach);
    AppendPlain(message, list, *link_);
    return true;
  };
  // What can't be sent together, as it is too large for a message, may still be sent one by one.
  if (!base::Handled(write, [](const base::Failure&) { return false; }))
    return base::CallOneByOne(*this, CallsIn(list));
  return base::Handled(
      [&] {
        const Message reply = link_->call(message.message);
        return FailuresIn(Read(reply.get(), *link_));
      },
      [&](const base::Failure& failure) {
        std::vector<base::FailedCall> all;
        for (std::size_t place = 0; place < count; ++place) all.push_back({place, failure});
        return all;
      });
}

}  // namespace bus
