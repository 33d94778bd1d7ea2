#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// The names that a browser may call this server by, so that no foreign name can be made to point at it.
class AllowedHosts {
 public:
  /// `anyAddress`: every literal address is right (a foreign page can only come by a name); otherwise the
  /// loopback addresses alone. `names` are right in addition to "localhost".
  AllowedHosts(bool anyAddress, std::vector<std::string> names);
  /// For the content of a Host header.
  [[nodiscard]] bool allows(std::string_view host) const;

 private:
  bool anyAddress_;
  std::vector<std::string> names_;
};

/// The host without its port and brackets, in lower case; nothing when it is ill-formed.
std::optional<std::string> HostName(std::string_view hostHeader);
/// True for an address of this machine's own loopback network, or "localhost".
bool IsLoopback(const std::string& host);
/// The host in the address of a page of a server that listens there.
std::string HostOf(const std::string& listen);
/// Whether who listens there is reached at each address of the machine.
bool IsAnyAddress(const std::string& listen);
/// True when a request's Origin header says that it comes from a page of the host it goes to. A server that
/// speaks TLS (`tls`) has no pages in the clear: one that comes from there is somebody's between it and its
/// reader. Before one that doesn't, there may be another one that does.
bool SameOrigin(std::string_view origin, std::string_view hostHeader, bool tls);
/// What a browser tells about why it asks (Sec-Fetch-Site, -Mode, -Dest, and Sec-Purpose); empty texts where
/// it tells nothing, as other programs do.
struct LoadReason {
  std::string site{};
  std::string mode{};
  std::string dest{};
  std::string purpose{};
};
/// False when a page of another server has its reader's browser load what scripts ask for.
bool MayLoadData(const LoadReason& reason);
/// False unless the page is to be shown to the reader: a page that is loaded as a picture, say, or ahead of
/// time, would be made for nobody, and what was selected on it forgotten.
bool MayLoadPage(const LoadReason& reason);
/// A cookie out of a Cookie header, empty when it isn't there.
std::string CookieValue(std::string_view header, std::string_view name);
/// The file that a decoded request path means below `root`: backslashes are slashes, and there is no way out
/// of `root`. Nothing when there is no such file.
std::optional<std::filesystem::path> FileBelow(const std::filesystem::path& root,
                                               std::string_view requestPath);
/// A mark of the content, as an ETag header: as good as never the same for another one.
std::string ContentMark(std::string_view content);
/// Whether an If-None-Match header names that mark.
bool HasMark(std::string_view header, std::string_view mark);
/// The text with the characters of markup replaced.
std::string EscapeHtml(std::string_view text);

}  // namespace standin
