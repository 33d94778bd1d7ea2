// The log: newest last, by type, live.
import {html, live, render, repeat} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {ask, complain} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

const kMostShown = 2000;
const kNearEnd = 40;  // pixels from the end in which the list follows new lines

export const logView = {name: 'log', title: 'Log', mount};

function mount(place, context) {
  return new Log(place, context).load();
}

class Log {
  #place;
  #signal;
  #house;
  #type;
  #lines = [];
  #types = [];
  #read = false;
  #draw;
  #top;  // of the list, where the reader has left it

  constructor(place, {signal, house, keep, kept}) {
    this.#place = place;
    this.#signal = signal;
    this.#house = house;
    this.#type = kept.type ?? '';
    this.#top = kept.top;
    this.#draw = whileShown(signal, () => this.#drawn());
    keep(() => ({type: this.#type, top: this.#atEnd() ? undefined : this.#list.scrollTop}));
    house.on('log', (line) => this.#add(line), signal);
    house.on('again', () => this.load(), signal);
    this.#draw();
  }

  get #list() {
    return this.#place.querySelector('.log');
  }

  #atEnd() {
    const list = this.#list;
    return !list || list.scrollHeight - list.scrollTop - list.clientHeight < kNearEnd;
  }

  #drawn() {
    render(html`<div class="page-head"><h1>Log</h1>
        <div class="tools"><label for="log-type">Show</label>
          <select id="log-type" @change=${(event) => { this.#type = event.target.value; this.load(true); }}>
            <option value="" .selected=${live(!this.#type)}>All types</option>
            ${this.#types.map((name) => html`<option value=${name} .selected=${live(name === this.#type)}>${name}</option>`)}
          </select>
          <button type="button" @click=${() => this.#loadOlder()}>Older lines</button></div></div>
      <ol class="log" tabindex="0" aria-label="Log lines">
        ${this.#read && !this.#lines.length ? html`<li class="log-empty">Nothing has been logged yet.</li>` : ''}
        ${repeat(this.#lines, (line) => line.id, row)}</ol>`, this.#place);
  }

  async load(toEnd = false) {
    const answer = await this.#ask(0);
    if (!answer) return;
    const follows = toEnd || this.#atEnd();
    this.#lines = answer.lines;
    this.#read = true;
    this.#draw();
    if (this.#top !== undefined) this.#list.scrollTop = this.#top;
    else if (follows) this.#toEnd();
    this.#top = undefined;
  }

  async #loadOlder() {
    const answer = await this.#ask(this.#lines[0]?.id ?? 0);
    if (!answer) return;
    if (!answer.lines.length) toast('There are no older lines');
    this.#lines = [...answer.lines, ...this.#lines];
    this.#draw();
    this.#list.scrollTop = 0;
  }

  async #ask(before) {
    try {
      const answer = await ask(`/api/log?type=${encodeURIComponent(this.#type)}&before=${before}`, undefined, this.#signal);
      this.#types = answer.types;
      return answer;
    } catch (error) {
      complain(error);
      return null;
    }
  }

  #add(line) {
    if (this.#type && line.type !== this.#type) return;
    if (line.id && line.id <= (this.#lines.at(-1)?.id ?? 0)) return;
    const follows = this.#atEnd();
    this.#lines = [...this.#lines, line].slice(-kMostShown);
    this.#draw();
    if (follows) this.#toEnd();
  }

  #toEnd() {
    this.#list.scrollTop = this.#list.scrollHeight;
  }
}

function row(line) {
  const time = new Date(line.time);
  return html`<li data-id=${line.id} data-type=${line.type.toLowerCase()}>
    <time datetime=${time.toISOString()} title=${time.toLocaleString()}>${time.toLocaleTimeString()}</time><span
      class="tag">${line.type}</span><span class="line">${line.text}</span></li>`;
}
