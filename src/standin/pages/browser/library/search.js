// One search over everything in the library: the first of each category, and the way to all of them.
import {html} from '../kit/html.js';
import {ask} from '../kit/server.js';
import {addButton} from './adding.js';
import {address, counted, kindOf, kTitles} from './kinds.js';
import {queueButtons} from './queueing.js';
import {groupMain, joined, orderOf, playButton, short, titleMain} from './titles.js';

const kFirst = 5;  // of each category

/** The row of a title that stands for itself. */
export function foundTitle(title, place, details, edit) {
  const order = orderOf(title, place);
  return html`${titleMain(title, joined(title.artist, title.album), details)}
    ${edit ? html`${queueButtons({category: kTitles, group: '', titles: [order]}, title.name)}
      ${addButton({category: kTitles, group: '', titles: [order]}, title.name)}` : ''}
    ${playButton({category: kTitles, name: '', ...order}, title.name)}`;
}

/** The row of a group. */
export const groupRow = (category, name, edit) => html`${groupMain(name, address(category, name))}
  ${edit ? queueButtons({category, group: name}, name) : ''}
  ${edit && category !== 'PlayList' ? addButton({category, group: name}, name) : ''}
  ${playButton({category, name}, name)}`;

function section({category, total, names, places, titles}, sought, details, edit) {
  const kind = kindOf(category);
  const id = `found-${category.replaceAll(' ', '')}`;
  return html`<section class="found-group" aria-labelledby=${id}>
    <h2 id=${id}>${kind.text} <span class="quiet">${total.toLocaleString()}</span></h2>
    <ul class="found-rows">${names.map((name, i) => html`<li class="found-row" id=${`${id}-${i}`}>
      ${titles ? foundTitle({name, ...titles[i]}, places[i], details, edit) : groupRow(category, name, edit)}</li>`)}</ul>
    ${total > names.length
    ? html`<a class="more" href=${address('find', sought, category)}>All ${counted(total, kind)}</a>` : ''}
  </section>`;
}

export const nothingFound = (sought) => html`<p class="empty">Nothing found for “${short(sought)}”. Every word must
  occur: fewer or shorter ones find more.</p>`;

/** Looks everywhere, and tells of one category first; for ListView's `search`. */
export async function searchEverywhere(sought, fresh, {signal, details, edit, first}) {
  const query = new URLSearchParams({q: sought, limit: kFirst});
  if (fresh) query.set('fresh', '1');
  const {groups} = await ask(`/api/search?${query}`, undefined, signal);
  groups.sort((one, other) => (other.category === first) - (one.category === first));
  const total = groups.reduce((sum, group) => sum + group.total, 0);
  return {words: total ? `${total.toLocaleString()} found` : 'Nothing found',
    content: total ? groups.filter((group) => group.total).map((group) => section(group, sought, details, edit))
      : nothingFound(sought)};
}
