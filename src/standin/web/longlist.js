// A list of any length: only the rows in sight exist, and pages of it are fetched as they come into sight.
import {el} from './dom.js';

const kRow = 52;  // pixels, as in the style sheet
const kPage = 100;
const kSpare = 8;

/**
 * `fetchPage(offset, limit)` answers {names, total}; `makeRow(name, index)` answers the content of a row.
 * Arrow keys, page keys, Home and End move between rows.
 */
export function longList(label, fetchPage, makeRow, onTotal) {
  const space = el('ul', {class: 'long-space', 'aria-label': label});
  const node = el('div', {class: 'long'}, space);
  let total = 0;
  let turn = 0;
  const pages = new Map();
  const rows = new Map();

  function show() {
    const first = Math.max(0, Math.floor(node.scrollTop / kRow) - kSpare);
    const last = Math.min(total, Math.ceil((node.scrollTop + node.clientHeight) / kRow) + kSpare);
    for (const [index, row] of rows) {
      if ((index < first || index >= last) && !row.contains(document.activeElement)) {
        row.remove();
        rows.delete(index);
      }
    }
    for (let index = first; index < last; index++) row(index);
  }

  function row(index) {
    const name = pages.get(Math.floor(index / kPage))?.[index % kPage];
    if (name === undefined) fetchFor(index);
    let made = rows.get(index);
    if (!made) {
      made = el('li', {class: 'long-row', 'aria-setsize': total, 'aria-posinset': index + 1, 'data-index': index});
      made.style.top = `${index * kRow}px`;
      rows.set(index, made);
      // In their order, as the tabulator goes.
      const after = [...space.children].find((other) => Number(other.dataset.index) > index);
      space.insertBefore(made, after || null);
    }
    if (name !== undefined && !made.dataset.filled) {
      made.dataset.filled = '1';
      made.replaceChildren(...makeRow(name, index));
    }
    return made;
  }

  async function fetchFor(index) {
    const number = Math.floor(index / kPage);
    if (pages.has(number)) return;
    pages.set(number, []);
    const mine = turn;
    try {
      const answer = await fetchPage(number * kPage, kPage);
      if (mine !== turn) return;
      pages.set(number, answer.names);
      setTotal(answer.total);
    } catch {
      if (mine === turn) pages.delete(number);  // asked for again when it is scrolled to
      return;
    }
    show();
  }

  function setTotal(count) {
    total = count;
    space.style.height = `${total * kRow}px`;
    onTotal(total);
  }

  function focusRow(index, place) {
    const at = Math.max(0, Math.min(index, total - 1));
    const top = at * kRow;
    if (top < node.scrollTop) node.scrollTop = top;
    if (top + kRow > node.scrollTop + node.clientHeight) node.scrollTop = top + kRow - node.clientHeight;
    show();
    const buttons = rows.get(at)?.querySelectorAll('button') || [];
    (buttons[place] || buttons[0])?.focus({preventScroll: true});
  }

  node.addEventListener('scroll', show, {passive: true});
  new ResizeObserver(show).observe(node);
  node.addEventListener('keydown', (event) => {
    const here = event.target.closest('.long-row');
    if (!here) return;
    const index = Number(here.dataset.index);
    const seen = Math.max(1, Math.floor(node.clientHeight / kRow) - 1);
    const moves = {ArrowDown: index + 1, ArrowUp: index - 1, PageDown: index + seen, PageUp: index - seen,
      Home: 0, End: total - 1};
    if (!(event.key in moves)) return;
    event.preventDefault();
    focusRow(moves[event.key], [...here.querySelectorAll('button')].indexOf(event.target));
  });

  /** Forgets all rows and begins anew at the top. Throws what the first page throws. */
  async function load() {
    const mine = ++turn;
    const answer = await fetchPage(0, kPage);
    if (mine !== turn) return;
    pages.clear();
    pages.set(0, answer.names);
    rows.clear();
    space.replaceChildren();
    node.scrollTop = 0;
    setTotal(answer.total);
    show();
  }
  return {node, load, focusFirst: () => focusRow(0, 0)};
}
