#pragma once
#include <filesystem>
#include <optional>
#include <string>

namespace standin {

/// The address of the running server in its data folder, for the owner's eyes only: it holds his key. Gone
/// when the server has ended.
class AddressFile {
 public:
  explicit AddressFile(const std::filesystem::path& dataFolder);
  ~AddressFile();
  AddressFile(const AddressFile&) = delete;
  AddressFile& operator=(const AddressFile&) = delete;
  AddressFile(AddressFile&&) = delete;
  AddressFile& operator=(AddressFile&&) = delete;

  /// Throws as files do.
  void write(const std::string& address) const;
  /// The address of the server that runs on the data folder; nothing when none does.
  static std::optional<std::string> read(const std::filesystem::path& dataFolder);

 private:
  std::filesystem::path file_;
};

}  // namespace standin
