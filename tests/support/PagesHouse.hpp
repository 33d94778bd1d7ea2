#pragma once
#include <initializer_list>
#include <string>
#include <utility>

#include "support/LibraryHouse.hpp"

namespace support {

/// A text whose lines end as those of a page do.
inline std::string Page(const std::string& text) {
  std::string page;
  for (const char c : text) page += c == '\n' ? "\r\n" : std::string(1, c);
  return page;
}

/// Names and values of a form.
using Fields = std::vector<std::pair<std::string, std::string>>;

/// A form post as browsers encode it.
inline std::string Body(const Fields& fields) {
  const auto encoded = [](const std::string& text) {
    static const char* kDigits = "0123456789ABCDEF";
    std::string all;
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (std::isalnum(byte) != 0 || c == '_')
        all += c;
      else if (c == ' ')
        all += '+';
      else
        all += std::string("%") + kDigits[byte / 16] + kDigits[byte % 16];
    }
    return all;
  };
  std::string body;
  for (const auto& [name, value] : fields)
    body += (body.empty() ? "" : "&") + encoded(name) + "=" + encoded(value);
  return body;
}

/// An item whose name can't be read.
class NamelessMedia : public FakeMedia {
 public:
  NamelessMedia() : FakeMedia("", "", "", "") {}
  [[nodiscard]] std::string name() const override { throw Failure(base::number::kDeviceIo); }
};

/// A house that shows its own pages.
class PagesHouse : public LibraryHouse {
 protected:
  PagesHouse() : LibraryHouse(Pages::kOwn) {}

  /// The editor's page, asked for by the host's web server.
  std::string get() { return base::ToText(callVxif("GenPage", "WMP_PListEdit")); }
  /// The answer to a post, which both pages get through the one door.
  std::string post(const std::string& body) { return base::ToText(callVxif("PagePut", body)); }
  std::string post(std::initializer_list<std::pair<std::string, std::string>> fields) {
    return post(Body(Fields(fields)));
  }
  [[nodiscard]] const pages::EditorFields& fields() const { return plugin.editorForm.fields(); }
};

}  // namespace support
