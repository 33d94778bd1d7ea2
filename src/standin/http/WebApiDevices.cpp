// What the pages ask of the plug-in: buttons, devices, menu, voice, its own pages.
#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "base/Failure.hpp"
#include "standin/house/EventStore.hpp"
#include "standin/http/WebApi.hpp"
#include "standin/http/WebFrame.hpp"
#include "standin/voice/Voice.hpp"

namespace standin {
namespace {

constexpr std::int16_t kCommandOn = 2;
constexpr std::int16_t kCommandOff = 3;
constexpr std::int16_t kCommandValue = 19;

WebAnswer outcome(const std::string& failure) {
  return failure.empty() ? WebAnswer() : Refusal(502, failure);
}

}  // namespace

WebAnswer WebApi::press(const std::string& token, const Json& json) {
  const auto ref = json.at("ref").get<std::int32_t>();
  const auto caption = json.at("caption").get<std::string>();
  return ask(token, [this, ref, caption](const User&, const Reply& reply) {
    const Device* device = house_.devices.byRef(ref);
    const bool known = device != nullptr &&
                       std::any_of(device->buttons.begin(), device->buttons.end(),
                                   [&](const DeviceButton& button) { return button.caption == caption; });
    if (!known) {
      reply(Refusal(404, "The device has no such button"));
      return;
    }
    plugin_.command([caption](base::Object& vxif) { vxif.invoke("ButtonPress", caption); },
                    [reply](const std::string& failure) { reply(outcome(failure)); });
  });
}

void WebApi::setIo(const Device& device, std::int16_t command, std::int16_t brightness, const Reply& reply) {
  const base::ObjectRef object = objects_.device(device.ref);
  plugin_.command(
      [object, hc = device.hc, dc = device.dc, command, brightness](base::Object& vxif) {
        vxif.invoke("SetIO", object, hc, dc, command, brightness, std::int16_t{0}, std::int16_t{0});
      },
      [reply](const std::string& failure) { reply(outcome(failure)); });
}

WebAnswer WebApi::command(const std::string& token, const Json& json) {
  const auto ref = json.at("ref").get<std::int32_t>();
  const auto word = json.at("command").get<std::string>();
  const auto value = json.value("value", std::int64_t{0});
  return ask(token, [this, ref, word, value](const User&, const Reply& reply) {
    const Device* device = house_.devices.byRef(ref);
    if (device == nullptr) {
      reply(Refusal(404, "There is no such device"));
    } else if (word == "on" || word == "off") {
      setIo(*device, word == "on" ? kCommandOn : kCommandOff, 0, reply);
    } else if (word != "value") {
      reply(Refusal(400, "There is no such command"));
    } else if (value < 0 || value > std::numeric_limits<std::int16_t>::max()) {
      reply(Refusal(400, "The value is out of range"));
    } else {
      house_.devices.putValue(ref, static_cast<std::int32_t>(value));
      setIo(*device, kCommandValue, static_cast<std::int16_t>(value), reply);
    }
  });
}

WebAnswer WebApi::menu(const std::string& token, const Json& json) {
  const auto item = json.at("item").get<std::string>();
  return ask(token, [this, item](const User& user, const Reply& reply) {
    if (user.guest) {
      reply(Refusal(403, "Guests can't use the menu"));
    } else if (!house_.menu.has(item)) {
      reply(Refusal(404, "There is no such menu item"));
    } else {
      plugin_.command([item](base::Object& vxif) { vxif.invoke("SelectMenu", item); },
                      [reply](const std::string& failure) { reply(outcome(failure)); });
    }
  });
}

WebAnswer WebApi::voice(const std::string& token, const Json& json) {
  const auto text = json.at("text").get<std::string>();
  return ask(token, [this, text](const User&, const Reply& reply) {
    if (text.empty() || text.size() > 500) {
      reply(Refusal(400, "Say something of up to 500 characters"));
      return;
    }
    house_.log.write("Voice", text);
    const std::vector<std::int32_t> refs = DevicesOfVoice(house_, text);
    if (refs.empty()) {
      reply(Refusal(404, "Nothing in the house listens for that"));
      return;
    }
    struct Call {
      base::ObjectRef object;
      std::string hc;
      std::string dc;
    };
    std::vector<Call> calls;
    for (const std::int32_t ref : refs) {
      const Device& device = *house_.devices.byRef(ref);
      calls.push_back({objects_.device(ref), device.hc, device.dc});
    }
    // The text is set when its turn comes: another one may be waiting before it.
    plugin_.command(
        [this, text, calls](base::Object& vxif) {
          house_.lastVoiceCommand = text;
          for (const Call& call : calls) {
            const std::int16_t none = 0;
            vxif.invoke("SetIO", call.object, call.hc, call.dc, kFuncVoice, none, none, none);
          }
        },
        [reply](const std::string& failure) { reply(outcome(failure)); });
  });
}

void WebApi::askPage(const PageLink& link, const User& user, const char* operation,
                     const std::string& argument, const Reply& reply) {
  const auto text = std::make_shared<std::string>();
  plugin_.command(
      [this, page = link.page, name = user.name, operation, argument, text](base::Object&) {
        house_.webUser = name;
        try {
          *text = base::ToText(page->invoke(operation, argument));
        } catch (...) {
          house_.webUser.clear();
          throw;
        }
        house_.webUser.clear();
      },
      [title = link.title, view = link.link, text, reply](const std::string& failure) {
        if (!failure.empty()) {
          reply(Refusal(502, failure));
          return;
        }
        const std::string nonce = NewNonce();
        reply({.type = "text/html; charset=utf-8",
               .body = Framed(title, view, WithoutActingTags(*text), nonce),
               .policy = PluginPolicy(nonce)});
      });
}

WebAnswer WebApi::linkPage(const std::string& path, const std::string& token) {
  return ask(token, [this, path](const User& user, const Reply& reply) {
    const PageLink* link = house_.linkOf(path.substr(1));
    if (link == nullptr) {
      reply(Refusal(404, "There is no such page"));
    } else {
      askPage(*link, user, "GenPage", link->link, reply);
    }
  });
}

WebAnswer WebApi::linkPost(const std::string& path, const std::string& token, const std::string& body) {
  return ask(token, [this, path, body](const User& user, const Reply& reply) {
    const PageLink* link = house_.linkOf(path.substr(1));
    if (link == nullptr) {
      reply(Refusal(404, "There is no such page"));
    } else if (user.guest) {
      reply(Refusal(403, "Guests can't change anything here"));
    } else {
      askPage(*link, user, "PagePut", body, reply);
    }
  });
}

}  // namespace standin
