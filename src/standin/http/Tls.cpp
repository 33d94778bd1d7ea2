#include "standin/http/Tls.hpp"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <sys/socket.h>

#include <fstream>
#include <string>
#include <system_error>

#include "base/Failure.hpp"

namespace standin {
namespace {

constexpr char kHandshake = 22;  // the type of a record with which every TLS connection begins

void MustBeReadable(const std::filesystem::path& path) {
  if (!std::ifstream(path).good())
    throw base::Failure(base::number::kFileNotFound, "Can't read " + path.string());
}

[[noreturn]] void Refuse(const std::string& text) {
  ERR_clear_error();
  throw base::Failure(base::number::kInvalidArgument, text);
}

class TlsChannel : public Channel {
 public:
  TlsChannel(SSL_CTX* context, socket_t socket) : socket_(socket), tls_(SSL_new(context)) {
    const int flags = ::fcntl(socket, F_GETFL);  // NOLINT(hicpp-signed-bitwise)
    ::fcntl(socket, F_SETFL, flags | O_NONBLOCK);
    if (tls_ != nullptr) {
      SSL_set_fd(tls_.get(), socket);
      SSL_set_accept_state(tls_.get());
    }
  }
  Step begin() override {
    if (tls_ == nullptr) return {};
    ERR_clear_error();
    return stepOf(SSL_do_handshake(tls_.get()), 0);
  }
  Step receive(char* into, std::size_t size) override {
    ERR_clear_error();
    std::size_t count = 0;
    const int result = SSL_read_ex(tls_.get(), into, size, &count);
    return stepOf(result, count);
  }
  Step send(const char* from, std::size_t size) override {
    ERR_clear_error();
    std::size_t count = 0;
    const int result = SSL_write_ex(tls_.get(), from, size, &count);
    return stepOf(result, count);
  }
  [[nodiscard]] bool holds() const override { return tls_ != nullptr && SSL_has_pending(tls_.get()) != 0; }
  void endSending() override {
    if (tls_ != nullptr && SSL_is_init_finished(tls_.get()) != 0) {
      ERR_clear_error();
      SSL_shutdown(tls_.get());
    }
    ::shutdown(socket_, SHUT_WR);
  }

 private:
  struct Free {
    void operator()(SSL* tls) const { SSL_free(tls); }
  };
  [[nodiscard]] Step stepOf(int result, std::size_t count) const {
    if (result == 1) return {.state = State::kMoved, .count = count};
    switch (SSL_get_error(tls_.get(), result)) {
      case SSL_ERROR_WANT_READ: return {.state = State::kReads};
      case SSL_ERROR_WANT_WRITE: return {.state = State::kWrites};
      default: return {.state = State::kEnded};
    }
  }

  socket_t socket_;
  std::unique_ptr<SSL, Free> tls_;
};

}  // namespace

void TlsIdentity::Free::operator()(SSL_CTX* context) const { SSL_CTX_free(context); }

TlsIdentity::TlsIdentity(const std::filesystem::path& certificate, const std::filesystem::path& key)
    : context_(SSL_CTX_new(TLS_server_method())) {
  MustBeReadable(certificate);
  MustBeReadable(key);
  SSL_CTX* context = context_.get();
  if (context == nullptr || SSL_CTX_set_min_proto_version(context, TLS1_2_VERSION) != 1)
    Refuse("TLS can't be spoken here");
  SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION |
                                   SSL_OP_CIPHER_SERVER_PREFERENCE | SSL_OP_IGNORE_UNEXPECTED_EOF);
  // Of what TLS 1.2 allows, only what nobody reads later who has come by the key. TLS 1.3 has nothing else.
  if (SSL_CTX_set_cipher_list(context, "ECDHE+AESGCM:ECDHE+CHACHA20") != 1)
    Refuse("TLS can't be spoken here");
  SSL_CTX_set_session_cache_mode(context, SSL_SESS_CACHE_OFF);
  SSL_CTX_set_mode(context, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                SSL_MODE_RELEASE_BUFFERS);
  // A key with a password would have the library ask for it on the terminal.
  SSL_CTX_set_default_passwd_cb(context, [](char*, int, int, void*) { return 0; });
  if (SSL_CTX_use_certificate_chain_file(context, certificate.c_str()) != 1)
    Refuse(certificate.string() + " holds no certificate that can be used");
  // Reading compares keys of the certificate's own kind alone.
  if (SSL_CTX_use_PrivateKey_file(context, key.c_str(), SSL_FILETYPE_PEM) != 1 ||
      SSL_CTX_check_private_key(context) != 1)
    Refuse(key.string() + " holds no key that belongs to the certificate and has no password");
}

TlsIdentity::~TlsIdentity() = default;

std::unique_ptr<Channel> TlsIdentity::channel(socket_t socket) const {
  return std::make_unique<TlsChannel>(context_.get(), socket);
}

bool IsReadByAnybody(const std::filesystem::path& key) {
  using std::filesystem::perms;
  std::error_code unknown;
  const perms given = std::filesystem::status(key, unknown).permissions();
  return !unknown && (given & perms::others_read) != perms::none;
}

bool BeginsTls(char first) { return first == kHandshake; }

}  // namespace standin
