#include "engine/decoder/MpvOutput.hpp"

#include <mpv/client.h>

#include <algorithm>
#include <string_view>

#include "base/Attempt.hpp"
#include "base/Failure.hpp"
#include "engine/decoder/DecoderOptions.hpp"
#include "engine/decoder/TrackList.hpp"

namespace engine {
namespace {

constexpr std::uint64_t kHeardSince = 1ULL << 62U;  // the tag of a question; entries are small numbers
constexpr double kLongestHold = 2.0;
constexpr const char* kStreamTitle = "metadata/by-key/icy-title";
constexpr std::uint64_t kTracks = 1ULL << 61U;  // and the file's number
constexpr std::uint64_t kAddress = 1ULL << 60U;
constexpr const char* kOpens = "stream-open-filename";
constexpr const char* kOpensNothing = "refused://";  // no kind of address that the decoder knows

}  // namespace

MpvOutput::MpvOutput(base::Loop& loop, const Config& config, SectorsOf sectorsOf,
                     std::function<void(const std::string&)> message, LoudnessOf loudnessOf,
                     PictureRenderer::Shown shown, OpenCard openCard)
    : loop_(loop),
      sectorsOf_(std::move(sectorsOf)),
      message_(std::move(message)),
      options_(HeardDecoderOptions(config)),
      leveller_(config),
      loudnessOf_(std::move(loudnessOf)),
      shown_(std::move(shown)),
      openCard_(std::move(openCard)),
      cardPatience_(config.cardPatience),
      wantsDevice_(config.audioOutput != "null" && config.audioOutput.rfind("pcm:", 0) != 0),
      heardTimer_(loop.makeTimer(base::Milliseconds(1), [this] { tellHeld(); })),
      watch_(loop, config.titleMemory, [this] { tooLarge(); }),
      limit_(config.titleRoom),
      post_(loop) {
  CheckRoomForDecoder();
}

void MpvOutput::needDecoder() {
  if (mpv_) return;
  mpv_.emplace(options_);
  decoderFiles_.serve(*mpv_);
  mpv_->holdBeforeOpening();
  mpv_->set("volume", static_cast<double>(volume_));
  mpv_->set("mute", mute_);
  mpv_->observe("time-pos", MPV_FORMAT_DOUBLE);
  mpv_->observe("duration", MPV_FORMAT_DOUBLE);
  mpv_->observe("paused-for-cache", MPV_FORMAT_FLAG);
  mpv_->observe(kStreamTitle, MPV_FORMAT_STRING);
  if (wantsDevice_) mpv_->observe("current-ao", MPV_FORMAT_STRING);
  mpv_->onWakeup(
      [](void* context) {
        auto* self = static_cast<MpvOutput*>(context);
        if (!self->woken_.exchange(true)) self->post_([self] { self->drain(); });
      },
      this);
  if (!size_.empty()) showPicture();
}

MpvOutput::~MpvOutput() = default;

void MpvOutput::look(base::PictureSize size) {
  if (size == size_) return;
  size_ = size;
  if (mpv_) showPicture();
}

void MpvOutput::showPicture() {
  if (!renderer_ && shown_) {
    base::Handled(
        [&] {
          renderer_.emplace(loop_, *mpv_, shown_,
                            PictureRenderer::ByCard{.open = openCard_,
                                                    .changed = [this] { canvasChanged(); },
                                                    .message = message_,
                                                    .patience = cardPatience_});
        },
        [&](const base::Failure& failure) {
          message_(failure.description());
          shown_ = {};
        });
  }
  if (!renderer_) return;
  renderer_->size(size_);
  const bool decode = !size_.empty() && renderer_->ready();
  if (std::exchange(decodesPicture_, decode) != decode) mpv_->set("vid", std::string(decode ? "auto" : "no"));
}

void MpvOutput::canvasChanged() {
  // The decoder's output for pictures ended with the canvas that it had.
  if (std::exchange(decodesPicture_, false)) mpv_->set("vid", std::string("no"));
  showPicture();
}

void MpvOutput::forget() {
  files_.clear();
  entries_.clear();
  stations_.clear();
  tracks_.clear();
  decoderFiles_.forgetAll();
  dropped_.clear();
  held_ = startedMeanwhile_ = 0;
  heardTimer_->enabled(false);
  watch_.end();
  position_ = duration_ = 0;
}

void MpvOutput::addFile(EntryId entry, const std::string& location, const char* how) {
  DecoderAddress address = AddressFor(location, sectorsOf_);
  // The decoder comes to a refused item in its turn, as to any other that can't be played.
  switch (address.kind) {
    case DecoderAddress::Kind::kFile: address.address = decoderFiles_.give(entry, address.address); break;
    case DecoderAddress::Kind::kStation: stations_.insert(entry); [[fallthrough]];
    case DecoderAddress::Kind::kTrack:
      tracks_[entry] = std::exchange(address.address, kOpensNothing);  // until it is held before opening
      break;
    case DecoderAddress::Kind::kNone: address.address = kOpensNothing; break;
  }
  entries_[entry] = std::move(address.refusal);
  std::vector<std::string> words{"loadfile", address.address, how};
  if (leveller_.on()) {
    if (!address.options.empty()) address.options += ',';
    address.options += leveller_.optionsFor(loudnessOf_ ? loudnessOf_(location) : Loudness());
  }
  if (!address.options.empty()) words.push_back(address.options);
  mpv_->command(entry, words);
}

void MpvOutput::load(EntryId entry, const std::string& location) {
  forget();
  paused_ = false;
  try {
    needDecoder();
  } catch (const base::Failure& failure) {
    entries_[entry] = failure.description();
    post_([this, entry] {
      // Unless something else has been asked for meanwhile.
      if (auto known = entries_.extract(entry)) events_->failed(entry, known.mapped());
    });
    return;
  }
  mpv_->set("speed", 1.0);
  mpv_->set("pause", false);
  addFile(entry, location, "replace");
}

void MpvOutput::append(EntryId entry, const std::string& location) {
  if (mpv_) addFile(entry, location, "append-play");
}

bool MpvOutput::dropNext() {
  if (!mpv_) return true;
  if (held_ != 0) return false;  // the decoder is on the next one while the end of the last still sounds
  const EntryId now = entryOf(playing_);
  for (const auto& known : entries_) {
    if (known.first != now) dropped_.insert(known.first);
  }
  std::erase_if(entries_, [&](const auto& known) { return known.first != now; });
  mpv_->command(0, {"playlist-clear"});
  return true;
}

void MpvOutput::stop() {
  forget();
  if (mpv_) mpv_->command(0, {"stop"});
}

void MpvOutput::pause(bool value) {
  if (mpv_) mpv_->set("pause", value);
  if (value == paused_) return;
  paused_ = value;
  heardTimer_->enabled(false);
  if (!paused_ && held_ != 0 && startedMeanwhile_ != 0) askHeard();
}

void MpvOutput::seek(double seconds) {
  position_ = seconds;
  if (mpv_) mpv_->command(0, {"seek", std::to_string(seconds), "absolute+exact"});
}

void MpvOutput::speed(double factor) {
  if (mpv_) mpv_->set("speed", factor);
}

void MpvOutput::volume(std::int32_t percent) {
  volume_ = percent;
  if (mpv_) mpv_->set("volume", static_cast<double>(percent));
}

void MpvOutput::mute(bool value) {
  mute_ = value;
  if (mpv_) mpv_->set("mute", value);
}

EntryId MpvOutput::entryOf(FileId file) const {
  const auto found = files_.find(file);
  return found != files_.end() ? found->second : 0;
}

void MpvOutput::drain() {
  woken_ = false;
  while (true) {
    const mpv_event& event = mpv_->nextEvent();
    if (event.event_id == MPV_EVENT_NONE) return;
    handle(event);
  }
}

void MpvOutput::handle(const mpv_event& event) {
  switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
      if (event.reply_userdata != 0) fileGiven(event);
      break;
    case MPV_EVENT_START_FILE:
      fileStarted(static_cast<const mpv_event_start_file*>(event.data)->playlist_entry_id);
      break;
    case MPV_EVENT_HOOK: aboutToOpen(static_cast<const mpv_event_hook*>(event.data)->id); break;
    case MPV_EVENT_SET_PROPERTY_REPLY:
      if (event.reply_userdata != 0) mpv_->open(event.reply_userdata);
      break;
    case MPV_EVENT_FILE_LOADED:
      mpv_->ask(kTracks + static_cast<std::uint64_t>(playing_), "track-list", MPV_FORMAT_NODE);
      break;
    case MPV_EVENT_PLAYBACK_RESTART: audible(); break;
    case MPV_EVENT_END_FILE: fileEnded(*static_cast<const mpv_event_end_file*>(event.data)); break;
    case MPV_EVENT_IDLE:
      watch_.end();
      limit_.end();
      tellHeld();
      break;
    case MPV_EVENT_PROPERTY_CHANGE: propertyTold(*static_cast<const mpv_event_property*>(event.data)); break;
    case MPV_EVENT_GET_PROPERTY_REPLY:
      if (event.reply_userdata == kHeardSince) heardTold(event);
      if (event.reply_userdata == kAddress) addressTold(event);
      if (event.reply_userdata == kTracks + static_cast<std::uint64_t>(playing_)) tracksTold(event);
      break;
    default: break;
  }
}

