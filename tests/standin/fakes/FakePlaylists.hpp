#pragma once
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "base/Failure.hpp"
#include "base/Text.hpp"
#include "support/BusPeer.hpp"

namespace support {

/// A player's stored playlists as its raw player hands them out, open to the test as to any other program
/// that changes them. May be used from any thread.
class FakePlaylists {
 public:
  struct Title {
    std::string name;
    std::string source;
    std::map<std::string, std::string> facts{};  ///< by attribute
  };
  using Names = std::vector<std::string>;

  /// What the library has.
  std::vector<Title> library;
  /// What a category's groups hold, "Album/Blue"; of others, the titles whose source begins with the name.
  std::map<std::string, std::vector<Title>> groups;
  /// The names of "Album", "Artist", "Genre", and the albums of "Artist/Joni".
  std::map<std::string, Names> categories;
  std::map<std::string, Names> albums;
  /// Changes that the player refuses from now on.
  void refuse(bool value) {
    locked([&] { refuses_ = value; });
  }

  /// Changes from now on that the player makes before its process is gone, as far as its callers can tell.
  void dieAfter(int changes) {
    locked([&] { changesLeft_ = changes; });
  }
  /// The last of them is made, but its caller does not hear of it.
  void dieBehind(int changes) {
    locked([&] {
      changesLeft_ = changes;
      heard_ = false;
    });
  }
  void comeBack() {
    locked([&] {
      changesLeft_ = -1;
      heard_ = true;
    });
  }
  /// Something else is chosen to be played: these titles, and the one at the place is the current one.
  void choose(const std::vector<Title>& titles, std::int32_t place = 0) {
    locked([&] {
      queue_ = std::make_shared<List>(List{"Blue", titles});
      queuePlace_ = place;
      ++queueMark_;
    });
  }
  [[nodiscard]] Names queued() {
    Names names;
    locked([&] {
      for (const Title& title : queue_->titles) names.push_back(title.name);
    });
    return names;
  }
  /// How many changes have been made, of whatever size.
  [[nodiscard]] int changes() {
    int count = 0;
    locked([&] { count = changes_; });
    return count;
  }
  /// The list's length can't be read, or can again.
  void spoil(const std::string& list, bool value) {
    locked([&] { found(list)->spoilt = value; });
  }

  void put(const std::string& list, const std::vector<Title>& titles) {
    locked([&] {
      found(list)->titles = titles;
      ++found(list)->revision;
    });
  }
  void drop(const std::string& list) {
    locked([&] { std::erase_if(lists_, [&](const auto& each) { return each->name == list; }); });
  }
  [[nodiscard]] bool has(const std::string& list) {
    bool known = false;
    locked([&] {
      known = std::any_of(lists_.begin(), lists_.end(), [&](const auto& each) { return each->name == list; });
    });
    return known;
  }
  [[nodiscard]] Names names(const std::string& list) {
    Names names;
    locked([&] {
      for (const Title& title : found(list)->titles) names.push_back(title.name);
    });
    return names;
  }
  [[nodiscard]] Names sources(const std::string& list) {
    Names sources;
    locked([&] {
      for (const Title& title : found(list)->titles) sources.push_back(title.source);
    });
    return sources;
  }
  [[nodiscard]] Names lists() {
    Names names;
    locked([&] {
      for (const auto& each : lists_) names.push_back(each->name);
    });
    return names;
  }
  /// The sources of what was played last through the raw player.
  [[nodiscard]] Names played() {
    Names sources;
    locked([&] {
      for (const Title& title : played_) sources.push_back(title.source);
    });
    return sources;
  }
  /// The calls that the raw player has answered.
  [[nodiscard]] int asked() {
    int count = 0;
    locked([&] { count = asked_; });
    return count;
  }

