// Playlists: their titles are moved, added and removed, lists made, renamed and deleted, and all of it undone.
import {askName, renamedTarget, gatherFor} from './adding.js';
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {longList} from '../kit/longlist.js';
import {reorder} from '../kit/reorder.js';
import {address, play, playButton, searchKeys, titleButton} from './titles.js';

const kWatch = 5000;  // milliseconds between two words to the server that this page looks at a list
const kPageId = Math.random().toString(36).slice(2) + Date.now().toString(36);

let open = null;      // the page of one list, while it is shown
let collection = null;  // the tools of the list of lists, while they are shown
let watchTimer = 0;

export function leavePlaylists() {
  clearInterval(watchTimer);
  open?.controller.abort();
  open = null;
  collection?.controller.abort();
  collection = null;
}

function watch(tell) {
  clearInterval(watchTimer);
  const now = () => {
    if (document.visibilityState === 'visible') ask('/api/playlist/watch', {page: kPageId, ...tell()}).catch(() => {});
  };
  watchTimer = setInterval(now, kWatch);
  now();
  return now;
}

/** The names of all lists are in sight. */
export function playlistsSeen() {
  watch(() => ({name: '', from: 0, rows: 0}));
}

/** Something has become of a playlist, here or elsewhere. */
export function playlistChanged(event) {
  if (event.lists) {
    collection?.look();
    return;
  }
  if (event.of) progress(event);
  if (!open || event.name.toLowerCase() !== open.name.toLowerCase()) return;
  if (event.renamed) open.renamed(event.renamed);
  else if (event.gone) open.gone();
  else if (event.of && event.over) open.again();
  else if (event.version > open.version) open.changedElsewhere();
}

function progress({name, restored, of, over, failed, said, missing}) {
  if (failed) toast(failed, 'bad');
  else if (said) toast(sentence(said), missing ? 'bad' : '');
  const text = over ? '' : `“${name}” is coming back: ${restored.toLocaleString()} of ${of.toLocaleString()}`;
  for (const node of document.querySelectorAll('.restoring')) node.textContent = text;
}

// Undo and redo.

function turnButtons(turn) {
  const make = (words, action, sign) => el('button', {type: 'button', class: 'turn', disabled: true, 'data-turn': action,
    'aria-label': words, onclick: () => turn(action)}, el('span', {'aria-hidden': 'true'}, sign), ` ${words}`);
  return {undo: make('Undo', 'undo', '↶'), redo: make('Redo', 'redo', '↷')};
}

function showTurns({undo, redo}, answer) {
  for (const [button, step, word] of [[undo, answer.undo, 'Undo'], [redo, answer.redo, 'Redo']]) {
    button.disabled = !step;
    button.title = step ? `${word} ${step}` : `Nothing to ${word.toLowerCase()}`;
    button.setAttribute('aria-label', step ? `${word} ${step}` : word);
  }
}

/** A step that can't be undone stays in the way until somebody says that it may be forgotten. */
function stuckNotice(node, error, action, forget) {
  const button = el('button', {type: 'button', onclick: () => { node.hidden = true; forget(`skip-${action}`); }}, 'Forget this step');
  const close = el('button', {type: 'button', class: 'round plain', 'aria-label': 'Close', onclick: () => { node.hidden = true; }}, '✕');
  node.replaceChildren(el('p', {}, error.message), el('div', {class: 'tools'}, button, close));
  node.hidden = false;
}

function turnKeys(controller, turn) {
  document.addEventListener('keydown', (event) => {
    if (!(event.ctrlKey || event.metaKey) || event.altKey || event.target.closest?.('input, textarea, select, dialog')) return;
    const key = event.key.toLowerCase();
    const action = key === 'z' ? (event.shiftKey ? 'redo' : 'undo') : key === 'y' ? 'redo' : '';
    if (!action) return;
    event.preventDefault();
    turn(action);
  }, {signal: controller.signal});
}

/** Above the list of all lists: a new one, and the way back from a deletion. */
export function playlistTools(edit, view) {
  const restoring = el('p', {class: 'quiet restoring', role: 'status'});
  if (!edit) return restoring;
  const controller = new AbortController();
  const stuck = el('div', {class: 'notice-bar', role: 'alert', hidden: true});
  const turn = async (action) => {
    try {
      const answer = await ask(`/api/playlist/${action}`, {name: ''});
      stuck.hidden = true;
      showTurns(buttons, answer);
      if (answer.restoring) progress({name: answer.name, restored: answer.restoring[0], of: answer.restoring[1]});
      else if (answer.said) toast(sentence(answer.said));
      view.again();
    } catch (error) {
      if (error.answer?.stuck) stuckNotice(stuck, error, action, turn);
      else toast(error.message, 'bad');
    }
  };
  const buttons = turnButtons(turn);
  const look = () => ask('/api/playlists').then((answer) => showTurns(buttons, answer)).catch(() => {});
  const fresh = el('button', {type: 'button', class: 'primary', onclick: async () => {
    const made = await askName('New playlist', '', (name) => ask('/api/playlist/create', {name}));
    if (made) location.hash = address('PlayList', made.name);
  }}, 'New playlist');
  collection = {controller, look};
  turnKeys(controller, turn);
  look();
  return el('div', {}, el('div', {class: 'tools playlist-tools'}, fresh, buttons.undo, buttons.redo), stuck, restoring);
}

