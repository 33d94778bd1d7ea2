// What has come of every trigger: of one event, or of all; newest first, live.
import {html, live, render, repeat} from '../kit/html.js';
import {Timer, whileShown} from '../kit/lasting.js';
import {ask, complain, run} from '../kit/server.js';
import {evaluationDetails, evaluationLine} from './evaluation.js';

const kPage = 50;
const kTogether = 250;  // milliseconds in which changes are read once

export async function historyView(place, context, id) {
  await new History(place, context, id).begin();
}

class History {
  #place;
  #signal;
  #draw;
  #title;
  #id;
  #name = '';
  #entries = [];
  #more = false;
  #read = false;
  #ran;           // only what ran or failed
  #open;          // those that are unfolded
  #wanted;        // how many the reader has seen

  constructor(place, {signal, house, title, keep, kept}, id) {
    this.#place = place;
    this.#signal = signal;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#title = title;
    this.#id = id;
    this.#open = new Set(kept.open);
    this.#ran = kept.ran ?? false;
    this.#wanted = kept.wanted ?? kPage;
    keep(() => ({open: [...this.#open], ran: this.#ran, wanted: this.#entries.length}));
    const soon = new Timer(signal, () => this.#look());
    house.on('event', (event) => { if (!id || event.id === id) soon.ensure(kTogether); }, signal);
    house.on('again', () => this.#look(), signal);
    title('History · Events');
    this.#draw();
  }

  async begin() {
    if (this.#id) this.#readName();
    await this.#look(Math.max(kPage, this.#wanted));
  }

  async #readName() {
    try {
      this.#name = (await ask(`/api/event?id=${this.#id}`, undefined, this.#signal)).name;
      this.#title(`${this.#name} · History`);
      this.#draw();
    } catch {  // it has been deleted; its history is shown all the same
    }
  }

  #ask(before, count) {
    return ask(`/api/event/history?${new URLSearchParams({id: this.#id, before, count})}`, undefined, this.#signal);
  }

  /** The newest, and with them whatever has become of those that are shown. */
  async #look(count = Math.max(kPage, this.#entries.length)) {
    try {
      const {evaluations, more} = await this.#ask(0, count);
      this.#entries = evaluations;
      this.#more = more;
      this.#read = true;
      this.#draw();
    } catch (error) {
      complain(error);
    }
  }

  async #older() {
    const {evaluations, more} = await this.#ask(this.#entries.at(-1)?.id ?? 0, kPage);
    const known = new Set(this.#entries.map(({id}) => id));
    this.#entries = [...this.#entries, ...evaluations.filter(({id}) => !known.has(id))];
    this.#more = more;
    this.#draw();
  }

  #drawn() {
    const shown = this.#ran ? this.#entries.filter(({actions}) => actions.some(({begun}) => begun)) : this.#entries;
    render(html`<div class="page-head"><div class="head-words"><a class="back" href=${this.#id ? `#events/${this.#id}` : '#events'}
          aria-label=${this.#id ? 'Back to the event' : 'Back to the events'}>‹</a>
        <h1>${this.#id ? html`History <span class="by">of ${this.#name || 'an event'}</span>` : 'History'}</h1></div>
        <label class="head-check"><input type="checkbox" .checked=${live(this.#ran)}
          @change=${(event) => { this.#ran = event.target.checked; this.#draw(); }}>Only what ran</label></div>
      <ol class="history" aria-label="Evaluations">${repeat(shown, ({id}) => id, (each) => this.#row(each))}</ol>
      ${this.#read && !shown.length ? html`<p class="empty">${this.#entries.length ? 'Nothing has run.'
        : 'Nothing has triggered yet. Whatever does is told here: what asked for it, what the conditions saw, and what was done.'}</p>` : ''}
      ${this.#more ? html`<p><button type="button" @click=${(event) => run(event.currentTarget, () => this.#older())}>Older</button></p>` : ''}`,
    this.#place);
  }

  #row(each) {
    return html`<li data-ref=${each.id}><details ?open=${this.#open.has(each.id)} @toggle=${(event) => {
      if (event.target.open) this.#open.add(each.id);
      else this.#open.delete(each.id);
    }}><summary>${evaluationLine(each, {named: !this.#id})}</summary>
      <div class="evaluation">${evaluationDetails(each)}
        ${this.#id ? '' : html`<p><a href=${`#events/${each.event}`}>Open ${each.name}</a></p>`}</div></details></li>`;
  }
}
