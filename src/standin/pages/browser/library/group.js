// The page of an artist, an album or a genre: its titles, and the way to their albums.
import {html} from '../kit/html.js';
import {ask, complain} from '../kit/server.js';
import {addButton} from './adding.js';
import {address, counted, kTitleWords} from './kinds.js';
import {ListView} from './listview.js';
import {nothingFound} from './search.js';
import {albumHead, albumStrip} from './covers.js';
import {queueButtons, queueTools} from './queueing.js';
import {Details, joined, orderOf, play, playButton, short, titleMain} from './titles.js';

const kMostAlbums = 200;

/** `by`: only what this artist has in the group; empty for all. */
export function groupView(body, context, {category, group, by, edit}) {
  const details = new Details();
  const hasAlbums = category === 'Artist' || category === 'Genre';
  const order = {category, name: group, ...(by ? {by} : {})};
  const adding = {category, group, ...(by ? {by} : {})};
  let albums = null;

  const facts = (title) => category === 'Artist' ? joined(title.album, title.artist !== group && title.artist)
    : joined(title.artist, category === 'Genre' && title.album);
  const number = (title) => category === 'Album' ? html`<span class="row-number">${title.track ?? ''}</span>` : '';
  const row = (item, index, place) => item.head !== undefined ? headRow(group, item.head, edit) : html`${number(item)}
    ${titleMain(item, facts(item), details)}
    ${edit ? html`${queueButtons({category, group, titles: [orderOf(item, place)]}, item.name)}
      ${addButton({category, group, titles: [orderOf(item, place)]}, item.name)}` : ''}
    ${playButton({category, name: group, ...orderOf(item, place), ...(category === 'Album' ? {on: true, by} : {})}, item.name)}`;

  const view = new ListView(body, context, {
    label: short(group), searchLabel: `Search in ${group}`, placeholder: 'Search titles',
    query: `/api/library?${new URLSearchParams({category, group, by})}`, details: details.node, row,
    words: ({total, heads}) => counted(total - heads, kTitleWords),
    empty: (sought) => sought ? nothingFound(sought)
      : html`<p class="empty">There are no titles here any more. “Refresh” looks again.</p>`,
    above: () => html`<div class="group-head"><a href=${address(category)} class="back" aria-label="Back to the list">‹</a>
        ${category === 'Album' ? albumHead(group, by) : ''}<h2>${group}${by ? html` <span class="by">by <bdi>${by}</bdi></span>` : ''}</h2>
        <div class="tools">${edit ? html`${queueTools(adding, group)}${addButton(adding, group, 'Add all')}` : ''}<button type="button" class="primary"
          @click=${(event) => play(event.currentTarget, order, group)}>Play all</button></div></div>
      ${hasAlbums ? albumsLine(albums, category === 'Artist' ? group : '') : ''}`,
  });
  if (hasAlbums) loadAlbums();
  return view;

  async function loadAlbums() {
    try {
      albums = (await ask(`/api/albums?${new URLSearchParams({category, group})}`, undefined, context.signal)).names;
      view.draw();
    } catch (error) {
      complain(error);
    }
  }
}

/** Above the titles of an artist, in an album whose name others use too. */
const headRow = (album, artist, edit) => html`<a class="row-main row-head" href=${address('Album', album, artist)}><span
    class="row-name">${artist ? short(artist) : 'No artist'}</span></a>
  ${artist && edit ? addButton({category: 'Album', group: album, by: artist}, `${album} by ${artist}`) : ''}
  ${artist ? playButton({category: 'Album', name: album, by: artist}, `${album} by ${artist}`) : ''}`;

/** Its height is there before its content. */
const albumsLine = (albums, by) => html`<nav class="albums" aria-label="Albums">${albums
  && albumStrip(albums.slice(0, kMostAlbums), by)}${albums?.length > kMostAlbums
  ? html`<span class="quiet">and ${(albums.length - kMostAlbums).toLocaleString()} more</span>` : ''}</nav>`;
