#include "standin/http/WebServer.hpp"

#include <httplib.h>

#include <utility>

#include "base/Failure.hpp"
#include "files/ReadFile.hpp"
#include "standin/house/HouseJson.hpp"
#include "standin/http/Giving.hpp"
#include "standin/http/GuardedServer.hpp"
#include "standin/http/LiveStream.hpp"
#include "standin/http/WebFrame.hpp"
#include "standin/pages/WebFiles.hpp"

namespace standin {
namespace {

/// The address that it comes from; behind a server that passes requests on, which may stand on this very
/// machine, nobody is taken for who stands before it.
std::string PeerOf(const httplib::Request& request) {
  for (const char* told : {"Forwarded", "X-Forwarded-For", "X-Real-IP", "Via"})
    if (request.has_header(told)) return "by way of " + request.remote_addr;
  return request.remote_addr;
}

constexpr std::size_t kLongestPath = 2048;
constexpr const char* kTooLarge = "The request is too large";

/// With it the connection ends: what is left of the body can't be told from the next request.
void RefuseUnread(httplib::Response& response, int status, const std::string& text) {
  Give(response, Refusal(status, text));
  response.set_header("Connection", "close");
}

void AddRules(httplib::Response& response) {
  response.set_header("Content-Security-Policy", kOwnPolicy);
  response.set_header("X-Content-Type-Options", "nosniff");
  response.set_header("X-Frame-Options", "DENY");
  response.set_header("X-DNS-Prefetch-Control", "off");
  response.set_header("Referrer-Policy", "same-origin");
  response.set_header("Cross-Origin-Resource-Policy", "same-origin");
  response.set_header("Cache-Control", "private, no-cache");
}

/// A file of the server's own pages. Under the address with their hash it is the same for ever.
void GiveAsset(const httplib::Request& request, httplib::Response& response, const WebFile& file,
               bool forEver) {
  if (forEver) Put(response, "Cache-Control", "public, max-age=31536000, immutable");
  GiveIfNew(request, response,
            {.type = std::string(MediaTypeOf(file.name)), .body = std::string(file.content)});
}

/// False when the user has signed out meanwhile, or can't be asked for: nothing may leave a stream's thread.
bool StillKnown(WebApi& api, const std::string& token) {
  try {
    return api.visitor(token).has_value();
  } catch (...) {
    return false;
  }
}

bool WantsPage(const httplib::Request& request) {
  return request.get_header_value("Accept").find("text/html") != std::string::npos;
}

/// The answer, as a page where one was asked for, under the rules that belong to it.
void GiveFor(const httplib::Request& request, httplib::Response& response, WebAnswer answer) {
  if (answer.status != 200 && WantsPage(request)) {
    // The page's own script shows the way to sign in.
    const std::string text = nlohmann::json::parse(answer.body).value("error", "");
    answer.body = RefusalPage(answer.status, text, request.path);
    answer.type = "text/html; charset=utf-8";
  }
  if (!answer.cache.empty()) Put(response, "Cache-Control", answer.cache);
  if (!answer.policy.empty()) Put(response, "Content-Security-Policy", answer.policy);
  // A page with a policy of its own is made for this one time.
  const bool keeps =
      request.method != "POST" && answer.status == 200 && answer.policy.empty() && answer.location.empty();
  if (keeps) return GiveIfNew(request, response, std::move(answer));
  Give(response, std::move(answer));
}

}  // namespace

WebPort::WebPort(const std::string& address, int port) : WebPort(address, port, nullptr) {}

WebPort::WebPort(const std::string& address, int port, std::unique_ptr<TlsIdentity> identity)
    : server_(std::make_unique<GuardedServer>()) {
  server_->speakAs(std::move(identity));
  // Without this the port could be shared with another server.
  server_->set_socket_options([](socket_t socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  server_->set_tcp_nodelay(true);
  port_ = server_->bind(address, port);
  if (port_ <= 0) {
    throw base::Failure(
        base::number::kPermissionDenied,
        "Can't listen on " + address + " port " + std::to_string(port) + ": it is in use or not allowed");
  }
}

WebPort::~WebPort() = default;

bool WebPort::speaksTls() const { return server_->speaksTls(); }

WebServer::WebServer(WebPort& port, const Parts& parts)
    : server_(port.server()),
      api_(parts.api),
      gate_(parts.gate),
      live_(parts.live),
      refused_(parts.refused),
      hosts_(parts.hosts),
      htmlFolder_(parts.htmlFolder),
      cookie_(CookieName(port.port())) {
  server_.set_payload_max_length(Route::kLargestBody);
  server_.set_keep_alive_timeout(2);
  server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    AddRules(response);
    if (request.path.size() > kLongestPath) {
      RefuseUnread(response, 414, "The address is too long");
    } else if (request.method == "POST") {
      return httplib::Server::HandlerResponse::Unhandled;  // its body is read first
    } else if (request.method != "GET" && request.method != "HEAD") {
      RefuseUnread(response, 405, "Only GET and POST are answered");
    } else {
      answerGet(request, response);
    }
    return httplib::Server::HandlerResponse::Handled;
  });
  server_.Post("[\\s\\S]*", [this](const httplib::Request& request, httplib::Response& response,
                                   const httplib::ContentReader& reader) {
    const Route* route = api_.find(Method::kPost, request.path);
    if (auto refused = refusedUnread(request, route)) {
      response.set_header("Connection", "close");
      return GiveFor(request, response, std::move(*refused));
    }
    std::string body;
    bool tooLarge = false;
    const bool whole = reader([&](const char* data, std::size_t size) {
      tooLarge = body.size() + size > route->limit;
      if (!tooLarge) body.append(data, size);
      return !tooLarge;
    });
    if (tooLarge) {
      RefuseUnread(response, 413, kTooLarge);
    } else if (!whole) {
      RefuseUnread(response, 400, "The request was not understood");
    } else {
      answerPost(request, response, *route, std::move(body));
    }
  });
  server_.set_error_handler([](const httplib::Request&, httplib::Response& response) {
    if (response.body.empty()) {
      const int status = response.status;
      if (status == 413) return RefuseUnread(response, status, kTooLarge);
      Give(response, Refusal(status, "The request was not understood"));
    }
  });
  server_.set_exception_handler(
      [](const httplib::Request&, httplib::Response& response, const std::exception_ptr&) {
        Give(response, Refusal(500, "The server could not answer"));
      });
  thread_ = std::thread([this] { server_.listen_after_bind(); });
}

WebServer::~WebServer() {
  live_.close();
  gate_.close();
  server_.stopNow();
  thread_.join();
}

std::string WebServer::tokenOf(const httplib::Request& request) const {
  return CookieValue(request.get_header_value("Cookie"), cookie_);
}

void WebServer::answerGet(const httplib::Request& request, httplib::Response& response) {
  if (!hosts_.allows(request.get_header_value("Host"))) {
    return Give(response, Refusal(403, "This server doesn't answer to that name"));
  }
  const std::string& path = request.path;
  // With a key it is the table's: the owner comes in.
  if ((path == "/" && !request.has_param("key")) || path == "/index.html") {
    return GiveIfNew(request, response,
                     {.type = "text/html; charset=utf-8", .body = Framed("Vantorix", "", "")});
  }
  const std::string token = tokenOf(request);
  const LoadReason reason{.site = request.get_header_value("Sec-Fetch-Site"),
                          .mode = request.get_header_value("Sec-Fetch-Mode"),
                          .dest = request.get_header_value("Sec-Fetch-Dest"),
                          .purpose = request.get_header_value("Sec-Purpose")};
  if (path.starts_with("/api/") && !MayLoadData(reason)) {
    return Give(response, Refusal(403, "The request doesn't come from a page of this server"));
  }
  const bool asset = path.starts_with(AssetsAddress()) && path.find('/', 1) == AssetsAddress().size();
  const std::string_view name = std::string_view(path).substr(asset ? AssetsAddress().size() + 1 : 1);
  if (const WebFile* file = FindWebFile(name); file != nullptr && name != "index.html") {
    return GiveAsset(request, response, *file, asset);
  }
  if (!path.starts_with("/api/")) {
    if (const auto found = FileBelow(htmlFolder_, path)) {
      if (auto refused = api_.refusal(*api_.find(Method::kGet, kHouseFiles), token))
        return GiveFor(request, response, std::move(*refused));
      if (GiveInPieces(request, response, *found)) return;
      const auto content = files::TextOf(*found);
      if (content)
        return GiveIfNew(request, response,
                         {.type = std::string(MediaTypeOf(found->string())), .body = *content});
    }
  }
  if (!path.starts_with("/api/") && !MayLoadPage(reason)) {
    return Give(response, Refusal(403, "A page is not loaded as a part of another one"));
  }
  // A link from elsewhere brings no cookie along. Who follows it looks a second time, from here.
  if (!path.starts_with("/api/") && token.empty() && reason.site == "cross-site" &&
      reason.mode == "navigate") {
    return Give(
        response,
        {.type = "text/html; charset=utf-8",
         .body = "<!doctype html><meta http-equiv=\"refresh\" content=\"0\"><title>Vantorix</title>\n"});
  }
  const Route* route = api_.find(Method::kGet, path);
  if (route == nullptr || std::holds_alternative<HouseFile>(route->handler))
    return GiveFor(request, response, Refusal(404, "There is no such page"));
  if (std::holds_alternative<Live>(route->handler)) return stream(*route, request, response);
  WebCall call{.method = Method::kGet, .path = path, .token = token, .peer = PeerOf(request)};
  for (const auto& [name, value] : request.params) call.parameters.try_emplace(name, value);
  GiveFor(request, response, api_.answer(*route, std::move(call)));
}

std::optional<WebAnswer> WebServer::refusedUnread(const httplib::Request& request, const Route* route) {
  const std::string host = request.get_header_value("Host");
  if (!hosts_.allows(host)) {
    refused_.count(PostRefusal::kForeignHost);
    return Refusal(403, "This server doesn't answer to that name");
  }
  if (!SameOrigin(request.get_header_value("Origin"), host, server_.speaksTls()) ||
      !MayLoadData({.site = request.get_header_value("Sec-Fetch-Site")})) {
    refused_.count(PostRefusal::kOtherOrigin);
    return Refusal(403, "The request doesn't come from a page of this server");
  }
  // No page of this server sends a body in parts.
  if (request.is_multipart_form_data()) return Refusal(415, "A body in parts is not understood");
  const std::string wanted = route == nullptr ? Route::kJson : route->type;
  if (!request.get_header_value("Content-Type").starts_with(wanted)) {
    return Refusal(415, wanted == Route::kJson ? "The request is no JSON object"
                                               : "The request is not of the type " + wanted);
  }
  if (route == nullptr) return Refusal(404, "There is no such page");
  if (auto refused = api_.refusal(*route, tokenOf(request))) {
    if (refused->status == 401) refused_.count(PostRefusal::kNoSession);
    return refused;
  }
  if (request.get_header_value<std::uint64_t>("Content-Length") > route->limit)
    return Refusal(413, kTooLarge);
  return std::nullopt;
}

void WebServer::answerPost(const httplib::Request& request, httplib::Response& response, const Route& route,
                           std::string body) {
  WebCall call{.method = Method::kPost,
               .path = request.path,
               .body = std::move(body),
               .type = request.get_header_value("Content-Type"),
               .token = tokenOf(request),
               .peer = PeerOf(request)};
  for (const auto& [name, value] : request.params) call.parameters.try_emplace(name, value);
  GiveFor(request, response, api_.answer(route, std::move(call)));
}

void WebServer::stream(const Route& route, const httplib::Request& request, httplib::Response& response) {
  const std::string token = tokenOf(request);
  const auto stream = std::make_shared<std::optional<LiveStream>>();
  const auto refused = api_.letIn(
      route, token,
      [&live = live_, &api = api_, stream, token,
       last = request.get_header_value("Last-Event-ID")](const User& user) {
        stream->emplace(
            live,
            LiveStream::Page{token, last, user.guest ? LiveFeed::Audience::kAll : LiveFeed::Audience::kOwner},
            [&api, token] { return StillKnown(api, token); });
      });
  if (refused) return Give(response, *refused);
  if (!stream->value().admitted()) return Give(response, Refusal(503, "Too many pages are open"));
  response.set_chunked_content_provider("text/event-stream", [stream](std::size_t, httplib::DataSink& sink) {
    const std::string text = stream->value().next();
    if (text.empty()) {
      sink.done();
      return true;
    }
    return sink.write(text.data(), text.size());
  });
}

}  // namespace standin
