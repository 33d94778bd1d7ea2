// The page of a playlist: its titles are moved, added and removed, the list renamed and deleted, and all of it undone.
import {el} from '../kit/dom.js';
import {html, render} from '../kit/html.js';
import {later, whileShown} from '../kit/lasting.js';
import {longList} from '../kit/longlist.js';
import {oneAtATime} from '../kit/onetime.js';
import {reorder} from '../kit/reorder.js';
import {ask, complain, run} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {askName, gatherFor, renamedTarget} from './adding.js';
import {Changes} from './changes.js';
import {address, counted, kTitleWords} from './kinds.js';
import {deleteList} from './lists-tools.js';
import {Details, joined, orderOf, play, playButton, rowsOf, searchField, short, titleMain} from './titles.js';
import {sentence, Turns} from '../kit/turns.js';
import {watch} from './watching.js';

export class PlaylistPage {
  #body;
  #context;
  #edit;
  #me;  // {name, version, fresh}
  #details = new Details();
  #count = el('p', {class: 'quiet library-count', role: 'status'}, 'Loading…');
  #said = el('p', {class: 'sr', 'aria-live': 'assertive', id: 'playlist-said'});
  #search;
  #list;
  #turns;
  #changes;
  #drag;
  #tellWatch;
  #answer = null;
  #gone = false;
  #draw;    // and what a late answer brings, while the address is this page's
  #show;
  #isGone;
  #readOnce = oneAtATime(() => this.#read());