const sentence = (words) => words ? words[0].toUpperCase() + words.slice(1) : '';

// One list.

/** Fills `body` with the list; answers what looks at it again. */
export function playlistPage(body, name, edit, view, {keep, kept}) {
  const controller = new AbortController();
  const me = open = {name, version: 0, controller, inFlight: 0, late: false};
  const title = el('h2', {}, name);
  const count = el('p', {class: 'quiet library-count', role: 'status'});
  const said = el('p', {class: 'sr', 'aria-live': 'assertive', id: 'playlist-said'});
  const stuck = el('div', {class: 'notice-bar', role: 'alert', hidden: true});
  const details = el('div', {class: 'details', role: 'status', hidden: true});
  const search = el('input', {type: 'search', id: 'library-search', autocomplete: 'off', 'aria-label': `Search in ${name}`,
    placeholder: 'Search titles'});
  search.value = kept.search ?? '';
  keep(() => ({search: search.value, list: list.place()}));
  const say = (text) => { said.textContent = text; };
  let fresh = true;
  let sequence = Promise.resolve();  // changes are sent one after the other
  let generation = 0;                // of the list as it is shown; what belongs to an older one is not sent

  const fetchPage = async (offset, limit) => {
    const query = new URLSearchParams({group: me.name, q: search.value.trim(), offset, limit});
    if (fresh) query.set('fresh', '1');
    fresh = false;
    const answer = await ask(`/api/playlist?${query}`);
    me.fetched = answer.version;
    if (me.name !== answer.name) rename(answer.name);
    showTurns(buttons, answer);
    return answer;
  };
  const list = longList(name, fetchPage, row, (total) => {
    count.textContent = total ? `${total.toLocaleString()} ${total === 1 ? 'title' : 'titles'}`
      : search.value.trim() ? 'Nothing found' : 'This playlist is empty';
  });
  const nameOf = (index) => list.known(index) ?? 'The title';

  function row(item, index, at) {
    const filtered = Boolean(search.value.trim());
    const handle = edit && !filtered ? el('button', {type: 'button', class: 'handle', 'aria-label': `Move ${item}`,
      title: 'Drag, or press Enter and use the arrow keys'}, el('span', {'aria-hidden': 'true'}, '⠿')) : '';
    const away = edit ? el('button', {type: 'button', class: 'round plain', 'aria-label': `Remove ${item}`, title: 'Remove',
      onclick: () => remove(index, at, item)}, el('span', {'aria-hidden': 'true'}, '✕')) : '';
    return [handle, el('span', {class: 'row-number', 'aria-hidden': 'true'}, `${at + 1}`),
      titleButton('PlayList', me.name, item, details), playButton('PlayList', me.name, item), away];
  }

  const refresh = async () => {
    if (drag.active()) {
      me.late = true;
      return;
    }
    me.late = false;
    try {
      if (await list.refresh()) me.version = me.fetched;
      else me.late = true;
      if (me.late && !me.inFlight && open === me) setTimeout(refresh);
    } catch (error) {
      if (error.status === 404) me.gone();
      else count.textContent = error.message;
    }
  };

  /** Sends a change that the page shows already; puts it back when it is refused. */
  function send(action, order, words) {
    const mine = generation;
    me.inFlight++;
    sequence = sequence.then(async () => {
      if (mine !== generation) return;
      try {
        const answer = await ask(`/api/playlist/${action}`, {name: me.name, ...await order()});
        showTurns(buttons, answer);
        // Somebody else's change came in between: what is there is fetched.
        if (answer.version !== me.version + 1) me.late = true;
        me.version = answer.version;
        if (words) say(words);
      } catch (error) {
        generation++;
        me.late = true;
        fresh = true;
        toast(error.message, 'bad');
        say(error.message);
      }
    }).finally(() => {
      me.inFlight--;
      if (me.late && !me.inFlight && open === me) refresh();
    });
    return sequence;
  }

  function move(from, to, byKey) {
    const item = nameOf(from);
    const reach = (index) => list.nameAt(index < from ? index : index + 1);  // as if the title were not there
    const around = Promise.all([to > 0 ? reach(to - 1) : null, to < list.total() - 1 ? reach(to) : null]);
    list.move(from, to);
    if (byKey) list.focusRow(to, 0);
    else list.rowAt(to)?.classList.add('landed');
    const place = `Place ${to + 1} of ${list.total()}`;
    send('move', async () => {
      const [before, after] = await around;
      return {from, to, title: item, before, after};
    }, `${item}: ${place}`);
    if (byKey) say(`${item}: ${place}`);
  }

  function remove(index, at, item) {
    const place = [...list.rowAt(index)?.querySelectorAll('button') ?? []].indexOf(document.activeElement);
    list.remove(index);
    if (list.total()) list.focusRow(Math.min(index, list.total() - 1), Math.max(place, 0));
    send('remove', async () => ({at, title: item}));
    toastUndo(`Removed ${item}`);  // which is read out as well
  }

  function toastUndo(text) {
    const back = el('button', {type: 'button', class: 'toast-button', onclick: () => {
      back.closest('.toast').remove();
      if (open === me) turn('undo');
    }}, 'Undo');
    toast([`${text} `, back], '', 5000);
  }

  function turn(action) {
    sequence = sequence.then(async () => {
      try {
        const answer = await ask(`/api/playlist/${action}`, {name: me.name});
        stuck.hidden = true;
        say(sentence(answer.said));
        if (!answer.total && answer.total !== 0) return;  // the list is no longer there
        showTurns(buttons, answer);
        if (answer.name !== me.name) rename(answer.name);
        fresh = true;  // as the player has it, whatever was kept of it before
        await refresh();
      } catch (error) {
        if (error.answer?.stuck) stuckNotice(stuck, error, action, turn);
        else toast(error.message, 'bad');
        say(error.message);
      }
    });
    return sequence;
  }

  const buttons = turnButtons(turn);
  const drag = reorder(list, {allowed: () => edit && !search.value.trim() && list.total() > 1, onMove: move, say, nameOf,
    onSettled: () => { if (me.late && !me.inFlight) setTimeout(refresh); }, signal: controller.signal});
  list.node.addEventListener('keydown', (event) => {
    if (event.key !== 'Delete' || !edit || drag.active()) return;
    event.target.closest('.long-row')?.querySelector('[aria-label^="Remove"]')?.click();
  });

  function rename(now) {
    renamedTarget(me.name, now);
    me.name = now;
    if (open !== me) return;  // a late answer: the address belongs to another page
    title.textContent = now;
    history.replaceState(history.state, '', address('PlayList', now));
    view.hash = location.hash;
    tellWatch?.();
  }
  Object.assign(me, {
    renamed: rename,
    gone() {
      me.inFlight = 0;
      drag.end();
      body.replaceChildren(el('div', {class: 'notice'}, el('p', {}, `The playlist “${me.name}” is no longer there.`),
        el('a', {href: address('PlayList')}, 'To the playlists')));
      leavePlaylists();
    },
    changedElsewhere() {
      if (me.inFlight) me.late = true;
      else refresh();
    },
    again() {
      fresh = true;
      refresh();
    },
  });

  const all = el('button', {type: 'button', class: 'primary', onclick: () => play(all, 'PlayList', me.name, '')}, 'Play all');
  const tools = edit ? el('div', {class: 'tools playlist-tools'},
    el('button', {type: 'button', onclick: () => { gatherFor(me.name); location.hash = address('Album'); }}, 'Add titles'),
    buttons.undo, buttons.redo,
    el('button', {type: 'button', onclick: () => askName('Rename playlist', me.name,
      (to) => ask('/api/playlist/rename', {name: me.name, to}).then((answer) => {
        me.version = answer.version;
        showTurns(buttons, answer);
        rename(answer.name);
      }))}, 'Rename'),
    el('button', {type: 'button', class: 'danger', onclick: (event) => run(event.currentTarget, async () => {
      const gone = me.name;
      await ask('/api/playlist/delete', {name: gone});
      toast(`Deleted ${gone}`);
      location.hash = address('PlayList');
    })}, 'Delete')) : null;
  const load = async (place) => {
    try {
      await list.load(place);
      me.version = me.fetched;
    } catch (error) {
      count.textContent = error.message;
    }
  };
  searchKeys(search, list, () => load());
  body.replaceChildren(...[
    el('div', {class: 'group-head'}, el('a', {href: address('PlayList'), class: 'back', 'aria-label': 'Back to the list'}, '‹'),
      title, all),
    tools, stuck, el('div', {class: 'library-search'}, search, count), details,
    edit ? el('p', {class: 'sr', id: 'playlist-help'}, 'Alt and the arrow keys move a title, Delete removes it, Control Z undoes.') : null,
    list.node, said].filter(Boolean));
  if (edit) turnKeys(controller, turn);
  count.textContent = 'Loading…';
  view.shown = load(kept.list);
  const tellWatch = watch(() => {
    const {first, last} = list.range();
    return {name: me.name, from: first, rows: last - first};
  });
  let scrolled = 0;
  list.node.addEventListener('scroll', () => {
    clearTimeout(scrolled);
    scrolled = setTimeout(() => { if (open === me) tellWatch(); }, 400);
  }, {passive: true});
  return me.again;
}