  /// The raw player.
  base::ObjectRef player() {
    const auto lists = object(
        "PlaylistCollection",
        {operation("getAll", {}, [this](base::Args&) { return array(lists_); }),
         operation("getByName", {text("name")},
                   [this](base::Args& args) { return array(matching(base::ToText(args[0]))); }),
         operation("newPlaylist", {text("name")},
                   [this](base::Args& args) { return make(base::ToText(args[0])); }),
         operation("remove", {reference("playlist")}, [this](base::Args& args) { return remove(args[0]); })});
    const auto media = object(
        "MediaCollection",
        {operation("getAll", {}, [this](base::Args&) { return temporary("", library); }),
         operation("getByName", {text("name")},
                   [this](base::Args& args) {
                     std::vector<Title> named;
                     std::copy_if(library.begin(), library.end(), std::back_inserter(named),
                                  [name = base::ToText(args[0])](const Title& each) {
                                    return base::SameText(each.name, name);
                                  });
                     return temporary("", named);
                   }),
         operation("getByAttribute", {text("attribute"), text("value")},
                   [this](base::Args& args) { return group(base::ToText(args[0]), base::ToText(args[1])); }),
         operation("getAttributeStringCollection", {text("attribute"), text("mediaType")},
                   [this](base::Args&) { return array({}); })});
    const auto controls = object("Controls", {operation("play", {}, [](base::Args&) { return Value(); })});
    base::Member current = field("currentPlaylist", [] { return Value(base::ObjectRef()); });
    current.kind = base::MemberKind::kField;
    current.writer = [this](const Value& value) {
      const std::lock_guard lock(mutex_);
      played_ = behind<ListRef>(value)->titles;
    };
    base::Member one = field("currentMedia", [] { return Value(base::ObjectRef()); });
    one.kind = base::MemberKind::kField;
    one.writer = [this](const Value& value) {
      const std::lock_guard lock(mutex_);
      played_ = {titleBehind(value)};
    };
    return object("WMP9", {field("playlistCollection", [lists] { return base::Value(lists); }),
                           field("mediaCollection", [media] { return base::Value(media); }),
                           field("controls", [controls] { return base::Value(controls); }),
                           field("queue", [this] { return show(queue_); }),
                           field("queueMark", [this] { return static_cast<double>(queueMark_); }),
                           field("queuePlace", [this] { return queuePlace_; }),
                           operation("playFrom", {reference("playlist"), number("index")},
                                     [this](base::Args& args) {
                                       const auto& titles = behind<ListRef>(args[0])->titles;
                                       played_.assign(titles.begin() + base::ToInt32(args[1]), titles.end());
                                       return Value();
                                     }),
                           std::move(current), std::move(one)});
  }

 private:
  using Value = base::Value;
  struct List {
    std::string name;
    std::vector<Title> titles;
    bool spoilt = false;
    std::int64_t revision = 1;
  };
  using ListRef = std::shared_ptr<List>;

  /// An object that remembers what it stands for.
  template <class Kept>
  class Shown : public TableOf {
   public:
    Shown(Kept kept, std::string name, std::vector<base::Member> members)
        : TableOf(std::move(name), std::move(members)), kept(std::move(kept)) {}
    Kept kept;
  };

  template <class Work>
  void locked(Work&& work) {
    const std::lock_guard lock(mutex_);
    std::forward<Work>(work)();
  }
  static base::Param text(const char* name) { return {name, base::Type::kText}; }
  static base::Param number(const char* name) { return {name, base::Type::kInt32}; }
  static base::Param reference(const char* name) { return {name, base::Type::kObject}; }
  template <class Answer>
  base::Member operation(const char* name, std::vector<base::Param> params, Answer answer) {
    return {name, base::MemberKind::kOperation, std::move(params), base::Type::kAny,
            [this, answer](base::Args& args) {
              const std::lock_guard lock(mutex_);
              ++asked_;
              return Value(answer(args));
            }};
  }
  template <class Read>
  base::Member field(const char* name, Read read) {
    return {name, base::MemberKind::kReadField, {}, base::Type::kAny, [this, read](base::Args&) {
              const std::lock_guard lock(mutex_);
              ++asked_;
              return Value(read());
            }};
  }
  static base::ObjectRef object(const std::string& name, std::vector<base::Member> members) {
    return std::make_shared<TableOf>(name, std::move(members));
  }
  template <class Kept>
  static const Kept& behind(const Value& value) {
    const auto* shown = dynamic_cast<const Shown<Kept>*>(base::ToObject(value).get());
    if (shown == nullptr) throw base::Failure(base::number::kTypeMismatch);
    return shown->kept;
  }

