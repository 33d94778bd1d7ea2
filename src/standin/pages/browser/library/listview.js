// A long list with a field to search in it, a line that counts, and words for when there is nothing.
import {el} from '../kit/dom.js';
import {html, render} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {longList} from '../kit/longlist.js';
import {ask, complain, run} from '../kit/server.js';
import {rowsOf, searchField} from './titles.js';

const fetched = new Set();  // lists seen since the page was opened: the first look at each is a fresh one

/**
 * `parts` tells what the list is of:
 *   label, searchLabel, placeholder   words; without a placeholder there is no search
 *   query                    the address to ask, with its parameters, but for the page and what is sought
 *   row(item, index, place)  the template of a row
 *   list(label, fetch, sized)  makes what stands in place of a list of rows, if anything does
 *   words(answer)            what is counted, "3 titles"
 *   empty(sought)            a template for a list of nothing
 *   above()                  a template above the search
 *   search(sought, fresh)    answers what is shown in place of the list while something is sought: {words, content}
 */
export class ListView {
  #body;
  #signal;
  #parts;
  #count = el('p', {class: 'quiet library-count', role: 'status'}, 'Loading…');
  #field;
  #list;
  #answer = null;   // the latest page
  #found = null;    // what is shown in place of the list
  #fresh;
  #turn = 0;
  #loaded = false;

  constructor(body, {signal, keep, kept}, parts) {
    this.#body = body;
    this.#signal = signal;
    this.#parts = parts;
    this.#fresh = !fetched.has(parts.query);
    fetched.add(parts.query);
    const fetch = (offset, limit) => this.#fetch(offset, limit);
    const sized = (total) => this.#sized(total);
    this.#list = parts.list?.(parts.label, fetch, sized) ?? longList(parts.label, fetch, parts.row, sized);
    this.#field = parts.placeholder && searchField(parts.searchLabel, parts.placeholder, kept.sought ?? '',
      {sought: () => this.#sought(), down: () => this.focusFirst(), signal});
    keep(() => ({sought: this.sought, list: this.#loaded ? this.#list.place() : kept.list}));
    this.draw = whileShown(signal, () => this.#drawn());
    this.draw();
  }

  get sought() {
    return this.#field ? this.#field.value.trim() : '';
  }

  #drawn() {
    const none = this.#answer?.total === 0;
    this.#list.node.hidden = Boolean(this.#found) || none;
    render(html`${this.#parts.above?.() ?? ''}
      <div class="library-search">${this.#field || ''}${this.#count}</div>
      ${this.#parts.details ?? ''}
      ${this.#found ? this.#found.content : none ? this.#parts.empty(this.sought) : ''}${this.#list.node}`, this.#body);
  }

  focusFirst() {
    if (this.#found) this.#body.querySelector('.found-rows button')?.focus();
    else this.#list.focusFirst();
  }

  /** The first look, at the place of earlier if there is one. */
  async start(place) {
    if (this.sought && this.#parts.search) await this.#sought();
    else await this.#attempt(() => this.#list.load(place));
  }

  /** The same place again, as the player has it now. */
  again() {
    this.#fresh = true;
    return this.#found ? this.#sought() : this.#attempt(() => this.#list.refresh());
  }

  refreshButton() {
    return html`<button type="button" @click=${(event) => run(event.currentTarget, () => this.again())}>Refresh</button>`;
  }

  async #sought() {
    const mine = ++this.#turn;
    const {sought} = this;
    if (!sought || !this.#parts.search) {
      this.#found = null;
      this.draw();
      await this.#attempt(() => this.#list.load());
      return;
    }
    await this.#attempt(async () => {
      const found = await this.#parts.search(sought, this.#takeFresh());
      if (mine !== this.#turn) return;
      this.#found = found;
      this.#count.textContent = found.words;
      this.draw();
    });
  }

  #takeFresh() {
    const fresh = this.#fresh;
    this.#fresh = false;
    return fresh;
  }

  async #fetch(offset, limit) {
    const query = new URLSearchParams({q: this.sought, offset, limit});
    if (this.#takeFresh()) query.set('fresh', '1');
    this.#answer = await ask(`${this.#parts.query}&${query}`, undefined, this.#signal);
    this.#loaded = true;
    return {...this.#answer, names: rowsOf(this.#answer)};
  }

  #sized(total) {
    this.#count.textContent = total ? this.#parts.words(this.#answer) : '';
    this.draw();
  }

  async #attempt(work) {
    try {
      await work();
    } catch (error) {
      if (error.name === 'AbortError') return;
      this.#count.textContent = error.message;
      complain(error);
    }
  }
}
