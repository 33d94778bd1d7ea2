#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Failure.hpp"
#include "standin/Options.hpp"

namespace standin {
namespace {

TEST(Options, AreReadAndWrongOnesRefused) {
  const Options options =
      ReadOptions({"--port", "0", "--data", "/tmp/x", "--allow-host", "a", "--allow-host", "b"});
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.data, "/tmp/x");
  EXPECT_EQ(options.allowedHosts, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(ReadOptions({}).port, 8080);
  EXPECT_EQ(ReadOptions({}).listen, "127.0.0.1");
  EXPECT_FALSE(ReadOptions({}).data.empty());
  EXPECT_EQ(ReadOptions({"--tls-cert", "both.pem"}).tlsKey, "both.pem");
  EXPECT_EQ(ReadOptions({"--tls-cert", "a.pem", "--tls-key", "b.pem"}).tlsKey, "b.pem");
  for (const std::vector<std::string>& wrong : {std::vector<std::string>{"--port"},
                                                {"--port", "70000"},
                                                {"--port", "8x"},
                                                {"--what"},
                                                {"file"},
                                                {"--tls-key", "b.pem"},
                                                {"--tls-cert", ""},
                                                {"--tls-cert", "a.pem", "--tls-key", ""}}) {
    EXPECT_THROW(ReadOptions(wrong), base::Failure);
  }
}

}  // namespace
}  // namespace standin
