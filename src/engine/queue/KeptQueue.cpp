#include "engine/queue/KeptQueue.hpp"

#include <cmath>
#include <cstring>
#include <type_traits>

#include "base/Failure.hpp"

namespace engine {
namespace {

enum class Record : std::uint8_t { kWhole = 1, kEdit = 2, kPlace = 3 };

[[noreturn]] void FailOnRecord() {
  throw base::Failure(base::number::kDeviceIo, "The kept queue is damaged");
}

/// Numbers as this machine holds them, texts with their length before them.
class Writer {
 public:
  template <class Number>
  Writer& number(Number value) {
    static_assert(std::is_arithmetic_v<Number>);
    char bytes[sizeof value];  // NOLINT(modernize-avoid-c-arrays)
    std::memcpy(bytes, &value, sizeof value);
    text_.append(bytes, sizeof value);
    return *this;
  }
  Writer& text(std::string_view value) {
    number(static_cast<std::uint32_t>(value.size()));
    text_ += value;
    return *this;
  }
  void reserve(std::size_t bytes) { text_.reserve(bytes); }
  std::string take() { return std::move(text_); }

 private:
  std::string text_;
};

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  template <class Number>
  Number number() {
    const std::string_view part = take(sizeof(Number));
    Number value{};
    std::memcpy(&value, part.data(), sizeof value);
    return value;
  }
  std::string_view text() { return take(number<std::uint32_t>()); }
  /// How many things follow that take at least so many bytes each.
  std::size_t count(std::size_t least) {
    const auto value = number<std::uint32_t>();
    if (value > bytes_.size() / least) FailOnRecord();
    return value;
  }
  void end() const {
    if (!bytes_.empty()) FailOnRecord();
  }

 private:
  std::string_view take(std::size_t size) {
    if (size > bytes_.size()) FailOnRecord();
    const std::string_view part = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return part;
  }

  std::string_view bytes_;
};

void Write(Writer& writer, const KeptPlace& place) {
  writer.number(place.index).number(place.seconds).text(place.source);
}

KeptPlace ReadPlace(Reader& reader) {
  KeptPlace place;
  place.index = reader.number<std::int32_t>();
  place.seconds = reader.number<double>();
  place.source = reader.text();
  if (place.index < 0 || !std::isfinite(place.seconds) || place.seconds < 0) FailOnRecord();
  return place;
}

TrackTags TagsOf(const player::Media& media) {
  if (const auto* loose = dynamic_cast<const LooseMedia*>(&media)) return loose->tags();
  TrackTags tags;
  tags.title = media.name();
  tags.artist = media.getItemInfo("Artist");
  tags.album = media.getItemInfo("Album");
  tags.milliseconds = static_cast<std::uint32_t>(std::lround(std::max(0.0, media.duration()) * 1000));
  return tags;
}

}  // namespace

std::string EncodedItem(const player::Media& media) {
  Writer writer;
  if (dynamic_cast<const TrackMedia*>(&media) != nullptr)
    return writer.number(std::uint8_t{1}).text(LocationOf(media)).take();
  const TrackTags tags = TagsOf(media);
  writer.number(std::uint8_t{0}).text(LocationOf(media)).number(static_cast<std::uint8_t>(tags.kind));
  for (const std::string* text : {&tags.title, &tags.artist, &tags.albumArtist, &tags.album, &tags.genre,
                                  &tags.collectionId, &tags.discId})
    writer.text(*text);
  return writer.number(tags.year).number(tags.track).number(tags.disc).number(tags.milliseconds).take();
}

