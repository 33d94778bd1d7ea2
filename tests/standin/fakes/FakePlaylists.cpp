#include "standin/fakes/FakePlaylists.hpp"

#include <algorithm>

#include "base/Failure.hpp"
#include "base/MemberWords.hpp"
#include "base/Text.hpp"
#include "support/BusPeer.hpp"

namespace support {
namespace {

using namespace base::words;  // NOLINT(google-build-using-namespace): the words exist for tables
using base::ObjectRef;

/// An object that remembers what it stands for.
template <class Kept>
class Shown : public TableOf {
 public:
  Shown(Kept kept, std::string name, std::vector<Member> members)
      : TableOf(std::move(name), std::move(members)), kept(std::move(kept)) {}
  Kept kept;
};

template <class Kept>
const Kept& Behind(const Value& value) {
  const auto* shown = dynamic_cast<const Shown<Kept>*>(base::ToObject(value).get());
  if (shown == nullptr) throw base::Failure(base::number::kTypeMismatch);
  return shown->kept;
}

using Title = FakePlaylists::Title;

/// A title at a place of a list.
struct Item {
  Title title;
  std::int32_t at = 0;
};

const Title& TitleBehind(const Value& value) {
  if (const auto* item = dynamic_cast<const Shown<Item>*>(base::ToObject(value).get()))
    return item->kept.title;
  return Behind<Title>(value);
}

std::string TextOf(const Title& title, const std::string& field) {
  if (field == "name") return title.name;
  if (field == "sourceURL") return title.source;
  const auto found = title.facts.find(field);
  return found == title.facts.end() ? std::string() : found->second;
}

/// Every read and every call of a player counts, and none comes between another's.
class Counted {
 public:
  Counted(std::mutex& mutex, int& asked) : mutex_(mutex), asked_(asked) {}

  template <class Answer>
  Member operation(const char* name, std::vector<Param> params, Answer answer) const {
    return Operation(name, std::move(params), Type::kAny, [own = *this, answer](Args& args) {
      const std::lock_guard lock(own.mutex_);
      ++own.asked_;
      return AnswerOf(answer, args);
    });
  }
  template <class Read>
  Member field(const char* name, Read read) const {
    return ReadField(name, Type::kAny, [own = *this, read] {
      const std::lock_guard lock(own.mutex_);
      ++own.asked_;
      return Value(read());
    });
  }
  template <class Read, class Write>
  Member field(const char* name, Read read, Write write) const {
    Member member = field(name, std::move(read));
    member.kind = base::MemberKind::kField;
    member.writer = [own = *this, write](const Value& value) {
      const std::lock_guard lock(own.mutex_);
      write(value);
    };
    return member;
  }

 private:
  std::mutex& mutex_;
  int& asked_;
};

}  // namespace

FakePlaylists::ListRef FakePlaylists::found(const std::string& name) {
  for (const ListRef& each : lists_)
    if (base::SameText(each->name, name)) return each;
  lists_.push_back(std::make_shared<List>(List{name, {}}));
  return lists_.back();
}

class FakePlaylists::Objects {
 public:
  explicit Objects(FakePlaylists& fake) : fake_(fake), counted_(fake.mutex_, fake.asked_) {}

  [[nodiscard]] ObjectRef player() const {
    const Objects self = *this;
    const ObjectRef lists = ObjectOf(
        "PlaylistCollection",
        {counted_.operation("getAll", {}, [self] { return self.array(self.fake_.lists_); }),
         counted_.operation("getByName", {Text("name")},
                            [self](const Args& args) { return self.array(self.matching(TextAt(args, 0))); }),
         counted_.operation("newPlaylist", {Text("name")},
                            [self](const Args& args) { return self.make(TextAt(args, 0)); }),
         counted_.operation("remove", {Reference("playlist")}, [self](const Args& args) {
           self.mayChange();
           std::erase(self.fake_.lists_, Behind<ListRef>(args[0]));
         })});
    const ObjectRef media = mediaCollection();
    const ObjectRef controls = ObjectOf("Controls", {counted_.operation("play", {}, [] {})});
    const auto none = [] { return ObjectRef(); };
    return ObjectOf(
        "WMP9",
        {counted_.field("playlistCollection", [lists] { return lists; }),
         counted_.field("mediaCollection", [media] { return media; }),
         counted_.field("controls", [controls] { return controls; }),
         counted_.field("queue", [self] { return self.show(self.fake_.queue_); }),
         counted_.field("queueMark", [self] { return static_cast<double>(self.fake_.queueMark_); }),
         counted_.field("queuePlace", [self] { return self.fake_.queuePlace_; }),
         counted_.operation("playFrom", {Reference("playlist"), Number("index")},
                            [self](const Args& args) {
                              const auto& titles = Behind<ListRef>(args[0])->titles;
                              self.fake_.played_.assign(titles.begin() + NumberAt(args, 1), titles.end());
                            }),
         counted_.field("currentPlaylist", none,
                        [self](const Value& value) { self.fake_.played_ = Behind<ListRef>(value)->titles; }),
         counted_.field("currentMedia", none,
                        [self](const Value& value) { self.fake_.played_ = {TitleBehind(value)}; })});
  }

