// The player's library: categories, their groups, the titles in a group, and one search over all of it.
import {html, nothing, render} from '../kit/html.js';
import {later} from '../kit/lasting.js';
import {addingBar} from './adding.js';
import {groupView} from './group.js';
import {address, kindOf, kTabs} from './kinds.js';
import {ListsTools} from './lists-tools.js';
import {foundView, namesView} from './names.js';
import {PlaylistPage} from './playlist.js';

let tabWanted = false;  // the page changes because of a key on a tab, which keeps the focus

export const libraryView = {name: 'library', title: 'Library', mount};

async function mount(place, context) {
  const {house, path, title, signal, kept} = context;
  const edit = !house.state.user.guest;
  const found = path[0] === 'find' && path[1];
  const [category, group = '', by = ''] = found ? [] : path;
  const kind = kindOf(found ? path[2] : category);
  const frame = {refresh: () => ''};
  const tab = found || kind.word;
  render(page(found ? '' : kind.word, frame), place);
  const body = place.querySelector('.library-body');
  const view = open();
  frame.refresh = () => view.refreshButton();
  render(page(found ? '' : kind.word, frame), place);
  house.on('again', () => view.again(), signal);
  if (tabWanted && tab) {
    tabWanted = false;
    later(signal, () => place.querySelector('[role=tab][aria-selected=true]')?.focus());
  }
  await view.start(kept.list);

  function open() {
    title(found || group || kind.text);
    if (found) return foundView(body, context, found, kind.word, edit);
    if (kind.word === 'PlayList' && group) return new PlaylistPage(body, context, group, edit);
    if (group) return groupView(body, context, {category: kind.word, group, by, edit});
    if (kind.word !== 'PlayList') return namesView(body, context, kind, {edit});
    const tools = new ListsTools(context, edit, () => names.draw());
    const names = namesView(body, context, kind, {edit, above: () => tools.template()});
    house.on('playlist', (event) => { if (event.lists) names.again(); }, signal);
    return names;
  }
}

const page = (category, frame) => html`<div class="library">
  <div class="page-head"><h1>Library</h1>${frame.refresh()}</div>
  ${tabs(category)}${addingBar()}
  <div class="library-body" id="library-panel" role=${category ? 'tabpanel' : 'region'}
    aria-labelledby=${category ? `tab-${category}` : nothing} aria-label=${category ? nothing : 'Search results'}></div></div>`;

function tabs(category) {
  const tab = ({word, text}, index) => html`<a href=${address(word)} role="tab" id=${`tab-${word}`} aria-controls="library-panel"
    aria-selected=${String(word === category)} tabindex=${word === category || (!category && !index) ? 0 : -1}>${text}</a>`;
  return html`<div class="tabs" role="tablist" aria-label="Categories" @keydown=${tabKey}>${kTabs.map(tab)}</div>`;
}

function tabKey(event) {
  const all = [...event.currentTarget.querySelectorAll('[role=tab]')];
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
}
