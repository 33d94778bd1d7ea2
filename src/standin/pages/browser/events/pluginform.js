// A dialog of the plug-in as a form: its fields as the plug-in has described and changed them.
import {el} from '../kit/dom.js';
import {html, live, render} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {fromHere, PickList} from '../kit/picklist.js';
import {ask} from '../kit/server.js';
import {rowsOf, sized} from './formlayout.js';
import {isPrompt} from './stored.js';

const kShort = 60;  // options that a list of the browser's own shows well

/**
 * `order` is what is asked for: {what, stored}. `kept` is what `keep(entries)` was last told: what has been entered,
 * and not submitted; it comes back when the form is opened anew. `done(stored, words)` hears what was submitted,
 * `cancel()` that nothing was. `note` stands above the fields. Opening and submitting run nothing.
 */
export class PluginForm {
  node = el('div', {class: 'plugin-form', role: 'group', 'aria-label': 'The player’s form'});
  #order;
  #note;
  #hear;
  #house;
  #signal;
  #draw;
  #dialog = 0;
  #form = null;
  #typed;         // what has been entered since the form came, by the field's number
  #pressed;       // the button that was pressed last
  #errors = {};
  #problem = '';
  #trouble = '';  // why the form can't be used now: 'held', 'taken', 'away', 'failed'
  #why = '';
  #busy = false;
  #lists = new Map();
  #turn = 0;

