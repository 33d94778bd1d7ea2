// The plug-in's own pages through the server's program.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <future>
#include <memory>
#include <thread>

#include "standin/http/ServerWithPlugin.hpp"

namespace standin::testing {
namespace {

using nlohmann::json;
using support::Eventually;

TEST_F(Server, PagesOfThePluginAreFramedAndKnowTheirUser) {
  FakePlugin plugin(bus.address(), furnishing());
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto page = web.get("/wmp_plistedit");
  ASSERT_TRUE(page);
  EXPECT_EQ(page->status, 200);
  EXPECT_NE(page->body.find("<p>page WMP_PListEdit for owner</p>"), std::string::npos);
  EXPECT_NE(page->body.find("<title>Vantorix Media Player</title>"), std::string::npos);
  const std::string policy = page->get_header_value("Content-Security-Policy");
  EXPECT_NE(policy.find("default-src 'self';"), std::string::npos);
  EXPECT_NE(policy.find("script-src 'nonce-"), std::string::npos);
  EXPECT_NE(policy.find("form-action 'self'"), std::string::npos);
  EXPECT_EQ(page->get_header_value_count("Content-Security-Policy"), 1U);

  EXPECT_EQ(web.postForm("/WMP_PListEdit", "button=Update&wmp_page=Setup_Page"), 200);
  EXPECT_NE(web.last.find("<p>put 33:button=Update&wmp_page=Setup_Page</p>"), std::string::npos);
  const std::string large = "a=" + std::string(200000, 'x');
  EXPECT_EQ(web.postForm("/WMP_PListEdit", large), 200);
  EXPECT_NE(web.last.find("<p>put 200002:"), std::string::npos);
  EXPECT_EQ(web.postText("/WMP_PListEdit", "a=b", WebClient::kForm, {{"Origin", "http://evil.example"}}),
            403);

  EXPECT_EQ(web.post("/api/login", {{"name", "guest"}}), 200);
  EXPECT_NE(web.get("/WMP_PListEdit")->body.find("for guest</p>"), std::string::npos);
  EXPECT_EQ(web.postForm("/WMP_PListEdit", "a=b"), 403);
  EXPECT_EQ(web.post("/api/menu", {{"item", "Stop"}}), 403);
  EXPECT_EQ(web.post("/api/plugin", json::object()), 403);
}

TEST_F(Server, APostReachesThePluginAsItIs) {
  FakePlugin::Manner manner = furnishing();
  std::string heard;
  manner.pagePut = [&](const std::string& data) {
    heard = data;
    return std::string("<p>heard</p>");
  };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  std::string pairs = "a=0";
  for (int i = 1; i < 10000; ++i) pairs += "&name" + std::to_string(i) + "=value+%41";
  const std::vector<std::string> bodies{"no pair at all",
                                        "&&&",
                                        "100%&a=%&b=%zz&c=%u0041",
                                        std::string("a=\0\0&b\0=1", 9),
                                        "a=\xff\xfe broken text",
                                        "title=Über&a=<script>",
                                        pairs};
  for (const std::string& body : bodies) {
    EXPECT_EQ(web.postForm("/WMP_PListEdit", body), 200);
    EXPECT_EQ(heard, body);
  }
}

TEST_F(Server, APluginThatFailsOnAPageLeavesAWayBack) {
  FakePlugin::Manner manner = furnishing();
  manner.genPage = [](const std::string&) -> std::string { throw base::Failure(13, "Wrong <b>type</b>"); };
  manner.pagePut = [](const std::string&) { return std::string(); };
  FakePlugin plugin(bus.address(), manner);
  ServerProcess server(bus.address(), data);
  WebClient web(server);
  ASSERT_TRUE(Eventually([&] { return stateOf(web) == "ready"; })) << told(web, server);
  const auto page = web.get("/WMP_PListEdit", {{"Accept", "text/html"}});
  EXPECT_EQ(page->status, 502);
  EXPECT_NE(page->body.find("<h1>The player gave no page</h1>"), std::string::npos);
  EXPECT_NE(page->body.find("Wrong &lt;b&gt;type&lt;/b&gt;"), std::string::npos) << page->body;
  EXPECT_NE(page->body.find("href=\"/WMP_PListEdit\""), std::string::npos);
  EXPECT_NE(page->body.find("id=\"nav\""), std::string::npos);
  // An answer without text is a page, an empty one.
  EXPECT_EQ(web.postForm("/WMP_PListEdit", "a=b"), 200);
  EXPECT_NE(web.last.find("<section class=\"plugin-page\"><script type=\"text/plain\"></script></section>"),
            std::string::npos);
  EXPECT_EQ(web.get("/api/state")->status, 200);
}

}  // namespace
}  // namespace standin::testing
