// A device of many values: they are found by typing.
import {html, nothing} from '../kit/html.js';
import {ask, complain} from '../kit/server.js';

/** `draw` is called whenever the field looks different; `choose(field, entry)` takes what was chosen. */
export class ValueSearch {
  #ref;
  #signal;
  #draw;
  #choose;
  #found = [];
  #more = 0;
  #open = false;
  #active = -1;
  #turn = 0;
  #taking = false;  // what was chosen: meanwhile the field loses the focus, and gets it back

  constructor(ref, {signal, draw, choose}) {
    this.#ref = ref;
    this.#signal = signal;
    this.#draw = draw;
    this.#choose = choose;
  }

  template(device) {
    const id = `found-${device.ref}`;
    const option = (at) => `${id}-${at}`;
    return html`<div class="search">
      <input type="search" role="combobox" autocomplete="off" aria-autocomplete="list" aria-controls=${id}
        aria-expanded=${String(this.#open)} aria-label=${`${device.name}: search`}
        aria-activedescendant=${this.#active < 0 ? nothing : option(this.#active)}
        placeholder=${device.valueName || `Search ${device.values} entries`}
        @input=${(event) => this.#look(event.target.value)} @focus=${(event) => this.#taking || this.#look(event.target.value)}
        @blur=${() => this.#close()} @keydown=${(event) => this.#key(event)}>
      <ul class="found" id=${id} role="listbox" aria-label=${device.name} ?hidden=${!this.#open}>
        ${this.#found.map((entry, at) => html`<li role="option" id=${option(at)} aria-selected=${String(at === this.#active)}
          @mousedown=${(event) => event.preventDefault()} @click=${(event) => this.#take(event.target, entry)}>${entry.name}</li>`)}
        ${this.#open && !this.#found.length ? html`<li class="quiet" role="option" aria-disabled="true" aria-selected="false">Nothing fits</li>` : ''}
        ${this.#more ? html`<li class="quiet" role="option" aria-disabled="true" aria-selected="false">${this.#more} more: type on</li>` : ''}
      </ul></div>`;
  }

  async #look(text) {
    const mine = ++this.#turn;
    try {
      const sought = encodeURIComponent(text.trim());
      const {values, total} = await ask(`/api/values?ref=${this.#ref}&q=${sought}`, undefined, this.#signal);
      if (mine !== this.#turn) return;
      this.#found = values.filter((entry) => entry.name.trim());
      this.#more = Math.max(0, total - values.length);
      this.#open = true;
      this.#active = -1;
      this.#draw();
    } catch (error) {
      complain(error);
    }
  }

  #close() {
    this.#turn++;
    this.#open = false;
    this.#active = -1;
    this.#draw();
  }

  #mark(index, list) {
    this.#active = Math.min(Math.max(0, index), this.#found.length - 1);
    this.#draw();
    list.children[this.#active]?.scrollIntoView({block: 'nearest'});
  }

  async #take(element, entry) {
    const input = element.closest('.search').querySelector('input');
    this.#close();
    input.value = '';
    this.#taking = true;
    await this.#choose(input, entry);
    this.#taking = false;
  }

  #key(event) {
    const list = event.target.nextElementSibling;
    // From a list that nobody sees nothing is chosen.
    if (event.key === 'ArrowDown' && !this.#open) this.#look(event.target.value);
    else if (event.key === 'ArrowDown') this.#mark(this.#active + 1, list);
    else if (event.key === 'ArrowUp' && this.#open) this.#mark(this.#active - 1, list);
    else if (event.key === 'Escape') this.#close();
    else if (event.key === 'Enter' && this.#open && this.#found[this.#active]) this.#take(event.target, this.#found[this.#active]);
    else return;
    event.preventDefault();
  }
}
