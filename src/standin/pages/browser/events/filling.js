// A draft that a template fills: its choices stand above it, and what they make is seen at once.
import {html} from '../kit/html.js';
import {PickList} from '../kit/picklist.js';
import {ask} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {choice, devicePick, longText, number, time, weekdays} from './controls.js';
import {addressOf, bare, drafts, freshRule} from './eventdrafts.js';
import {kTemplates} from './templates.js';
import {deviceName, wordsOf} from './words.js';

const kCategories = [['PlayList', 'the playlist'], ['Album', 'the album'], ['Artist', 'the artist'], ['Genre', 'the genre']];

export class FilledTemplate {
  #known;
  #editor;
  #choices;
  #byHand = false;  // the draft has been changed since, and the choices would overwrite that
  #partner = null;
  #picks = new Map();

  constructor(known, editor, state) {
    this.#known = known;
    this.#editor = editor;
    this.#choices = structuredClone(state?.choices ?? Object.fromEntries(known.asks.map(([name, , , first]) => [name, first])));
    this.#byHand = state?.byHand ?? false;
    this.#partner = state?.partner ?? null;
  }

  /** The one that a draft's name tells, null when none does. */
  static of(name, draft, editor) {
    const known = kTemplates.find(({id}) => name === `new/${id}`);
    return known ? new FilledTemplate(known, editor, draft?.template) : null;
  }

  /** Fills the draft for the first time. A house without playlists begins with its albums. */
  async begin() {
    this.fill();
    const asked = this.#known.asks.filter(([name, kind]) => kind === 'music' && this.#choices[name].category === 'PlayList');
    if (!asked.length) return;
    try {
      const {total} = await ask('/api/library?category=PlayList&limit=1', undefined, this.#editor.signal);
      if (total || this.#byHand || asked.some(([name]) => this.#choices[name].name)) return;
      this.#choose(Object.fromEntries(asked.map(([name]) => [name, {category: 'Album', name: ''}])));
    } catch { /* the player is away: the reader chooses */ }
  }

  /** What the draft keeps of it. */
  state() {
    return {choices: this.#choices, byHand: this.#byHand, partner: this.#partner};
  }

  touched() {
    this.#byHand = true;
  }

  /** Makes the draft from the choices. */
  fill() {
    const {tools} = this.#editor;
    const player = tools.house.state.plugin?.name || 'Media Player';
    const device = tools.house.state.devices.get(this.#choices.device);
    const [rule, partner] = this.#known.make(this.#choices, player, device ? deviceName(device) : 'a device');
    this.#editor.rule = {...freshRule(), ...rule, name: this.#free(rule.name)};
    this.#partner = partner ? {...freshRule(), ...partner, name: this.#free(partner.name)} : null;
    this.#byHand = false;
    this.#editor.changed(false);
  }

  #free(name) {
    const taken = new Set(this.#editor.tools.choices.events.map((event) => event.name.toLowerCase()));
    for (let number = 1; ; number++) {
      const wanted = number > 1 ? `${name} ${number}` : name;
      if (!taken.has(wanted.toLowerCase())) return wanted;
    }
  }

  #choose(patch) {
    Object.assign(this.#choices, patch);
    this.fill();
  }

  template() {
    const {title, asks} = this.#known;
    if (this.#byHand) {
      return html`<div class="filling filling-done"><p>From the template “${title}”, and changed since.</p>
        <button type="button" @click=${() => this.fill()}>Fill it in anew</button></div>`;
    }
    return html`<section class="filling" aria-labelledby="filling-head"><h2 id="filling-head">${title}</h2>
      <p class="quiet">Your choices fill in the event below. Nothing runs before you save it.</p>
      <div class="part-fields">${asks.map((each) => this.#field(...each))}</div></section>`;
  }

  #field(name, kind, label) {
    const value = this.#choices[name];
    const set = (chosen) => this.#choose({[name]: chosen});
    if (kind === 'time') return time(label, value, set);
    if (kind === 'days') return weekdays(value, set);
    if (kind === 'percent') return number(label, value, {min: 1, max: 100}, set);
    if (kind === 'minutes') return number(label, value, {min: 1, max: 600}, set);
    if (kind === 'text') return longText(label, value, set);
    return kind === 'music' ? this.#music(name, label, value) : this.#device(name, label, value);
  }

  #device(name, label, value) {
    const pick = this.#pick(name, () => devicePick({signal: this.#editor.signal, label, ref: value,
      house: this.#editor.tools.house, empty: '(none)', change: (ref) => this.#choose({[name]: ref})}));
    return html`<div class="part-field part-wide"><span aria-hidden="true">${label}</span>${pick.node}</div>`;
  }

  #music(name, label, {category, name: chosen}) {
    const pick = this.#pick(`${name} ${category}`, () => new PickList({signal: this.#editor.signal, label, value: chosen,
      placeholder: 'Choose the music', empty: '(nothing)', change: (group) => this.#choose({[name]: {category, name: group}}),
      fetch: async (from, count, search, signal) => {
        const query = new URLSearchParams({category, q: search, offset: from, limit: count});
        const {names, total} = await ask(`/api/library?${query}`, undefined, signal);
        return {count: total, options: names};
      }}));
    return html`<div class="part-wide music-choice">${choice(label, category, kCategories, (next) => this.#choose({[name]: {category: next, name: ''}}))}
      <div class="part-field"><span aria-hidden="true">Name</span>${pick.node}</div></div>`;
  }

  #pick(key, make) {
    if (!this.#picks.has(key)) this.#picks.set(key, make());
    return this.#picks.get(key);
  }

  /** The second event of two. */
  partnerTemplate() {
    if (!this.#partner) return '';
    const {tools} = this.#editor;
    const events = [{id: 0, name: this.#editor.rule.name}, ...tools.choices.events];
    const known = {...tools, choices: {...tools.choices, events}};
    const words = (list) => this.#partner[list].map((part) => wordsOf(list, part, known)).join(', ');
    return html`<section class="filling partner" aria-labelledby="partner-head"><h2 id="partner-head">And “${this.#partner.name}”</h2>
      <p>A second event is saved with this one.</p>
      <dl class="rule-words"><dt>When</dt><dd>${words('triggers')}</dd><dt>If</dt><dd>${words('conditions')}</dd><dt>Do</dt><dd>${words('actions')}</dd></dl></section>`;
  }

  /** Saves what goes with the event of that number. Its draft is kept when it can't be saved. */
  async savePartner(id) {
    const partner = this.#partner;
    if (!partner) return;
    this.#partner = null;
    for (const part of partner.conditions) if (part.kind === 'event') part.id ||= id;
    try {
      await ask('/api/event/save', bare(partner));
      toast(`“${partner.name}” is saved`);
    } catch (error) {
      drafts.keep('new', {rule: partner});
      toast(`“${partner.name}” could not be saved: ${error.message}. It is kept as a draft.`, 'bad');
      location.hash = addressOf('new');
    }
  }
}
