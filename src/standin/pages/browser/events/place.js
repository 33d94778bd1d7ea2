// Where the house stands: asked once, for the times of sunrise and sunset.
import {html} from '../kit/html.js';
import {ask, complain, run} from '../kit/server.js';

/** The house's place and today's sun, as far as they are known. */
export class Place {
  #draw;
  #signal;
  #sun = undefined;  // null: there is no place yet
  #changing = false;

  constructor({signal, draw}) {
    this.#signal = signal;
    this.#draw = draw;
  }

  /** Reads it when it is asked for the first time. */
  look() {
    if (this.#sun !== undefined) return;
    this.#sun = {};
    ask('/api/events/place', undefined, this.#signal).then((sun) => this.#show(sun), (error) => {
      this.#sun = undefined;
      complain(error);
    });
  }

  #show(sun) {
    this.#sun = sun && sun.sunrise !== undefined ? sun : null;
    this.#changing = !this.#sun;
    this.#draw();
  }

  line() {
    this.look();
    if (this.#changing) return this.#form();
    const today = this.#sun?.sunrise !== undefined
      ? `Today the sun rises at ${this.#sun.sunrise || '–'} and sets at ${this.#sun.sunset || '–'}.` : '';
    return html`<p class="quiet part-wide place-line">${today} <button type="button" class="link" ?hidden=${!today}
      @click=${() => { this.#changing = true; this.#draw(); }}>Change the place</button></p>`;
  }

  #form() {
    const field = (name, label, most) => html`<label class="part-field">${label}
      <input type="number" step="any" min=${-most} max=${most} name=${name} required inputmode="decimal"></label>`;
    return html`<div class="part-wide place-form" role="group" aria-label="Place of the house">
      <p>Where is the house? Its sunrise and sunset are reckoned from its place, which is asked for only once.</p>
      <div class="row">${field('latitude', 'Latitude (north is positive)', 90)}${field('longitude', 'Longitude (east is positive)', 180)}
        <button type="button" @click=${(event) => this.#save(event.currentTarget)}>Set the place</button>
        ${'geolocation' in navigator && isSecureContext ? html`<button type="button"
          @click=${(event) => this.#here(event.currentTarget)}>Where I am now</button>` : ''}</div></div>`;
  }

  #save(button) {
    const fields = [...button.closest('.place-form').querySelectorAll('input')];
    if (!fields.every((field) => field.reportValidity())) return undefined;
    const [latitude, longitude] = fields.map((field) => Number(field.value));
    return run(button, async () => this.#show(await ask('/api/events/place', {latitude, longitude})));
  }

  #here(button) {
    const form = button.closest('.place-form');
    return run(button, async () => {
      const {coords} = await new Promise((found, failed) => {
        navigator.geolocation.getCurrentPosition(found, () => failed(new Error('This browser doesn’t tell where it is')));
      });
      form.querySelector('[name=latitude]').value = coords.latitude.toFixed(3);
      form.querySelector('[name=longitude]').value = coords.longitude.toFixed(3);
    });
  }
}

export const placeLine = (tools) => tools.place.line();
