// What the library's lists have in common: names, playing, and what a title tells of itself.
import {el} from '../kit/dom.js';
import {html, nothing, render} from '../kit/html.js';
import {Timer} from '../kit/lasting.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

const kPause = 200;    // milliseconds without a key before the search starts
const kLongest = 300;  // characters of a name where it is one of many, or part of a sentence

export const short = (name) => name.length > kLongest
  ? `${Array.from(name.slice(0, 2 * kLongest)).slice(0, kLongest).join('')}…` : name;

/** A name within a sentence, whose signs for the direction of writing end with it. */
export const named = (name) => el('bdi', {}, short(name));

export function timeText(seconds) {
  if (!seconds) return '';
  const whole = Math.round(seconds);
  const two = (number) => String(number).padStart(2, '0');
  const hours = Math.floor(whole / 3600);
  const minutes = Math.floor(whole / 60) % 60;
  return hours ? `${hours}:${two(minutes)}:${two(whole % 60)}` : `${minutes}:${two(whole % 60)}`;
}

export const joined = (...facts) => facts.filter(Boolean).map(short).join(' · ');

/** The rows of an answer: names, or titles with what the server tells of each, or heads. */
export const rowsOf = ({names, titles}) => titles
  ? names.map((name, i) => titles[i] ? {name, ...titles[i]} : {head: name}) : names;

/** What is posted to have this very title played, or added: the mark tells which, the name is for messages. */
export const orderOf = (title, at) => ({at, title: short(title.name), mark: title.mark});

/** The search begins when the keys pause; the arrow leads into the list. */
export function searchField(label, placeholder, text, {sought, down, signal}) {
  const pause = new Timer(signal, sought);
  const field = el('input', {type: 'search', id: 'library-search', autocomplete: 'off', 'aria-label': short(label), placeholder,
    value: text});
  field.addEventListener('input', () => pause.start(kPause));
  field.addEventListener('keydown', (event) => {
    if (event.key !== 'ArrowDown') return;
    event.preventDefault();
    down();
  });
  return field;
}

/** `order` as /api/play takes it. */
export function play(button, order, name) {
  return run(button, async () => {
    await ask('/api/play', order);
    toast(['Playing ', named(name)]);
  });
}

export const playButton = (order, name) => html`<button type="button" class="round" title="Play"
  aria-label=${`Play ${short(name)}`} @click=${(event) => play(event.currentTarget, order, name)}><span
  aria-hidden="true">▶</span></button>`;

/** The part of a row that tells the title, and tells all of it when it is chosen. */
export const titleMain = (title, facts, details) => html`<button type="button" class="row-main" title=${short(title.name)}
    @click=${() => details.show(title)}><span class="row-name">${short(title.name)}</span><span
    class="row-facts">${facts}</span></button><span class="row-time">${timeText(title.seconds)}</span>`;

/** A name that leads to its group. */
export const groupMain = (name, href) => html`<button type="button" class="row-main" title=${short(name)}
  @click=${() => { location.hash = href; }}><span class="row-name">${short(name)}</span></button>`;

/** Above a list: a title in full, with all that is known of it. */
export class Details {
  node = el('div', {class: 'details', role: 'status', hidden: true});

  show(title) {
    const facts = [title.artist, title.album, title.albumArtist !== title.artist && title.albumArtist, title.genre,
      title.track && `track ${title.track}`, timeText(title.seconds)].filter(Boolean);
    render(html`<div><strong class="whole">${title.name}</strong>
        <p class="quiet">${facts.length ? facts.map((fact, i) => html`${i ? ' · ' : nothing}<bdi>${fact}</bdi>`)
    : 'Nothing more is known'}</p></div>
      <button type="button" class="round plain" aria-label="Close"
        @click=${() => { this.node.hidden = true; }}>✕</button>`, this.node);
    this.node.hidden = false;
  }
}
