// A list of any length: only the rows in sight exist, and pages of it are fetched as they come into sight.
import {el} from './dom.js';
import {render} from './html.js';
import {ListData} from './listdata.js';

export const kRow = 52;  // pixels, as in the style sheet
const kSpare = 8;

/**
 * `fetchPage(offset, limit)` answers {names, total} and may answer `places`, one a name; a name may be any value that
 * tells what is in a row. `makeRow(name, index, place)` answers the content of a row: a template, or nodes. The arrow
 * keys, page keys, Home and End move between rows, left and right between the buttons of one; the list is one stop of
 * the tabulator.
 */
export const longList = (label, fetchPage, makeRow, onTotal) => new LongList(label, fetchPage, makeRow, onTotal);

const allButtonsOf = (row) => [...row.querySelectorAll('button, a[href]')];
// Some are there for wide or for narrow pages alone.
const buttonsOf = (row) => allButtonsOf(row).filter((each) => !each.checkVisibility || each.checkVisibility());

class LongList {
  #data;
  #makeRow;
  #onTotal;
  #space;
  #rows = new Map();   // the elements in sight, by index
  #shown = new Map();  // what each of them shows
  #active = 0;         // the row that the tabulator comes to
  #shift = null;       // {from, to, top}: a row on its way to another place

