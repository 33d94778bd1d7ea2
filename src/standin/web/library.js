// The player's library: categories, their groups, the titles in a group.
import {ask, el, run, toast} from './dom.js';
import {longList} from './longlist.js';

const kCategories = [['Artist', 'Artists'], ['Album', 'Albums'], ['Genre', 'Genres'], ['PlayList', 'Playlists']];
const kPause = 200;  // milliseconds without a key before the search starts

let fetched = new Set();  // lists seen since the page was opened: the first look at each is a fresh one

/** The place is in the address: #library/Album/Blue. */
function place() {
  const [, category, group] = location.hash.slice(1).split('/');
  const known = kCategories.find(([word]) => word === category);
  let name = '';
  try {
    name = decodeURIComponent(group || '');
  } catch { /* no name then */ }
  return {category: (known || kCategories[1])[0], group: name};
}

const address = (category, group) => `#library/${category}${group ? '/' + encodeURIComponent(group) : ''}`;

export async function libraryPage(page, stayed) {
  if (!stayed) fetched = new Set();
  const {category, group} = place();
  const count = el('p', {class: 'quiet library-count', role: 'status'});
  const what = kCategories.find(([word]) => word === category)[1].toLowerCase();
  let fresh = !fetched.has(location.hash);
  fetched.add(location.hash);

  const search = el('input', {type: 'search', id: 'library-search', autocomplete: 'off',
    'aria-label': group ? `Search in ${group}` : `Search ${what}`,
    placeholder: group ? 'Search titles' : `Search ${what}`});
  const fetchPage = (offset, limit) => {
    const query = new URLSearchParams({category, group, q: search.value.trim(), offset, limit});
    if (fresh) query.set('fresh', '1');
    fresh = false;
    return ask(`/api/library?${query}`);
  };
  const list = longList(group || what, fetchPage, (name) => group ? titleRow(category, group, name)
    : groupRow(category, name), (total) => {
    const words = group ? (total === 1 ? 'title' : 'titles') : (total === 1 ? what.slice(0, -1) : what);
    count.textContent = total ? `${total.toLocaleString()} ${words}`
      : search.value.trim() ? 'Nothing found' : `No ${words} here`;
  });
  const load = async () => {
    try {
      await list.load();
    } catch (error) {
      count.textContent = error.message;
    }
  };
  let timer = 0;
  search.addEventListener('input', () => {
    clearTimeout(timer);
    timer = setTimeout(load, kPause);
  });
  search.addEventListener('keydown', (event) => {
    if (event.key !== 'ArrowDown') return;
    event.preventDefault();
    list.focusFirst();
  });
  const again = el('button', {type: 'button', onclick: () => { fresh = true; run(again, load); }}, 'Refresh');

  const tabs = el('nav', {class: 'tabs', 'aria-label': 'Categories'}, ...kCategories.map(([word, text]) =>
    el('a', {href: address(word), 'aria-current': word === category ? 'page' : undefined}, text)));
  page.replaceChildren(el('div', {class: 'library'},
    el('div', {class: 'page-head'}, el('h1', {}, 'Library'), again), tabs,
    group ? groupHead(category, group) : null,
    el('div', {class: 'library-search'}, search, count), list.node));
  count.textContent = 'Loading…';
  await load();
}

function play(button, category, name, title) {
  return run(button, async () => {
    await ask('/api/play', {category, name, title});
    toast(`Playing ${title || name}`);
  }).then(() => button.focus({preventScroll: true}));
}

function groupHead(category, group) {
  const all = el('button', {type: 'button', class: 'primary', onclick: () => play(all, category, group, '')}, 'Play all');
  return el('div', {class: 'group-head'},
    el('a', {href: address(category), class: 'back', 'aria-label': 'Back to the list'}, '‹'), el('h2', {}, group), all);
}

function playButton(category, name, title) {
  const button = el('button', {type: 'button', class: 'round', 'aria-label': `Play ${title || name}`, title: 'Play',
    onclick: () => play(button, category, name, title)}, el('span', {'aria-hidden': 'true'}, '▶'));
  return button;
}

function groupRow(category, name) {
  return [el('button', {type: 'button', class: 'row-main', title: name,
    onclick: () => { location.hash = address(category, name); }}, el('span', {class: 'row-name'}, name)),
  playButton(category, name, '')];
}

/** The title itself tells more of it when it is chosen. */
function titleRow(category, group, title) {
  const facts = el('span', {class: 'row-facts', 'aria-live': 'polite'});
  const main = el('button', {type: 'button', class: 'row-main', title, onclick: async () => {
    if (facts.textContent) return;
    try {
      const told = await ask(`/api/media?${new URLSearchParams({category, name: group, title})}`);
      facts.textContent = [told.artist, told.album, told.genre, length(told.seconds)].filter(Boolean).join(' · ')
        || 'Nothing more is known';
    } catch (error) {
      toast(error.message, 'bad');
    }
  }}, el('span', {class: 'row-name'}, title), facts);
  return [main, playButton(category, group, title)];
}

function length(seconds) {
  if (seconds === undefined) return '';
  const whole = Math.round(seconds);
  return `${Math.floor(whole / 60)}:${String(whole % 60).padStart(2, '0')}`;
}
