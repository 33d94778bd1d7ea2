#pragma once
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace support {

/// A certificate that a house has made for itself, and its key, as PEM files in a folder.
class TestCertificate {
 public:
  enum class Kind { kElliptic, kRsa };
  explicit TestCertificate(const std::filesystem::path& folder, const std::string& name = "house",
                           Kind kind = Kind::kElliptic)
      : certificate(folder / (name + ".cert.pem")), key(folder / (name + ".key.pem")) {
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> pair(
        kind == Kind::kRsa ? EVP_RSA_gen(2048) : EVP_EC_gen("P-256"), &EVP_PKEY_free);
    const std::unique_ptr<X509, decltype(&X509_free)> made(X509_new(), &X509_free);
    ASN1_INTEGER_set(X509_get_serialNumber(made.get()), 1);
    X509_gmtime_adj(X509_getm_notBefore(made.get()), -86400);
    X509_gmtime_adj(X509_getm_notAfter(made.get()), 86400);
    X509_set_pubkey(made.get(), pair.get());
    X509_NAME* owner = X509_get_subject_name(made.get());
    const std::string called = "a house of a test";
    X509_NAME_add_entry_by_txt(owner, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(called.data()),
                               static_cast<int>(called.size()), -1, 0);
    X509_set_issuer_name(made.get(), owner);
    if (X509_sign(made.get(), pair.get(), EVP_sha256()) == 0) throw std::runtime_error("no certificate");
    write(certificate, [&](std::FILE* file) { return PEM_write_X509(file, made.get()); });
    write(key, [&](std::FILE* file) {
      return PEM_write_PrivateKey(file, pair.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    lockedKey = folder / (name + ".locked.pem");
    write(lockedKey, [&](std::FILE* file) {
      const std::string password = "secret";
      return PEM_write_PrivateKey(file, pair.get(), EVP_aes_256_cbc(),
                                  reinterpret_cast<const unsigned char*>(password.data()),
                                  static_cast<int>(password.size()), nullptr, nullptr);
    });
  }

  std::filesystem::path certificate;
  std::filesystem::path key;
  std::filesystem::path lockedKey;  ///< the same with a password

 private:
  template <class Write>
  static void write(const std::filesystem::path& path, const Write& put) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "w"), &std::fclose);
    if (!file || put(file.get()) != 1) throw std::runtime_error("can't write " + path.string());
  }
};

}  // namespace support
