#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/Attempt.hpp"
#include "base/Collection.hpp"
#include "base/Failure.hpp"
#include "plugin/host/Loggers.hpp"
#include "web/FormData.hpp"

namespace web {

/// Where a page tells of a failure that it did not expect. Never throws.
using FailureLog = std::function<void(const base::Failure& failure, const std::string& procedure)>;

/// The line of the setup page, whose form has that name, and the line of the editor. They differ in their
/// second word.
FailureLog SetupPageLog(plugin::HostServices& host, const std::string& formName);
FailureLog EditorPageLog(plugin::Loggers& loggers);

/// What both pages have in common: the message that is shown once, the reading of posts, and the
/// builders that log their failures. None of the operations throws, also not for want of memory, as long as
/// there is enough for the words of the failure itself.
class PageForm {
 public:
  /// `link` is the page's own, "WMP_Setup" or "WMP_PListEdit".
  PageForm(std::string link, FailureLog log) : link_(std::move(link)), log_(std::move(log)) {}

  /// What an operation has to say; the next page shows it and empties it.
  std::string Message;
  /// What `GetFormData` has read. `Posted` takes it away.
  FormArgs Args;

  /// A drop list. The options are the items through the filter for HTML, and so is what comes back: a media
  /// key ignores the filtered characters, so that the name is found from either form.
  std::string FormDropDown(const std::string& category, const std::string& name, const std::string& label,
                           std::int16_t size, const std::string& selected, const base::TextList& items,
                           const std::string& attributes);
  /// Wraps a text once for each of the words "bold", "error" and "message", in their order.
  std::string HTML_Attr(const std::string& text, const std::vector<std::string>& attributes);
  /// The beginning of a page, up to and with the hidden fields of a form that stays open.
  std::string PageHeader(const std::string& title, const std::string& page);
  /// Makes `Args` anew from the body of a post, once the whole body is read: a line in the log may let
  /// another post in meanwhile.
  void GetFormData(const std::string& data);
  /// Reads a post and hands its pairs over, without the empty slot: they stay as they are when a further post
  /// is read.
  FormArgs Posted(const std::string& data);
  /// The decoded text; a text that can't be decoded as it came.
  std::string UrlDecode(std::string text);

  /// Runs an operation of the page. A failure ends it with a line in the log under the operation's name, and
  /// the answer is the empty one of its type.
  template <class Operation>
  auto Logged(const char* procedure, Operation&& operation) {
    using Answer = decltype(operation());
    return base::Handled(std::forward<Operation>(operation), [&](const base::Failure& failure) {
      log_(failure, procedure);
      return Answer();
    });
  }

 private:
  std::string link_;
  FailureLog log_;
};

}  // namespace web
