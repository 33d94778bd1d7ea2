// The long choices of what can be said: which of them are open, and what is sought in them.
import {ask, complain} from '../kit/server.js';
import {names, textOf} from './sentences.js';

/** Of one event. `draw` is called whenever something looks different. */
export class Choices {
  #event;
  #signal;
  #draw;
  #open = new Map();  // by the place in the pattern: {sought, found, more, turn}

  constructor(event, {signal, draw}) {
    this.#event = event;
    this.#signal = signal;
    this.#draw = draw;
  }

  has(place) {
    return this.#open.has(place);
  }

  toggle(place) {
    if (!this.#open.delete(place)) this.#open.set(place, {sought: '', found: null, more: 0, turn: 0});
    this.#draw();
  }

  /** The pattern is another: what was found in it is asked for again. */
  renew() {
    for (const [place, state] of this.#open) {
      if (state.sought) this.#seek(place, state.sought);
      else state.found = null;
    }
  }

  list(place, part) {
    const state = this.#open.get(place);
    const told = (part.choice ?? part.optional).map(textOf);
    return names({label: 'choices', total: part.count, sought: state.sought, found: state.found ?? told,
      more: state.found ? state.more : part.count - told.length, seek: (text) => this.#seek(place, text)});
  }

  async #seek(place, text) {
    const state = this.#open.get(place);
    const mine = ++state.turn;
    state.sought = text;
    if (!text.trim()) {
      state.found = null;
      this.#draw();
      return;
    }
    try {
      const sought = new URLSearchParams({event: this.#event, at: place, q: text.trim()});
      const answer = await ask(`/api/voice/choices?${sought}`, undefined, this.#signal);
      if (mine !== state.turn) return;
      state.found = answer.names;
      state.more = answer.total - answer.names.length;
      this.#draw();
    } catch (error) {
      complain(error);
    }
  }
}
