// The player's library: categories, their groups, the titles in a group.
import {addButton, addingBar} from './adding.js';
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {longList} from '../kit/longlist.js';
import {leavePlaylists, playlistChanged, playlistPage, playlistTools, playlistsSeen} from './playlist.js';
import {address, play, playButton, searchKeys, titleButton} from './titles.js';

const kCategories = [['Artist', 'Artists'], ['Album', 'Albums'], ['Genre', 'Genres'], ['PlayList', 'Playlists']];

const fetched = new Set();  // lists seen since the page was opened: the first look at each is a fresh one
let tabWanted = false;  // the page changes because of a key on a tab, which keeps the focus

/** The place is in the address: #library/Album/Blue. */
function wanted([category, group = '']) {
  const known = kCategories.find(([word]) => word === category);
  return {category: (known || kCategories[1])[0], group};
}

export const libraryView = {name: 'library', title: 'Library', mount};

function mount(place, context) {
  const {signal, house, path, title} = context;
  const {category, group} = wanted(path);
  const edit = !house.state.user.guest;
  const body = el('div', {class: 'library-body', role: 'tabpanel', id: 'library-panel', 'aria-labelledby': `tab-${category}`});
  const node = el('div', {class: 'library'}, el('div', {class: 'page-head'}, el('h1', {}, 'Library')), tabs(category),
    addingBar(), body);
  place.replaceChildren(node);
  title(group || kCategories.find(([word]) => word === category)[1]);
  if (tabWanted) {
    tabWanted = false;
    setTimeout(() => node.querySelector('[role=tab][aria-selected=true]')?.focus());
  }
  const view = {hash: location.hash, node, again: () => {}, names: category === 'PlayList' && !group};
  signal.addEventListener('abort', leavePlaylists);
  house.on('again', () => view.again(), signal);
  house.on('playlist', (event) => {
    if (event.lists && view.names) view.again();
    playlistChanged(event);
  }, signal);
  if (category === 'PlayList' && group) {
    view.again = playlistPage(body, group, edit, view, context);
    return view.shown;
  }
  return namesView(body, category, group, edit, view, context);
}

function tabs(category) {
  const all = kCategories.map(([word, text]) => el('a', {href: address(word), role: 'tab', id: `tab-${word}`,
    'aria-selected': word === category ? 'true' : 'false', 'aria-controls': 'library-panel',
    tabindex: word === category ? 0 : -1}, text));
  const node = el('div', {class: 'tabs', role: 'tablist', 'aria-label': 'Categories'}, ...all);
  node.addEventListener('keydown', (event) => {
    const at = all.indexOf(event.target);
    const to = {ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: all.length - 1}[event.key];
    if (event.key === ' ') {
      event.preventDefault();
      event.target.click();
    }
    if (at < 0 || to === undefined) return;
    event.preventDefault();
    tabWanted = true;
    location.hash = all[(to + all.length) % all.length].getAttribute('href');
  });
  return node;
}

async function namesView(body, category, group, edit, view, {keep, kept}) {
  const count = el('p', {class: 'quiet library-count', role: 'status'});
  const what = kCategories.find(([word]) => word === category)[1].toLowerCase();
  let fresh = !fetched.has(location.hash);
  fetched.add(location.hash);

  const search = el('input', {type: 'search', id: 'library-search', autocomplete: 'off',
    'aria-label': group ? `Search in ${group}` : `Search ${what}`,
    placeholder: group ? 'Search titles' : `Search ${what}`});
  search.value = kept.search ?? '';
  keep(() => ({search: search.value, list: list.place()}));
  const fetchPage = (offset, limit) => {
    const query = new URLSearchParams({category, group, q: search.value.trim(), offset, limit});
    if (fresh) query.set('fresh', '1');
    fresh = false;
    return ask(`/api/library?${query}`);
  };
  const details = el('div', {class: 'details', role: 'status', hidden: true});
  const list = longList(group || what, fetchPage, (name, index, at) => group
    ? titleRow(category, group, name, details, edit && addButton(category, group, {at, title: name}))
    : groupRow(category, name, edit && category !== 'PlayList' && addButton(category, name)), (total) => {
    const words = group ? (total === 1 ? 'title' : 'titles') : (total === 1 ? what.slice(0, -1) : what);
    count.textContent = total ? `${total.toLocaleString()} ${words}`
      : search.value.trim() ? 'Nothing found' : `No ${words} here`;
  });
  const attempt = async (work) => {
    try {
      await work();
    } catch (error) {
      count.textContent = error.message;
    }
  };
  searchKeys(search, list, () => attempt(() => list.load()));
  view.again = () => {
    fresh = true;
    attempt(() => list.refresh());
  };
  const again = el('button', {type: 'button', onclick: () => { fresh = true; run(again, () => list.load()); }}, 'Refresh');
  body.replaceChildren(...[
    group ? groupHead(category, group, edit) : null,
    !group && category === 'PlayList' ? playlistTools(edit, view) : null,
    el('div', {class: 'library-search'}, search, count), details, list.node].filter(Boolean));
  view.node.querySelector('.page-head').append(again);
  if (view.names) playlistsSeen();
  count.textContent = 'Loading…';
  await attempt(() => list.load(kept.list));
}

function groupHead(category, group, edit) {
  const all = el('button', {type: 'button', class: 'primary', onclick: () => play(all, category, group, '')}, 'Play all');
  return el('div', {class: 'group-head'},
    el('a', {href: address(category), class: 'back', 'aria-label': 'Back to the list'}, '‹'), el('h2', {}, group),
    el('div', {class: 'tools'}, edit ? addButton(category, group, null, 'Add all') : null, all));
}

function groupRow(category, name, add) {
  return [el('button', {type: 'button', class: 'row-main', title: name,
    onclick: () => { location.hash = address(category, name); }}, el('span', {class: 'row-name'}, name)),
  add || '', playButton(category, name, '')];
}

function titleRow(category, group, title, details, add) {
  return [titleButton(category, group, title, details), add || '', playButton(category, group, title)];
}
