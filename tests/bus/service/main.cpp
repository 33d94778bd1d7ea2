#include <csignal>
#include <cstdlib>
#include <iostream>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"
#include "bus/Connection.hpp"

namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables

/// The object of a process that the bus starts and that ends in every way.
class Service : public base::TableObject {
 public:
  explicit Service(bus::PollLoop& loop)
      : TableObject({"Service",
                     {Operation("Greet", {Text("name", "you")}, Type::kText,
                                [](Args& args) { return "Hello, " + TextAt(args, 0); }),
                      Operation("Die", {}, Type::kText,
                                [] {
                                  std::raise(SIGKILL);
                                  return "not reached";
                                }),
                      Operation("AskBack", {Reference("asker")}, Type::kAny,
                                [](Args& args) { return base::Deref(args[0]).invoke("Answer"); }),
                      Command("Quit", {}, [&loop] { loop.quit(0); })}}) {}
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
