// The queue as the player holds it: its titles are moved, removed and played, and all of it undone.
import {el} from '../kit/dom.js';
import {html, render} from '../kit/html.js';
import {later, whileShown} from '../kit/lasting.js';
import {longList} from '../kit/longlist.js';
import {oneAtATime} from '../kit/onetime.js';
import {reorder} from '../kit/reorder.js';
import {ask, complain, run} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {sentence, Turns} from '../kit/turns.js';
import {askName} from '../library/adding.js';
import {Changes} from '../library/changes.js';
import {address, counted, kTitleWords} from '../library/kinds.js';
import {Details, joined, named, orderOf, rowsOf, short, titleMain} from '../library/titles.js';
import {watch} from '../library/watching.js';
import {icon} from './icons.js';

const kAnyQueue = '\u001fqueue';  // whichever it is; with a mark behind it, that one alone

export class QueueList {
  #place;
  #signal;
  #player;
  #me = {name: kAnyQueue, version: 0, fresh: true};
  #details = new Details();
  #said = el('p', {class: 'sr', 'aria-live': 'assertive', id: 'playlist-said'});
  #count = el('p', {class: 'quiet queue-count', role: 'status'}, 'Loading…');
  #list;
  #turns;
  #changes;
  #drag;
  #tellWatch = () => {};
  #away = () => {};  // takes the message away whose "Undo" would mean another step by now
  #answer = null;
  #readAgain = oneAtATime(() => this.#read());
  #revision = 0;
  #row = -2;  // the one that is shown as playing
  #draw;

