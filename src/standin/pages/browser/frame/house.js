// What this page knows of the house: its state as it was read last, and what has become of it since.
import {ask} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {joinStream} from '../live/stream.js';

const kTryAgain = 3000;  // milliseconds after the stream was refused
const kTogether = 120;   // milliseconds in which several changes of the frame are one

/**
 * Tells its listeners, with the words behind each kind:
 * 'state' (before) the state was read, or the connection changed; 'again' something may have been missed: look anew;
 * 'device' (device), 'removed' (ref), 'log' (line), 'script' (event), 'playlist' (event), 'player' (what it is like
 * now), 'cover' ({key} of another picture of what plays), 'event' ({id} of an event of the house), 'dialog' (what has
 * become of the plug-in's open dialog), 'launch' (address), 'voice' what can be said, or heard, may be another, 'room' the
 * server's own microphone has heard something, or is like something else, as it happens; 'signed-out' nobody is signed in.
 */
export class House {
  /** `user` is null while nobody is signed in; `way` then tells by what one is, "password" or "key",
   * and `why` what to do about it. */
  state = {user: null, plugin: null, menu: [], links: [], devices: new Map()};
  connected = true;  // false while the server can't be reached: nothing is known of the house then
  live = true;       // false while its changes aren't heard of
  #listeners = new Map();
  #held = null;  // events that wait for the state
  #reload = 0;

  /** Until the signal ends it. */
  on(kind, hear, signal) {
    const all = this.#listeners.get(kind) ?? new Set();
    this.#listeners.set(kind, all.add(hear));
    signal?.addEventListener('abort', () => all.delete(hear), {once: true});
  }

  #tell(kind, ...what) {
    for (const hear of [...this.#listeners.get(kind) ?? []]) hear(...what);
  }

  /** Reads the state; false when that did not work. */
  async load() {
    const before = this.state;
    try {
      const answer = await ask('/api/state');
      this.state = {...answer, devices: new Map(answer.devices.map((device) => [device.ref, device]))};
    } catch (error) {
      if (error.status === 401) {
        this.state = {...before, user: null, way: error.answer.way ?? 'password', why: error.message};
        this.#tell('signed-out');
      } else if (this.connected) {
        toast(error.message, 'bad');
      }
      return false;
    }
    this.connected = true;  // it has just been reached
    this.#tell('state', before);
    return true;
  }

  listen() {
    // Nobody who is signed out; but a server that can't be reached for a while is asked until it can.
    const again = async () => {
      if (await this.load()) {
        open();
      } else if (this.state.user) {
        this.#lost(true);
        setTimeout(again, kTryAgain);
      }
    };
    const open = joinStream((message) => {
      if (message.type === 'opened') {
        this.#opened();
      } else if (message.type === 'event') {
        const work = () => this.#happened(message.kind, JSON.parse(message.data));
        if (this.#held) this.#held.push(work);
        else work();
      } else {
        this.#lost(message.type === 'lost');
        if (message.type === 'refused') setTimeout(again, kTryAgain);
      }
    });
  }

  /** What happened before the stream was open is in the state; what happens while that is on its way waits. */
  async #opened() {
    this.connected = this.live = true;
    if (this.#held) return;
    this.#held = [];
    const loaded = await this.load();
    if (loaded) this.#tell('again');
    const late = this.#held;
    this.#held = null;
    for (const work of late) work();
  }

  /** A server that refuses the stream, because too many pages are open, can be reached all the same. */
  #lost(gone) {
    if (!this.state.user || (!this.live && this.connected === !gone)) return;
    this.live = false;
    this.connected = !gone;
    this.#tell('state', this.state);
  }

  #happened(kind, what) {
    if (kind === 'device') this.state.devices.set(what.ref, what);
    else if (kind === 'removed') this.state.devices.delete(what);
    if (kind === 'frame') {
      clearTimeout(this.#reload);
      this.#reload = setTimeout(() => this.load(), kTogether);
    } else if (kind === 'reload') {
      this.load().then((loaded) => { if (loaded) this.#tell('again'); });
    } else {
      this.#tell(kind, what);
    }
  }
}