void MpvOutput::fileStarted(FileId file) {
  playing_ = file;
  opening_ = true;
  watch_.begin();
  limit_.begin();
  tracksKnown_ = audibleFirst_ = false;
  height_ = 0;
  duration_ = 0;
  streamTitle_.clear();
  const EntryId entry = entryOf(file);
  // It was dropped at the moment at which the decoder went on to it.
  if (dropped_.contains(entry)) mpv_->command(0, {"playlist-next", "force"});
  if (entry == 0) return;
  dropped_.erase(dropped_.begin(), dropped_.lower_bound(entry));
  stations_.erase(stations_.begin(), stations_.lower_bound(entry));
  tracks_.erase(tracks_.begin(), tracks_.lower_bound(entry));
  decoderFiles_.forgetBefore(entry);
}

void MpvOutput::aboutToOpen(std::uint64_t held) {
  const EntryId entry = entryOf(playing_);
  const bool station = stations_.contains(entry);
  if (auto own = tracks_.extract(entry))
    mpv_->set(kOpens, own.mapped(), station ? 0 : held);
  else if (!station)
    mpv_->open(held);
  if (!station) return;
  heldStation_ = held;
  mpv_->ask(kAddress, kOpens, MPV_FORMAT_STRING);
}

void MpvOutput::addressTold(const mpv_event& event) {
  const std::uint64_t held = std::exchange(heldStation_, 0);
  const auto* property = static_cast<const mpv_event_property*>(event.data);
  const bool known = event.error >= 0 && property->format == MPV_FORMAT_STRING;
  const std::string address = known ? *static_cast<char* const*>(property->data) : "";
  if (AddressFor(address, sectorsOf_).kind != DecoderAddress::Kind::kStation)
    return mpv_->set(kOpens, std::string(kOpensNothing), held);
  const MpvOptions options = StationOptions();
  for (const auto& option : options) {
    const std::uint64_t last = &option == &options.back() ? held : 0;  // it is opened when all are set
    mpv_->set(("file-local-options/" + option.first).c_str(), option.second, last);
  }
}