 private:
  [[nodiscard]] ObjectRef mediaCollection() const {
    const Objects self = *this;
    return ObjectOf(
        "MediaCollection",
        {counted_.operation("getAll", {}, [self] { return self.temporary("", self.fake_.library); }),
         counted_.operation("getByName", {Text("name")},
                            [self](const Args& args) {
                              return self.those("", [name = TextAt(args, 0)](const Title& each) {
                                return base::SameText(each.name, name);
                              });
                            }),
         counted_.operation(
             "getByAttribute", {Text("attribute"), Text("value")},
             [self](const Args& args) { return self.group(TextAt(args, 0), TextAt(args, 1)); }),
         counted_.operation("getAttributeStringCollection", {Text("attribute"), Text("mediaType")},
                            [self] { return self.array({}); })});
  }

  std::vector<ListRef> matching(const std::string& name) const {
    std::vector<ListRef> all;
    std::copy_if(fake_.lists_.begin(), fake_.lists_.end(), std::back_inserter(all),
                 [&](const ListRef& each) { return base::SameText(each->name, name); });
    return all;
  }
  static void mayRead(const List& list) {
    if (list.spoilt) throw base::Failure(base::number::kDeviceIo, "The list can't be read");
  }
  void mayChange() const {
    if (fake_.refuses_) throw base::Failure(base::number::kPermissionDenied, "The disc is read-only");
    if (fake_.changesLeft_ == 0)
      throw base::Failure(base::number::kHostGone, "Message recipient disconnected");
    if (fake_.changesLeft_ > 0) --fake_.changesLeft_;
    ++fake_.changes_;
  }
  /// A change of so many steps has been made.
  void made(List& list, std::size_t steps) const {
    list.revision += static_cast<std::int64_t>(steps);
    if (!fake_.heard_ && fake_.changesLeft_ == 0)
      throw base::Failure(base::number::kHostGone, "Message recipient disconnected");
  }

  [[nodiscard]] ObjectRef array(const std::vector<ListRef>& lists) const {
    return ObjectOf(
        "PlaylistArray",
        {counted_.field("count", [count = lists.size()] { return static_cast<std::int32_t>(count); }),
         counted_.operation("item", {Number("index")}, [self = *this, lists](const Args& args) {
           return self.show(lists.at(static_cast<std::size_t>(NumberAt(args, 0))));
         })});
  }
  [[nodiscard]] ObjectRef make(const std::string& name) const {
    mayChange();
    if (!matching(name).empty()) throw base::Failure(base::number::kNameInUse, "The name is in use");
    fake_.lists_.push_back(std::make_shared<List>(List{name, {}}));
    return show(fake_.lists_.back());
  }
  /// As the library has it, where it knows the source.
  [[nodiscard]] Title knownOr(const Title& title) const {
    const auto known = std::find_if(fake_.library.begin(), fake_.library.end(),
                                    [&](const Title& each) { return each.source == title.source; });
    return known == fake_.library.end() ? title : *known;
  }
  [[nodiscard]] ObjectRef temporary(const std::string& name, const std::vector<Title>& titles) const {
    return show(std::make_shared<List>(List{name, titles}));
  }
  template <class Wanted>
  [[nodiscard]] ObjectRef those(const std::string& name, Wanted wanted) const {
    std::vector<Title> titles;
    std::copy_if(fake_.library.begin(), fake_.library.end(), std::back_inserter(titles), wanted);
    return temporary(name, titles);
  }
  [[nodiscard]] ObjectRef group(const std::string& attribute, const std::string& name) const {
    if (const auto known = fake_.groups.find(attribute + "/" + name); known != fake_.groups.end())
      return temporary(name, known->second);
    return those(name, [&](const Title& each) { return each.source.starts_with(name + "/"); });
  }

