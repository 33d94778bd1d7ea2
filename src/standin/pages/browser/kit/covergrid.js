// A grid of pictures of any length: only the tiles in sight exist, and pages of them are fetched as they come into
// sight. Pictures are asked for once the scrolling rests.
import {el} from './dom.js';
import {render} from './html.js';
import {ListData} from './listdata.js';

const kNarrowest = 148;  // pixels of a tile, with its gap
const kWide = 186;
const kNarrowPage = 560;
const kText = 58;        // below the picture
const kSpare = 1;        // rows beyond the edges
const kRest = 90;        // milliseconds without scrolling

/**
 * Stands where a longList may stand. `tile(item, index)` answers {content, picture}: a template, and the address of a
 * picture for its element of the class "tile-cover". Arrow keys move among the tiles; the grid is one stop of the tabulator.
 */
export class CoverGrid {
  #data;
  #tile;
  #onTotal;
  #space;
  #tiles = new Map();  // the elements in sight, by index
  #active = 0;
  #awaited = -1;       // the tile that is to have the focus
  #columns = 1;
  #width = kWide;
  #moving = false;
  #rest = 0;

  constructor(label, fetchPage, tile, onTotal) {
    this.#data = new ListData(fetchPage, () => this.#dataChanged());
    this.#tile = tile;
    this.#onTotal = onTotal;
    this.#space = el('ul', {class: 'grid-space', 'aria-label': label});
    this.node = el('div', {class: 'long grid'}, this.#space);
    this.node.addEventListener('scroll', () => this.#scrolled(), {passive: true});
    this.node.addEventListener('focusin', (event) => {
      this.#awaited = -1;
      const tile = event.target.closest('.tile');
      if (tile) this.#activate(Number(tile.dataset.index));
    });
    this.node.addEventListener('keydown', (event) => this.#key(event));
    new ResizeObserver(() => this.#measure()).observe(this.node);
  }

  total() {
    return this.#data.total;
  }

  place() {
    return {top: this.node.scrollTop, active: this.#active};
  }

  get #height() {
    return this.#width + kText;
  }

  #measure() {
    const {clientWidth} = this.node;
    if (!clientWidth) return;
    const least = innerWidth <= kNarrowPage ? kNarrowest : kWide;
    const columns = Math.max(2, Math.floor(clientWidth / least));
    const width = Math.floor(clientWidth / columns);
    const first = Math.floor(this.node.scrollTop / this.#height) * this.#columns;
    const other = columns !== this.#columns;
    if (!other && width === this.#width) return this.#show();
    [this.#columns, this.#width] = [columns, width];
    this.#sized();
    if (other) this.node.scrollTop = Math.floor(first / columns) * this.#height;
    this.#show();
  }

  async load({top = 0, active = 0} = {}) {
    this.#measure();
    const first = Math.floor(top / this.#height) * this.#columns;
    const rows = Math.ceil(this.node.clientHeight / this.#height) + 1;
    if (!await this.#data.load(first, first + rows * this.#columns)) return;
    this.#tiles.clear();
    this.#space.replaceChildren();
    this.#active = active;
    this.#sized();
    this.#measure();
    this.node.scrollTop = top;
    this.#show();
  }

  async refresh() {
    const {first, last} = this.#range();
    if (!await this.#data.load(first, Math.max(last, first + 1))) return false;
    this.#dataChanged();
    return true;
  }

  focusFirst() {
    this.#focus(0);
  }

  #range() {
    const {scrollTop, clientHeight} = this.node;
    const row = Math.floor(scrollTop / this.#height);
    const end = Math.ceil((scrollTop + clientHeight) / this.#height);
    return {first: Math.max(0, row - kSpare) * this.#columns, last: Math.min(this.total(), (end + kSpare) * this.#columns)};
  }

  #dataChanged() {
    if (!this.node.isConnected) return;  // its page has been left
    this.#sized();
    this.#show();
  }

  #sized() {
    const height = `${Math.ceil(this.total() / this.#columns) * this.#height}px`;
    this.#space.style.height = height;
    this.node.style.setProperty('--content', height);
    for (const tile of this.#tiles.values()) tile.setAttribute('aria-setsize', this.total());
    this.#onTotal(this.total());
  }

  #scrolled() {
    this.#moving = true;
    clearTimeout(this.#rest);
    this.#rest = setTimeout(() => {
      this.#moving = false;
      this.#show();
    }, kRest);
    this.#show();
  }

  #show() {
    const {first, last} = this.#range();
    for (const [index, tile] of this.#tiles) {
      if (index >= first && index < last) continue;
      if (index < this.total() && tile.contains(document.activeElement)) continue;
      this.#drop(index, tile);
    }
    for (let index = first; index < last; index++) this.#place(index);
  }

  #drop(index, tile) {
    tile.querySelector('img')?.removeAttribute('src');  // what is on its way is not needed any longer
    tile.remove();
    this.#tiles.delete(index);
  }

  /** The first tile behind that place: who hears the page hears the tiles as they stand. */
  #behind(index) {
    let behind = null;
    for (let tile = this.#space.lastElementChild; tile && Number(tile.dataset.index) > index; tile = tile.previousElementSibling)
      behind = tile;
    return behind;
  }

  #place(index) {
    const item = this.#data.item(index);
    if (item === undefined) this.#data.need(index);
    let tile = this.#tiles.get(index);
    if (!tile) {
      tile = el('li', {class: 'tile', 'data-index': index, 'aria-posinset': index + 1, 'aria-setsize': this.total()});
      this.#tiles.set(index, tile);
      this.#space.insertBefore(tile, this.#behind(index));
    }
    const at = `${(index % this.#columns) * this.#width},${Math.floor(index / this.#columns) * this.#height},${this.#width}`;
    if (tile.placed !== at) {
      tile.placed = at;
      const [left, top] = at.split(',');
      tile.style.transform = `translate(${left}px, ${top}px)`;
      tile.style.width = `${this.#width}px`;
    }
    if (item === undefined) return;
    const shown = JSON.stringify(item);
    if (tile.shown !== shown) {
      tile.shown = shown;
      const {content, picture} = this.#tile(item, index);
      tile.picture = picture;
      render(content, tile);
      this.#mark(tile, index);
      if (index === this.#awaited) this.#giveFocus();
    }
    if (!this.#moving && tile.picture) this.#draw(tile);
  }

  #draw(tile) {
    const place = tile.querySelector('.tile-cover');
    const image = place.querySelector('img') ?? place.appendChild(el('img', {alt: '', decoding: 'async', draggable: 'false'}));
    if (image.getAttribute('src') !== tile.picture) {
      image.onerror = () => image.remove();
      image.src = tile.picture;
    }
  }

  #mark(tile, index) {
    for (const each of tile.querySelectorAll('a, button')) each.tabIndex = index === this.#active ? 0 : -1;
  }

  #activate(index) {
    const before = this.#active;
    this.#active = index;
    for (const at of [before, index]) if (this.#tiles.has(at)) this.#mark(this.#tiles.get(at), at);
  }

  #focus(index) {
    if (!this.total()) return;
    const at = Math.max(0, Math.min(index, this.total() - 1));
    const top = Math.floor(at / this.#columns) * this.#height;
    const {node} = this;
    if (top < node.scrollTop) node.scrollTop = top;
    if (top + this.#height > node.scrollTop + node.clientHeight) node.scrollTop = top + this.#height - node.clientHeight;
    this.#activate(at);
    this.#show();
    this.#awaited = at;
    this.#giveFocus();
  }

  /** What is far off has to be read first; its tile gets the focus when it is there, unless that has gone elsewhere. */
  #giveFocus() {
    const link = this.#tiles.get(this.#awaited)?.querySelector('a, button');
    if (!link) return;
    this.#awaited = -1;
    link.focus({preventScroll: true});
  }

  #key(event) {
    const tile = event.target.closest('.tile');
    if (!tile || event.altKey || event.ctrlKey || event.metaKey) return;
    const index = Number(tile.dataset.index);
    const page = Math.max(1, Math.floor(this.node.clientHeight / this.#height)) * this.#columns;
    const to = {ArrowRight: index + 1, ArrowLeft: index - 1, ArrowDown: index + this.#columns, ArrowUp: index - this.#columns,
      PageDown: index + page, PageUp: index - page, Home: 0, End: this.total() - 1}[event.key];
    if (to === undefined || (event.key.startsWith('Arrow') && (to < 0 || to >= this.total()))) return;
    event.preventDefault();
    this.#focus(to);
  }
}
