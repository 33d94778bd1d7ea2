// https: who the house says it is, and that nobody holds it up by it either.
#include "standin/http/Tls.hpp"

#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <sys/stat.h>

#include <array>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "files/Descriptor.hpp"
#include "files/WriteFile.hpp"
#include "standin/fakes/LocalConnection.hpp"
#include "standin/fakes/ServerProcess.hpp"
#include "standin/hostobjects/UrlFetcher.hpp"
#include "standin/http/GuardedServer.hpp"
#include "support/BusDaemon.hpp"
#include "support/FailureNumber.hpp"
#include "support/Process.hpp"
#include "support/TempFolder.hpp"
#include "support/TestCertificate.hpp"

namespace standin {
namespace {

using support::ConnectionTo;
using support::Eventually;

constexpr std::chrono::seconds kForEver = std::chrono::hours(24);

std::string AllOf(const files::Descriptor& socket) {
  std::string all;
  std::array<char, 4096> part{};
  for (ssize_t got = 0; (got = ::read(socket.get(), part.data(), part.size())) > 0;)
    all.append(part.data(), static_cast<std::size_t>(got));
  return all;
}

class Https : public testing::Test {
 protected:
  explicit Https(support::TestCertificate::Kind kind = support::TestCertificate::Kind::kElliptic)
      : made(folder.path(), "house", kind) {
    server.speakAs(std::make_unique<TlsIdentity>(made.certificate, made.key));
    server.set_payload_max_length(std::size_t{4} << 20U);
    server.Get("/", [](const httplib::Request&, httplib::Response& response) {
      response.set_content("here", "text/plain");
    });
    server.Post("/size", [](const httplib::Request& request, httplib::Response& response) {
      response.set_content(std::string(request.body.size(), 'x'), "text/plain");
    });
    port = server.bind_to_any_port("127.0.0.1");
    thread = std::thread([this] { server.listen_after_bind(); });
  }
  void TearDown() override {
    server.stopNow();
    thread.join();
  }
  /// A browser whose owner goes on though nobody vouches for the certificate.
  [[nodiscard]] std::unique_ptr<httplib::SSLClient> browser() const {
    auto client = std::make_unique<httplib::SSLClient>("127.0.0.1", port);
    client->enable_server_certificate_verification(false);
    client->set_read_timeout(120);
    client->set_connection_timeout(120);
    return client;
  }