  [[nodiscard]] std::vector<Member> titleMembers(const Title& title) const {
    return {counted_.field("name", [name = title.name] { return name; }),
            counted_.field("sourceURL", [source = title.source] { return source; })};
  }
  [[nodiscard]] ObjectRef showItem(const List& list, std::int32_t at) const {
    const Title title = *placeIn(list, at, list.titles.size());
    return std::make_shared<Shown<Item>>(Item{title, at}, "Media", titleMembers(title));
  }

  /// The place as an iterator; it must lie before `end`.
  static std::vector<Title>::const_iterator placeIn(const List& list, std::int32_t at, std::size_t end) {
    if (at < 0 || static_cast<std::size_t>(at) >= end) throw base::Failure(base::number::kIndex);
    return list.titles.begin() + at;
  }

  static base::Array textsOf(const List& list, const Args& args) {
    base::Array texts;
    const auto from = static_cast<std::size_t>(NumberAt(args, 1));
    const auto end = std::min(list.titles.size(), from + static_cast<std::size_t>(NumberAt(args, 2)));
    for (std::size_t i = from; i < end; ++i)
      for (const Value& field : args[0].array())
        texts.emplace_back(TextOf(list.titles[i], base::ToText(field)));
    return texts;
  }
  void insert(List& list, const Args& args) const {
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
    list.titles.insert(placeIn(list, NumberAt(args, 0), list.titles.size() + 1), titles.begin(),
                       titles.end());
    made(list, titles.size());
  }
  void removeItems(List& list, const base::Array& places) const {
    mayChange();
    std::vector<Title> kept;
    std::size_t next = 0;
    for (std::size_t i = 0; i < list.titles.size(); ++i) {
      if (next < places.size() && base::ToInt32(places[next]) == static_cast<std::int32_t>(i))
        ++next;
      else
        kept.push_back(list.titles[i]);
    }
    if (next < places.size()) throw base::Failure(base::number::kIndex);
    list.titles = std::move(kept);
    made(list, places.size());
  }
  void move(List& list, std::int32_t from, std::int32_t to) const {
    mayChange();
    placeIn(list, to, list.titles.size());
    const auto place = placeIn(list, from, list.titles.size());
    const Title title = *place;
    list.titles.erase(place);
    list.titles.insert(list.titles.begin() + to, title);
    ++list.revision;
  }

  [[nodiscard]] ObjectRef show(const ListRef& list) const {
    const Objects self = *this;
    std::vector<Member> members{
        counted_.field(
            "name", [list] { return list->name; },
            [self, list](const Value& value) {
              self.mayChange();
              list->name = base::ToText(value);
            }),
        counted_.field("count",
                       [list] {
                         mayRead(*list);
                         return static_cast<std::int32_t>(list->titles.size());
                       }),
        counted_.field("revision",
                       [list] {
                         mayRead(*list);
                         return static_cast<double>(list->revision);
                       }),
        counted_.operation(
            "item", {Number("index")},
            [self, list](const Args& args) { return self.showItem(*list, NumberAt(args, 0)); }),
        counted_.operation("readItems", {Texts("fields"), Number("from"), Number("count")},
                           [list](const Args& args) { return textsOf(*list, args); }),
        counted_.operation("insertItems", {Number("index"), Texts("fields"), Texts("texts")},
                           [self, list](const Args& args) { self.insert(*list, args); }),
        counted_.operation("removeItems", {base::words::List("places")},
                           [self, list](const Args& args) { self.removeItems(*list, args[0].array()); }),
        counted_.operation(
            "moveItem", {Number("oldIndex"), Number("newIndex")},
            [self, list](const Args& args) { self.move(*list, NumberAt(args, 0), NumberAt(args, 1)); })};
    return std::make_shared<Shown<ListRef>>(list, "Playlist", std::move(members));
  }

  FakePlaylists& fake_;
  Counted counted_;
};

ObjectRef FakePlaylists::player() { return Objects(*this).player(); }

}  // namespace support
