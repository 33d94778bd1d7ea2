// A field whose value is one of a list of any length: what is typed is looked for, only the rows in sight exist.
import {el} from './dom.js';
import {Timer} from './lasting.js';

const kRow = 40;     // pixels, as in the style sheet
const kPage = 100;
const kSpare = 4;
const kTyping = 90;  // milliseconds between a key and the search
let made = 0;

export const folded = (text) => text.normalize('NFD').replace(/[\u0300-\u036f'’]/g, '').toLowerCase();

/** Answers as a server's list would, from one that is here: every word somewhere, in any order. */
export const fromHere = (names) => async (from, count, search) => {
  const words = folded(search).split(/\s+/).filter(Boolean);
  const found = names.filter((name) => words.every((word) => folded(name).includes(word)));
  return {count: found.length, options: found.slice(from, from + count)};
};

/**
 * It ends with `signal`. `fetch(from, count, search, signal)` answers {count, options}; `change(value)` hears what was chosen. `node` is the
 * field; `name(option)` is what the reader sees of an option, which itself need not be a text, and `empty` what
 * stands for an empty one.
 */
export class PickList {
  #fetch;
  #change;
  #name;
  #value;
  #input;
  #list;
  #space = el('li', {role: 'none', class: 'pick-space'});
  #rows = new Map();
  #options = [];        // with holes where nothing has been fetched yet
  #pending = new Set();
  #count = 0;
  #active = -1;
  #turn = 0;
  #typing;
  #fetching = new AbortController();

  constructor({signal, id = '', label, value = '', placeholder = '', fetch, change, name = (option) => option, empty = '(nothing)',
    describedby}) {
    this.#typing = new Timer(signal, () => this.#look());
    signal.addEventListener('abort', () => this.#fetching.abort());
    this.#fetch = fetch;
    this.#change = change;
    this.#name = (option) => name(option) || empty;
    this.#value = value;
    const list = `pick-${++made}`;
    this.#input = el('input', {type: 'text', id: id || `${list}-field`, role: 'combobox', autocomplete: 'off', spellcheck: 'false',
      'aria-autocomplete': 'list', 'aria-expanded': 'false', 'aria-controls': list, 'aria-label': label, placeholder,
      'aria-describedby': describedby});
    this.#list = el('ul', {class: 'pick-list', id: list, role: 'listbox', 'aria-label': label, hidden: true}, this.#space);
    this.node = el('div', {class: 'pick'}, this.#input, this.#list);
    this.#listen();
    this.#restore();
  }

  get value() {
    return this.#value;
  }

  set value(value) {
    this.#value = value;
    if (!this.open) this.#restore();
  }

  /** Another list, which begins anew. */
  set fetch(fetch) {
    this.#fetch = fetch;
    if (this.open) this.#look();
  }

  set invalid(wrong) {
    if (wrong) this.#input.setAttribute('aria-invalid', 'true');
    else this.#input.removeAttribute('aria-invalid');
  }

  set disabled(off) {
    this.#input.disabled = off;
    if (off) this.#close();
  }

  get open() {
    return !this.#list.hidden;
  }

  focus() {
    this.#input.focus();
  }

  #listen() {
    const input = this.#input;
    input.addEventListener('focus', () => input.select());
    input.addEventListener('click', () => { if (!this.open) this.#look(''); });
    input.addEventListener('input', () => {
      this.#typing.start(kTyping);
    });
    input.addEventListener('blur', () => this.#close());
    input.addEventListener('keydown', (event) => this.#key(event));
    this.#list.addEventListener('scroll', () => this.#show(), {passive: true});
    this.#list.addEventListener('mousedown', (event) => event.preventDefault());  // the field keeps the focus
    this.#list.addEventListener('click', (event) => {
      const row = event.target.closest('[role=option]');
      if (row) this.#take(Number(row.dataset.at));
    });
  }

  #restore() {
    const none = this.#value === '' || this.#value === null || this.#value === undefined;
    this.#input.value = none ? '' : this.#name(this.#value);
  }

  async #look(search = this.#input.value.trim()) {
    const mine = ++this.#turn;
    this.#fetching.abort();
    this.#fetching = new AbortController();
    let answer;
    try {
      answer = await this.#fetch(0, kPage, search, this.#fetching.signal);
    } catch {
      answer = {count: 0, options: []};
    }
    if (mine !== this.#turn || document.activeElement !== this.#input) return;
    this.search = search;
    this.#options = [...answer.options];
    this.#pending.clear();
    this.#count = answer.count;
    for (const row of this.#rows.values()) row.remove();
    this.#rows.clear();
    this.#list.hidden = false;
    this.#input.setAttribute('aria-expanded', 'true');
    this.#space.style.height = `${Math.max(1, this.#count) * kRow}px`;
    this.#space.textContent = this.#count ? '' : search ? 'Nothing is called that' : 'There is nothing to choose from';
    this.#list.scrollTop = 0;
    this.#mark(search && this.#count ? 0 : this.#options.findIndex((option) => this.#same(option)));
  }

  #same(option) {
    return option === this.#value || JSON.stringify(option) === JSON.stringify(this.#value);
  }

  #close() {
    this.#typing.stop();
    this.#turn++;
    this.#fetching.abort();
    this.#list.hidden = true;
    this.#input.setAttribute('aria-expanded', 'false');
    this.#input.removeAttribute('aria-activedescendant');
    this.#active = -1;
    this.#restore();
  }

  #mark(index) {
    this.#active = Math.min(index, this.#count - 1);
    if (this.#active >= 0) {
      const top = this.#active * kRow;
      const {scrollTop, clientHeight} = this.#list;
      if (top < scrollTop) this.#list.scrollTop = top;
      if (top + kRow > scrollTop + clientHeight) this.#list.scrollTop = top + kRow - clientHeight;
    }
    this.#show();
  }

  #show() {
    if (!this.open) return;
    const {scrollTop, clientHeight} = this.#list;
    const first = Math.max(0, Math.floor(scrollTop / kRow) - kSpare);
    const last = Math.min(this.#count, Math.ceil((scrollTop + clientHeight) / kRow) + kSpare);
    for (const [at, row] of this.#rows) {
      if (at >= first && at < last) continue;
      row.remove();
      this.#rows.delete(at);
    }
    for (let at = first; at < last; at++) this.#row(at);
    const active = this.#rows.get(this.#active);
    if (active) this.#input.setAttribute('aria-activedescendant', active.id);
    else this.#input.removeAttribute('aria-activedescendant');
  }

  #row(at) {
    const option = this.#options[at];
    if (option === undefined) this.#need(Math.floor(at / kPage));
    let row = this.#rows.get(at);
    if (!row) {
      row = el('li', {role: 'option', id: `${this.#list.id}-${at}`, 'data-at': at, 'aria-posinset': at + 1});
      row.style.top = `${at * kRow}px`;
      this.#rows.set(at, row);
      const after = [...this.#list.children].find((other) => Number(other.dataset.at) > at);
      this.#list.insertBefore(row, after ?? null);
    }
    row.setAttribute('aria-setsize', this.#count);
    row.setAttribute('aria-selected', String(at === this.#active));
    row.textContent = option === undefined ? '…' : this.#name(option);
    row.classList.toggle('pick-chosen', option !== undefined && this.#same(option));
  }

  async #need(page) {
    if (this.#pending.has(page)) return;
    this.#pending.add(page);
    const mine = this.#turn;
    try {
      const answer = await this.#fetch(page * kPage, kPage, this.search, this.#fetching.signal);
      if (mine !== this.#turn) return;
      answer.options.forEach((option, i) => { this.#options[page * kPage + i] = option; });
      this.#show();
    } catch {  // asked for again when it is scrolled to
      this.#pending.delete(page);
    }
  }

  #take(at) {
    const option = this.#options[at];
    if (option === undefined) return;
    this.#value = option;
    this.#close();
    this.#input.select();
    this.#change(option);
  }

  #key(event) {
    if (event.altKey || event.ctrlKey || event.metaKey) return;
    const seen = Math.max(1, Math.floor(this.#list.clientHeight / kRow) - 1);
    const by = {ArrowDown: 1, ArrowUp: -1, PageDown: seen, PageUp: -seen}[event.key];
    if (by !== undefined) {
      event.preventDefault();
      if (this.open) this.#mark(Math.max(0, this.#active + by));
      else this.#look('');
    } else if (event.key === 'Enter' && this.open) {
      event.preventDefault();
      this.#take(this.#active);
    } else if (event.key === 'Escape' && this.open) {
      event.preventDefault();
      event.stopPropagation();
      this.#close();
    }
  }
}