  constructor(place, {signal, house, keep, kept}, player) {
    this.#place = place;
    this.#signal = signal;
    this.#player = player;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#list = longList('Queue', (offset, limit) => this.#fetch(offset, limit),
      (title, index, at) => this.#rowOf(title, index, at), (total) => this.#sized(total));
    this.#list.node.classList.add('queue-list');
    this.#changes = new Changes(this.#me, {told: (answer) => this.#turns?.show(answer), say: (text) => this.#say(text),
      refresh: () => this.#refresh()});
    this.#turns = this.#edit ? new Turns((action) => this.#turn(action), () => this.#draw(), signal) : null;
    this.#drag = reorder(this.#list, {allowed: () => this.#edit && this.#list.total() > 1, signal,
      onMove: (from, to, byKey) => this.#move(from, to, byKey), say: (text) => this.#say(text),
      nameOf: (index) => this.#list.known(index)?.name ?? 'The title',
      onSettled: () => later(signal, () => this.#changes.settle())});
    this.#list.node.addEventListener('keydown', (event) => {
      if (event.key === 'Delete' && this.#edit && !this.#drag.active())
        event.target.closest('.long-row')?.querySelector('.remove')?.click();
    });
    keep(() => ({list: this.#answer ? this.#list.place() : kept.list}));
    house.on('playlist', (event) => this.#happened(event), signal);
    house.on('again', () => this.again(), signal);
    player.on(() => this.#played(), signal);
    this.#draw();
    this.#tellWatch = watch(() => this.#me.name, signal);
  }

  get #edit() {
    return this.#player.mayAct;
  }

  async start(kept) {
    await this.#load(kept);
    // To what plays, unless the reader has been elsewhere.
    const {place} = this.#player.state;
    if (!kept && place > 3) this.#list.toTop(place - 2);
  }

  again() {
    this.#me.fresh = true;
    return this.#refresh();
  }

  // What is shown.

  #drawn() {
    const none = this.#answer?.total === 0;
    const {from} = this.#player.state;
    this.#list.node.hidden = none;
    render(html`<div class="queue-head"><h2>Queue</h2>${this.#count}
        ${from && !none ? html`<span class="quiet queue-from">from “<bdi>${short(from)}</bdi>”</span>` : ''}</div>
      ${this.#edit ? html`<div class="tools playlist-tools">${this.#turns.buttons()}
        <a class="button" href=${address('Album')}>Add titles</a>
        <button type="button" ?disabled=${none} @click=${() => this.#save()}>Save as playlist</button>
        <button type="button" class="danger" ?disabled=${none} @click=${(event) => run(event.currentTarget, () => this.#clear())}>Clear</button>
      </div>${this.#turns.notice()}
      <p class="sr">Alt and the arrow keys move a title, Delete removes it, Control Z undoes.</p>` : ''}
      ${this.#details.node}
      ${none ? html`<div class="empty"><p>Nothing is queued.</p><a class="way" href=${address('Album')}>Choose an album</a></div>` : ''}
      ${this.#list.node}${this.#said}`, this.#place);
  }

  #rowOf(title, index, at) {
    const label = short(title.name);
    const now = at === this.#row;
    return html`${this.#edit ? html`<button type="button" class="handle" aria-label=${`Move ${label}`}
        title="Drag, or press Enter and use the arrow keys"><span aria-hidden="true">⠿</span></button>` : ''}
      <span class="row-number" aria-hidden="true">${now ? html`<span class="beat"></span>` : at + 1}</span>
      ${titleMain(title, html`${now ? html`<span class="sr">Now playing. </span>` : ''}${joined(title.artist, title.album)}`, this.#details)}
      ${this.#edit && this.#row >= 0 && !now && at !== this.#row + 1 ? html`<button type="button" class="round" title="Play next"
        aria-label=${`Play next: ${label}`} @click=${() => this.#next(index)}>${icon('playNext')}</button>` : ''}
      ${this.#edit ? html`<button type="button" class="round" title="Play from here" aria-label=${`Play ${label}`}
        @click=${(event) => this.#playRow(event.currentTarget, title, at)}>${icon('play')}</button>
      <button type="button" class="round plain remove" aria-label=${`Remove ${label}`} title="Remove"
        @click=${() => this.#remove(index, at, title)}><span aria-hidden="true">✕</span></button>` : ''}`;
  }

  #say(text) {
    this.#said.textContent = text;
  }

  #sized(total) {
    this.#count.textContent = total ? counted(total, kTitleWords) : '';
    if (this.#answer) this.#answer = {...this.#answer, total};
    this.#draw();
  }

  /** What plays has moved on, or the queue is another one. */
  #played() {
    const {queue, revision, place} = this.#player.state;
    if (queue && this.#me.name !== queue && this.#me.name !== kAnyQueue) this.#become(queue);
    else if (revision !== this.#revision && this.#revision && !this.#changes.busy) this.#refresh();
    this.#revision = revision;
    if (place !== this.#row) {
      this.#row = place;
      this.#list.redraw();
    }
    this.#draw();
  }

  #become(queue) {
    this.#me.name = queue;
    this.#me.fresh = true;
    this.#turns?.stuck(null);
    this.#tellWatch();
    this.#load();
  }

  // What is read.

  async #fetch(offset, limit) {
    const query = new URLSearchParams({group: this.#me.name, q: '', offset, limit});
    if (this.#me.fresh) query.set('fresh', '1');
    this.#me.fresh = false;
    const answer = await ask(`/api/playlist?${query}`, undefined, this.#signal);
    this.#answer = answer;
    this.#me.name = answer.name;
    this.#turns?.show(answer);
    return {...answer, names: rowsOf(answer)};
  }

  async #load(place) {
    try {
      this.#row = this.#player.state.place;
      await this.#list.load(place);
      if (this.#answer) this.#me.version = this.#answer.version;
      this.#tellWatch();
    } catch (error) {
      this.#failed(error);
    }
  }

  #refresh() {
    if (!this.#drag.active()) return this.#readAgain();
    this.#changes.late = true;
    return Promise.resolve();
  }

  async #read() {
    const changes = this.#changes;
    try {
      changes.late = false;
      if (await this.#list.refresh()) this.#me.version = this.#answer.version;
      else changes.late = true;
      if (changes.late) later(this.#signal, () => changes.settle());
    } catch (error) {
      this.#failed(error);
    }
  }

  #failed(error) {
    if (error.name === 'AbortError') return;
    if (error.status === 404 && this.#me.name !== kAnyQueue) {  // something else has been chosen
      this.#become(kAnyQueue);
      return;
    }
    this.#count.textContent = error.message;
    complain(error);
  }

  #happened({name, version, gone}) {
    if (name?.toLowerCase() !== this.#me.name.toLowerCase()) return;
    if (gone) this.#become(kAnyQueue);
    else if (version > this.#me.version && this.#changes.busy) this.#changes.late = true;
    else if (version > this.#me.version) {
      this.#away();
      this.#refresh();
    }
  }

  // What the user does.

  #playRow(button, title, at) {
    return run(button, () => this.#player.act('item', {...orderOf(title, at), queue: this.#me.name}));
  }

  #move(from, to, byKey) {
    const list = this.#list;
    const title = list.known(from)?.name ?? 'The title';
    const rowAt = (index) => list.nameAt(index < from ? index : index + 1);  // without the title itself
    const seen = Promise.all([list.nameAt(from), to > 0 ? rowAt(to - 1) : null, to < list.total() - 1 ? rowAt(to) : null]);
    this.#row = movedTo(this.#row, from, to);
    list.move(from, to);
    if (byKey) list.focusRow(to, 0);
    else list.rowAt(to)?.classList.add('landed');
    const place = `Place ${to + 1} of ${list.total()}`;
    this.#away();
    this.#changes.send('move', async () => {
      const [moved, before, after] = await seen;
      return {from, to, title, mark: moved.mark, before: before?.mark ?? null, after: after?.mark ?? null};
    }, `${short(title)}: ${place}`);
    if (byKey) this.#say(`${short(title)}: ${place}`);
  }

  /** Behind what plays. */
  #next(index) {
    const to = index < this.#row ? this.#row : this.#row + 1;
    this.#move(index, to, false);
    this.#list.focusRow(to);
  }

  #remove(index, at, title) {
    const list = this.#list;
    const button = [...list.rowAt(index)?.querySelectorAll('button') ?? []].indexOf(document.activeElement);
    if (index < this.#row) this.#row--;
    else if (index === this.#row) this.#row = -1;
    list.remove(index);
    if (list.total()) list.focusRow(Math.min(index, list.total() - 1), Math.max(button, 0));
    this.#changes.send('remove', async () => orderOf(title, at));
    this.#offer(`Removed ${short(title.name)}`, 5000);
  }

  async #clear() {
    const answer = await ask('/api/queue/clear', {name: this.#me.name});
    this.#turns.show(answer);
    await this.again();
    this.#offer(this.#player.state.play === 'playing' ? 'Cleared; what plays is played to its end' : 'Cleared');
    this.#place.querySelector('[data-turn=undo]')?.focus();
  }

  #save() {
    return askName('Save as playlist', this.#player.state.from ?? '', async (to) => {
      const {name, undo} = await ask('/api/queue/save', {name: this.#me.name, to});
      toastWithButton(`Saved as ${short(name)}`, 'Undo', async () => {
        try {
          if ((await ask('/api/playlists')).undo !== undo && undo) throw new Error('Lists have been changed since');
          await ask('/api/playlist/undo', {name: ''});
          toast(['“', named(name), '” is not saved any longer']);
        } catch (error) {
          complain(error);
        }
      });
    });
  }

  /** A message whose "Undo" takes back the very step that it names: it goes when there is a newer one. */
  #offer(words, time) {
    this.#away();
    this.#away = toastWithButton(words, 'Undo', whileShown(this.#signal, () => this.#turn('undo')), time);
  }

  #turn(action) {
    this.#away();
    return this.#changes.after(async () => {
      try {
        const answer = await ask(`/api/playlist/${action}`, {name: this.#me.name});
        this.#turns.stuck(null);
        this.#say(sentence(answer.said));
        this.#turns.show(answer);
        await this.again();
      } catch (error) {
        if (error.answer?.stuck) this.#turns.stuck(error.message, action);
        else toast(error.message, 'bad');
        this.#say(error.message);
      }
    });
  }
}

/** Where a row stands when another one has been moved. */
function movedTo(row, from, to) {
  if (row === from) return to;
  if (from < row && to >= row) return row - 1;
  return from > row && to <= row ? row + 1 : row;
}
