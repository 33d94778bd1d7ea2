#include "standin/hostobjects/UrlFetcher.hpp"

#include <curl/curl.h>

#include <algorithm>
#include <memory>

#include "base/Failure.hpp"
#include "base/Text.hpp"

namespace standin {
namespace {

constexpr int kUsualPort = 80;
constexpr std::size_t kMostBytes = 32U << 20U;

std::size_t Collect(char* data, std::size_t size, std::size_t count, void* into) {
  auto& body = *static_cast<std::string*>(into);
  if (body.size() + size * count > kMostBytes) return 0;
  body.append(data, size * count);
  return size * count;
}

int LookForStop(void* stop, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
  return static_cast<const std::atomic<bool>*>(stop)->load() ? 1 : 0;
}

}  // namespace

WebAddress ReadAddress(const std::string& text) {
  WebAddress address;
  const std::size_t scheme = text.find("://");
  if (scheme != std::string::npos) address.scheme = base::LowerCase(text.substr(0, scheme));
  const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
  const std::size_t path = std::min(text.find_first_of("/?", begin), text.size());
  address.host = text.substr(begin, path - begin);
  address.path = text.substr(path);
  const std::size_t colon = address.host.rfind(':');
  const bool port = colon != std::string::npos && address.host.find(']', colon) == std::string::npos &&
                    address.host.find_first_not_of("0123456789", colon + 1) == std::string::npos;
  // An address of eight groups without brackets names no port.
  if (port && (address.host.find(':') == colon || address.host[colon - 1] == ']')) {
    address.port = address.host.substr(colon + 1);
    address.host.resize(colon);
  }
  return address;
}

std::string UrlOf(const std::string& host, const std::string& page, int port) {
  const WebAddress address = ReadAddress(host);
  std::string path = address.path;
  if (!page.empty()) {
    if (path.ends_with('/') && page.front() == '/') path.pop_back();
    path += page;
  }
  if (path.empty() || path.front() != '/') path.insert(path.begin(), '/');
  for (std::size_t blank = path.find(' '); blank != std::string::npos; blank = path.find(' ')) {
    path.replace(blank, 1, "%20");
  }
  const std::string scheme = address.scheme.empty() ? "http" : address.scheme;
  std::string at = address.port;
  // 80 is what is said by those who say nothing.
  if (at.empty() && (scheme == "http" || port != kUsualPort)) at = std::to_string(port);
  return scheme + "://" + address.host + (at.empty() ? "" : ":" + at) + path;
}

std::string FetchUrl(const std::string& host, const std::string& page, int port,
                     std::chrono::milliseconds limit, const std::atomic<bool>* stop) {
  const std::string url = UrlOf(host, page, port);

  const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> handle(curl_easy_init(), &curl_easy_cleanup);
  if (!handle) throw base::Failure(base::number::kInternal, "No memory for a web request");
  std::string body;
  CURL* const curl = handle.get();
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(limit.count()));
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limit.count() / 2));
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &Collect);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
  curl_easy_setopt(curl, CURLOPT_USERAGENT, "Vantorix");
  if (stop != nullptr) {
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, &LookForStop);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, stop);
  }
  const CURLcode code = curl_easy_perform(curl);
  if (code != CURLE_OK) {
    throw base::Failure(base::number::kDeviceIo, "No page from " + host + ": " + curl_easy_strerror(code));
  }
  return body;
}

std::string StripTags(const std::string& html) {
  std::string out;
  bool inTag = false;
  for (const char c : html) {
    if (c == '<') {
      inTag = true;
    } else if (c == '>' && inTag) {
      inTag = false;
    } else if (!inTag) {
      out += c;
    }
  }
  return out;
}

}  // namespace standin
