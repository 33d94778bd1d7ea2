// The text of a plug-in's page as the browser reads it: whatever it is, what comes of it is made of a page's
// own elements and attributes, posts what can be seen, asks for nothing and runs nothing.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/Text.hpp"
#include "files/ReadFile.hpp"
#include "standin/fakes/FramePage.hpp"
#include "standin/fakes/HostileNames.hpp"
#include "standin/fakes/Sites.hpp"
#include "standin/pages/PageChecks.hpp"
#include "standin/pages/PageTextByChance.hpp"

namespace {

using nlohmann::json;

constexpr int kTexts = 6000;
constexpr int kAtOnce = 1000;  // in one call of the browser, which has a minute for it

/// How many texts are tried: VANTORIX_CHANCE says it for a long run.
int Texts() {
  const char* const wanted = std::getenv("VANTORIX_CHANCE");
  int count = kTexts;
  if (wanted != nullptr) std::from_chars(wanted, wanted + std::string_view(wanted).size(), count);
  return std::max(count, kAtOnce);
}

class PageTexts : public support::FramePage {
 protected:
  /// What chance begins with: all names that want more than a name may, and pages that hold them; and texts
  /// that once broke something.
  json seeds() const {
    json all = json::array();
    for (const support::HostileFamily& family : support::kHostileFamilies) {
      for (std::string each : family.members) {
        const std::string address = "127.0.0.1:" + std::to_string(foreign.port());
        for (std::size_t at = 0; (at = each.find("FOREIGN")) != std::string::npos;)
          each.replace(at, 7, address);
        if (base::IsPlainUtf8(each)) all.push_back(each);
      }
    }
    for (const auto& entry : std::filesystem::directory_iterator(MARKUP_FOLDER)) {
      const std::string text = files::TextOf(entry.path()).value_or("");
      if (!base::IsPlainUtf8(text)) continue;
      all.push_back(text);
      all.push_back(support::PageText(text, text));
    }
    all.push_back(support::PageText("Name", ""));
    return all;
  }
  /// Has the browser read so many texts, and answers what is wrong with the first few that are read badly.
  json read(const json& seeds, int number, int count) {
    return browser.runAsync(
        std::string(support::kStrange) + support::kUnseen + support::kImported + support::kByChance + R"(
      const [seeds, number, count, done] = arguments;
      performance.setResourceTimingBufferSize(1e6);
      const panel = document.querySelector('.plugin-page');
      // Of an attribute that a page has, a value that it hasn't.
      const kTypes = ['hidden', 'submit', 'text', 'checkbox', 'radio'];
      const kClasses = ['', 'tablecellcustom', 'message message-good', 'message message-bad', 'formbutton', 'formtext', 'formdropdown'];
      const odd = () => [...document.querySelectorAll('.plugin-page :is(span, input, select)')].filter((each) =>
        !kClasses.includes(each.className) || each.localName === 'input' && !kTypes.includes(each.type)
        || !/^\d{0,2}$/.test(each.getAttribute('size') ?? '')).map((each) => each.outerHTML.slice(0, 500));
      const refused = [];
      // What stands inline, and another base, is refused already where the text is read, as it should be.
      const refuse = ({effectiveDirective, blockedURI}) => {
        if (blockedURI !== 'inline' && effectiveDirective !== 'base-uri') refused.push([effectiveDirective, blockedURI]);
      };
      (async () => {
        const {readPageText} = await imported('/plugin/pagetext.js');
        const asked = () => performance.getEntriesByType('resource').filter(({name}) => !name.endsWith('/api/live')).length;
        document.addEventListener('securitypolicyviolation', refuse);
        const before = asked();
        const next = byChance(seeds, number);
        const wrong = [];
        const check = (text) => {
          panel.replaceChildren(readPageText(text));
          const found = [...strange(), ...unseen(), ...odd()];
          if (window.evil !== undefined) found.push('it ran');
          if (found.length) wrong.push({text, found});
        };
        for (let i = 0; i < count && wrong.length < 3; ++i) {
          const text = next().toWellFormed();  // half a character never comes over the network
          try {
            check(text);
          } catch (failure) {
            wrong.push({text, found: [String(failure.stack)]});
          }
        }
        panel.replaceChildren();
        await new Promise((resolve) => setTimeout(resolve));
        document.removeEventListener('securitypolicyviolation', refuse);
        if (asked() !== before) wrong.push({asked: asked() - before});
        return refused.length ? [...wrong, {refused: refused.slice(0, 3)}] : wrong;
      // Written out, as half a character can't be handed over.
      })().then((found) => done(found.length ? JSON.stringify(found) : found), (failure) => done(String(failure)));)",
        json::array({seeds, number, count}));
  }

  support::ForeignServer foreign;
};

TEST_F(PageTexts, IsReadAsAPageWhateverChanceMakesOfIt) {
  const json all = seeds();
  ASSERT_GT(all.size(), 300U);
  const int texts = Texts();
  const std::string outside =
      browser.run("return document.querySelector('#nav').outerHTML").get<std::string>();
  for (int number = 1; number <= texts / kAtOnce; ++number)
    ASSERT_EQ(read(all, number, kAtOnce), json::array()) << "in the " << number << ". thousand";
  EXPECT_EQ(browser.run("return document.querySelector('#nav').outerHTML"), outside);
  EXPECT_TRUE(posts().empty());
  EXPECT_FALSE(foreign.wasVisited());
}

}  // namespace
