#include "standin/http/WebRules.hpp"

#include <arpa/inet.h>
#include <sodium.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "base/Text.hpp"
#include "files/LiesIn.hpp"

namespace standin {
namespace {

bool IsAddress(const std::string& host) {
  std::array<unsigned char, 16> parsed{};
  return inet_pton(AF_INET, host.c_str(), parsed.data()) == 1 ||
         inet_pton(AF_INET6, host.c_str(), parsed.data()) == 1;
}

}  // namespace

AllowedHosts::AllowedHosts(bool anyAddress, std::vector<std::string> names)
    : anyAddress_(anyAddress), names_(std::move(names)) {}

bool AllowedHosts::allows(std::string_view host) const {
  const std::optional<std::string> name = HostName(host);
  if (!name) return false;
  if (IsLoopback(*name) || (anyAddress_ && IsAddress(*name))) return true;
  return std::any_of(names_.begin(), names_.end(),
                     [&](const std::string& each) { return base::SameText(each, *name); });
}

std::optional<std::string> HostName(std::string_view header) {
  std::string_view name = header;
  std::string_view port;
  if (name.starts_with('[')) {
    const std::size_t close = name.find(']');
    if (close == std::string_view::npos) return std::nullopt;
    port = name.substr(close + 1);
    name = name.substr(1, close - 1);
  } else if (const std::size_t colon = name.find(':'); colon != std::string_view::npos) {
    port = name.substr(colon);
    name = name.substr(0, colon);
  }
  const bool digits =
      port.empty() || (port.front() == ':' && port.size() <= 6 &&
                       port.substr(1).find_first_not_of("0123456789") == std::string_view::npos);
  const bool wellFormed = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' ||
           c == '-' || c == '_' || c == ':';
  });
  if (!digits || !wellFormed) return std::nullopt;
  return base::LowerCase(name);
}

bool IsLoopback(const std::string& host) {
  in_addr four{};
  if (inet_pton(AF_INET, host.c_str(), &four) == 1) return (ntohl(four.s_addr) >> 24U) == 127;
  in6_addr six{};
  if (inet_pton(AF_INET6, host.c_str(), &six) == 1) return IN6_IS_ADDR_LOOPBACK(&six);
  return host == "localhost";
}

std::string HostOf(const std::string& listen) {
  return listen.find(':') == std::string::npos ? listen : "[" + listen + "]";
}

bool IsAnyAddress(const std::string& listen) {
  in_addr four{};
  if (inet_pton(AF_INET, listen.c_str(), &four) == 1) return four.s_addr == INADDR_ANY;
  in6_addr six{};
  return inet_pton(AF_INET6, listen.c_str(), &six) == 1 && IN6_IS_ADDR_UNSPECIFIED(&six);
}

bool SameOrigin(std::string_view origin, std::string_view hostHeader, bool tls) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (!origin.starts_with(scheme)) continue;
    const bool clear = scheme == "http://";
    return !(clear && tls) && base::SameText(origin.substr(scheme.size()), hostHeader);
  }
  return false;
}

bool MayLoadData(const LoadReason& reason) {
  return reason.site.empty() || reason.site == "same-origin" || reason.site == "none" ||
         reason.mode == "navigate";
}

bool MayLoadPage(const LoadReason& reason) {
  const bool shown = reason.dest.empty() || reason.dest == "document";
  return shown && reason.purpose.find("prefetch") == std::string::npos && MayLoadData(reason);
}

std::string CookieValue(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    const std::size_t end = std::min(header.find(';'), header.size());
    std::string_view pair = header.substr(0, end);
    header.remove_prefix(std::min(end + 1, header.size()));
    while (pair.starts_with(' ')) pair.remove_prefix(1);
    if (pair.size() > name.size() && pair.starts_with(name) && pair[name.size()] == '=') {
      return std::string(pair.substr(name.size() + 1));
    }
  }
  return {};
}

std::optional<std::filesystem::path> FileBelow(const std::filesystem::path& root,
                                               std::string_view requestPath) {
  std::string slashes(requestPath);
  std::replace(slashes.begin(), slashes.end(), '\\', '/');
  if (slashes.find('\0') != std::string::npos) return std::nullopt;
  std::filesystem::path path = root;
  bool any = false;
  for (const std::string& step : base::Split(slashes, '/')) {
    if (step.empty()) continue;
    if (step.front() == '.') return std::nullopt;
    path /= step;
    any = true;
  }
  if (!any) return std::nullopt;
  // A link may lead out: only where the file really lies counts.
  std::error_code error;
  const std::filesystem::path real = std::filesystem::canonical(path, error);
  if (error) return std::nullopt;
  if (!files::LiesIn(real, root)) return std::nullopt;
  if (!std::filesystem::is_regular_file(real, error) || error) return std::nullopt;
  return real;
}

std::string ContentMark(std::string_view content) {
  std::array<unsigned char, 16> hash{};
  crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char*>(content.data()),
                     content.size(), nullptr, 0);
  std::array<char, hash.size() * 2 + 1> text{};
  sodium_bin2hex(text.data(), text.size(), hash.data(), hash.size());
  // A weak one: the same content may be sent packed or not.
  return std::string("W/\"") + text.data() + "\"";
}

bool HasMark(std::string_view header, std::string_view mark) {
  return header == "*" || header.find(mark) != std::string_view::npos;
}

std::string EscapeHtml(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      case '\'': out += "&#39;"; break;
      default: out += c;
    }
  }
  return out;
}

}  // namespace standin
