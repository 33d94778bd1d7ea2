// Sliders that the user and the house both move: the house never moves one under the user's finger, and what the user
// does is sent one after the other, the last of it in any case.
import {el} from '../kit/dom.js';
import {complain} from '../kit/server.js';

const kApart = 120;   // milliseconds between two commands at least
const kSettle = 400;  // after the last one, before the house's word counts again

/** Sends the newest of what is wanted, one at a time. */
class Sender {
  #send;
  #wanted = null;
  busy = false;

  constructor(send) {
    this.#send = send;
  }

  /** What has not been sent yet is not wanted any longer. */
  drop() {
    this.#wanted = null;
  }

  async want(value) {
    this.#wanted = {value};
    if (this.busy) return;
    this.busy = true;
    while (this.#wanted) {
      const {value: next} = this.#wanted;
      this.#wanted = null;
      const pause = new Promise((resolve) => { setTimeout(resolve, kApart); });
      await this.#send(next).catch(complain);
      await pause;
    }
    this.busy = false;
  }
}

/**
 * `send(value)` has it done; `live`: while it is dragged, too, and not only when it is let go. `words(value)` is what
 * it says of itself; `dragged(value)` hears of each step, null when it is over.
 */
export class Slider {
  #sender;
  #held = false;
  #of = '';      // what it is the slider of: with another one, what is held belongs to nothing
  #lost = false; // the hand that is on it is still there from before
  #touched = -Infinity;
  #painted = '';  // at which value, of which greatest one
  #words;
  #dragged;
  node;

  constructor({label, className, max, step, send, live = false, words, dragged = () => {}}) {
    this.#sender = new Sender(send);
    this.#words = words;
    this.#dragged = dragged;
    this.node = el('input', {type: 'range', class: `slider ${className}`, min: 0, max, step, 'aria-label': label});
    const node = this.node;
    node.addEventListener('pointerdown', () => {
      this.#held = true;
      this.#lost = false;
    });
    node.addEventListener('keydown', () => { this.#lost = false; });
    for (const end of ['pointerup', 'pointercancel', 'blur']) {
      node.addEventListener(end, () => {
        this.#held = false;
        this.#dragged(null);
      });
    }
    node.addEventListener('input', () => {
      if (this.#lost) return;
      this.#touched = performance.now();
      this.#paint();
      this.#dragged(Number(node.value));
      if (live) this.#sender.want(Number(node.value));
    });
    node.addEventListener('change', () => {
      if (this.#lost) {
        this.#lost = false;
        this.#dragged(null);
        return;
      }
      this.#touched = performance.now();
      this.#dragged(null);
      this.#sender.want(Number(node.value));
    });
  }

  /** The user has it in hand, or what he has done is still on its way. */
  get taken() {
    return this.#held || this.#sender.busy || performance.now() - this.#touched < kSettle;
  }

  /** What the house says; false while the user's word counts, which it does no longer when it is `of` another thing. */
  show(value, max, of = '') {
    if (of !== this.#of) {
      this.#of = of;
      this.#lost = this.#held;
      this.#held = false;
      this.#touched = -Infinity;
      this.#sender.drop();
    }
    if (this.taken) return false;
    const {node} = this;
    if (max !== undefined && Number(node.max) !== max) node.max = max;
    node.value = value;
    if (this.#painted !== this.#stand) this.#paint();
    return true;
  }

  enable(value) {
    this.node.disabled = !value;
  }

  get #stand() {
    return `${this.node.value}/${this.node.max}`;
  }

  #paint() {
    const {node} = this;
    this.#painted = this.#stand;
    const share = Number(node.max) ? Number(node.value) / Number(node.max) : 0;
    node.style.setProperty('--share', `${Math.round(share * 10000) / 100}%`);
    const words = this.#words(Number(node.value));
    if (node.getAttribute('aria-valuetext') !== words) node.setAttribute('aria-valuetext', words);
  }
}
