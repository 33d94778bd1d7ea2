#include "standin/HostWaits.hpp"

#include <algorithm>
#include <future>
#include <thread>

#include "standin/UrlFetcher.hpp"

namespace standin {

void LoopWaits::pendingEvents() { loop_.pump(); }

void LoopWaits::seconds(int count) {
  const base::Milliseconds end = loop_.now() + std::chrono::seconds(std::max(0, count));
  loop_.whileOpen([&] {
    for (base::Milliseconds now = loop_.now(); now < end; now = loop_.now()) loop_.turn(end - now);
  });
}

std::string LoopWaits::fetch(const std::string& host, const std::string& page, int port) {
  std::promise<std::string> promise;
  std::future<std::string> result = promise.get_future();
  std::thread worker([&] {
    try {
      promise.set_value(FetchUrl(host, page, port, fetchLimit_));
    } catch (...) {
      promise.set_exception(std::current_exception());
    }
    loop_.post([] {});  // wakes the loop
  });
  loop_.whileOpen([&] {
    while (result.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
      loop_.turn(base::Milliseconds(200));
    }
  });
  worker.join();
  return result.get();
}

}  // namespace standin
