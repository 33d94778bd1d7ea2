// One script of the house, which the server gives to it over its standard input. A process of its own, as a
// script can compute without end in a single step, which nothing but the end of the process ends.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "scripting/lua/Confinement.hpp"
#include "scripting/lua/DistantHouse.hpp"
#include "scripting/lua/LuaScript.hpp"

int main() {
  using namespace scripting;  // NOLINT(google-build-using-namespace): this file puts it together
  try {
    Confine();
    DistantHouse house(STDIN_FILENO, STDOUT_FILENO);
    const Order order = house.awaitOrder();
    // The server ends it much earlier; this is for the case that it can't.
    BoundProcessor(std::chrono::seconds(order.computing / 1000 + 30));
    RefuseOtherCalls();
    house.end(RunLua(order.name, order.text, house, order.memory));
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << std::flush;
    std::_Exit(1);
  }
  // Nothing that a script has left behind runs any more; nor does a sanitizer look for leaks, for which it
  // would need threads and files. The tests run the language in their own process, where it does.
  std::_Exit(0);
}
