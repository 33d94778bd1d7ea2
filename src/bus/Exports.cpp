#include "bus/Exports.hpp"

#include <systemd/sd-bus.h>

#include <utility>

#include "base/Failure.hpp"
#include "bus/Paths.hpp"

namespace bus {

void Exports::add(const std::string& path, base::ObjectRef object) {
  if (!object) throw base::Failure(base::number::kObjectMissing);
  if (sd_bus_object_path_is_valid(path.c_str()) <= 0)
    throw base::Failure(base::number::kInvalidArgument, "No object path: " + path);
  withdraw(path);
  pathOf_[object.get()] = path;
  entries_[path] = {std::move(object), true};
}

void Exports::withdraw(const std::string& path) {
  const auto entry = entries_.find(path);
  if (entry != entries_.end()) remove(entry);
}

void Exports::clear() {
  // What the objects hold may come back here while they go, so the table is empty before.
  const Entries going = std::exchange(entries_, {});
  pathOf_.clear();
}

base::ObjectRef Exports::find(const std::string& path) const {
  const auto entry = entries_.find(path);
  return entry == entries_.end() ? nullptr : entry->second.object;
}

std::string Exports::pathFor(const base::ObjectRef& object, const std::string& holder) {
  const auto known = pathOf_.find(object.get());
  std::string path = known == pathOf_.end() ? kSentObjects + std::to_string(++lastNumber_) : known->second;
  Entry& entry = entries_[path];
  entry.object = object;
  pathOf_[object.get()] = path;
  if (!entry.lasting) ++entry.holders[holder];
  return path;
}

void Exports::release(const std::string& path, const std::string& holder) {
  const auto entry = entries_.find(path);
  if (entry == entries_.end()) return;
  auto& holders = entry->second.holders;
  const auto count = holders.find(holder);
  if (count == holders.end()) return;
  if (--count->second > 0) return;
  holders.erase(count);
  if (holders.empty() && !entry->second.lasting) remove(entry);
}

void Exports::dropHolder(const std::string& holder) {
  std::vector<base::ObjectRef> going;
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    const auto current = entry++;
    const bool held = current->second.holders.erase(holder) > 0;
    if (held && current->second.holders.empty() && !current->second.lasting) going.push_back(remove(current));
  }
}

base::ObjectRef Exports::remove(Entries::iterator entry) {
  base::ObjectRef object = std::move(entry->second.object);
  const auto path = pathOf_.find(object.get());
  if (path != pathOf_.end() && path->second == entry->first) pathOf_.erase(path);
  entries_.erase(entry);
  return object;
}

std::vector<std::string> Exports::childrenOf(const std::string& path) const {
  const std::string above = path == "/" ? path : path + "/";
  std::vector<std::string> children;
  for (auto entry = entries_.lower_bound(above); entry != entries_.end(); ++entry) {
    if (!entry->first.starts_with(above)) break;
    std::string child =
        entry->first.substr(above.size(), entry->first.find('/', above.size()) - above.size());
    if (children.empty() || children.back() != child) children.push_back(std::move(child));
  }
  return children;
}

}  // namespace bus
