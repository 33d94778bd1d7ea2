// The pages of names: a category's groups, and all that a search has found in one category.
import {html} from '../kit/html.js';
import {albumGrid} from './covers.js';
import {address, counted, kindOf, kTitles} from './kinds.js';
import {ListView} from './listview.js';
import {foundTitle, groupRow, nothingFound, searchEverywhere} from './search.js';
import {Details, short} from './titles.js';

const noMusic = html`<p class="empty">There is no music yet. Put files into the player’s music folder: they appear here by
  themselves.</p>`;
const noLists = (edit) => html`<p class="empty">There are no playlists yet. ${edit
  ? '“New playlist” makes one; the + of any title or album adds to it.' : ''}</p>`;

/** The groups of a category; what is typed is looked for in all of them. */
export function namesView(body, context, kind, {edit, above}) {
  const details = new Details();
  return new ListView(body, context, {
    label: kind.text, searchLabel: 'Search the library', placeholder: 'Search the library',
    query: `/api/library?category=${kind.word}${kind.word === 'Album' ? '&artists=1' : ''}`, above, details: details.node,
    row: (name) => groupRow(kind.word, name, edit),
    list: kind.word === 'Album' ? albumGrid : undefined,
    words: ({total}) => counted(total, kind),
    empty: () => kind.word === 'PlayList' ? noLists(edit) : noMusic,
    search: (sought, fresh) => searchEverywhere(sought, fresh, {signal: context.signal, details, edit, first: kind.word}),
  });
}

/** All of one category that the words find. */
export function foundView(body, context, sought, category, edit) {
  const details = new Details();
  const kind = kindOf(category);
  return new ListView(body, context, {
    label: `${kind.text} found`, query: `/api/library?${new URLSearchParams({category, q: sought})}`, details: details.node,
    row: (item, index, place) => category === kTitles ? foundTitle(item, place, details, edit) : groupRow(category, item, edit),
    words: ({total}) => counted(total, kind),
    empty: () => nothingFound(sought),
    above: () => html`<div class="group-head"><a href=${address(category === kTitles ? 'Album' : category)} class="back"
      aria-label="Back to the list">‹</a><h2>${kind.text} with “<bdi>${short(sought)}</bdi>”</h2></div>`,
  });
}
