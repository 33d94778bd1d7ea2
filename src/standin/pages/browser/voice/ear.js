// Listens while somebody holds a button, for as long as the page is looked at.
import {hear, kLongest, kRate, quiet} from './listening.js';
import {openMicrophone} from './microphone.js';
import {Sending} from './sending.js';

const kNotYet = 'Hold the button until it listens, and while you speak. If the browser asks for the microphone, allow it first.';
const kLeast = 0.3;  // seconds in which something can be said

/**
 * `changed()` is called when its state is another: 'idle', 'opening', 'listening' or 'thinking'; `level(share,
 * seconds)` while it listens; `answer(understanding)` and `trouble(words)` with what has come of it.
 */
export class Ear {
  state = 'idle';
  #told;
  #signal;
  #turn = 0;
  #recording = null;
  #sending = null;
  #quiet = null;  // settled when the house has been asked for it

  constructor(signal, told) {
    this.#signal = signal;
    this.#told = told;
    // The browser's own question takes the focus, too.
    const lost = () => this.cancel(this.state === 'opening' ? kNotYet : 'The page was left: nothing was done');
    addEventListener('blur', lost, {signal});
    addEventListener('pagehide', lost, {signal});
    document.addEventListener('visibilitychange', () => { if (document.hidden) lost(); }, {signal});
    signal.addEventListener('abort', () => this.cancel());
  }

  async begin() {
    if (this.state !== 'idle' || this.#signal.aborted) return;
    const mine = ++this.#turn;
    const still = (work) => (...given) => { if (mine === this.#turn) work(...given); };
    this.#become('opening');
    try {
      const recording = await openMicrophone({
        heard: still((piece, level, seconds) => this.#hears(piece, level, seconds)),
        full: still(() => this.end(`${kLongest} seconds are the most that the house listens to at once`)),
        gone: still(() => this.cancel('The microphone is gone')),
      });
      if (mine === this.#turn) this.#recording = recording;
      else recording.drop();
    } catch (error) {
      still(() => this.cancel(error.message))();
    }
  }

  #hears(piece, level, seconds) {
    if (this.state === 'opening') {
      this.#quiet = quiet(true);
      this.#sending = new Sending(this.#signal);
      this.#become('listening');
    }
    this.#sending?.add(piece);
    if (this.state === 'listening') this.#told.level(level, seconds);
  }

  /** Sends what was said. `words` tell why it ends, where it isn't let go of. */
  async end(words = '') {
    if (this.state === 'opening') this.cancel(kNotYet);
    if (this.state !== 'listening') return;
    const mine = this.#turn;
    this.#become('thinking');
    try {
      const sound = await this.#recording.take();
      this.#recording = null;
      await this.#quiet;  // it would begin behind its end otherwise
      if (sound.length < kLeast * kRate) {
        this.#sending.drop();
        throw new Error('Hold the button while you speak');
      }
      await this.#send(this.#sending.end(sound), words);
    } catch (error) {
      quiet(false);  // the house may not have heard of the end
      if (error.name !== 'AbortError' && mine === this.#turn) this.#told.trouble(error.message);
    } finally {
      if (mine === this.#turn) this.#become('idle');
    }
  }

  /** Sends a sound that was recorded elsewhere; `find` answers it. */
  async send(find) {
    if (this.state !== 'idle') return;
    this.#turn++;
    this.#become('thinking');
    try {
      await this.#send(hear(await find(), this.#signal));
    } catch (error) {
      if (error.name !== 'AbortError') this.#told.trouble(error.message);
    } finally {
      this.#become('idle');
    }
  }

  async #send(understood, words = '') {
    const understanding = await understood;
    if (!this.#signal.aborted) this.#told.answer(understanding, words);
  }

  /** Ends it, and nothing is done. What was to be understood already is not called back. */
  cancel(words = '') {
    if (this.state !== 'opening' && this.state !== 'listening') return;
    this.#turn++;
    this.#recording?.drop();
    this.#recording = null;
    this.#sending?.drop();
    this.#sending = null;
    this.#quiet?.then(() => quiet(false));
    this.#quiet = null;
    this.#become('idle');
    if (words && !this.#signal.aborted) this.#told.trouble(words);
  }

  #become(state) {
    this.state = state;
    if (!this.#signal.aborted) this.#told.changed();
  }
}
