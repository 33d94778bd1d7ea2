// A plug-in for the bus to start. With the word "stubborn" it does not end when it is asked to, with
// "hanging" its start never ends.
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "standin/fakes/FakePlugin.hpp"

int main(int argc, char** argv) {
  const char* address = std::getenv("DBUS_STARTER_ADDRESS");
  if (address == nullptr) return 1;
  support::FakePlugin::Manner manner;
  const std::string word = argc > 1 ? argv[1] : "";
  const bool stubborn = word == "stubborn";
  if (word == "hanging") {
    manner.init = [](base::Object&, base::Object&, const base::ObjectRef&) {
      for (;;) pause();
    };
  }
  manner.end = [stubborn] {
    if (!stubborn) _exit(0);
    for (;;) pause();
  };
  const support::FakePlugin plugin(address, manner);
  for (;;) pause();
}
