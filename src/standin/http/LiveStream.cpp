#include "standin/http/LiveStream.hpp"

#include <utility>

#include "standin/routes/Visitors.hpp"

namespace standin {
namespace {

/// Whether sessions may have ended by what the text tells: it says so, or what it leaves out may have.
bool CastsDoubt(const std::string& text) {
  return text.find("event: " + std::string(kSessionsEnded) + "\n") != std::string::npos ||
         text.find("event: reload\n") != std::string::npos;
}

}  // namespace

LiveStream::LiveStream(LiveFeed& feed, const Page& page, std::function<bool()> known, Times times)
    : reader_(feed, page.session, page.last, page.audience), known_(std::move(known)), times_(times) {}

std::string LiveStream::next() {
  if (!std::exchange(begun_, true)) return "retry: 1000\n\n";
  std::string text = reader_.wait(times_.heartbeat);
  if (CastsDoubt(text) || Clock::now() - checked_ >= times_.sessionCheck) {
    checked_ = Clock::now();
    if (!known_()) text.clear();
  }
  return text;
}

}  // namespace standin
