#include "standin/hostobjects/UrlFetcher.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "standin/hostobjects/PublicWeb.hpp"

namespace standin {
namespace {

constexpr int kUsualPort = 80;
constexpr std::size_t kMostBytes = 32U << 20U;

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
  std::string plain;
  plain.reserve(path.size());
  for (const char c : path) c == ' ' ? plain += "%20" : plain += c;
  const std::string scheme = address.scheme.empty() ? "http" : address.scheme;
  std::string at = address.port;
  // 80 is what is said by those who say nothing.
  if (at.empty() && (scheme == "http" || port != kUsualPort)) at = std::to_string(port);
  return scheme + "://" + address.host + (at.empty() ? "" : ":" + at) + plain;
}

std::string FetchUrl(const std::string& host, const std::string& page, int port,
                     std::chrono::milliseconds limit, const std::atomic<bool>* stop,
                     const std::string& certificate) {
  try {
    return FetchPublic(UrlOf(host, page, port), {.userAgent = "Vantorix",
                                                 .mostBytes = kMostBytes,
                                                 .limit = limit,
                                                 .stop = stop,
                                                 .certificate = certificate});
  } catch (const base::Failure& failure) {
    throw base::Failure(failure.number(), "No page from " + host + ": " + failure.description());
  }
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
