#include "standin/http/WebFrame.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using standin::RefusalPage;
using standin::WithoutActingTags;
using testing::HasSubstr;
using testing::Not;

TEST(WebFrame, LeavesAPageTextAsItIs) {
  const std::string text =
      "<form method=\"post\">\r\n<p><h3>Edit PlayList<hr noshade></h3></p><select "
      "onChange=\"form.submit();\" "
      "style=\"width: 200\"><option selected value=\"A < B\">a\xff</option></select><BR "
      "clear=all></form>\r\n";
  EXPECT_EQ(WithoutActingTags(text), text);
  EXPECT_EQ(WithoutActingTags(""), "");
  EXPECT_EQ(WithoutActingTags("<"), "<");
  EXPECT_EQ(WithoutActingTags("a<me"), "a<me");
  EXPECT_EQ(WithoutActingTags(std::string("a\0<b>", 5)), std::string("a\0<b>", 5));
}

TEST(WebFrame, ShowsTagsThatActByThemselvesAsText) {
  EXPECT_EQ(WithoutActingTags("x<meta http-equiv=refresh content=0>y<<META/><b>"),
            "x&lt;meta http-equiv=refresh content=0>y<&lt;META/><b>");
  EXPECT_EQ(WithoutActingTags("<LiNk rel=preconnect href=//evil.example>"),
            "&lt;LiNk rel=preconnect href=//evil.example>");
  EXPECT_EQ(WithoutActingTags("<meta"), "&lt;meta");
  EXPECT_EQ(WithoutActingTags("<Body hidden><HTML hidden></body>"),
            "&lt;Body hidden>&lt;HTML hidden></body>");
  EXPECT_EQ(WithoutActingTags("<template shadowrootmode=open>"), "&lt;template shadowrootmode=open>");
}

TEST(WebFrame, APageTextStandsInTheFrameAsItIs) {
  const std::string page = standin::Framed("A <b>", "WMP_\"x", "<p>{{title}} {{content}}");
  EXPECT_THAT(page, HasSubstr("<title>A &lt;b&gt;</title>"));
  EXPECT_THAT(page, HasSubstr("data-view=\"WMP_&quot;x\""));
  EXPECT_THAT(page, HasSubstr("<section class=\"plugin-page\"><p>{{title}} {{content}}</section>"));
}

TEST(WebFrame, ARefusalTellsWhatIsWrongAndWhereToGo) {
  const std::string page = RefusalPage(502, "No <answer>", "/WMP_Setup");
  EXPECT_THAT(page, HasSubstr("No &lt;answer&gt;"));
  EXPECT_THAT(page, HasSubstr("href=\"/WMP_Setup\""));
  EXPECT_THAT(page, HasSubstr("href=\"/#devices\""));
  EXPECT_THAT(RefusalPage(403, "x", "/a\"><script>"), HasSubstr("href=\"/a%22%3E%3Cscript%3E\""));
  EXPECT_THAT(RefusalPage(403, "x", "//evil.example/"), HasSubstr("href=\"/evil.example/\""));
  EXPECT_THAT(RefusalPage(404, "x", "/nothing"), Not(HasSubstr("href=\"/nothing\"")));
}

TEST(WebFrame, NoScriptInAPageTextIsAllowed) {
  const std::string policy = standin::PluginPolicy("abc");
  EXPECT_THAT(policy, HasSubstr("default-src 'self';"));
  EXPECT_THAT(policy, HasSubstr("script-src 'nonce-abc';"));
  EXPECT_THAT(policy, Not(HasSubstr("unsafe-hashes")));
  EXPECT_THAT(policy, HasSubstr("form-action 'self'"));
  EXPECT_THAT(policy, HasSubstr("base-uri 'none'"));
}

TEST(WebFrame, OnlyTheFramesOwnScriptCarriesTheNonce) {
  const std::string nonce = standin::NewNonce();
  EXPECT_EQ(nonce.size(), 32U);
  EXPECT_NE(nonce, standin::NewNonce());
  const std::string page = standin::Framed("Title", "view", "{{nonce}}", nonce);
  EXPECT_THAT(page, HasSubstr("/app.js\" nonce=\"" + nonce + "\""));
  EXPECT_EQ(page.find(nonce), page.rfind(nonce));
}

}  // namespace
