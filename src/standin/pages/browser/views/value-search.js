// A device of many values: they are found by typing.
import {html, nothing} from '../kit/html.js';
import {ask, complain} from '../kit/server.js';

/** `draw` is called whenever the field looks different; `choose(element, value)` takes what was chosen. */
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
        @input=${(event) => this.#look(event.target.value)} @focus=${(event) => this.#look(event.target.value)}
        @blur=${() => this.#close()} @keydown=${(event) => this.#key(event)}>
      <ul class="found" id=${id} role="listbox" aria-label=${device.name} ?hidden=${!this.#open}>
        ${this.#found.map((entry, at) => html`<li role="option" id=${option(at)} aria-selected=${String(at === this.#active)}
          @mousedown=${(event) => event.preventDefault()} @click=${(event) => this.#take(event.target, entry)}>${entry.name}</li>`)}
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
      this.#open = this.#found.length > 0;
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
    this.#active = Math.max(0, Math.min(index, this.#found.length - 1));
    this.#draw();
    list.children[this.#active]?.scrollIntoView({block: 'nearest'});
  }

  #take(element, entry) {
    const input = element.closest('.search').querySelector('input');
    this.#close();
    input.value = '';
    this.#choose(input, entry.value);
  }

  #key(event) {
    const list = event.target.nextElementSibling;
    if (event.key === 'ArrowDown') this.#mark(this.#active + 1, list);
    else if (event.key === 'ArrowUp') this.#mark(this.#active - 1, list);
    else if (event.key === 'Escape') this.#close();
    else if (event.key === 'Enter' && this.#found[this.#active]) this.#take(event.target, this.#found[this.#active]);
    else return;
    event.preventDefault();
  }
}
