// Any bytes as the records of a kept queue: each is carried out or refused, and what is there in the end can
// be kept and read again as the same.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "base/Failure.hpp"
#include "engine/queue/KeptQueue.hpp"

namespace {

void ReadItems(const engine::KeptQueue& queue) {
  for (const std::string& item : queue.items) {
    try {
      engine::DecodeItem(item);
    } catch (const base::Failure&) {
      continue;  // not one that was made here
    }
  }
}

void Replay(const std::string& first, std::string_view rest) {
  std::vector<std::string_view> records;
  if (!first.empty()) records.push_back(first);
  while (!rest.empty()) {  // each with its length before it
    const auto length = static_cast<std::uint8_t>(rest.front());
    records.push_back(rest.substr(1, length));
    rest.remove_prefix(1 + records.back().size());
  }
  engine::KeptReplay replay;
  try {
    for (const std::string_view record : records) replay.apply(record);
  } catch (const base::Failure&) {
    return;  // what it holds is not to be relied on
  }
  if (!replay.any()) return;
  const engine::KeptQueue queue = replay.queue();
  ReadItems(queue);
  const std::string whole = engine::EncodedQueue(queue);
  engine::KeptReplay again;
  again.apply(whole);
  if (engine::EncodedQueue(again.queue()) != whole) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  Replay({}, bytes);
  Replay(std::string(bytes), {});
  engine::KeptQueue queue;
  queue.name = {engine::QueueKind::kList, "Evening", "", 7};
  queue.items.assign(5, "an item");
  queue.place = {2, "/a", 1.5};
  Replay(engine::EncodedQueue(queue), bytes);
  return 0;
}
