#pragma once
#include <string_view>

namespace standin {

/// A file of the server's own pages, built into the program. The name is its path below the pages' folder;
/// what they import of others has names that begin with "lib/".
struct WebFile {
  std::string_view name;
  std::string_view content;
};

/// Null when there is none of that name.
const WebFile* FindWebFile(std::string_view name);

/// The folder that the files' addresses begin with, "/v-" and a hash over all of them: below it a file never
/// changes.
std::string_view AssetsAddress();

/// The media type that belongs to a file name's ending; "application/octet-stream" for unknown ones.
std::string_view MediaTypeOf(std::string_view name);

}  // namespace standin
