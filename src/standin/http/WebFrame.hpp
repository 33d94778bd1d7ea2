#pragma once
#include <string>
#include <string_view>

namespace standin {

/// The server's own page with something in it. `view` is the page's place in the navigation; `content` is
/// markup and stands in the page as it is. `nonce` lets the page's own script run under a PluginPolicy.
std::string Framed(const std::string& title, const std::string& view, std::string_view content,
                   const std::string& nonce = {});

/// The text of a plug-in's page with the tags that act by themselves shown as text. The rest of what a name
/// in it could do is forbidden by the page's policy; these no policy stops: a <meta> takes the reader to
/// another page, a <link> connects to another server, an <html> or <body> gives its attributes to the whole
/// page, and a <template> may put itself in the place of all that the page shows.
std::string WithoutActingTags(std::string_view text);

/// A refusal for the eye: what is wrong in words, and the way on. `path` is what was asked for, decoded.
std::string RefusalPage(int status, const std::string& text, const std::string& path);

/// The rules of a page of the server's own, as a Content-Security-Policy.
inline constexpr const char* kOwnPolicy =
    "default-src 'self'; base-uri 'none'; object-src 'none'; form-action 'self'; frame-ancestors 'none'";

/// Those of a page with text of the plug-in's, which sets widths in style attributes. Its lists name a line
/// of script to be run when they change. That line is not allowed here: once it is, any tag in a name may use
/// it too and send a form unasked. The frame's own script does what it means. It alone carries the nonce, so
/// that no name can start it a second time.
std::string PluginPolicy(const std::string& nonce);
/// A nonce that nobody can guess, for one answer.
std::string NewNonce();

}  // namespace standin
