#pragma once
#include <atomic>
#include <chrono>
#include <string>

namespace standin {

/// Fetches a page by HTTP GET; redirections are followed within HTTP. Answers the body, byte for byte. Throws
/// number 57 when there is no answer in time, an answer of failure, or more than 32 MiB. Blocks; for a thread
/// of its own. Ends early, as without an answer, once `stop` is true.
std::string FetchUrl(const std::string& host, const std::string& page, int port,
                     std::chrono::milliseconds limit, const std::atomic<bool>* stop = nullptr);

/// The text of a page without its tags, for those who ask for it.
std::string StripTags(const std::string& html);

}  // namespace standin
