#pragma once
#include <string>
#include <string_view>

namespace ear {

/// What is written in the International Phonetic Alphabet, with the decoder's 39 phones of English and a
/// blank between them: each sound as the nearest of them, several where it takes that. What is no sound, such
/// as stress, and what stands in brackets is passed over.
std::string PhonesOf(std::string_view sounds);

}  // namespace ear
