// What plays, as this page knows it: told by the house when it changes, reckoned in between.
import {ask} from '../kit/server.js';

const kNothing = {known: false, play: 'unknown', position: 0, at: 0, rate: 0, duration: 0, volume: 0, mute: false,
  loop: false, shuffle: false, can: {}, title: '', artist: '', album: '', albumArtist: '', item: '', cover: '', queue: '',
  from: '', place: -1, count: 0, revision: 0};

/**
 * `state` is what GET /api/player answers, with `cover`, the key of the picture, once it is known. Listeners hear of each change, until their signal ends them; `moved` in
 * what they hear is true where the item or its place in time is another than was foreseen.
 */
export class Player {
  state = kNothing;
  pictures = 0;  // counts on when the picture of what plays may be another
  #house;
  #listeners = new Set();
  #offset = 0;          // of the server's clock against this page's
  #surest = Infinity;   // milliseconds that the offset may be wrong by
  #own = 0;             // commands on their way
  #asked = 0;

  constructor(house) {
    this.#house = house;
    house.on('player', (now) => this.#take(now));
    house.on('cover', () => {
      this.pictures++;
      this.#tell();
      this.#askKey();
    });
    house.on('again', () => this.read());
    house.on('state', () => {
      // What is no longer heard of stands still where it was last known to be.
      if (!house.connected) this.state = {...this.state, position: this.position(), rate: 0};
      this.#tell();
    });
    house.on('signed-out', () => this.#take(kNothing));
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
    this.#surest = Infinity;  // a page that slept has another clock
    const mine = ++this.#asked;
    try {
      const now = await this.#timed(() => ask('/api/player'));
      if (mine === this.#asked) this.#take(now);
      this.#askKey();
    } catch { /* told anew when the house is heard of again */ }
  }

  /** Has the player do something; what it is like then comes back. Throws what goes wrong. */
  async act(word, body = {}) {
    const mine = ++this.#asked;
    this.#own++;
    try {
      const now = await this.#timed(() => ask(`/api/player/${word}`, body));
      if (mine === this.#asked) this.#take(now);
      return now;
    } finally {
      this.#own--;
    }
  }

  /** Where the item has come to: seconds. */
  position() {
    const {position, rate, at, duration} = this.state;
    if (!rate) return position;
    const reached = position + rate * (performance.now() + this.#offset - at) / 1000;
    return Math.max(0, duration ? Math.min(reached, duration) : reached);
  }

  /** Answers when it began, was read and ended tell how the two clocks differ; the quickest answer is the surest. */
  async #timed(work) {
    const before = performance.now();
    const now = await work();
    const doubt = (performance.now() - before) / 2;
    if (doubt < this.#surest) {
      this.#surest = doubt;
      this.#offset = now.clock - (before + doubt);
    }
    return now;
  }

  #take(now) {
    now.cover = now.item && now.item === this.state.item ? this.state.cover : '';
    const other = now.item !== this.state.item;
    this.state = now;
    this.#tell();
    if (other) this.#askKey();
  }

  /** The key of the picture of what plays, under which it can be kept for good. */
  async #askKey() {
    const {item} = this.state;
    if (!item) return;
    try {
      const {key} = await ask('/api/cover/key?playing');
      if (item !== this.state.item || key === this.state.cover) return;
      this.state = {...this.state, cover: key};
      this.#tell();
    } catch { /* without it the picture is asked for by what plays */ }
  }

  #tell() {
    for (const hear of [...this.#listeners]) hear(this.state);
  }
}
