// What is known of a long list: pages of it are fetched as they are asked for.
const kPage = 100;
const kAgain = 2000;  // milliseconds until what could not be fetched is asked for again

export class ListData {
  #fetchPage;
  #changed;
  #items = [];   // with holes where nothing has been fetched yet
  #places = [];
  #pending = new Set();
  #turn = 0;     // what was asked for in an earlier one is too old
  total = 0;

  /**
   * `fetchPage(offset, limit)` answers {names, total} and may answer `places`; `changed()` hears of what has come, or
   * may be asked for again, and answers at once.
   */
  constructor(fetchPage, changed) {
    this.#fetchPage = fetchPage;
    this.#changed = changed;
  }

  item(index) {
    return this.#items[index];
  }

  place(index) {
    return this.#places[index];
  }

  /** Fetches the page of an item that is not known yet. */
  async need(index) {
    const number = Math.floor(index / kPage);
    if (this.#items[index] !== undefined || this.#pending.has(number)) return;
    this.#pending.add(number);
    const mine = this.#turn;
    try {
      const answer = await this.#fetchPage(number * kPage, kPage);
      if (mine !== this.#turn) return;
      this.#take(answer, number * kPage);
    } catch {
      // A busy house may have let it fall; what is still in sight then is asked for again.
      if (mine === this.#turn) setTimeout(() => mine === this.#turn && this.#changed(), kAgain);
      return;
    } finally {
      if (mine === this.#turn) this.#pending.delete(number);
    }
    this.#changed();
  }

  /**
   * Forgets everything and fetches the pages of the items from `first` to before `last`. False when the list was
   * changed meanwhile, so that what came is too old. Throws what the fetching throws.
   */
  async load(first = 0, last = first + 1) {
    const mine = ++this.#turn;
    this.#pending.clear();
    const number = Math.floor(first / kPage);
    const count = (Math.floor(Math.max(first, last - 1) / kPage) - number + 1) * kPage;
    const answer = await this.#fetchPage(number * kPage, count);
    if (mine !== this.#turn) return false;
    this.#items = [];
    this.#places = [];
    this.#take(answer, number * kPage);
    return true;
  }

  #take(answer, offset) {
    answer.names.forEach((name, i) => {
      this.#items[offset + i] = name;
      this.#places[offset + i] = answer.places?.[i] ?? offset + i;
    });
    this.#setTotal(answer.total);
  }

  #setTotal(count) {
    this.total = count;
    this.#items.length = this.#places.length = count;
  }

  /** The item, fetched if need be; null beyond the ends. */
  async itemAt(index) {
    if (index < 0 || index >= this.total) return null;
    return this.#items[index] ?? (await this.#fetchPage(index, 1)).names[0] ?? null;
  }

  /** A change that is shown before it is made; what is on its way is older than this. */
  move(from, to) {
    this.#outdate();
    for (const list of [this.#items, this.#places]) list.splice(to, 0, ...list.splice(from, 1));
    if (!(to in this.#items)) this.#items[to] = undefined;
    this.#places = Array.from(this.#items, (_, index) => index);
  }

  remove(at) {
    this.#outdate();
    this.#items.splice(at, 1);
    const [gone] = this.#places.splice(at, 1);
    this.#places = this.#places.map((place) => place > gone ? place - 1 : place);
    this.#setTotal(this.total - 1);
  }

  #outdate() {
    this.#turn++;
    this.#pending.clear();
  }
}
