// The button that is held to speak, with what it tells of listening.
import {el} from '../kit/dom.js';
import {icon} from '../player/icons.js';
import {render} from '../kit/html.js';
import {Ear} from './ear.js';
import {holdable} from './holding.js';

const words = {idle: 'Hold to speak', opening: 'One moment…', listening: 'Listening…', thinking: 'Understanding…'};

/** `answer(understanding, words)` and `trouble(words)` hear of what has come of it. */
export class TalkButton {
  node = el('button', {type: 'button', class: 'talk', 'aria-pressed': 'false'});
  level = el('span', {class: 'talk-level', 'aria-hidden': 'true'});
  time = el('span', {class: 'talk-time', 'aria-hidden': 'true'});
  #text = el('span', {class: 'talk-words'});
  #sign = el('span', {class: 'talk-sign'}, this.level);
  #ear;
  #ended;

  constructor(signal, {answer, trouble, small = false}) {
    this.#ear = new Ear(signal, {answer, trouble, changed: () => this.#draw(),
      level: (share, seconds) => this.#drawLevel(share, seconds)});
    const mark = el('span', {class: 'talk-icon'});
    render(icon('microphone'), mark);
    this.#sign.append(mark);
    this.node.append(this.#sign, this.#text, this.time);
    this.#text.classList.toggle('sr', small);
    this.node.classList.toggle('talk-small', small);
    this.#ended = holdable(this.node, {begin: () => this.#ear.begin(), end: () => this.#ear.end(),
      cancel: () => this.#ear.cancel('It was let go of: nothing was done')});
    this.#draw();
  }

  /** A sound that was recorded elsewhere; `find` answers it. */
  send(find) {
    return this.#ear.send(find);
  }

  #draw() {
    const {state} = this.#ear;
    if (state === 'idle' || state === 'thinking') this.#ended();
    this.node.dataset.state = state;
    this.node.ariaPressed = String(state === 'listening');
    this.#text.textContent = words[state];
    if (state !== 'listening') this.#drawLevel(0, 0);
  }

  #drawLevel(share, seconds) {
    this.level.style.setProperty('--level', share.toFixed(2));
    this.time.textContent = seconds ? `${Math.floor(seconds)} s` : '';
  }
}
