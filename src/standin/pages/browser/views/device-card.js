// A device: what it shows, and what can be done with it.
import {partsOf, shownParts, wordsOf} from '../kit/devicetext.js';
import {html, live, nothing} from '../kit/html.js';
import {ask, complain, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {buttonsOf, captionOf, pressed} from './buttons.js';
import {ValueSearch} from './value-search.js';

const kOn = 2;
const kOff = 3;
const kFewValues = 60;

/** One device's card. `draw` is called when it looks different for a reason of its own; `guest` tells who looks. */
export class DeviceCard {
  #ref;
  #draw;
  #guest;
  #signal;
  #search;
  #values = null;     // to choose from, once they were read
  #valuesOf = '';     // the mark of the table that they belong to
  #changes = 0;

  constructor(ref, {signal, draw, guest}) {
    this.#ref = ref;
    this.#draw = draw;
    this.#guest = guest;
    this.#signal = signal;
    this.#search = new ValueSearch(ref, {signal, draw, choose: (field, entry) => this.#choose(field, entry)});
  }

  /** Shows for a moment that something has become of the device. */
  changed() {
    this.#changes++;
  }

  template(device) {
    const parts = partsOf(device);
    const words = wordsOf(parts);
    // Of two names of one movement the other begins it anew.
    const moved = this.#changes ? `changed-${this.#changes % 2}` : '';
    return html`<article class="card ${moved}" data-ref=${device.ref}>
      <header class="card-head">
        <h2 title=${`${device.location} ${device.name}`.trim()}>${device.name || 'Device'}</h2>
        <span class="value quiet">${device.value === 0 ? nothing : `value ${device.value}`}</span>
        <span class="address">${device.address}</span>
      </header>
      <div class="status ${words ? '' : 'blank'}">${shownParts(parts)}${words ? nothing : html`<span class="quiet">—</span>`}</div>
      <div class="controls">${device.switchable ? switchOf(device) : nothing}${this.#valueOf(device)}${
        buttonsOf(device, this.#guest()).map((caption) => html`<button type="button"
          @click=${(event) => pressed(event.currentTarget, device, caption)}>${captionOf(device, caption)}</button>`)}</div>
    </article>`;
  }

  #valueOf(device) {
    if (!device.values) return nothing;
    return device.values <= kFewValues ? this.#select(device) : this.#search.template(device);
  }

  #select(device) {
    this.#read(device);
    const known = this.#values ?? [{value: device.value, name: device.valueName}];
    return html`<select aria-label=${device.name} @change=${({currentTarget: select}) => this.#choose(select, known[select.selectedIndex])}>
      ${known.map(({value, name}) => html`<option value=${value} .selected=${live(value === device.value)}>${name.trim() || 'Choose…'}</option>`)}
    </select>`;
  }

  /** The name goes with the value, which may be another one's by now. */
  async #choose(control, {value, name}) {
    await run(control, async () => {
      const {done} = await ask('/api/command', {ref: this.#ref, command: 'value', value: Number(value), name});
      if (done?.trim()) toast(`Done: ${done}`);
    });
    this.#draw();  // a list shows what the device has, and not what it refused
  }

  async #read(device) {
    if (this.#valuesOf === device.valuesMark) return;
    this.#valuesOf = device.valuesMark;
    try {
      this.#values = (await ask(`/api/values?ref=${device.ref}&q=`, undefined, this.#signal)).values;
      this.#draw();
    } catch (error) {
      this.#valuesOf = '';
      complain(error);
    }
  }
}

function switchOf(device) {
  const half = (words, command, on) => html`<button type="button" aria-pressed=${String(on)}
    @click=${(event) => run(event.currentTarget, () => ask('/api/command', {ref: device.ref, command}))}>${words}</button>`;
  return html`<div class="switch" role="group" aria-label=${`${device.name}: on or off`}>
    ${half('On', 'on', device.status === kOn)}${half('Off', 'off', device.status === kOff)}</div>`;
}
