// Above the names of all playlists: a new one, and the way back from a deletion.
import {html} from '../kit/html.js';
import {later} from '../kit/lasting.js';
import {ask} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {askName} from './adding.js';
import {address} from './kinds.js';
import {named, short} from './titles.js';
import {sentence, Turns} from '../kit/turns.js';
import {watch} from './watching.js';

/** What an answer, or what happens, says of a list on its way back. */
const progressOf = ({name, restored, of, over}) => over ? ''
  : `“${short(name)}” is coming back: ${restored.toLocaleString()} of ${of.toLocaleString()}`;

export class ListsTools {
  #edit;
  #draw;
  #turns = null;
  #restoring = '';

  constructor({signal, house}, edit, draw) {
    this.#edit = edit;
    this.#draw = draw;
    watch(() => '', signal);
    house.on('playlist', (event) => this.#happened(event), signal);
    if (!edit) return;
    this.#turns = new Turns((action) => this.#turn(action), draw, signal);
    later(signal, () => this.#look());  // when there is something to draw
  }

  template() {
    return html`${this.#edit ? html`<div class="tools playlist-tools"><button type="button" class="primary"
        @click=${() => this.#make()}>New playlist</button>${this.#turns.buttons()}</div>${this.#turns.notice()}` : ''}
      <p class="quiet restoring" role="status">${this.#restoring}</p>`;
  }

  async #make() {
    const made = await askName('New playlist', '', (name) => ask('/api/playlist/create', {name}));
    if (made) location.hash = address('PlayList', made.name);
  }

  async #turn(action) {
    try {
      const answer = await ask(`/api/playlist/${action}`, {name: ''});
      this.#turns.stuck(null);
      this.#turns.show(answer);
      if (answer.restoring) this.#progress({name: answer.name, restored: answer.restoring[0], of: answer.restoring[1]});
      else if (answer.said) toast(sentence(answer.said));
    } catch (error) {
      if (error.answer?.stuck) this.#turns.stuck(error.message, action);
      else toast(error.message, 'bad');
    }
  }

  #look() {
    ask('/api/playlists').then((answer) => this.#turns.show(answer)).catch(() => {});
  }

  #happened(event) {
    if (event.lists && this.#edit) this.#look();
    if (!event.of) return;
    this.#progress(event);
    if (event.failed) toast(event.failed, 'bad');
    else if (event.said) toast(sentence(event.said));
  }

  #progress(what) {
    this.#restoring = progressOf(what);
    this.#draw();
  }
}

/** Deletes the list, and offers the way back; false when it is still there. */
export async function deleteList(name) {
  let step = '';
  try {
    step = (await ask('/api/playlist/delete', {name})).undo;
  } catch (error) {
    toast(error.message, 'bad');
    return false;
  }
  toastWithButton(`Deleted ${short(name)}`, 'Undo', () => bringBack(name, step));
  return true;
}

async function bringBack(name, step) {
  try {
    const {undo} = await ask('/api/playlists');
    if (undo !== step) throw new Error('Lists have been changed since: “Undo” above the playlists goes back step by step');
    await ask('/api/playlist/undo', {name: ''});
    toast([named(name), ' is back']);
  } catch (error) {
    toast(error.message, 'bad');
  }
}
