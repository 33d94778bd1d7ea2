// What plays, as this page knows it: told by the house when it changes, reckoned in between.
import {ask} from '../kit/server.js';
import {Clocks} from './clocks.js';
import {Ticks} from './ticks.js';

const kOld = 10 * 60 * 1000;  // milliseconds after which the clocks are compared anew, when something is heard

const kNothing = {known: false, play: 'unknown', position: 0, at: 0, rate: 0, duration: 0, volume: 0, mute: false,
  loop: false, shuffle: false, can: {}, title: '', artist: '', album: '', albumArtist: '', item: '', cover: '', queue: '',
  from: '', place: -1, count: 0, revision: 0};

/**
 * `state` is what GET /api/player answers. Listeners hear of each change, until their signal ends them.
 */
export class Player {
  state = kNothing;
  pictures = 0;  // counts the pictures that could not be had by their keys
  #house;
  #listeners = new Set();
  #clocks = new Clocks();
  #compared = -Infinity;  // when an answer has told how the clocks differ
  #newest = -Infinity;    // of what was heard, by the house's clock
  ticks = new Ticks(this);

  constructor(house) {
    this.#house = house;
    house.on('player', (now) => this.#hear(now));
    house.on('again', () => {
      // A house that has begun anew, and a page that has slept, have another clock.
      this.#newest = -Infinity;
      this.#clocks.forget();
      this.read();
    });
    house.on('state', () => {
      // What is no longer heard of stands still where it was last known to be.
      if (!house.connected) this.state = {...this.state, position: this.position(), rate: 0};
      this.#tell();
    });
    house.on('signed-out', () => {
      this.#newest = -Infinity;
      this.#take({...kNothing});
      this.#newest = -Infinity;
    });
  }

  get house() {
    return this.#house;
  }

  /** Whether this visitor may do more than look. */
  get mayAct() {
    const {user} = this.#house.state;
    return Boolean(user) && !user.guest;
  }

  on(hear, signal) {
    this.#listeners.add(hear);
    signal?.addEventListener('abort', () => this.#listeners.delete(hear), {once: true});
  }

  async read() {
    if (!this.#house.state.user) return;
    try {
      this.#take(await this.#timed(() => ask('/api/player')));
    } catch { /* told anew when the house is heard of again */ }
  }

  /** Has the player do something; what it is like then comes back. Throws what goes wrong. */
  async act(word, body = {}) {
    const now = await this.#timed(() => ask(`/api/player/${word}`, body));
    this.#take(now);
    return now;
  }

  /** Somewhere within the title that plays now, and in no other one. */
  seek(to) {
    const {item} = this.state;
    return this.act('seek', {to, item});
  }

  /** The picture of that key can't be had any longer: it is asked for by what plays, which makes it anew. */
  lost(key) {
    if (!key || key !== this.state.cover) return;
    this.state = {...this.state, cover: ''};
    this.pictures++;
    this.#tell();
  }

  /** Where the item has come to: seconds. */
  position() {
    const {position, rate, at, duration} = this.state;
    if (!rate) return position;
    const reached = position + rate * (performance.now() + this.#clocks.apart - at) / 1000;
    return Math.max(0, duration ? Math.min(reached, duration) : reached);
  }

  /** An answer is given between the question and when it is read, which tells how the two clocks differ. */
  async #timed(work) {
    const before = performance.now();
    const now = await work();
    this.#compared = performance.now();
    this.#clocks.heard(now.clock, this.#compared, before);
    return now;
  }

  /** What is told unasked is heard at once or later, but never earlier. */
  #hear(now) {
    const here = performance.now();
    this.#clocks.heard(now.clock, here);
    this.#take(now);
    if (here - this.#compared > kOld) this.read();
  }

  /** An answer that comes late says less than what has been told meanwhile. */
  #take(now) {
    if (now.at < this.#newest) return;
    this.#newest = now.at;
    this.state = now;
    this.#tell();
  }

  #tell() {
    for (const hear of [...this.#listeners]) hear(this.state);
  }
}
