// Undo and redo: their buttons, their keys, and what is said of a step that stands in the way.
import {html} from './html.js';

export const sentence = (words) => words ? words[0].toUpperCase() + words.slice(1) : '';

/** `turn(action)` takes 'undo', 'redo', and with 'skip-' before them forgets the step; `draw` is called when anything
 * looks different. */
export class Turns {
  #turn;
  #draw;
  #steps = {undo: '', redo: ''};
  #stuck = null;  // {words, action}

  constructor(turn, draw, signal) {
    this.#turn = turn;
    this.#draw = draw;
    document.addEventListener('keydown', (event) => this.#key(event), {signal});
  }

  /** The steps that an answer names. */
  show({undo, redo}) {
    this.#steps = {undo, redo};
    this.#draw();
  }

  /** A step that can't be taken stays in the way until somebody says that it may be forgotten; null when none does. */
  stuck(words, action) {
    this.#stuck = words ? {words, action} : null;
    this.#draw();
  }

  buttons() {
    return [this.#button('undo', 'Undo', '↶'), this.#button('redo', 'Redo', '↷')];
  }

  #button(action, word, sign) {
    const step = this.#steps[action];
    const whole = `${word} ${step}`;
    return html`<button type="button" class="turn" data-turn=${action} ?disabled=${!step} aria-label=${step ? whole : word}
      title=${step ? whole : `Nothing to ${action}`} @click=${() => this.#turn(action)}><span
      aria-hidden="true">${sign}</span> ${word}</button>`;
  }

  notice() {
    if (!this.#stuck) return '';
    const {words, action} = this.#stuck;
    const forget = () => {
      this.stuck(null);
      this.#turn(`skip-${action}`);
    };
    return html`<div class="notice-bar" role="alert"><p>${words}</p><div class="tools">
      <button type="button" @click=${forget}>Forget this step</button>
      <button type="button" class="round plain" aria-label="Close" @click=${() => this.stuck(null)}>✕</button></div></div>`;
  }

  #key(event) {
    if (!(event.ctrlKey || event.metaKey) || event.altKey || event.target.closest?.('input, textarea, select, dialog')) return;
    const key = event.key.toLowerCase();
    const action = key === 'z' ? (event.shiftKey ? 'redo' : 'undo') : key === 'y' ? 'redo' : '';
    if (!action) return;
    event.preventDefault();
    this.#turn(action);
  }
}