  ListRef found(const std::string& name) {
    for (const ListRef& each : lists_)
      if (base::SameText(each->name, name)) return each;
    lists_.push_back(std::make_shared<List>(List{name, {}}));
    return lists_.back();
  }
  std::vector<ListRef> matching(const std::string& name) {
    std::vector<ListRef> all;
    std::copy_if(lists_.begin(), lists_.end(), std::back_inserter(all),
                 [&](const ListRef& each) { return base::SameText(each->name, name); });
    return all;
  }
  static void mayRead(const List& list) {
    if (list.spoilt) throw base::Failure(base::number::kDeviceIo, "The list can't be read");
  }
  void mayChange() {
    if (refuses_) throw base::Failure(base::number::kPermissionDenied, "The disc is read-only");
    if (changesLeft_ == 0) throw base::Failure(base::number::kHostGone, "Message recipient disconnected");
    if (changesLeft_ > 0) --changesLeft_;
    ++changes_;
  }
  void hear() const {
    if (!heard_ && changesLeft_ == 0)
      throw base::Failure(base::number::kHostGone, "Message recipient disconnected");
  }

  Value array(const std::vector<ListRef>& lists) {
    return object("PlaylistArray",
                  {field("count", [count = lists.size()] { return static_cast<std::int32_t>(count); }),
                   operation("item", {number("index")}, [this, lists](base::Args& args) {
                     return show(lists.at(static_cast<std::size_t>(base::ToInt32(args[0]))));
                   })});
  }
  Value make(const std::string& name) {
    mayChange();
    if (!matching(name).empty()) throw base::Failure(base::number::kNameInUse, "The name is in use");
    lists_.push_back(std::make_shared<List>(List{name, {}}));
    return show(lists_.back());
  }
  Value remove(const Value& list) {
    mayChange();
    std::erase(lists_, behind<ListRef>(list));
    return {};
  }
  /// As the library has it, where it knows the source.
  Title knownOr(const Title& title) {
    const auto known = std::find_if(library.begin(), library.end(),
                                    [&](const Title& each) { return each.source == title.source; });
    return known == library.end() ? title : *known;
  }
  Value temporary(const std::string& name, const std::vector<Title>& titles) {
    return show(std::make_shared<List>(List{name, titles}));
  }
  Value group(const std::string& attribute, const std::string& name) {
    if (const auto known = groups.find(attribute + "/" + name); known != groups.end())
      return temporary(name, known->second);
    auto list = std::make_shared<List>(List{name, {}});
    std::copy_if(library.begin(), library.end(), std::back_inserter(list->titles),
                 [&](const Title& each) { return each.source.starts_with(name + "/"); });
    return show(list);
  }
  Value show(const Title& title) {
    return base::ObjectRef(std::make_shared<Shown<Title>>(
        title, "Media",
        std::vector<base::Member>{field("name", [name = title.name] { return name; }),
                                  field("sourceURL", [source = title.source] { return source; })}));
  }
  Value show(const ListRef& list) {
    const auto place = [list](const Value& value, std::size_t end) {
      const auto at = base::ToInt32(value);
      if (at < 0 || static_cast<std::size_t>(at) >= end) throw base::Failure(base::number::kIndex);
      return list->titles.begin() + at;
    };
    base::Member name = field("name", [list] { return list->name; });
    name.kind = base::MemberKind::kField;
    name.writer = [this, list](const Value& value) {
      const std::lock_guard lock(mutex_);
      mayChange();
      list->name = base::ToText(value);
    };
    std::vector<base::Member> members{std::move(name), field("count", [list] {
                                        mayRead(*list);
                                        return static_cast<std::int32_t>(list->titles.size());
                                      })};
    members.push_back(operation("item", {number("index")}, [this, list, place](base::Args& args) {
      return showItem(*place(args[0], list->titles.size()), base::ToInt32(args[0]));
    }));
    members.push_back(operation(
        "readItems", {{"fields", base::Type::kTextList}, number("from"), number("count")},
        [list](base::Args& args) {
          base::Array texts;
          const auto from = static_cast<std::size_t>(base::ToInt32(args[1]));
          const auto end =
              std::min(list->titles.size(), from + static_cast<std::size_t>(base::ToInt32(args[2])));
          for (std::size_t i = from; i < end; ++i)
            for (const Value& field : args[0].array())
              texts.emplace_back(textOf(list->titles[i], base::ToText(field)));
          return Value(texts);
        }));
    members.push_back(operation(
        "insertItems", {number("index"), {"fields", base::Type::kTextList}, {"texts", base::Type::kTextList}},
        [this, list, place](base::Args& args) {
          mayChange();
          const base::Array& fields = args[1].array();
          const base::Array& texts = args[2].array();
          std::vector<Title> titles(texts.size() / fields.size());
          for (std::size_t i = 0; i < texts.size(); ++i) {
            Title& title = titles[i / fields.size()];
            const std::string field = base::ToText(fields[i % fields.size()]);
            if (field == "name") title.name = base::ToText(texts[i]);
            if (field == "sourceURL") title.source = base::ToText(texts[i]);
          }
          for (Title& title : titles) title = knownOr(title);
          list->titles.insert(place(args[0], list->titles.size() + 1), titles.begin(), titles.end());
          list->revision += static_cast<std::int64_t>(titles.size());
          hear();
          return Value();
        }));
    members.push_back(field("revision", [list] {
      mayRead(*list);
      return static_cast<double>(list->revision);
    }));
    members.push_back(
        operation("removeItems", {{"places", base::Type::kArray}}, [this, list](base::Args& args) {
          mayChange();
          const base::Array& places = args[0].array();
          std::vector<Title> kept;
          std::size_t next = 0;
          for (std::size_t i = 0; i < list->titles.size(); ++i) {
            if (next < places.size() && base::ToInt32(places[next]) == static_cast<std::int32_t>(i)) {
              ++next;
            } else {
              kept.push_back(list->titles[i]);
            }
          }
          if (next < places.size()) throw base::Failure(base::number::kIndex);
          list->titles = std::move(kept);
          list->revision += static_cast<std::int64_t>(places.size());
          hear();
          return Value();
        }));
    members.push_back(operation("moveItem", {number("oldIndex"), number("newIndex")},
                                [this, list, place](base::Args& args) {
                                  mayChange();
                                  place(args[1], list->titles.size());
                                  const auto from = place(args[0], list->titles.size());
                                  const Title title = *from;
                                  list->titles.erase(from);
                                  list->titles.insert(list->titles.begin() + base::ToInt32(args[1]), title);
                                  ++list->revision;
                                  return Value();
                                }));
    return base::ObjectRef(std::make_shared<Shown<ListRef>>(list, "Playlist", std::move(members)));
  }
  static std::string textOf(const Title& title, const std::string& field) {
    if (field == "name") return title.name;
    if (field == "sourceURL") return title.source;
    const auto found = title.facts.find(field);
    return found == title.facts.end() ? std::string() : found->second;
  }
  struct Item {
    Title title;
    std::int32_t at = 0;
  };
  Value showItem(const Title& title, std::int32_t at) {
    return base::ObjectRef(std::make_shared<Shown<Item>>(
        Item{title, at}, "Media",
        std::vector<base::Member>{field("name", [name = title.name] { return name; }),
                                  field("sourceURL", [source = title.source] { return source; })}));
  }
  static Title titleBehind(const Value& value) {
    if (const auto* item = dynamic_cast<const Shown<Item>*>(base::ToObject(value).get()))
      return item->kept.title;
    return behind<Title>(value);
  }

  std::mutex mutex_;
  std::vector<ListRef> lists_;
  std::vector<Title> played_;
  ListRef queue_ = std::make_shared<List>();
  std::int32_t queuePlace_ = -1;
  std::int64_t queueMark_ = 1'790'000'000'000;
  bool refuses_ = false;
  int changesLeft_ = -1;  ///< no end of them
  int changes_ = 0;
  bool heard_ = true;
  int asked_ = 0;
};

}  // namespace support
