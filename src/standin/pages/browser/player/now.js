// What plays, as this page knows it: told by the house when it changes, reckoned in between.
import {ask} from '../kit/server.js';
import {Clocks} from './clocks.js';

const kOld = 10 * 60 * 1000;  // milliseconds after which the clocks are compared anew, when something is heard

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
  #clocks = new Clocks();
  #compared = -Infinity;  // when an answer has told how the clocks differ
  #newest = -Infinity;    // of what was heard, by the house's clock
  #key = null;            // the question for the picture's key that is on its way
  #keyAgain = false;

  constructor(house) {
    this.#house = house;
    house.on('player', (now) => this.#hear(now));
    house.on('cover', () => {
      this.pictures++;
      this.#tell();
      this.#askKey();
    });
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
      this.#askKey();
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
    this.#askKey();
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
    const {item, album, albumArtist, cover} = this.state;
    const other = now.item !== item;
    // Albums mostly have one picture, and it is told when it is another.
    const same = !other || (now.album && now.album === album && now.albumArtist === albumArtist);
    now.cover = now.item && same ? cover : '';
    this.state = now;
    this.#tell();
    if (other) this.#askKey();
  }

  /** The key of the picture of what plays, under which it can be kept for good. One question at a time. */
  #askKey() {
    if (this.#key) this.#keyAgain = true;
    else this.#key = this.#readKey().finally(() => { this.#key = null; });
  }

  async #readKey() {
    do {
      this.#keyAgain = false;
      const {item} = this.state;
      if (!item) return;
      try {
        const {key} = await ask('/api/cover/key?playing');
        if (item !== this.state.item || key === this.state.cover) continue;
        this.state = {...this.state, cover: key};
        this.#tell();
      } catch { /* without it the picture is asked for by what plays */ }
    } while (this.#keyAgain);
  }

  #tell() {
    for (const hear of [...this.#listeners]) hear(this.state);
  }
}
