#include <iostream>

#include "base/Failure.hpp"
#include "bus/Connection.hpp"
#include "bus/HouseBus.hpp"
#include "vxcall/Arguments.hpp"
#include "vxcall/Client.hpp"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kWrongUsage = 2, kNobodyThere = 3 };

std::unique_ptr<bus::Connection> Connect(bus::PollLoop& loop, const std::string& address) {
  try {
    return std::make_unique<bus::Connection>(loop, address.empty() ? bus::HouseBusAddress() : address);
  } catch (const base::Failure& failure) {
    throw vxcall::Unreachable(failure.description());
  }
}

}  // namespace

int main(int count, char** words) {
  try {
    const auto request = vxcall::ParseArguments({words + 1, words + count});
    if (request.action == vxcall::Action::kHelp) {
      std::cout << vxcall::kUsage;
      return kDone;
    }
    if (request.action == vxcall::Action::kVersion) {
      std::cout << "vxcall " VANTORIX_VERSION "\n";
      return kDone;
    }
    bus::PollLoop loop;
    const auto connection = Connect(loop, request.bus);
    vxcall::Perform(*connection, request, std::cout);
    return kDone;
  } catch (const vxcall::UsageError& error) {
    std::cerr << "vxcall: " << error.what() << ". 'vxcall --help' tells the usage.\n";
    return kWrongUsage;
  } catch (const vxcall::Unreachable& error) {
    std::cerr << "vxcall: " << error.what() << '\n';
    return kNobodyThere;
  } catch (const base::Failure& failure) {
    std::cerr << "failure " << failure.number() << ": " << failure.description() << '\n';
    return kFailed;
  } catch (const std::exception& error) {
    std::cerr << "vxcall: " << error.what() << '\n';
    return kFailed;
  }
}
