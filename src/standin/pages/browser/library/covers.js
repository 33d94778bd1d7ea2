// Albums as pictures: the grid of all, and the row of an artist's.
import {CoverGrid} from '../kit/covergrid.js';
import {html} from '../kit/html.js';
import {albumCover} from '../player/covers.js';
import {icon} from '../player/icons.js';
import {address} from './kinds.js';
import {play, short} from './titles.js';

/** Letters for a cover that has not come yet. */
const initials = (name) => (name.match(/[\p{L}\p{N}][\p{L}\p{N}\p{M}'’]*/gu) ?? []).slice(0, 2)
  .map((word) => [...word][0]).join('').toUpperCase();

const tile = ({name, by}) => ({
  picture: albumCover(name, by, 256),
  content: html`<a class="tile-main" href=${address('Album', name)}><span class="tile-cover" aria-hidden="true">${initials(name)}</span>
      <span class="tile-name">${short(name)}</span><span class="tile-by">${short(by ?? '')}</span></a>
    <button type="button" class="tile-play" title="Play" aria-label=${`Play ${short(name)}`}
      @click=${(event) => play(event.currentTarget, {category: 'Album', name}, name)}>${icon('play')}</button>`,
});

/** For ListView: answers of names with the artists of their albums. */
export const albumGrid = (label, fetchPage, onTotal) => new CoverGrid(label, async (offset, limit) => {
  const answer = await fetchPage(offset, limit);
  return {...answer, names: answer.names.map((name, i) => ({name, by: answer.artists?.[i] ?? ''}))};
}, tile, onTotal);

/** `by`: the artist whose part of each album is meant; empty for all of it. */
export const albumStrip = (names, by) => names.map((name) => html`<a href=${address('Album', name, by)}><img alt="" loading="lazy"
  decoding="async" width="104" height="104" src=${albumCover(name, by, 256)}><span>${short(name)}</span></a>`);

/** Above an album's titles. */
export const albumHead = (name, by) => html`<img class="head-cover" alt="" decoding="async" width="96" height="96"
  src=${albumCover(name, by, 256)}>`;
