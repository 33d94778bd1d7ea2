#pragma once
#include <filesystem>
#include <memory>

#include "standin/http/Channel.hpp"

using SSL_CTX = struct ssl_ctx_st;
using SSL = struct ssl_st;

namespace standin {

/// Who the server is to browsers that come by https: its certificate, with those that vouch for it, and the
/// key to it.
class TlsIdentity {
 public:
  /// PEM files; both may be one. Throws number 53 for a file that can't be read and number 5 for one that is
  /// no certificate or key, or where one doesn't belong to the other, with words for the user.
  TlsIdentity(const std::filesystem::path& certificate, const std::filesystem::path& key);
  ~TlsIdentity();
  TlsIdentity(const TlsIdentity&) = delete;
  TlsIdentity& operator=(const TlsIdentity&) = delete;
  TlsIdentity(TlsIdentity&&) = delete;
  TlsIdentity& operator=(TlsIdentity&&) = delete;

  /// For a socket that a browser has come on.
  [[nodiscard]] std::unique_ptr<Channel> channel(socket_t socket) const;

 private:
  struct Free {
    void operator()(SSL_CTX* context) const;
  };
  std::unique_ptr<SSL_CTX, Free> context_;
};

/// Whether others of this machine than the file's owner and group may read it.
bool IsReadByAnybody(const std::filesystem::path& key);

/// Whether what a peer says first is the beginning of TLS. Some begin by plain http where https is spoken.
bool BeginsTls(char first);

}  // namespace standin
