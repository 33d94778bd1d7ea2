// A list of any length: only the rows in sight exist, and pages of it are fetched as they come into sight.
import {el} from './dom.js';

export const kRow = 52;  // pixels, as in the style sheet
const kPage = 100;
const kSpare = 8;

/**
 * `fetchPage(offset, limit)` answers {names, total} and may answer `places`, one a name; `makeRow(name, index,
 * place)` answers the content of a row. The arrow keys, page keys, Home and End move between rows, left and right
 * between the buttons of one; the list is one stop of the tabulator.
 */
export function longList(label, fetchPage, makeRow, onTotal) {
  const space = el('ul', {class: 'long-space', 'aria-label': label});
  const node = el('div', {class: 'long'}, space);
  let names = [];   // with holes where nothing has been fetched yet
  let places = [];
  let total = 0;
  let turn = 0;
  let active = 0;   // the row that the tabulator comes to
  let shift = null; // {from, to, top}: a row on its way to another place
  const pending = new Set();
  const rows = new Map();

  const range = () => {
    const first = Math.max(0, Math.floor(node.scrollTop / kRow));
    return {first, last: Math.min(total, Math.ceil((node.scrollTop + node.clientHeight) / kRow))};
  };

  function topOf(index) {
    if (!shift) return index * kRow;
    const {from, to, top} = shift;
    if (index === from) return top ?? to * kRow;
    if (from < to && index > from && index <= to) return (index - 1) * kRow;
    if (to < from && index >= to && index < from) return (index + 1) * kRow;
    return index * kRow;
  }

  function show() {
    const seen = range();
    const first = Math.max(0, seen.first - kSpare);
    const last = Math.min(total, seen.last + kSpare);
    for (const [index, row] of rows) {
      const held = row.contains(document.activeElement) || index === shift?.from;
      if (index >= total || ((index < first || index >= last) && !held)) {
        row.remove();
        rows.delete(index);
      }
    }
    for (let index = first; index < last; index++) row(index);
    for (const [index, row] of rows) {
      row.style.top = `${topOf(index)}px`;
      row.classList.toggle('moving', index === shift?.from);
    }
  }

  function row(index) {
    if (names[index] === undefined) fetchFor(index);
    let made = rows.get(index);
    if (!made) {
      made = el('li', {class: 'long-row', tabindex: -1, 'aria-posinset': index + 1, 'data-index': index});
      rows.set(index, made);
      // In their order, as the tabulator goes.
      const after = [...space.children].find((other) => Number(other.dataset.index) > index);
      space.insertBefore(made, after || null);
    }
    made.setAttribute('aria-setsize', total);
    fill(made, index);
    return made;
  }

  function fill(made, index) {
    const name = names[index];
    if (name === undefined || (made.shownName === name && made.shownPlace === places[index])) return;
    const had = made.contains(document.activeElement) ? buttonsOf(made).indexOf(document.activeElement) : -2;
    made.shownName = name;
    made.shownPlace = places[index];
    made.replaceChildren(...makeRow(name, index, places[index]));
    mark(made, index);
    if (had > -2) (buttonsOf(made)[Math.max(had, 0)] || made).focus({preventScroll: true});
  }

  const buttonsOf = (made) => [...made.querySelectorAll('button')];
  function mark(made, index) {
    for (const button of buttonsOf(made)) button.tabIndex = index === active ? 0 : -1;
  }
  function activate(index) {
    if (index === active) return;
    const before = active;
    active = index;
    for (const at of [before, active]) if (rows.has(at)) mark(rows.get(at), at);
  }

  async function fetchFor(index) {
    const number = Math.floor(index / kPage);
    if (pending.has(number)) return;
    pending.add(number);
    const mine = turn;
    try {
      const answer = await fetchPage(number * kPage, kPage);
      if (mine !== turn) return;
      take(answer, number * kPage);
    } catch {  // asked for again when it is scrolled to
      return;
    } finally {
      if (mine === turn) pending.delete(number);
    }
    show();
  }

  function take(answer, offset) {
    answer.names.forEach((name, i) => {
      names[offset + i] = name;
      places[offset + i] = answer.places?.[i] ?? offset + i;
    });
    setTotal(answer.total);
  }

  function setTotal(count) {
    total = count;
    names.length = places.length = total;
    space.style.height = `${total * kRow}px`;
    node.style.setProperty('--content', `${total * kRow}px`);
    if (active >= total) activate(Math.max(0, total - 1));
    onTotal(total);
  }

  function bringIntoView(index) {
    const top = index * kRow;
    if (top < node.scrollTop) node.scrollTop = top;
    if (top + kRow > node.scrollTop + node.clientHeight) node.scrollTop = top + kRow - node.clientHeight;
  }

  function focusRow(index, place = 0) {
    if (!total) return;
    const at = Math.max(0, Math.min(index, total - 1));
    bringIntoView(at);
    activate(at);
    show();
    const made = rows.get(at);
    const buttons = buttonsOf(made);
    // A row that is still on its way hands the focus on to its button when it has come.
    (buttons[place] || buttons[0] || made).focus({preventScroll: true});
  }

  node.addEventListener('scroll', show, {passive: true});
  node.addEventListener('focusin', (event) => {
    const here = event.target.closest('.long-row');
    if (here) activate(Number(here.dataset.index));
  });
  new ResizeObserver(show).observe(node);
  node.addEventListener('keydown', (event) => {
    const here = event.target.closest('.long-row');
    if (!here || event.defaultPrevented || event.altKey || event.ctrlKey || event.metaKey) return;
    const index = Number(here.dataset.index);
    const seen = Math.max(1, Math.floor(node.clientHeight / kRow) - 1);
    const buttons = buttonsOf(here);
    const place = Math.max(0, buttons.indexOf(event.target));
    const sideways = {ArrowRight: 1, ArrowLeft: -1}[event.key];
    if (sideways) {
      event.preventDefault();
      buttons[Math.max(0, Math.min(buttons.length - 1, place + sideways))]?.focus({preventScroll: true});
      return;
    }
    const moves = {ArrowDown: index + 1, ArrowUp: index - 1, PageDown: index + seen, PageUp: index - seen,
      Home: 0, End: total - 1};
    if (!(event.key in moves)) return;
    event.preventDefault();
    focusRow(moves[event.key], place);
  });

  /** Forgets all rows and begins anew at the top. Throws what the first page throws. */
  async function load() {
    const mine = ++turn;
    pending.clear();
    const answer = await fetchPage(0, kPage);
    if (mine !== turn) return;
    names = [];
    places = [];
    rows.clear();
    space.replaceChildren();
    node.scrollTop = 0;
    active = 0;
    take(answer, 0);
    show();
  }

  /** Fetches what is in sight anew; the place, the focus and what stays the same are kept. False when the list has
   * been changed meanwhile, so that what came is too old. */
  async function refresh() {
    const mine = ++turn;
    pending.clear();
    const {first, last} = range();
    const number = Math.floor(first / kPage);
    const offset = number * kPage;
    const count = (Math.floor(Math.max(first, last - 1) / kPage) - number + 1) * kPage;
    const answer = await fetchPage(offset, count);
    if (mine !== turn) return false;
    names = [];
    places = [];
    take(answer, offset);
    show();
    return true;
  }

  /** The name in a row, fetched if need be; nothing beyond the ends. */
  async function nameAt(index) {
    if (index < 0 || index >= total) return null;
    if (names[index] === undefined) {
      const answer = await fetchPage(index, 1);
      return answer.names[0] ?? null;
    }
    return names[index];
  }

  function refill() {
    turn++;  // what is on its way is older than this
    pending.clear();
    for (const [index, made] of rows) {
      made.shownName = undefined;
      fill(made, index);
    }
    show();
  }
  /** Shows a change before it is made. */
  function move(from, to) {
    for (const list of [names, places]) list.splice(to, 0, ...list.splice(from, 1));
    if (!(to in names)) names[to] = undefined;
    places = names.map((name, index) => index);
    refill();
  }
  function remove(at) {
    names.splice(at, 1);
    const [gone] = places.splice(at, 1);
    places = places.map((place) => place > gone ? place - 1 : place);
    setTotal(total - 1);
    refill();
  }

  /** Shows the row `from` at another place: `to`, or `top` pixels down. */
  function arrange(next) {
    shift = next;
    show();
  }

  return {node, load, refresh, nameAt, move, remove, arrange, bringIntoView, focusRow, range,
    focusFirst: () => focusRow(0, 0), total: () => total,
    known: (index) => names[index], rowAt: (index) => rows.get(index)};
}
