#include "web/PageForm.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/FakeHost.hpp"
#include "support/House.hpp"
#include "support/faults/ShortOfMemory.hpp"
#include "web/HtmlFields.hpp"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

namespace {

class PageForm : public ::testing::Test {
 protected:
  std::vector<std::string> failures;
  web::PageForm page{"WMP_Setup", [this](const base::Failure& failure, const std::string& procedure) {
                       failures.push_back(procedure + " " + std::to_string(failure.number()));
                     }};
};

}  // namespace

TEST(HtmlFields, AHiddenFieldEndsItsLine) {
  EXPECT_EQ(web::FormHidden("n", "v"), "<input type=\"hidden\" name=\"n\" value=\"v\">\r\n");
}

TEST(HtmlFields, EmptyAttributesLeaveTheBlankInPlace) {
  EXPECT_EQ(web::FormSubmit("go", "Save", ""),
            "<input type=\"submit\" class=\"formbutton\" name=\"go\" value=\"Save\" >\r\n");
  EXPECT_EQ(web::FormSubmit("go", "Save", "disabled"),
            "<input type=\"submit\" class=\"formbutton\" name=\"go\" value=\"Save\" disabled>\r\n");
}

TEST(HtmlFields, ALabelStandsAboveItsTextField) {
  EXPECT_EQ(web::FormText("Name", "n", "v", ""),
            "Name<br><input type=\"text\" name=\"n\" value=\"v\" size=\"20\" class=\"formtext\" >\r\n");
  EXPECT_EQ(web::FormText("", "n", "", "x"),
            "<input type=\"text\" name=\"n\" value=\"\" size=\"20\" class=\"formtext\" x>\r\n");
}

TEST(HtmlFields, ATickedBoxHasTwoBlanksAndNoLineEnd) {
  EXPECT_EQ(web::FormCheckBox("Debug", "d", true, ""),
            "<input type=\"CheckBox\" name=\"d\" value=\"TRUE\"  CHECKED>Debug");
  EXPECT_EQ(web::FormCheckBox("Debug", "d", false, "a"),
            "<input type=\"CheckBox\" name=\"d\" value=\"TRUE\" a>Debug");
}

TEST_F(PageForm, ADropListOffersFilteredNames) {
  EXPECT_EQ(page.FormDropDown("Album", "list", "Albums", 5, "Rock Roll", {"Rock & Roll", "rock roll", "<b>"},
                              "multiple"),
            "Albums<br><select class=\"formdropdown\" name=\"list\" size=\"5\" multiple>\r\n"
            "<option selected value=\"Rock Roll\">Rock Roll</option>\r\n"
            "<option value=\"rock roll\">rock roll</option>\r\n"
            "<option value=\" b \"> b </option>\r\n"
            "</select>\r\n");
}

TEST_F(PageForm, ADropListWithoutLabelAndItemsIsItsFrame) {
  EXPECT_EQ(page.FormDropDown("", "l", "", 1, "", {}, ""),
            "<select class=\"formdropdown\" name=\"l\" size=\"1\" >\r\n</select>\r\n");
}

TEST_F(PageForm, AttributesWrapInTheirOrderAndOthersAreSkipped) {
  EXPECT_EQ(page.HTML_Attr("x", {"BOLD", "blink", "Error"}),
            "<SPAN style=\"color: red; font-weight: bold\"><b>x</b></SPAN>");
  EXPECT_EQ(page.HTML_Attr("x", {"message"}),
            "<SPAN class=\"tablecellcustom\" style=\"font-weight: bold\">x</SPAN>");
  EXPECT_EQ(page.HTML_Attr("x", {}), "x");
}

TEST_F(PageForm, TheHeaderLeavesItsFormOpen) {
  EXPECT_EQ(page.PageHeader("Setup", "setup_page"),
            "<form method=\"post\">\r\n<p><h3>Setup<hr noshade></h3></p>\r\n"
            "<input type=\"hidden\" name=\"ref_page\" value=\"WMP_Setup\">\r\n"
            "<input type=\"hidden\" name=\"wmp_page\" value=\"setup_page\">\r\n");
}

TEST_F(PageForm, AMessageIsShownOnce) {
  page.Message = "Added: 'x'";
  EXPECT_THAT(page.PageHeader("t", "p"),
              ::testing::HasSubstr("<SPAN class=\"tablecellcustom\" style=\"font-weight: bold\">Added: 'x'"
                                   "</SPAN><br><br>"));
  EXPECT_THAT(page.Message, IsEmpty());
  EXPECT_THAT(page.PageHeader("t", "p"), ::testing::Not(::testing::HasSubstr("SPAN")));
}

TEST_F(PageForm, AnErrorIsRedInAnyCase) {
  for (const char* message : {"Error: xyz", "error", "ERRORS are red too"}) {
    page.Message = message;
    EXPECT_THAT(
        page.PageHeader("t", "p"),
        ::testing::HasSubstr(std::string("<SPAN style=\"color: red; font-weight: bold\">") + message));
  }
}

TEST_F(PageForm, APostIsReadIntoPairsWithAnEmptyLastSlot) {
  page.GetFormData("a=1&b=&c=3");
  EXPECT_THAT(page.Args, ElementsAre(Pair("a", "1"), Pair("b", ""), Pair("c", "3"), Pair("", "")));
}

