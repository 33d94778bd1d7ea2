// Sends what is said while it is spoken.
import {ask, askWith} from '../kit/server.js';
import {hear, kRate, littleEndian, understanding} from './listening.js';

const kAtOnce = kRate / 4;  // samples: fewer wait for more

/**
 * One utterance, piece by piece: a browser sends one body that is still growing over HTTP/2 alone. Whatever goes wrong
 * on the way, all of it is sent in one piece at its end.
 */
export class Sending {
  #signal;
  #waiting = [];
  #count = 0;     // of samples that wait
  #sent = 0;
  #over = false;  // nothing more is sent piece by piece
  #work;          // settled when all that was to be sent has been; answers the number of the utterance

  constructor(signal) {
    this.#signal = signal;
    this.#then(ask('/api/voice/listen/begin', {}, signal).then(({id}) => id));
  }

  #then(work) {
    this.#work = work;
    work.catch(() => { this.#over = true; });
  }

  /** Sound as Int16Array. */
  add(piece) {
    if (this.#over) return;
    this.#waiting.push(piece);
    this.#count += piece.length;
    if (this.#count >= kAtOnce) this.#flush();
  }

  /** One behind the other: their order is that of the sound. */
  #flush() {
    const piece = new Int16Array(this.#count);
    let at = 0;
    for (const each of this.#waiting) {
      piece.set(each, at);
      at += each.length;
    }
    this.#waiting = [];
    this.#count = 0;
    const before = this.#sent;
    this.#sent += piece.length;
    this.#then(this.#work.then(async (id) => {
      if (this.#over) throw new Error('It is over');
      await askWith(`/api/voice/listen/more?${new URLSearchParams({id, at: before})}`, {signal: this.#signal, method: 'POST',
        headers: {'Content-Type': `audio/l16;rate=${kRate}`}, body: littleEndian(piece)});
      return id;
    }));
  }

  /** The house's understanding of `sound`, which is all that was added, and is sent again where pieces were lost. */
  async end(sound) {
    if (this.#count) this.#flush();
    const whole = (error) => {
      if (error.name === 'AbortError') throw error;
      return hear(sound, this.#signal);
    };
    let id;
    try {
      id = await this.#work;
    } catch (error) {
      return whole(error);
    }
    try {
      return await understanding(ask('/api/voice/listen/end', {id, samples: sound.length}, this.#signal));
    } catch (error) {
      if (error.status !== 404 && error.status !== 409) throw error;  // it may have been done
      return whole(error);
    }
  }

  /** Nothing more is sent, and the house forgets what has come. */
  drop() {
    this.#over = true;
  }
}
