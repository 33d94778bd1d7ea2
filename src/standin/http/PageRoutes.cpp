#include "standin/http/PageRoutes.hpp"

#include <memory>

#include "standin/http/WebFrame.hpp"

namespace standin {
namespace {

void AskPage(House& house, PluginKeeper& plugin, const WebCall& call, const Reply& reply) {
  const PageLink* link = house.linkOf(call.path.substr(1));
  if (link == nullptr) return reply(Refusal(404, "There is no such page"));
  const bool post = call.method == Method::kPost;
  const auto text = std::make_shared<std::string>();
  plugin.command(
      [&house, page = link->page, name = call.user.name, operation = post ? "PagePut" : "GenPage",
       argument = post ? call.body : link->link, text](base::Object&) {
        house.webUser = name;
        try {
          *text = base::ToText(page->invoke(operation, argument));
        } catch (...) {
          house.webUser.clear();
          throw;
        }
        house.webUser.clear();
      },
      [title = link->title, view = link->link, text, reply](const std::string& failure) {
        if (!failure.empty()) return reply(Refusal(502, failure));
        const std::string nonce = NewNonce();
        reply({.type = "text/html; charset=utf-8",
               .body = Framed(title, view, AsPageData(*text), nonce),
               .policy = PluginPolicy(nonce)});
      });
}

}  // namespace

Routes PageRoutes(House& house, PluginKeeper& plugin) {
  const Later page{[&](const WebCall& call, const Reply& reply) { AskPage(house, plugin, call, reply); }};
  return {{Method::kGet, kHouseFiles, Role::kGuest, HouseFile{}},
          {Method::kGet, "/*", Role::kGuest, page},
          {Method::kPost, "/*", Role::kOwner, page, "Guests can't change anything here", Route::kLargestBody,
           Route::kForm}};
}

}  // namespace standin
