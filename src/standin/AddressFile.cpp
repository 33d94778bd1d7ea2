#include "standin/AddressFile.hpp"

#include <system_error>

#include "files/FolderLock.hpp"
#include "files/ReadFile.hpp"
#include "files/WriteFile.hpp"

namespace standin {
namespace {

std::filesystem::path FileIn(const std::filesystem::path& dataFolder) { return dataFolder / "address"; }

}  // namespace

AddressFile::AddressFile(const std::filesystem::path& dataFolder) : file_(FileIn(dataFolder)) {}

AddressFile::~AddressFile() {
  std::error_code ignored;
  std::filesystem::remove(file_, ignored);
}

void AddressFile::write(const std::string& address) const {
  files::WriteFile(file_, address + "\n", {.mode = files::kForOwner});
}

std::optional<std::string> AddressFile::read(const std::filesystem::path& dataFolder) {
  const std::optional<std::string> content = files::TextOf(FileIn(dataFolder));
  // A server that was killed has left its file behind, but not its lock.
  if (!content || !files::FolderLock::held(dataFolder)) return std::nullopt;
  return content->substr(0, content->find('\n'));
}

}  // namespace standin
