#include "web/PageForm.hpp"

#include <utility>

#include "base/Text.hpp"
#include "web/Concatenate.hpp"
#include "web/HtmlFields.hpp"
#include "web/UtilityModule.hpp"

namespace web {

namespace {

constexpr const char* kLineEnd = "\r\n";

struct Wrapping {
  const char* word;
  const char* before;
  const char* after;
};

const Wrapping kWrappings[] = {
    {"bold", "<b>", "</b>"},
    {"error", R"(<SPAN style="color: red; font-weight: bold">)", "</SPAN>"},
    {"message", R"(<SPAN class="tablecellcustom" style="font-weight: bold">)", "</SPAN>"},
};

std::string Option(std::string item, const std::string& selected) {
  FilterString(item, "HTML", " ");
  constexpr std::size_t kFrame = 48;
  std::string option;
  option.reserve(2 * item.size() + kFrame);
  option += item == selected ? R"(<option selected value=")" : R"(<option value=")";
  option += item;
  option += "\">";
  option += item;
  option += "</option>\r\n";
  return option;
}

}  // namespace

FailureLog SetupPageLog(plugin::HostServices& host, const std::string& formName) {
  return [&host, formName](const base::Failure& failure, const std::string& procedure) {
    base::Attempt step;
    step([&] {
      host.WriteLog("Error", "Media Player: Could not complete procedure " + formName + "/" + procedure +
                                 " Error # " + std::to_string(failure.number()) + ": " +
                                 failure.description());
    });
  };
}

FailureLog EditorPageLog(plugin::Loggers& loggers) {
  return [&loggers](const base::Failure& failure, const std::string& procedure) {
    base::Attempt step;
    step([&] { loggers.LogModuleError(failure.number(), failure.description(), "WebModule", procedure); });
  };
}

std::string PageForm::FormDropDown(const std::string& /*category: a drop list is the same for all*/,
                                   const std::string& name, const std::string& label, std::int16_t size,
                                   const std::string& selected, const base::TextList& items,
                                   const std::string& attributes) {
  return Logged("FormDropDown", [&] {
    StringAccumulator text;
    ConcatInit(text);
    if (!label.empty()) ConcatAdd(text, label + "<br>");
    ConcatAdd(text, R"(<select class="formdropdown" name=")" + name + R"(" size=")" + std::to_string(size) +
                        "\" " + attributes + ">" + kLineEnd);
    for (const std::string& item : items) ConcatAdd(text, Option(item, selected));
    ConcatAdd(text, std::string("</select>") + kLineEnd);
    return ConcatResult(text);
  });
}

std::string PageForm::HTML_Attr(const std::string& text, const std::vector<std::string>& attributes) {
  return Logged("HTML_Attr", [&] {
    std::string wrapped = text;
    for (const std::string& attribute : attributes) {
      for (const Wrapping& wrapping : kWrappings) {
        if (base::SameText(attribute, wrapping.word))
          wrapped.insert(0, wrapping.before).append(wrapping.after);
      }
    }
    return wrapped;
  });
}

std::string PageForm::PageHeader(const std::string& title, const std::string& page) {
  return Logged("PageHeader", [&] {
    StringAccumulator text;
    ConcatInit(text);
    ConcatAdd(text, std::string(R"(<form method="post">)") + kLineEnd);
    ConcatAdd(text, "<p><h3>" + title + "<hr noshade></h3></p>" + kLineEnd);
    if (!Message.empty()) {
      const bool isError = base::SameText(Message.substr(0, 5), "error");
      ConcatAdd(text, HTML_Attr(Message, {isError ? "error" : "message"}) + "<br><br>");
      Message.clear();
    }
    ConcatAdd(text, FormHidden("ref_page", link_));
    ConcatAdd(text, FormHidden("wmp_page", page));
    return ConcatResult(text);
  });
}

void PageForm::GetFormData(const std::string& data) {
  Logged("GetFormData", [&] {
    FormArgs read = FormSlots(data);
    ForEachPair(data, [&](std::size_t slot, std::string_view name, std::string_view value) {
      read[slot] = {UrlDecode(std::string(name)), UrlDecode(std::string(value))};
    });
    Args = std::move(read);
  });
}

FormArgs PageForm::Posted(const std::string& data) {
  GetFormData(data);
  FormArgs pairs = std::exchange(Args, {});
  if (!pairs.empty()) pairs.pop_back();
  return pairs;
}

std::string PageForm::UrlDecode(std::string text) {
  return base::Handled([&] { return DecodeUrl(text); },
                       [&](const base::Failure& failure) {
                         log_(failure, "UrlDecode");
                         return std::move(text);
                       });
}

}  // namespace web
