#pragma once
#include <atomic>
#include <chrono>
#include <string>

namespace standin {

/// What stands in an address; what it doesn't name is empty.
struct WebAddress {
  std::string scheme{};  ///< in small letters
  std::string host{};
  std::string port{};
  std::string path{};  ///< with what is asked for
};
WebAddress ReadAddress(const std::string& text);

/// The address of a page. `host` may be a whole address: then it keeps its scheme, and its port if it names
/// one.
std::string UrlOf(const std::string& host, const std::string& page, int port);

/// Fetches a page by HTTP GET from where `UrlOf` says; redirections are followed within HTTP, and into the
/// public network only. Answers the body, byte for byte. Throws number 57 when there is no answer in time, an
/// answer of failure, or more than 32 MiB. Blocks; for a thread of its own. Ends early, as without an answer,
/// once `stop` is true. `certificate` as in `FetchRules`.
std::string FetchUrl(const std::string& host, const std::string& page, int port,
                     std::chrono::milliseconds limit, const std::atomic<bool>* stop = nullptr,
                     const std::string& certificate = {});

/// The text of a page without its tags, for those who ask for it.
std::string StripTags(const std::string& html);

}  // namespace standin