  support::TempFolder folder;
  support::TestCertificate made;
  GuardedServer server{WebLimits{.connections = 8,
                                 .threads = 8,
                                 .whole = kForEver,
                                 .idle = kForEver,
                                 .drained = kForEver,
                                 .answered = kForEver}};
  int port = 0;
  std::thread thread;
};

TEST_F(Https, PagesAndBodiesGoBothWays) {
  const auto client = browser();
  const auto page = client->Get("/");
  ASSERT_TRUE(page) << page.error();
  EXPECT_EQ(page->body, "here");
  const std::string large(2'000'000, 'y');
  const auto answer = client->Post("/size", large, "text/plain");
  ASSERT_TRUE(answer) << answer.error();
  EXPECT_EQ(answer->body, std::string(large.size(), 'x'));
}

TEST_F(Https, ABodyThatIsTooLargeIsAnsweredAndTheServerGoesOn) {
  const auto refused = browser()->Post("/size", std::string(std::size_t{5} << 20U, 'y'), "text/plain");
  ASSERT_TRUE(refused) << refused.error();
  EXPECT_EQ(refused->status, 413);
  const auto page = browser()->Get("/");
  ASSERT_TRUE(page) << page.error();
  EXPECT_EQ(page->status, 200);
}

TEST_F(Https, WhoComesByPlainHttpIsToldWhereToGo) {
  const auto plain = ConnectionTo(port, "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
  ASSERT_NE(plain, nullptr);
  const std::string answer = AllOf(*plain);
  EXPECT_EQ(answer.substr(0, answer.find("\r\n")), "HTTP/1.1 400 Bad Request");
  EXPECT_NE(answer.find("its address begins with https://"), std::string::npos);
}

TEST_F(Https, IsAnsweredBesideMoreThanItHasRoomForOfThoseWhoNeverFinishTheirGreeting) {
  std::vector<std::unique_ptr<files::Descriptor>> others;
  for (int i = 0; i < 20; ++i) {
    others.push_back(ConnectionTo(port, ""));
    others.push_back(ConnectionTo(port, std::string("\x16\x03\x01\x02\x00\x01", 6)));
    others.push_back(ConnectionTo(port, std::string("\x16\x03\x01\x00\x04") + "none"));
  }
  for (const auto& other : others) ASSERT_NE(other, nullptr);
  const auto page = browser()->Get("/");
  ASSERT_TRUE(page) << page.error();
  EXPECT_EQ(page->body, "here");
}

TEST_F(Https, TheHouseAsksItselfByTheCertificateThatItHasAndNobodyElseByIt) {
  const support::TestCertificate other(folder.path(), "other");
  const auto fetched = [&](const std::filesystem::path& certificate) {
    return FetchUrl("https://127.0.0.1:" + std::to_string(port), "/", port, std::chrono::minutes(2), nullptr,
                    certificate.string());
  };
  EXPECT_EQ(fetched(made.certificate), "here");
  EXPECT_EQ(support::FailureNumberOf([&] { fetched(other.certificate); }), base::number::kDeviceIo);
  EXPECT_EQ(support::FailureNumberOf([&] { fetched({}); }), base::number::kDeviceIo);
}

TEST(TlsIdentity, SaysWhatIsWrongWithItsFiles) {
  const support::TempFolder folder;
  const support::TestCertificate house(folder.path());
  const support::TestCertificate other(folder.path(), "other");
  EXPECT_NO_THROW(TlsIdentity(house.certificate, house.key));
  const auto number = [](const std::filesystem::path& certificate, const std::filesystem::path& key) {
    return support::FailureNumberOf([&] { const TlsIdentity identity(certificate, key); });
  };
  EXPECT_EQ(number(folder.path() / "nowhere", house.key), base::number::kFileNotFound);
  EXPECT_EQ(number(house.certificate, folder.path() / "nowhere"), base::number::kFileNotFound);
  EXPECT_EQ(number(house.key, house.key), base::number::kInvalidArgument) << "no certificate";
  EXPECT_EQ(number(house.certificate, house.certificate), base::number::kInvalidArgument) << "no key";
  EXPECT_EQ(number(house.certificate, other.key), base::number::kInvalidArgument) << "another one's key";
  const support::TestCertificate rsa(folder.path(), "rsa", support::TestCertificate::Kind::kRsa);
  EXPECT_NO_THROW(TlsIdentity(rsa.certificate, rsa.key));
  EXPECT_EQ(number(rsa.certificate, house.key), base::number::kInvalidArgument) << "a key of another kind";
  EXPECT_EQ(number(house.certificate, rsa.key), base::number::kInvalidArgument);
  EXPECT_EQ(number(house.certificate, house.lockedKey), base::number::kInvalidArgument)
      << "nobody is asked for a password";
}

TEST(TlsIdentity, KnowsWhoMayReadItsKey) {
  const support::TempFolder folder;
  const std::string key = (folder.path() / "key.pem").string();
  files::WriteFile(key, "a key");
  for (const auto& [mode, anybody] : {std::pair(0600, false), {0640, false}, {0644, true}, {0604, true}}) {
    ASSERT_EQ(::chmod(key.c_str(), static_cast<mode_t>(mode)), 0);
    EXPECT_EQ(IsReadByAnybody(key), anybody) << mode;
  }
  EXPECT_FALSE(IsReadByAnybody(folder.path() / "nowhere"));
}

/// A house whose key suits what older browsers would have, too.
class HttpsOfAnRsaKey : public Https {
 protected:
  HttpsOfAnRsaKey() : Https(support::TestCertificate::Kind::kRsa) {}
  /// Whether a browser that can do no better is let in.
  bool admits(int newest, const char* ciphers) {
    const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_client_method()),
                                                                    &SSL_CTX_free);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_VERSION);
    SSL_CTX_set_max_proto_version(context.get(), newest);
    SSL_CTX_set_security_level(context.get(), 0);
    EXPECT_EQ(SSL_CTX_set_cipher_list(context.get(), ciphers), 1);
    const auto socket = ConnectionTo(port, "");
    const std::unique_ptr<SSL, decltype(&SSL_free)> tls(SSL_new(context.get()), &SSL_free);
    SSL_set_fd(tls.get(), socket->get());
    return SSL_connect(tls.get()) == 1;
  }
};