  constructor(body, context, name, edit) {
    this.#body = body;
    this.#context = context;
    this.#edit = edit;
    this.#me = {name, version: 0, fresh: true};
    const {signal, house, keep, kept} = context;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#show = whileShown(signal, (name) => this.#shown(name));
    this.#isGone = whileShown(signal, () => this.#goes());
    this.#search = searchField(`Search in ${name}`, 'Search titles', kept.sought ?? '',
      {sought: () => this.#load(), down: () => this.#list.focusFirst(), signal});
    this.#list = longList(short(name), (offset, limit) => this.#fetch(offset, limit),
      (title, index, place) => this.#row(title, index, place), (total) => this.#sized(total));
    this.#changes = new Changes(this.#me, {told: (answer) => this.#turns?.show(answer),
      say: (text) => this.#say(text), refresh: () => this.#refresh()});
    this.#turns = edit ? new Turns((action) => this.#turn(action), () => this.#draw(), signal) : null;
    this.#drag = reorder(this.#list, {allowed: () => edit && !this.#sought && this.#list.total() > 1, signal,
      onMove: (from, to, byKey) => this.#move(from, to, byKey), say: (text) => this.#say(text),
      nameOf: (index) => this.#list.known(index)?.name ?? 'The title',
      onSettled: () => later(signal, () => this.#changes.settle())});
    this.#list.node.addEventListener('keydown', (event) => this.#key(event));
    keep(() => ({sought: this.#search.value, list: this.#answer ? this.#list.place() : kept.list}));
    house.on('playlist', (event) => this.#happened(event), signal);
    this.#draw();
    this.#watchList();
  }

  get #sought() {
    return this.#search.value.trim();
  }

  refreshButton() {
    return html`<button type="button" @click=${(event) => run(event.currentTarget, () => this.again())}>Refresh</button>`;
  }

  start(place) {
    return this.#load(place);
  }

  again() {
    this.#me.fresh = true;
    return this.#refresh();
  }

  // What is shown.

  #drawn() {
    if (this.#gone) return;
    const {name} = this.#me;
    const none = this.#answer?.total === 0;
    this.#list.node.hidden = none;
    render(html`<div class="group-head"><a href=${address('PlayList')} class="back" aria-label="Back to the list">‹</a>
        <h2>${name}</h2><button type="button" class="primary" ?disabled=${this.#answer?.all === 0}
        @click=${(event) => play(event.currentTarget, {category: 'PlayList', name}, name)}>Play all</button></div>
      ${this.#edit ? this.#tools() : ''}${this.#turns?.notice() ?? ''}
      <div class="library-search">${this.#search}${this.#count}</div>${this.#details.node}
      ${this.#edit ? html`<p class="sr" id="playlist-help">Alt and the arrow keys move a title, Delete removes it,
        Control Z undoes.</p>` : ''}
      ${none ? this.#empty() : ''}${this.#list.node}${this.#said}`, this.#body);
  }

  #tools() {
    return html`<div class="tools playlist-tools">
      <button type="button" @click=${() => this.#gather()}>Add titles</button>${this.#turns.buttons()}
      <button type="button" @click=${() => this.#askRename()}>Rename</button>
      <button type="button" class="danger" @click=${(event) => run(event.currentTarget, () => this.#delete())}>Delete</button>
    </div>`;
  }

  #empty() {
    if (this.#sought) return html`<p class="empty">Nothing found for “${short(this.#sought)}” in this playlist.</p>`;
    return html`<p class="empty">This playlist is empty. ${this.#edit
      ? '“Add titles” leads to the albums: their + adds to it.' : ''}</p>`;
  }

  #row(title, index, place) {
    const label = short(title.name);
    const order = {category: 'PlayList', name: this.#me.name, ...orderOf(title, place)};
    return html`${this.#edit && !this.#sought ? html`<button type="button" class="handle" aria-label=${`Move ${label}`}
        title="Drag, or press Enter and use the arrow keys"><span aria-hidden="true">⠿</span></button>` : ''}
      <span class="row-number" aria-hidden="true">${place + 1}</span>
      ${titleMain(title, joined(title.artist, title.album), this.#details)}${playButton(order, title.name)}
      ${this.#edit ? html`<button type="button" class="round plain" aria-label=${`Remove ${label}`} title="Remove"
        @click=${() => this.#remove(index, place, title)}><span aria-hidden="true">✕</span></button>` : ''}`;
  }

  #say(text) {
    this.#said.textContent = text;
  }

  #sized(total) {
    this.#count.textContent = total ? counted(total, kTitleWords) : '';
    if (this.#answer) this.#answer = {...this.#answer, total, ...(this.#sought ? {} : {all: total})};
    this.#draw();
  }

  // What is read.

  async #fetch(offset, limit) {
    const query = new URLSearchParams({group: this.#me.name, q: this.#sought, offset, limit});
    if (this.#me.fresh) query.set('fresh', '1');
    this.#me.fresh = false;
    const answer = await ask(`/api/playlist?${query}`, undefined, this.#context.signal);
    this.#answer = answer;
    if (this.#me.name !== answer.name) this.#renamed(answer.name);
    this.#turns?.show(answer);
    return {...answer, names: rowsOf(answer)};
  }

  async #load(place) {
    try {
      await this.#list.load(place);
      if (this.#answer) this.#me.version = this.#answer.version;
    } catch (error) {
      this.#failed(error);
    }
  }

  #refresh() {
    if (!this.#drag.active()) return this.#readOnce();
    this.#changes.late = true;
    return Promise.resolve();
  }

  async #read() {
    const changes = this.#changes;
    changes.late = false;
    try {
      if (await this.#list.refresh()) this.#me.version = this.#answer.version;
      else changes.late = true;
      if (changes.late) later(this.#context.signal, () => changes.settle());
    } catch (error) {
      this.#failed(error);
    }
  }

  #failed(error) {
    if (error.name === 'AbortError') return;
    if (error.status === 404) {
      this.#isGone();
      return;
    }
    this.#count.textContent = error.message;
    complain(error);
  }

  // What becomes of the list, here or elsewhere.

  #happened(event) {
    const about = event.name?.toLowerCase() === this.#me.name.toLowerCase();
    if (event.lists || !about) return;
    if (event.renamed) this.#renamed(event.renamed);
    else if (event.gone) this.#isGone();
    else if (event.of && event.over) this.again();
    else if (event.version > this.#me.version && this.#changes.busy) this.#changes.late = true;
    else if (event.version > this.#me.version) this.#refresh();
  }

  #renamed(now) {
    renamedTarget(this.#me.name, now);
    this.#me.name = now;
    this.#show(now);
  }

  #shown(now) {
    history.replaceState(history.state, '', address('PlayList', now));
    this.#context.title(now);
    this.#draw();
    this.#tellWatch?.();
  }

  #goes() {
    this.#drag.end();
    this.#gone = true;
    render(html`<div class="notice"><p>The playlist “<bdi>${short(this.#me.name)}</bdi>” is no longer there.</p>
      <a href=${address('PlayList')}>To the playlists</a></div>`, this.#body);
  }

  #watchList() {
    this.#tellWatch = watch(() => this.#me.name, this.#context.signal);
  }

  // What the user does.

  #key(event) {
    if (event.key !== 'Delete' || !this.#edit || this.#drag.active()) return;
    event.target.closest('.long-row')?.querySelector('[aria-label^="Remove"]')?.click();
  }

  #gather() {
    gatherFor(this.#me.name);
    location.hash = address('Album');
  }

  #move(from, to, byKey) {
    const list = this.#list;
    const title = list.known(from)?.name ?? 'The title';
    const rowAt = (index) => list.nameAt(index < from ? index : index + 1);  // without the title itself
    const seen = Promise.all([list.nameAt(from), to > 0 ? rowAt(to - 1) : null, to < list.total() - 1 ? rowAt(to) : null]);
    list.move(from, to);
    if (byKey) list.focusRow(to, 0);
    else list.rowAt(to)?.classList.add('landed');
    const place = `Place ${to + 1} of ${list.total()}`;
    this.#changes.send('move', async () => {
      const [moved, before, after] = await seen;
      return {from, to, title, mark: moved.mark, before: before?.mark ?? null, after: after?.mark ?? null};
    }, `${short(title)}: ${place}`);
    if (byKey) this.#say(`${short(title)}: ${place}`);
  }

  #remove(index, place, title) {
    const list = this.#list;
    const button = [...list.rowAt(index)?.querySelectorAll('button') ?? []].indexOf(document.activeElement);
    list.remove(index);
    if (list.total()) list.focusRow(Math.min(index, list.total() - 1), Math.max(button, 0));
    this.#changes.send('remove', async () => orderOf(title, place));
    const undo = whileShown(this.#context.signal, () => this.#turn('undo'));
    toastWithButton(`Removed ${short(title.name)}`, 'Undo', undo, 5000);  // which is read out as well
  }

  #turn(action) {
    return this.#changes.after(async () => {
      try {
        const answer = await ask(`/api/playlist/${action}`, {name: this.#me.name});
        this.#turns.stuck(null);
        this.#say(sentence(answer.said));
        if (answer.total === undefined) return;  // the list is no longer there
        this.#turns.show(answer);
        if (answer.name !== this.#me.name) this.#renamed(answer.name);
        await this.again();  // as the player has it, whatever was kept of it before
      } catch (error) {
        if (error.answer?.stuck) this.#turns.stuck(error.message, action);
        else toast(error.message, 'bad');
        this.#say(error.message);
      }
    });
  }

  #askRename() {
    return askName('Rename playlist', this.#me.name, async (to) => {
      const answer = await ask('/api/playlist/rename', {name: this.#me.name, to});
      this.#me.version = answer.version;
      this.#turns.show(answer);
      this.#renamed(answer.name);
    });
  }

  async #delete() {
    if (await deleteList(this.#me.name)) location.hash = address('PlayList');
  }
}
