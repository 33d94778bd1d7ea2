#pragma once
#include <functional>
#include <string>
#include <vector>

#include "demo/Piece.hpp"

namespace engine::demo {

/// Makes the demonstration library in `folder`, unless the folder exists. It appears whole or not at all.
/// `told` gets a line for every step. Answers whether anything was made. Throws 57, 61, 70 or 76 when it
/// can't be written.
bool MakeDemoLibrary(const std::string& folder, const std::function<void(const std::string&)>& told,
                     const std::vector<Piece>& pieces = Pieces());

}  // namespace engine::demo