  constructor(order, {house, signal, note = '', kept, keep, done, cancel}) {
    this.#order = order;
    this.#note = note;
    this.#house = house;
    this.#signal = signal;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#hear = {keep, done, cancel};
    this.#typed = {...kept?.values};
    this.#pressed = kept?.pressed;
    house.on('dialog', (event) => this.#happened(event), signal);
    house.on('state', () => this.#playerChanged(), signal);
    house.on('again', () => this.#look(), signal);
    signal.addEventListener('abort', () => this.#leave());
    addEventListener('pagehide', () => this.#leave(), {signal});
    this.#open();
  }

  async #open(take = false) {
    const mine = ++this.#turn;
    this.#busy = true;
    this.#trouble = '';
    this.#draw();
    try {
      const {dialog, form} = await ask('/api/dialog/open', {...this.#order, take}, this.#signal);
      if (mine !== this.#turn) return;
      this.#dialog = dialog;
      const again = this.#pressed !== undefined && Object.keys(this.#typed).length > 0;
      this.#show(form);
      if (again) await this.#press(this.#pressed);
    } catch (error) {
      if (mine !== this.#turn || error.name === 'AbortError') return;
      this.#stop(error.status === 409 ? 'held' : this.#ready ? 'failed' : 'away',
        error.answer?.who ? `${error.message} (${error.answer.who})` : error.message);
    } finally {
      if (mine === this.#turn) {
        this.#busy = false;
        this.#draw();
      }
    }
  }

  get #ready() {
    return this.#house.state.plugin?.state === 'ready';
  }

  #stop(trouble, why) {
    this.#trouble = trouble;
    this.#why = why;
    this.#dialog = 0;
    this.#draw();
  }

  #show(form) {
    this.#form = form;
    for (const field of form.fields.filter(({kind}) => kind === 'list')) this.#lists.get(field.number)?.renew(field);
  }

  #happened({dialog, taken, gone, changed}) {
    if (!this.#dialog || dialog !== this.#dialog) return;
    if (taken) this.#stop('taken', 'Another browser has taken this form over.');
    else if (gone) this.#lose();
    else if (changed) this.#look();
  }

  /** A player that has started again knows nothing of the form. */
  #lose() {
    this.#stop('away', 'The player has gone away.');
    if (this.#ready) this.#open();
  }

  #playerChanged() {
    if (!this.#ready && (this.#dialog || this.#trouble === 'failed')) this.#stop('away', 'The player is away.');
    else if (this.#ready && this.#trouble === 'away' && !this.#busy) this.#open();
    else this.#draw();
  }

  /** The form as the plug-in has it now. */
  async #look() {
    if (!this.#dialog || this.#busy) return;
    try {
      this.#show((await ask(`/api/dialog?dialog=${this.#dialog}`, undefined, this.#signal)).form);
      this.#draw();
    } catch (error) {
      if (error.name !== 'AbortError') this.#stop('taken', error.message);
    }
  }

  #leave() {
    if (!this.#dialog) return;
    const body = JSON.stringify({dialog: this.#dialog});
    this.#dialog = 0;
    this.#turn++;
    fetch('/api/dialog/close', {method: 'POST', keepalive: true, headers: {'Content-Type': 'application/json'}, body}).catch(() => {});
  }

  close() {
    this.#leave();
  }

  #valueOf(field) {
    return this.#typed[field.number] ?? field.value ?? '';
  }

  #enter(field, value) {
    this.#typed[field.number] = value;
    delete this.#errors[field.number];
    this.#problem = '';
    this.#hear.keep({values: this.#values, pressed: this.#pressed});
    this.#draw();
  }

  get #values() {
    return Object.fromEntries(this.#form.fields.filter(({kind}) => kind !== 'button')
      .map((field) => [field.number, this.#valueOf(field)]));
  }

  async #command(work) {
    const had = document.activeElement;
    this.#busy = true;
    this.#draw();
    try {
      await work();
    } catch (error) {
      if (error.name === 'AbortError') return;
      this.#errors = error.answer?.fields ?? {};
      const known = this.#form.fields.some(({number}) => this.#errors[number]);
      this.#problem = known ? '' : error.message;
      if (error.status === 410) this.#stop('taken', error.message);
      else if (!this.#ready) this.#stop('away', error.message);
    } finally {
      this.#busy = false;
      this.#draw();
    }
    // What is switched off loses the focus.
    const next = this.node.querySelector('[aria-invalid=true]') ?? (document.activeElement === document.body ? had : null);
    next?.focus();
  }

  #press(number) {
    return this.#command(async () => {
      const form = await ask('/api/dialog/press', {dialog: this.#dialog, field: number, values: this.#values}, this.#signal);
      this.#pressed = number;
      this.#errors = {};
      this.#problem = '';
      this.#typed = {};
      this.#show(form.form ?? form);
      // What the plug-in has left in the fields is what was entered.
      this.#hear.keep({values: this.#values, pressed: number});
    });
  }

  #submit() {
    return this.#command(async () => {
      const {stored, words} = await ask('/api/dialog/submit', {dialog: this.#dialog, values: this.#values}, this.#signal);
      this.#dialog = 0;
      if (isPrompt(stored)) return this.#openAnew(stored);
      return this.#hear.done(stored, words);
    });
  }

  /** The same form with what it has been given, as nobody has filled it in. */
  #openAnew(stored) {
    this.#order = {...this.#order, stored};
    this.#typed = {};
    this.#pressed = undefined;
    this.#form = null;
    this.#lists.clear();
    this.#hear.keep({values: {}});
    return this.#open();
  }

  #drawn() {
    const off = this.#busy || Boolean(this.#trouble);
    render(html`${this.#notice()}
      ${this.#form ? html`<p class="quiet form-title">${this.#form.title}</p>
        ${this.#note ? html`<p class="form-note">${this.#note}</p>` : ''}
        <div class="form-rows">${rowsOf(this.#form.fields).map((row) => html`<div class="form-row">
          ${row.map((field) => this.#field(field, off))}</div>`)}</div>
        ${(this.#form.notes ?? []).map((note) => html`<p class="quiet">${note}</p>`)}` : ''}
      ${!this.#form && this.#busy ? html`<p class="quiet" role="status">The player fills the form…</p>` : ''}
      <p class="problem" role="alert" ?hidden=${!this.#problem}>${this.#problem}</p>
      <div class="row form-end">
        <button type="button" class="primary" ?disabled=${off || !this.#form} @click=${() => this.#submit()}>Use it</button>
        <button type="button" @click=${() => this.#hear.cancel()}>Cancel</button></div>`, this.node);
  }

  #notice() {
    if (!this.#trouble) return '';
    const [words, button, take] = {
      held: [this.#why, 'Take it over', true],
      taken: [`${this.#why} What you have entered is still here.`, 'Take it back', true],
      away: [`${this.#why} What you have entered stays; the form goes on when the player is back.`, 'Try again', false],
      failed: [this.#why, 'Try again', false],
    }[this.#trouble];
    return html`<div class="notice-bar form-trouble" role="alert"><p>${words}</p>
      ${button ? html`<button type="button" @click=${() => this.#open(take)}>${button}</button>` : ''}</div>`;
  }

  #field(field, off) {
    const id = `form-${field.number}`;
    const error = this.#errors[field.number] || field.error || '';
    if (field.kind === 'button') {
      return html`<button type="button" class="form-button" ?disabled=${off} aria-busy=${String(this.#busy)}
        @click=${() => this.#press(field.number)}>${field.label}</button>`;
    }
    return html`<div class="form-field" .style=${sized(field)}><label for=${id}>${field.label.trim().replace(/:$/, '')}</label>
      ${this.#control(field, id, error, off)}
      <p class="field-error" id=${`${id}-error`} ?hidden=${!error}>${error}</p></div>`;
  }

  #control(field, id, error, off) {
    const invalid = error ? 'true' : 'false';
    const value = this.#valueOf(field);
    if (field.kind === 'list' && this.#isLong(field)) {
      const pick = this.#list(field, id);
      pick.invalid = Boolean(error);
      pick.disabled = off;
      pick.value = value;
      return pick.node;
    }
    if (field.kind === 'list') {
      const options = field.options.includes(value) ? field.options : [value, ...field.options];
      return html`<select id=${id} ?disabled=${off} aria-invalid=${invalid} aria-describedby=${`${id}-error`}
        @change=${(event) => this.#enter(field, options[event.target.selectedIndex])}>${options.map((each) =>
          html`<option .selected=${live(each === value)}>${each || '(nothing)'}</option>`)}</select>`;
    }
    return html`<input type="text" id=${id} ?disabled=${off} aria-invalid=${invalid} aria-describedby=${`${id}-error`}
      autocomplete="off" .value=${live(value)} @input=${(event) => this.#enter(field, event.target.value)}>`;
  }

  #isLong(field) {
    return this.#lists.has(field.number) || field.count > kShort || field.options.length < field.count;
  }

  /** Made once, so that it keeps the focus; its list is the one that the plug-in gave last. */
  #list(field, id) {
    const known = this.#lists.get(field.number);
    if (known) return known.pick;
    const fetchOf = (now) => (now.options.length >= now.count ? fromHere(now.options) : (from, count, search, signal) =>
      ask(`/api/dialog/options?${new URLSearchParams({dialog: this.#dialog, field: now.number, from, count, search})}`, undefined, signal));
    const pick = new PickList({signal: this.#signal, id, label: field.label.trim(), fetch: fetchOf(field), describedby: `${id}-error`,
      placeholder: `${field.count.toLocaleString()} to choose from`, change: (value) => this.#enter(field, value)});
    this.#lists.set(field.number, {pick, renew: (now) => { pick.fetch = fetchOf(now); }});
    return pick;
  }
}