  constructor(label, fetchPage, makeRow, onTotal) {
    this.#data = new ListData(fetchPage, () => this.#dataChanged());
    this.#makeRow = makeRow;
    this.#onTotal = onTotal;
    this.#space = el('ul', {class: 'long-space', 'aria-label': label});
    this.node = el('div', {class: 'long'}, this.#space);
    this.node.addEventListener('scroll', () => this.#show(), {passive: true});
    this.node.addEventListener('focusin', (event) => {
      const row = event.target.closest('.long-row');
      if (row) this.#activate(Number(row.dataset.index));
    });
    this.node.addEventListener('keydown', (event) => this.#key(event));
    new ResizeObserver(() => this.#show()).observe(this.node);
  }

  total() {
    return this.#data.total;
  }

  /** What is known of a row; undefined while it has not been fetched. */
  known(index) {
    return this.#data.item(index);
  }

  rowAt(index) {
    return this.#rows.get(index);
  }

  /** The rows in sight: from `first` to before `last`. */
  #range() {
    const {scrollTop, clientHeight} = this.node;
    return {first: Math.max(0, Math.floor(scrollTop / kRow)),
      last: Math.min(this.total(), Math.ceil((scrollTop + clientHeight) / kRow))};
  }

  /** The name in a row, fetched if need be; null beyond the ends. */
  nameAt(index) {
    return this.#data.itemAt(index);
  }

  /** Where the reader is, for load(). */
  place() {
    return {top: this.node.scrollTop, active: this.#active};
  }

  /** Forgets all rows and begins anew, at the top or at a place of earlier. Throws what the fetching throws. */
  async load({top = 0, active = 0} = {}) {
    const first = Math.floor(top / kRow);
    if (!await this.#data.load(first, first + Math.ceil(this.node.clientHeight / kRow) + 1)) return;
    this.#rows.clear();
    this.#shown.clear();
    this.#space.replaceChildren();
    this.#active = active;
    this.#sized();
    this.node.scrollTop = top;
    this.#show();
  }

  /** Fetches what is in sight anew; the place, the focus and what stays the same are kept. False when the list has
   * been changed meanwhile, so that what came is too old. */
  async refresh() {
    const {first, last} = this.#range();
    if (!await this.#data.load(first, last)) return false;
    this.#dataChanged();
    return true;
  }

  /** Shows a change before it is made. */
  move(from, to) {
    this.#data.move(from, to);
    this.#refill();
  }

  remove(at) {
    this.#data.remove(at);
    this.#sized();
    this.#refill();
  }

  /** Shows the row `from` at another place: `to`, or `top` pixels down. */
  arrange(next) {
    this.#shift = next;
    this.#show();
  }

  /** What a row shows besides its own content has changed. */
  redraw() {
    this.#refill();
  }

  /** Scrolls so that the row is the first in sight. */
  toTop(index) {
    this.node.scrollTop = Math.max(0, index) * kRow;
    this.#show();
  }

  bringIntoView(index) {
    const {node} = this;
    const top = index * kRow;
    if (top < node.scrollTop) node.scrollTop = top;
    if (top + kRow > node.scrollTop + node.clientHeight) node.scrollTop = top + kRow - node.clientHeight;
  }

  focusFirst() {
    this.focusRow(0, 0);
  }

  /** Gives the focus to one of a row's buttons. */
  focusRow(index, number = 0) {
    if (!this.total()) return;
    const at = Math.max(0, Math.min(index, this.total() - 1));
    this.bringIntoView(at);
    this.#activate(at);
    this.#show();
    const row = this.#rows.get(at);
    const buttons = buttonsOf(row);
    // A row that is still on its way hands the focus on to its button when it has come.
    (buttons[number] || buttons[0] || row).focus({preventScroll: true});
  }

  #dataChanged() {
    if (!this.node.isConnected) return;  // its page has been left
    this.#sized();
    this.#show();
  }

  #sized() {
    const height = `${this.total() * kRow}px`;
    this.#space.style.height = height;
    this.node.style.setProperty('--content', height);
    if (this.#active >= this.total()) this.#activate(Math.max(0, this.total() - 1));
    this.#onTotal(this.total());
  }

  #show() {
    const seen = this.#range();
    const first = Math.max(0, seen.first - kSpare);
    const last = Math.min(this.total(), seen.last + kSpare);
    this.#dropOutside(first, last);
    for (let index = first; index < last; index++) this.#row(index);
    for (const [index, row] of this.#rows) {
      row.style.top = `${this.#topOf(index)}px`;
      row.classList.toggle('moving', index === this.#shift?.from);
    }
  }

  #dropOutside(first, last) {
    for (const [index, row] of this.#rows) {
      const held = row.contains(document.activeElement) || index === this.#shift?.from;
      if (index < this.total() && (held || (index >= first && index < last))) continue;
      row.remove();
      this.#rows.delete(index);
      this.#shown.delete(index);
    }
  }

  #topOf(index) {
    if (!this.#shift) return index * kRow;
    const {from, to, top} = this.#shift;
    if (index === from) return top ?? to * kRow;
    if (from < to && index > from && index <= to) return (index - 1) * kRow;
    if (to < from && index >= to && index < from) return (index + 1) * kRow;
    return index * kRow;
  }

  #row(index) {
    if (this.#data.item(index) === undefined) this.#data.need(index);
    let row = this.#rows.get(index);
    if (!row) {
      row = el('li', {class: 'long-row', tabindex: -1, 'aria-posinset': index + 1, 'data-index': index});
      this.#rows.set(index, row);
      // In their order, as the tabulator goes.
      const after = [...this.#space.children].find((other) => Number(other.dataset.index) > index);
      this.#space.insertBefore(row, after || null);
    }
    row.setAttribute('aria-setsize', this.total());
    this.#fill(row, index);
  }

  #fill(row, index) {
    const item = this.#data.item(index);
    const place = this.#data.place(index);
    const shown = this.#shown.get(index);
    if (item === undefined || (shown && same(shown.item, item) && shown.place === place)) return;
    const had = row.contains(document.activeElement) ? buttonsOf(row).indexOf(document.activeElement) : -2;
    this.#shown.set(index, {item, place});
    render(this.#makeRow(item, index, place), row);
    this.#mark(row, index);
    if (had > -2 && !row.contains(document.activeElement)) {
      (buttonsOf(row)[Math.max(had, 0)] || row).focus({preventScroll: true});
    } else if (had === -1) {
      buttonsOf(row)[0]?.focus({preventScroll: true});  // the row itself had it, while it was on its way
    }
  }

  #refill() {
    this.#shown.clear();
    for (const [index, row] of this.#rows) this.#fill(row, index);
    this.#show();
  }

  #mark(row, index) {
    for (const button of allButtonsOf(row)) button.tabIndex = index === this.#active ? 0 : -1;
  }

  #activate(index) {
    if (index === this.#active) return;
    const before = this.#active;
    this.#active = index;
    for (const at of [before, index]) if (this.#rows.has(at)) this.#mark(this.#rows.get(at), at);
  }

  #key(event) {
    const row = event.target.closest('.long-row');
    if (!row || event.defaultPrevented || event.altKey || event.ctrlKey || event.metaKey) return;
    const buttons = buttonsOf(row);
    const at = Math.max(0, buttons.indexOf(event.target));
    const sideways = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (sideways) {
      event.preventDefault();
      buttons[Math.max(0, Math.min(buttons.length - 1, at + sideways))]?.focus({preventScroll: true});
      return;
    }
    const index = Number(row.dataset.index);
    const seen = Math.max(1, Math.floor(this.node.clientHeight / kRow) - 1);
    const moves = {ArrowDown: index + 1, ArrowUp: index - 1, PageDown: index + seen, PageUp: index - seen,
      Home: 0, End: this.total() - 1};
    if (!(event.key in moves)) return;
    event.preventDefault();
    this.focusRow(moves[event.key], at);
  }
}

const same = (one, other) => one === other
  || (typeof one === 'object' && one !== null && JSON.stringify(one) === JSON.stringify(other));
