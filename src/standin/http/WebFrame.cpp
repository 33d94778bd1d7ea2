#include "standin/http/WebFrame.hpp"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <initializer_list>

#include "standin/http/WebRules.hpp"
#include "standin/pages/WebFiles.hpp"

namespace standin {
namespace {

struct Mark {
  std::string_view name;
  std::string_view text;
};

/// The page with the text of each of its marks, as in {{name}}. What looks like a mark in a text is its own.
std::string Filled(std::string_view page, std::initializer_list<Mark> marks) {
  constexpr std::string_view kOpen = "{{";
  constexpr std::string_view kClose = "}}";
  std::string out;
  for (std::size_t at = 0; (at = page.find(kOpen)) != std::string_view::npos;) {
    out.append(page.substr(0, at));
    page.remove_prefix(at + kOpen.size());
    const std::size_t length = std::min(page.find(kClose), page.size());
    const std::string_view name = page.substr(0, length);
    page.remove_prefix(std::min(length + kClose.size(), page.size()));
    for (const Mark& mark : marks)
      if (mark.name == name) out.append(mark.text);
  }
  return out.append(page);
}

bool IsPlain(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
         c == '.' || c == '/';
}

/// The path as an address; always one of this server's.
std::string Address(const std::string& path) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string out = "/";
  for (const char c : path.substr(std::min(path.find_first_not_of('/'), path.size()))) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsPlain(c)) {
      out += c;
    } else {
      out += '%';
      out += kDigits[byte >> 4U];
      out += kDigits[byte & 15U];
    }
  }
  return out;
}

/// `word` in small letters. As browsers read tags: Latin letters alone have a case.
bool BeginsWith(std::string_view text, std::string_view word) {
  return text.size() >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin(), [](char wanted, char c) {
           return wanted == (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
         });
}

std::string Headline(int status) {
  switch (status) {
    case 401: return "Please sign in";
    case 403: return "This is not allowed";
    case 404: return "There is nothing here";
    case 502:
    case 504: return "The player gave no page";
    default: return "This did not work";
  }
}

}  // namespace

std::string NewNonce() {
  std::array<unsigned char, 16> bytes{};
  randombytes_buf(bytes.data(), bytes.size());
  std::string text(bytes.size() * 2 + 1, '\0');
  sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
  text.pop_back();
  return text;
}

std::string PluginPolicy(const std::string& nonce) {
  return std::string(kOwnPolicy) + "; script-src 'nonce-" + nonce +
         "'; worker-src 'self'; frame-src 'none'; media-src 'none'";
}

std::string Framed(const std::string& title, const std::string& view, std::string_view content,
                   const std::string& nonce) {
  const WebFile* file = FindWebFile("index.html");
  return Filled(
      file == nullptr ? std::string_view() : file->content,
      {{"nonce", nonce}, {"title", EscapeHtml(title)}, {"view", EscapeHtml(view)}, {"content", content}});
}

// What would end the element, or keep its end from being seen, is parted by one backslash more than it holds,
// so that the script can tell it from what was parted before.
std::string AsPageData(std::string_view text) {
  static constexpr std::array<std::string_view, 3> kActing{"!--", "script", "/script"};
  std::string out = R"(<script type="text/plain">)";
  out.reserve(out.size() + text.size());
  while (!text.empty()) {
    const std::size_t length = std::min(text.find('<'), text.size() - 1) + 1;
    out.append(text.substr(0, length));
    text.remove_prefix(length);
    const std::string_view next = text.substr(std::min(text.find_first_not_of('\\'), text.size()));
    if (std::any_of(kActing.begin(), kActing.end(), [&](auto word) { return BeginsWith(next, word); }))
      out += '\\';
  }
  return out + "</script>";
}

std::string RefusalPage(int status, const std::string& text, const std::string& path) {
  std::string content = "<h1>" + Headline(status) + "</h1>\n<p>" + EscapeHtml(text) + "</p>\n";
  if (status != 401) {
    content += R"(<p class="ways">)";
    if (status != 404) content += R"(<a class="way" href=")" + Address(path) + R"(">Try the page again</a> )";
    content += R"(<a class="way" href="/#devices">To the devices</a></p>)";
  }
  return Framed("Vantorix", "message", content);
}

}  // namespace standin
