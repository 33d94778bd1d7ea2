#pragma once
#include <string>
#include <string_view>

namespace standin {

/// The server's own page with something in it. `view` is the page's place in the navigation; `content` is
/// markup and stands in the page as it is. `nonce` lets the page's own script run under a PluginPolicy.
std::string Framed(const std::string& title, const std::string& view, std::string_view content,
                   const std::string& nonce = {});

/// The text of a plug-in's page as data in the server's own page. The page's script shows of it what is no
/// harm: a name in the text may hold anything.
std::string AsPageData(std::string_view text);

/// A refusal for the eye: what is wrong in words, and the way on. `path` is what was asked for, decoded.
std::string RefusalPage(int status, const std::string& text, const std::string& path);

/// The rules of a page of the server's own, as a Content-Security-Policy.
inline constexpr const char* kOwnPolicy =
    "default-src 'self'; base-uri 'none'; object-src 'none'; form-action 'self'; frame-ancestors 'none'";

/// Those of a page with text of a plug-in's: no script runs but the frame's own, which alone carries the
/// nonce, nothing is embedded, and nothing is drawn but by the frame's own style.
std::string PluginPolicy(const std::string& nonce);
/// A nonce that nobody can guess, for one answer.
std::string NewNonce();

}  // namespace standin
