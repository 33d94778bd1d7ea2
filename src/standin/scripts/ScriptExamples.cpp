#include "standin/scripts/ScriptStore.hpp"

namespace standin {

const std::vector<ScriptExample>& ScriptExamples() {
  static const std::vector<ScriptExample> kExamples{
      {"Albums and their titles", R"lua(-- Lists every album with the number of its titles.
local albums = scriptclass.GetCategoryList("Album")
for _, album in ipairs(albums) do
  local titles = scriptclass.GetByCategory("Album", album)
  print(string.format("%3d  %s", #titles, album))
end
print(#albums .. " albums")
)lua"},
      {"Announce what plays",
       R"lua(-- Says aloud what plays now. The player makes room for the voice by itself.
local title = scriptclass.Title
if title == "" then
  print("Nothing plays: " .. scriptclass.PlayerStatus)
  return
end
local text = "This is " .. title
if scriptclass.artist ~= "" then text = text .. " by " .. scriptclass.artist end
if scriptclass.Album ~= "" then text = text .. ", from " .. scriptclass.Album end
print(text)
host.Speak(text, false)
)lua"},
      {"Random album of a genre",
       R"lua(-- Plays an album, taken by chance, of this genre. Empty: of any genre.
local genre = "Electronic"

local found, seen = {}, {}
if genre == "" then
  found = scriptclass.GetCategoryList("Album")
else
  for _, title in ipairs(scriptclass.GetByCategory("Genre", genre)) do
    local album = scriptclass.GetMediaInfo("Genre", genre, title).Album
    if album ~= "" and not seen[album] then
      seen[album] = true
      found[#found + 1] = album
    end
  end
end
if #found == 0 then error("There is no album of the genre " .. genre) end

local album = found[math.random(#found)]
local result = scriptclass.Play("Album", album)
if result ~= 0 then error("The player could not play " .. album .. ": " .. result) end
print("Playing " .. album)
)lua"}};
  return kExamples;
}

}  // namespace standin