TEST_F(HttpsOfAnRsaKey, SpeaksNothingThatCouldBeReadLater) {
  EXPECT_TRUE(admits(TLS1_2_VERSION, "ECDHE-RSA-AES128-GCM-SHA256"));
  EXPECT_TRUE(admits(TLS1_3_VERSION, "ALL"));
  EXPECT_FALSE(admits(TLS1_2_VERSION, "AES128-SHA")) << "without a key of its own for each connection";
  EXPECT_FALSE(admits(TLS1_2_VERSION, "ECDHE-RSA-AES128-SHA"));
  EXPECT_FALSE(admits(TLS1_1_VERSION, "ALL"));
}

TEST(TheServersProgram, SpeaksHttpsWithACertificateOfItsOwn) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  const support::TestCertificate made(folder.path());
  ASSERT_EQ(::chmod(made.key.c_str(), 0644), 0);
  support::ServerProcess server(bus.address(), folder.path() / "data",
                                {"--tls-cert", made.certificate.string(), "--tls-key", made.key.string()});
  ASSERT_TRUE(server.address().starts_with("https://127.0.0.1:")) << server.line() << server.errors();
  httplib::SSLClient browser("127.0.0.1", server.port());
  browser.enable_server_certificate_verification(false);
  browser.set_read_timeout(120);
  const auto entered = browser.Get("/?key=" + server.key());
  ASSERT_TRUE(entered) << entered.error();
  const std::string cookie = entered->get_header_value("Set-Cookie");
  EXPECT_NE(cookie.find("; Secure"), std::string::npos) << "it never goes in the clear";
  const httplib::Headers headers{{"Cookie", cookie.substr(0, cookie.find(';'))},
                                 {"Origin", "https://127.0.0.1:" + std::to_string(server.port())}};
  const auto state = browser.Get("/api/state", headers);
  ASSERT_TRUE(state);
  EXPECT_EQ(state->status, 200);
  const auto from = [&](const std::string& scheme, const std::string& site) {
    httplib::Headers others{{"Cookie", cookie.substr(0, cookie.find(';'))},
                            {"Origin", scheme + "127.0.0.1:" + std::to_string(server.port())}};
    if (!site.empty()) others.emplace("Sec-Fetch-Site", site);
    const auto answer = browser.Post("/WMP_Setup", others, "x=1", "application/x-www-form-urlencoded");
    return answer ? answer->status : 0;
  };
  EXPECT_EQ(from("http://", ""), 403) << "it has no pages in the clear";
  EXPECT_EQ(from("http://", "cross-site"), 403);
  EXPECT_EQ(from("https://", "same-site"), 403);
  EXPECT_NE(from("https://", "same-origin"), 403);
  EXPECT_NE(from("https://", ""), 403) << "older browsers don't tell it";
  const auto warned = [&] {
    const auto log = browser.Get("/api/log", headers);
    return log && log->body.find("may read the key") != std::string::npos;
  };
  EXPECT_TRUE(Eventually(warned)) << "everybody may read the key";
  const auto posted = browser.Post("/api/logout", headers, "{}", "application/json");
  ASSERT_TRUE(posted);
  EXPECT_EQ(posted->status, 200);
  EXPECT_EQ(server.end(), 0);
}

TEST(TheServersProgram, DoesNotStartWithACertificateThatIsNone) {
  const support::BusDaemon bus;
  const support::TempFolder folder;
  files::WriteFile((folder.path() / "none.pem").string(), "no certificate");
  support::ServerProcess server(bus.address(), folder.path() / "data",
                                {"--tls-cert", (folder.path() / "none.pem").string()});
  EXPECT_EQ(server.wait(), 1);
  EXPECT_NE(server.errors().find("holds no certificate that can be used"), std::string::npos)
      << server.errors();
}

}  // namespace
}  // namespace standin