DecodedItem DecodeItem(std::string_view bytes) {
  Reader reader(bytes);
  DecodedItem item;
  item.track = reader.number<std::uint8_t>() == 1;
  item.location = reader.text();
  if (!item.track) {
    TrackTags& tags = item.tags;
    const auto kind = reader.number<std::uint8_t>();
    if (kind > static_cast<std::uint8_t>(MediaKind::kVideo)) FailOnRecord();
    tags.kind = static_cast<MediaKind>(kind);
    for (std::string* text : {&tags.title, &tags.artist, &tags.albumArtist, &tags.album, &tags.genre,
                              &tags.collectionId, &tags.discId})
      *text = reader.text();
    tags.year = reader.number<std::uint16_t>();
    tags.track = reader.number<std::uint16_t>();
    tags.disc = reader.number<std::uint16_t>();
    tags.milliseconds = reader.number<std::uint32_t>();
  }
  reader.end();
  return item;
}

std::string EncodedQueue(const KeptQueue& queue) {
  Writer writer;
  std::size_t bytes = 256;
  for (const std::string& item : queue.items) bytes += item.size() + 4;
  writer.reserve(bytes);
  writer.number(static_cast<std::uint8_t>(Record::kWhole));
  writer.number(static_cast<std::uint8_t>(queue.name.kind)).number(queue.name.mark);
  writer.text(queue.name.name).text(queue.name.path);
  writer.number(static_cast<std::uint32_t>(queue.items.size()));
  for (const std::string& item : queue.items) writer.text(item);
  Write(writer, queue.place);
  return writer.take();
}

std::string EncodedEdit(const std::vector<ListStep>& steps, const std::vector<std::string>& added) {
  Writer writer;
  writer.number(static_cast<std::uint8_t>(Record::kEdit)).number(static_cast<std::uint32_t>(steps.size()));
  for (const ListStep& step : steps)
    writer.number(static_cast<std::uint32_t>(step.place))
        .number(static_cast<std::uint32_t>(step.removed))
        .number(static_cast<std::uint32_t>(step.added));
  for (const std::string& item : added) writer.text(item);
  return writer.take();
}

std::string EncodedPlace(const KeptPlace& place) {
  Writer writer;
  writer.number(static_cast<std::uint8_t>(Record::kPlace));
  Write(writer, place);
  return writer.take();
}

void KeptReplay::apply(std::string_view record) {
  Reader reader(record);
  const auto kind = static_cast<Record>(reader.number<std::uint8_t>());
  if (any_ == (kind == Record::kWhole)) FailOnRecord();
  if (kind == Record::kWhole) {
    const auto from = reader.number<std::uint8_t>();
    if (from > static_cast<std::uint8_t>(QueueKind::kStored)) FailOnRecord();
    name_.kind = static_cast<QueueKind>(from);
    name_.mark = reader.number<std::int64_t>();
    name_.name = reader.text();
    name_.path = reader.text();
    items_.resize(reader.count(4));
    for (std::string_view& item : items_) item = reader.text();
    place_ = ReadPlace(reader);
    any_ = true;
  } else if (kind == Record::kEdit) {
    std::vector<ListStep> steps(reader.count(12));
    for (ListStep& step : steps) {
      step.place = reader.number<std::uint32_t>();
      step.removed = reader.number<std::uint32_t>();
      step.added = reader.number<std::uint32_t>();
    }
    for (const ListStep& step : steps) {
      if (step.place > items_.size() || step.removed > items_.size() - step.place) FailOnRecord();
      const auto at = items_.begin() + static_cast<std::ptrdiff_t>(step.place);
      std::vector<std::string_view> added;
      for (std::size_t i = 0; i < step.added; ++i) added.push_back(reader.text());
      items_.insert(items_.erase(at, at + static_cast<std::ptrdiff_t>(step.removed)), added.begin(),
                    added.end());
    }
    ++changes_;
  } else if (kind == Record::kPlace) {
    place_ = ReadPlace(reader);
    ++changes_;
  } else {
    FailOnRecord();
  }
  reader.end();
}

KeptQueue KeptReplay::queue() const {
  return {name_, std::vector<std::string>(items_.begin(), items_.end()), place_};
}

}  // namespace engine