void MpvOutput::askHeard() { mpv_->ask(kHeardSince, "audio-pts", MPV_FORMAT_DOUBLE); }

void MpvOutput::heardTold(const mpv_event& event) {
  if (held_ == 0 || paused_) return;  // asked again when it is no longer paused
  const auto* property = static_cast<const mpv_event_property*>(event.data);
  const bool known = event.error >= 0 && property->format == MPV_FORMAT_DOUBLE;
  const double heard = known ? *static_cast<const double*>(property->data) : 0.0;
  // The place of what is heard lies before the new file's start for as long as the old one sounds on.
  if (heard >= -0.005) {
    tellHeld();
    return;
  }
  const double left = std::min(-heard, kLongestHold);
  heardTimer_->interval(base::Milliseconds(static_cast<int>(left * 1000)));
  heardTimer_->enabled(true);
}

void MpvOutput::fileGiven(const mpv_event& event) {
  const EntryId entry = event.reply_userdata;
  if (!entries_.contains(entry) && !dropped_.contains(entry)) return;
  if (event.error < 0) {
    if (dropped_.erase(entry) != 0) return;
    events_->failed(entry, mpv_->textOf(event.error));
    return;
  }
  const auto* command = static_cast<const mpv_event_command*>(event.data);
  if (command == nullptr || command->result.format != MPV_FORMAT_NODE_MAP) return;
  const mpv_node_list& fields = *command->result.u.list;
  for (int i = 0; i < fields.num; ++i) {
    if (std::string_view(fields.keys[i]) == "playlist_entry_id") files_[fields.values[i].u.int64] = entry;
  }
}

