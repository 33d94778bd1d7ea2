#include "standin/http/WebFrame.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using standin::AsPageData;
using standin::RefusalPage;
using testing::HasSubstr;
using testing::Not;

TEST(WebFrame, APageTextIsDataThatKeepsItsWords) {
  const std::string text =
      "<form method=\"post\">\r\n<p><h3>Edit PlayList<hr noshade></h3></p><select "
      "onChange=\"form.submit();\" "
      "style=\"width: 200\"><option selected value=\"A < B\">a\xff</option></select><BR "
      "clear=all></form>\r\n";
  EXPECT_EQ(AsPageData(text), "<script type=\"text/plain\">" + text + "</script>");
  EXPECT_EQ(AsPageData(""), "<script type=\"text/plain\"></script>");
  EXPECT_EQ(AsPageData("<"), "<script type=\"text/plain\"><</script>");
  EXPECT_EQ(AsPageData(std::string("a\0<b>", 5)),
            std::string("<script type=\"text/plain\">a\0<b></script>", 40));
}

TEST(WebFrame, NothingInAPageTextEndsItsElement) {
  const auto data = [](std::string_view text) {
    const std::string whole = AsPageData(text);
    return whole.substr(26, whole.size() - 35);
  };
  EXPECT_EQ(data("</script>"), "<\\/script>");
  EXPECT_EQ(data("x</ScRiPt y<<SCRIPT/>"), "x<\\/ScRiPt y<<\\SCRIPT/>");
  EXPECT_EQ(data("<!--<script>-->"), "<\\!--<\\script>-->");
  EXPECT_EQ(data("<\\script><\\\\!--"), "<\\\\script><\\\\\\!--")
      << "what was parted before stays apart from it";
  EXPECT_EQ(data("<!- <\\x </scrip"), "<!- <\\x </scrip");
}

TEST(WebFrame, APageTextStandsInTheFrameAsItIs) {
  const std::string page = standin::Framed("A <b>", "WMP_\"x", "<p>{{title}} {{content}}");
  EXPECT_THAT(page, HasSubstr("<title>A &lt;b&gt;</title>"));
  EXPECT_THAT(page, HasSubstr("data-view=\"WMP_&quot;x\""));
  EXPECT_THAT(page, HasSubstr("<section class=\"plugin-page\"><p>{{title}} {{content}}</section>"));
}

TEST(WebFrame, ATitleThatLooksLikeAMarkIsItself) {
  const std::string page = standin::Framed("{{content}} {{view}}", "{{content}}", "</title><p>text");
  EXPECT_THAT(page, HasSubstr("<title>{{content}} {{view}}</title>"));
  EXPECT_THAT(page, HasSubstr("data-view=\"{{content}}\""));
  EXPECT_THAT(page, HasSubstr("<section class=\"plugin-page\"></title><p>text</section>"));
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
  EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
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
