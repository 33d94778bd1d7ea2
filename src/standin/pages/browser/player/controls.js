// The player's buttons and sliders, as the bar and the page "Now playing" both have them, each for itself.
import {el} from '../kit/dom.js';
import {html, nothing} from '../kit/html.js';
import {complain} from '../kit/server.js';
import {timeText} from '../library/titles.js';
import {icon} from './icons.js';
import {Slider} from './sliders.js';

const clock = (seconds) => timeText(seconds) || '0:00';

const spoken = (seconds) => {
  const whole = Math.round(seconds);
  const [minutes, rest] = [Math.floor(whole / 60), whole % 60];
  return `${minutes ? `${minutes} ${minutes === 1 ? 'minute' : 'minutes'} ` : ''}${rest} ${rest === 1 ? 'second' : 'seconds'}`;
};

export class Controls {
  #player;
  #ticked;
  position;
  volume;
  #time = document.createTextNode('0:00');  // only its words change: that costs a browser least
  passed = el('span', {class: 'time passed'}, this.#time);
  length = el('span', {class: 'time length'}, '');

  constructor(player, signal, ticked = () => {}) {
    this.#player = player;
    this.#ticked = ticked;
    this.position = new Slider({label: 'Position', className: 'position', max: 1, step: 1,
      send: (to) => player.seek(to), words: (value) => `${spoken(value)} of ${spoken(player.state.duration)}`,
      dragged: (value) => this.#timeShown(value ?? player.position())});
    this.volume = new Slider({label: 'Volume', className: 'volume', max: 100, step: 1, live: true,
      send: (to) => player.act('volume', {to}), words: (value) => `${value} percent`});
    // Each step of a key is a step that is heard.
    this.position.node.addEventListener('keydown', (event) => this.#positionKey(event));
    this.volume.node.addEventListener('keydown', (event) => this.#volumeKey(event));
    player.ticks.on(() => this.#tick(), signal);
  }

  /** Shows the player as it is; called whenever it has changed. */
  update() {
    const {state, mayAct} = this.#player;
    this.position.enable(mayAct && state.can.seek && state.duration > 0);
    this.volume.enable(mayAct && state.known);
    this.volume.show(state.mute ? 0 : state.volume);
    this.length.textContent = state.item && state.duration ? clock(state.duration) : '';
    this.#tick();
  }

  #tick() {
    const {state} = this.#player;
    const at = this.#player.position();
    if (this.position.show(state.item ? at : 0, Math.max(1, Math.ceil(state.duration)), state.item)) this.#timeShown(at);
    this.#ticked(at);
  }

  #timeShown(seconds) {
    const text = this.#player.state.item ? clock(Math.floor(seconds + 0.02)) : '';
    if (this.#time.data !== text) this.#time.data = text;
  }

  #positionKey(event) {
    const by = {ArrowRight: 5, ArrowUp: 5, ArrowLeft: -5, ArrowDown: -5, PageUp: 30, PageDown: -30}[event.key];
    if (by) this.#step(event, this.position.node, by);
  }

  #volumeKey(event) {
    const by = {ArrowRight: 2, ArrowUp: 2, ArrowLeft: -2, ArrowDown: -2, PageUp: 10, PageDown: -10}[event.key];
    if (by) this.#step(event, this.volume.node, by);
  }

  #step(event, node, by) {
    event.preventDefault();
    node.value = Number(node.value) + by;
    node.dispatchEvent(new Event('input'));
    node.dispatchEvent(new Event('change'));
  }

  #act(word, body) {
    return this.#player.act(word, body).catch(complain);
  }

  #button(name, sign, act, {disabled = false, pressed, className = ''} = {}) {
    return html`<button type="button" class=${`control ${className}`} aria-label=${name} title=${name} ?disabled=${disabled}
      aria-pressed=${pressed === undefined ? nothing : String(pressed)} @click=${act}>${icon(sign)}</button>`;
  }

  /** What the play button would stop. */
  get playing() {
    return ['playing', 'loading'].includes(this.#player.state.play);
  }

  get playButton() {
    const {can, known} = this.#player.state;
    const {playing} = this;
    return this.#button(playing ? 'Pause' : 'Play', playing ? 'pause' : 'play', () => this.#act(playing ? 'pause' : 'play'),
      {className: 'main', disabled: !known || !(playing ? can.pause || this.#player.state.play === 'loading' : can.play)});
  }

  get previousButton() {
    return this.#button('Previous', 'previous', () => this.#act('previous'), {disabled: !this.#player.state.can.previous,
      className: 'previous'});
  }

  get nextButton() {
    return this.#button('Next', 'next', () => this.#act('next'), {disabled: !this.#player.state.can.next, className: 'next'});
  }

  #mode(name, field) {
    const on = this.#player.state[field];
    return this.#button(name, field, () => this.#act(field, {on: !on}), {pressed: on, disabled: !this.#player.state.known,
      className: 'mode'});
  }

  get shuffleButton() {
    return this.#mode('Shuffle', 'shuffle');
  }

  get loopButton() {
    return this.#mode('Loop', 'loop');
  }

  get muteButton() {
    const {mute, known} = this.#player.state;
    return this.#button(mute ? 'Sound on' : 'Mute', mute ? 'muted' : 'volume', () => this.#act('mute', {on: !mute}),
      {disabled: !known, className: 'mute'});
  }

  get progress() {
    return html`<span class="progress">${this.passed}${this.position.node}${this.length}</span>`;
  }
}