TEST_F(PageForm, ABodyWithoutPairsGivesOneEmptySlot) {
  page.GetFormData("a=1");
  page.GetFormData("nothing here");
  EXPECT_THAT(page.Args, ElementsAre(Pair("", "")));
  page.GetFormData("");
  EXPECT_THAT(page.Args, ElementsAre(Pair("", "")));
}

TEST_F(PageForm, AnEqualsSignWithinAValueBelongsToIt) {
  page.GetFormData("a=b=c&d=e");
  EXPECT_THAT(page.Args, ElementsAre(Pair("a", "b=c"), Pair("d", "e"), Pair("", ""), Pair("", "")));
}

TEST_F(PageForm, NamesAndValuesAreDecoded) {
  page.GetFormData("First+Name=AC%2FDC%26more&x=%C3%89lan");
  EXPECT_THAT(page.Args, ElementsAre(Pair("First Name", "AC/DC&more"), Pair("x", "Élan"), Pair("", "")));
}

TEST_F(PageForm, DecodingTurnsPlusAndPercent) {
  EXPECT_EQ(page.UrlDecode("a+b%2Bc"), "a b+c");
  EXPECT_EQ(page.UrlDecode("100%25"), "100%");
  EXPECT_EQ(page.UrlDecode("%2541"), "%41");
  EXPECT_EQ(page.UrlDecode(""), "");
  EXPECT_THAT(failures, IsEmpty());
}

TEST_F(PageForm, ATextThatCantBeDecodedStaysAsItCameAndIsLogged) {
  for (const char* text : {"a+%zz", "50%", "%4"}) EXPECT_EQ(page.UrlDecode(text), text);
  EXPECT_THAT(failures, ElementsAre("UrlDecode 13", "UrlDecode 13", "UrlDecode 13"));
}

TEST_F(PageForm, APairThatCantBeDecodedCostsOnlyItsOwnDecoding) {
  page.GetFormData("a=%&b=%41");
  EXPECT_THAT(page.Args, ElementsAre(Pair("a", "%"), Pair("b", "A"), Pair("", "")));
}

TEST_F(PageForm, AnOperationThatFailsIsLoggedUnderItsNameAndAnswersNothing) {
  constexpr std::size_t kLarge = 1U << 16U;
  const std::string large(kLarge, 'x');
  const base::TextList items{large};
  const std::string body = large + "=1";
  std::string answers;
  std::string decoded = large;
  {
    const support::ShortOfMemory machine(kLarge);
    answers += page.FormDropDown("", "l", "", 1, "", items, "");
    answers += page.HTML_Attr(large, {"bold"});
    answers += page.PageHeader(large, "p");
    page.GetFormData(body);
    decoded = page.UrlDecode(std::move(decoded));
  }
  EXPECT_EQ(answers, "");
  EXPECT_EQ(decoded, large);
  EXPECT_THAT(failures, ElementsAre("FormDropDown 51", "HTML_Attr 51", "PageHeader 51", "GetFormData 51",
                                    "UrlDecode 51"));
}

TEST_F(PageForm, TheEditorsPageHasItsOwnLink) {
  web::PageForm editor("WMP_PListEdit", [](const base::Failure&, const std::string&) {});
  EXPECT_THAT(editor.PageHeader("t", "p"),
              ::testing::HasSubstr("<input type=\"hidden\" name=\"ref_page\" value=\"WMP_PListEdit\">\r\n"));
}

namespace {
class PageLogs : public support::House {
 protected:
  void SetUp() override { connect(); }
};
}  // namespace

TEST_F(PageLogs, TheTwoPagesDifferInTheirSecondWord) {
  journal.clear();
  web::SetupPageLog(plugin.host, "WebSetupForm")(base::Failure(13), "UrlDecode");
  web::EditorPageLog(plugin.loggers)(base::Failure(13), "UrlDecode");
  EXPECT_THAT(journal.lines(), ElementsAre("WriteLog(\"Error\", \"Media Player: Could not complete procedure "
                                           "WebSetupForm/UrlDecode Error # 13: Type mismatch\")",
                                           "WriteLog(\"Error\", \"Media Player Could not complete procedure "
                                           "WebModule/UrlDecode Error # 13: Type mismatch\")"));
}

TEST_F(PageLogs, WordsThatThereIsNoMemoryForAreLeftOut) {
  constexpr std::size_t kLarge = 1U << 16U;
  const base::Failure failure(13, std::string(kLarge, 'x'));
  const auto setup = web::SetupPageLog(plugin.host, "WebSetupForm");
  const auto editor = web::EditorPageLog(plugin.loggers);
  journal.clear();
  {
    const support::ShortOfMemory machine(kLarge);
    EXPECT_NO_THROW(setup(failure, "UrlDecode"));
    EXPECT_NO_THROW(editor(failure, "UrlDecode"));
  }
  EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(PageLogs, AFailingLogIsSwallowed) {
  host->failing = {"WriteLog"};
  EXPECT_NO_THROW(web::SetupPageLog(plugin.host, "WebSetupForm")(base::Failure(13), "x"));
  EXPECT_NO_THROW(web::EditorPageLog(plugin.loggers)(base::Failure(13), "x"));
}