void MpvOutput::tracksTold(const mpv_event& event) {
  if (!opening_) return;
  const auto* property = static_cast<const mpv_event_property*>(event.data);
  if (event.error >= 0 && property->format == MPV_FORMAT_NODE)
    height_ = PictureHeightOf(*static_cast<const mpv_node*>(property->data));
  tracksKnown_ = true;
  if (audibleFirst_) audible();
}

void MpvOutput::audible() {
  if (!opening_) return;  // a seek has ended
  audibleFirst_ = !tracksKnown_;
  if (audibleFirst_) return;  // told in a moment, with its picture
  opening_ = false;
  const EntryId entry = entryOf(playing_);
  if (entry == 0 || dropped_.contains(entry)) return;
  if (held_ == 0 || held_ == entry) {
    tellStarted(entry);
    return;
  }
  startedMeanwhile_ = entry;
  askHeard();
}

void MpvOutput::tellStarted(EntryId entry) {
  events_->heightKnown(entry, height_);
  events_->started(entry);
  if (duration_ > 0) events_->lengthKnown(entry, duration_);
  if (!streamTitle_.empty()) events_->titleTold(entry, streamTitle_);
}

void MpvOutput::tellHeld() {
  heardTimer_->enabled(false);
  const EntryId ended = std::exchange(held_, 0);
  const EntryId started = std::exchange(startedMeanwhile_, 0);
  if (ended != 0) events_->ended(ended);
  if (started != 0 && entries_.contains(started)) tellStarted(started);
}

void MpvOutput::tooLarge() {
  const EntryId entry = entryOf(playing_);
  if (held_ != 0) tellHeld();
  if (!entries_.contains(entry)) return;  // whoever was told has chosen something else
  stop();
  events_->failed(entry, "it takes more memory than a title may");
}

void MpvOutput::fileEnded(const mpv_event_end_file& end) {
  const EntryId entry = entryOf(end.playlist_entry_id);
  if (audibleFirst_ && end.playlist_entry_id == playing_) {
    tracksKnown_ = true;  // it is over before anybody knows them
    audible();
  }
  files_.erase(end.playlist_entry_id);
  const bool silent = std::exchange(opening_, false);
  if (entry == 0 || dropped_.contains(entry)) return;
  if (end.reason == MPV_END_FILE_REASON_REDIRECT) {
    for (int i = 0; i < end.playlist_insert_num_entries; ++i) files_[end.playlist_insert_id + i] = entry;
    return;
  }
  if (end.reason != MPV_END_FILE_REASON_EOF && end.reason != MPV_END_FILE_REASON_ERROR) return;
  const bool more =
      std::any_of(files_.begin(), files_.end(), [&](const auto& file) { return file.second == entry; });
  if (more) return;  // an address that led to several
  if (held_ != 0) tellHeld();
  if (!entries_.contains(entry)) return;
  if (end.reason == MPV_END_FILE_REASON_ERROR || silent) {
    std::string reason = entries_.extract(entry).mapped();
    if (reason.empty()) reason = decoderFiles_.refusal(entry);
    if (reason.empty()) {
      reason = silent && end.error == 0 ? "there is no sound in it" : mpv_->textOf(end.error);
    }
    events_->failed(entry, reason);
    return;
  }
  held_ = entry;
}

void MpvOutput::propertyTold(const mpv_event_property& property) {
  const std::string_view name = property.name;
  if (name == "paused-for-cache" && property.format == MPV_FORMAT_FLAG) {
    events_->stalled(*static_cast<const int*>(property.data) != 0);
  }
  if (name == "current-ao" && property.format == MPV_FORMAT_STRING) {
    const bool silence = std::string_view(*static_cast<char* const*>(property.data)) == "null";
    if (silence && !inSilence_) message_("No sound device can be used: playing in silence");
    inSilence_ = silence;
  }
  if (name == kStreamTitle && property.format == MPV_FORMAT_STRING) {
    streamTitle_ = *static_cast<char* const*>(property.data);
    if (!opening_ && held_ == 0) events_->titleTold(entryOf(playing_), streamTitle_);
  }
  if (property.format != MPV_FORMAT_DOUBLE) return;
  const double value = *static_cast<const double*>(property.data);
  if (name == "time-pos") position_ = std::max(0.0, value);
  if (name != "duration") return;
  duration_ = value;
  if (!opening_ && held_ == 0) events_->lengthKnown(entryOf(playing_), value);
}

}  // namespace engine
