// The library's categories, and the addresses of what is in them.
export const kTitles = 'Media Library';  // the category that is one group of no name: all titles

export const kTabs = [
  {word: 'Artist', text: 'Artists', one: 'artist', many: 'artists'},
  {word: 'Album', text: 'Albums', one: 'album', many: 'albums'},
  {word: 'Genre', text: 'Genres', one: 'genre', many: 'genres'},
  {word: 'PlayList', text: 'Playlists', one: 'playlist', many: 'playlists'},
];
export const kTitleWords = {word: kTitles, text: 'Titles', one: 'title', many: 'titles'};

/** Albums for a word that is none. */
export const kindOf = (word) => [...kTabs, kTitleWords].find((each) => each.word === word) ?? kTabs[1];

export const counted = (total, kind) => `${total.toLocaleString()} ${total === 1 ? kind.one : kind.many}`;

/** #library/Album/Blue, #library/Album/Hits/Queen, #library/find/some words/Artist. */
export const address = (...parts) => `#library/${parts.filter(Boolean).map(encodeURIComponent).join('/')}`;
