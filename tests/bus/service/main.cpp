#include <csignal>
#include <cstdlib>
#include <iostream>

#include "base/Failure.hpp"
#include "base/Members.hpp"
#include "bus/Connection.hpp"

namespace {

using base::Args;
using base::Member;
using base::MemberKind;
using base::Type;
using base::Value;

/// The object of a process that the bus starts and that ends in every way.
class Service : public base::TableObject {
 public:
  explicit Service(bus::PollLoop& loop)
      : TableObject(base::MemberTable(
            "Service", std::vector<Member>{{"Greet",
                                            MemberKind::kOperation,
                                            {{"name", Type::kText, Value("you")}},
                                            Type::kText,
                                            [](Args& args) { return "Hello, " + base::ToText(args[0]); }},
                                           {"Die",
                                            MemberKind::kOperation,
                                            {},
                                            Type::kText,
                                            [](Args&) -> Value {
                                              std::raise(SIGKILL);
                                              return "not reached";
                                            }},
                                           {"AskBack",
                                            MemberKind::kOperation,
                                            {{"asker", Type::kObject}},
                                            Type::kAny,
                                            [](Args& args) { return base::Deref(args[0]).invoke("Answer"); }},
                                           {"Quit", MemberKind::kOperation, {}, Type::kNone, [&loop](Args&) {
                                              loop.quit(0);
                                              return Value();
                                            }}})) {}
};

}  // namespace

int main() {
  const char* address = std::getenv("DBUS_STARTER_ADDRESS");  // NOLINT(concurrency-mt-unsafe)
  try {
    bus::PollLoop loop;
    bus::Connection connection(loop, address == nullptr ? "" : address);
    connection.exportObject("/service", std::make_shared<Service>(loop));
    connection.claimName("org.example.Activated");
    connection.onDisconnect([&] { loop.quit(1); });
    return loop.run();
  } catch (const base::Failure& failure) {
    std::cerr << failure.description() << '\n';
    return 3;
  }
}
