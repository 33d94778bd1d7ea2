// The parts of an event in the editor: its triggers, its conditions and its actions, each with its fields.
import {html, live, ref, repeat} from '../kit/html.js';
import {movable} from './moving.js';
import {kOwn, missingIn} from './ownkinds.js';
import {PluginForm} from './pluginform.js';
import {bareWords, conditionNumber} from './stored.js';
import {wordsOf} from './words.js';

const kModeNote = 'The player never says yes to a condition of its mode, so the event would not run.';
const kMost = {triggers: 100, conditions: 100, actions: 200};
const kOne = {triggers: 'trigger', conditions: 'condition', actions: 'action'};
let keys = 0;

const pluginKinds = (list, player) => ({
  triggers: [['trigger', `${player}: something happens`]],
  conditions: [['condition 1', `${player}: its state`], ['condition 2', `${player}: its mode`]],
  actions: [['action', `${player}: play, pause, …`]],
}[list]);

/**
 * One list of parts. `editor`: {rule, tools, changed(), draw(), kept form}; a guest's has edit false.
 */
export class Parts {
  #list;
  #editor;
  #open = null;    // the part whose fields are shown
  #adding = false;
  #form = null;    // {part, what, form, controller}: a form of the plug-in; part null for a new one
  #said = '';
  #moving = new WeakSet();

  constructor(list, editor) {
    this.#list = list;
    this.#editor = editor;
  }

  get #parts() {
    return this.#editor.rule[this.#list];
  }

  /** Nothing is open any longer: the rule is another. */
  reset() {
    this.#closeForm();
    this.#open = null;
    this.#adding = false;
  }

  /** What was being entered in a form when the page was left goes on. */
  resume({at, what, choice, entries}) {
    const part = this.#parts[at] ?? null;
    if (at >= 0 && !part) return;
    this.#openForm(part, what, {choice, entries});
  }

  missing() {
    return this.#parts.some((part) => missingIn(this.#list, part));
  }

  /** Shows the fields of the first part that lacks something. */
  showMissing() {
    this.show(this.#parts.findIndex((part) => missingIn(this.#list, part)));
  }

  /** Shows the fields of a part, if they are the house's own. */
  show(at) {
    const part = this.#parts[at];
    if (part && part.kind !== 'plugin') this.#open = part;
  }

  template({edit, empty}) {
    const list = this.#list;
    const parts = this.#parts;
    for (const part of parts) part.key ??= ++keys;
    return html`<ol class="parts" data-list=${list} ${edit ? ref((node) => this.#makeMovable(node)) : ''}>
        ${repeat(parts, (part) => part.key, (part, at) => this.#part(part, at, edit))}</ol>
      ${parts.length ? '' : html`<p class="quiet parts-empty">${empty}</p>`}
      <p class="sr" role="status">${this.#said}</p>
      ${edit ? this.#adder() : ''}`;
  }

  #words(part) {
    // The server's words hold as long as the part is what it was.
    return part.shown && part.kind !== 'plugin' ? part.shown : wordsOf(this.#list, part, this.#editor.tools);
  }

  #part(part, at, edit) {
    const open = this.#open === part || this.#form?.part === part;
    const words = this.#words(part);
    const missing = missingIn(this.#list, part);
    const one = kOne[this.#list];
    if (!edit) return html`<li class="part"><div class="part-line"><span class="part-words">${words}</span></div></li>`;
    return html`<li class="part ${open ? 'part-open' : ''}" data-key=${part.key}>
      <div class="part-line">
        ${this.#parts.length > 1 ? html`<button type="button" class="handle" aria-pressed="false" aria-label=${`Move: ${words}`}
          title="Drag, or arrow keys">⠿</button>` : ''}
        <button type="button" class="part-words" aria-expanded=${String(open)} @click=${() => this.#toggle(part)}>${words}
          ${missing ? html`<span class="pill pill-wait">${missing}</span>` : ''}</button>
        <button type="button" class="round plain" aria-label=${`Remove the ${one}: ${words}`} @click=${(event) => this.#remove(part, at, event)}>✕</button>
      </div>
      ${open ? html`<div class="part-fields">${this.#list === 'conditions' ? this.#negation(part) : ''}${this.#fields(part)}</div>` : ''}</li>`;
  }

  #negation(part) {
    return html`<label class="part-wide part-check"><input type="checkbox" .checked=${live(Boolean(part.not))}
      @change=${(event) => this.#change(part, {not: event.target.checked}, part.kind === 'plugin')}><span>The event runs only if this does <em>not</em>
      hold</span></label>`;
  }

  #fields(part) {
    if (this.#form?.part === part && this.#form.choice === undefined) return this.#form.form.node;
    if (part.kind === 'plugin') return '';
    const {tools} = this.#editor;
    return html`${kOwn[this.#list][part.kind]?.fields(part, (patch) => this.#change(part, patch), {...tools,
      wakeChoices: () => this.#wakeChoices(part)}) ?? ''}
      <div class="part-wide row"><button type="button" @click=${() => this.#toggle(part)}>Done</button></div>`;
  }

  /** What a wake action tries, one after the other. */
  #wakeChoices(part) {
    const move = (at, to) => {
      const choices = [...part.choices];
      choices.splice(to, 0, ...choices.splice(at, 1));
      this.#change(part, {choices});
    };
    const {tools} = this.#editor;
    const words = (stored) => tools.storedWords.get(stored) ?? bareWords(stored);
    const form = this.#form?.part === part ? this.#form : null;
    return html`<div class="part-wide wake"><span class="wake-head">What to play, the first that is heard</span>
      <ol>${part.choices.map((stored, at) => html`<li><span>${words(stored)}</span>
        <button type="button" class="round plain" ?hidden=${at === 0} aria-label=${`Earlier: ${words(stored)}`} @click=${() => move(at, at - 1)}>↑</button>
        <button type="button" class="round plain" aria-label=${`Change: ${words(stored)}`}
          @click=${() => this.#openForm(part, 'action', {choice: at})}>✎</button>
        <button type="button" class="round plain" aria-label=${`Remove: ${words(stored)}`}
          @click=${() => this.#change(part, {choices: part.choices.filter((_, each) => each !== at)})}>✕</button></li>`)}</ol>
      ${form ? form.form.node : html`<button type="button" @click=${() => this.#openForm(part, 'action', {choice: part.choices.length})}>Add
        something to play</button>`}</div>`;
  }

  #adder() {
    const {tools} = this.#editor;
    const one = kOne[this.#list];
    if (this.#form && !this.#form.part) return this.#form.form.node;
    if (this.#parts.length >= kMost[this.#list]) return html`<p class="quiet">There is no room for more.</p>`;
    const player = tools.house.state.plugin?.name || 'Media Player';
    const menu = `add-${this.#list}`;
    return html`<div class="adder"><button type="button" class="add-part" aria-expanded=${String(this.#adding)} aria-controls=${menu}
        @click=${(event) => this.#showMenu(event.currentTarget)}>+ Add ${one === 'trigger' ? 'a' : one === 'action' ? 'an' : 'a'} ${one}</button>
      <div class="add-menu" id=${menu} role="group" aria-label=${`Kinds of ${one}s`} ?hidden=${!this.#adding} @keydown=${(event) => this.#menuKey(event)}>
        ${pluginKinds(this.#list, player).map(([what, words]) => html`<button type="button" class="menu-item"
          @click=${() => this.#openForm(null, what)}>${words}</button>`)}
        ${Object.entries(kOwn[this.#list]).map(([kind, {label, fresh}]) => html`<button type="button" class="menu-item"
          @click=${() => this.#add({kind, ...fresh()})}>${label}</button>`)}</div></div>`;
  }

  #showMenu(button) {
    this.#adding = !this.#adding;
    this.#editor.draw();
    if (this.#adding) button.parentElement.querySelector('.add-menu button')?.focus();
  }

  #menuKey(event) {
    const all = [...event.currentTarget.querySelectorAll('button')];
    const at = all.indexOf(document.activeElement);
    const to = {ArrowDown: at + 1, ArrowUp: at - 1, Home: 0, End: all.length - 1}[event.key];
    if (event.key === 'Escape') {
      this.#adding = false;
      this.#editor.draw();
      event.currentTarget.parentElement.querySelector('.add-part').focus();
    } else if (to !== undefined) {
      all[(to + all.length) % all.length].focus();
    } else {
      return;
    }
    event.preventDefault();
  }

  #add(part) {
    this.#adding = false;
    this.#closeForm();
    part.key = ++keys;
    this.#parts.push(part);
    this.#open = part;
    this.#editor.changed();
    this.#focusFields(part);
  }

  #node(part) {
    return this.#editor.place.querySelector(`[data-list="${this.#list}"] [data-key="${part.key}"]`);
  }

  #focusFields(part) {
    const node = this.#node(part);
    (node?.querySelector('.part-fields :is(input:not([type=checkbox]), select, textarea, button)')
      ?? node?.querySelector('.part-words'))?.focus();
  }

  #toggle(part) {
    const open = this.#open === part || this.#form?.part === part;
    this.#closeForm();
    this.#open = open ? null : part;
    if (!open && part.kind === 'plugin') this.#openForm(part, this.#whatOf(part));
    this.#editor.draw();
    if (open) this.#node(part)?.querySelector('.part-words')?.focus();
  }

  #whatOf(part) {
    return {triggers: 'trigger', actions: 'action', conditions: `condition ${conditionNumber(part.stored)}`}[this.#list];
  }

  /** `part` null adds one; `choice` is the place in a wake action's list. */
  #openForm(part, what, {choice, entries} = {}) {
    this.#closeForm();
    this.#adding = false;
    if (part) this.#open = part;
    const {tools, signal} = this.#editor;
    const controller = new AbortController();
    signal.addEventListener('abort', () => controller.abort(), {signal: controller.signal});
    const stored = choice !== undefined ? part.choices[choice] ?? '' : part?.stored ?? '';
    const keep = (kept) => this.#editor.keepForm({list: this.#list, at: part ? this.#parts.indexOf(part) : -1, what, choice, entries: kept});
    const form = new PluginForm({what, stored}, {house: tools.house, signal: controller.signal, kept: entries, keep,
      note: what === 'condition 2' ? kModeNote : '',
      done: (text, words) => this.#formDone(part, choice, text, words), cancel: () => this.#formCancelled(part)});
    this.#form = {part, choice, form, controller};
    this.#editor.draw();
    form.node.scrollIntoView({block: 'nearest'});
  }

  #closeForm() {
    if (!this.#form) return;
    const {controller} = this.#form;
    this.#form = null;
    controller.abort();
    this.#editor.keepForm(null);
  }

  #formCancelled(part) {
    this.#closeForm();
    if (part?.kind === 'plugin') this.#open = null;
    this.#editor.draw();
    (part ? this.#node(part)?.querySelector('.part-words') : this.#editor.place.querySelector(`[aria-controls="add-${this.#list}"]`))?.focus();
  }

  #formDone(part, choice, stored, words) {
    this.#closeForm();
    this.#editor.tools.storedWords.set(stored, words);
    if (choice !== undefined) {
      const choices = [...part.choices];
      choices[choice] = stored;
      this.#change(part, {choices});
      return;
    }
    if (part) {
      this.#open = null;
      this.#change(part, {stored, shown: words}, true);
      this.#node(part)?.querySelector('.part-words')?.focus();
    } else {
      const made = {kind: 'plugin', stored, shown: words, key: ++keys, ...(this.#list === 'conditions' ? {not: false} : {})};
      this.#parts.push(made);
      this.#editor.changed();
      this.#node(made)?.querySelector('.part-words')?.focus();
    }
  }

  #change(part, patch, keepsWords = false) {
    Object.assign(part, patch);
    if (!keepsWords) delete part.shown;
    this.#editor.changed();
  }

  #remove(part, at, event) {
    if (this.#form?.part === part) this.#closeForm();
    if (this.#open === part) this.#open = null;
    const list = event.currentTarget.closest('.parts');
    this.#parts.splice(at, 1);
    this.#said = `Removed: ${this.#words(part)}`;
    this.#editor.changed();
    const next = list.children[Math.min(at, this.#parts.length - 1)];
    (next?.querySelector('.part-words') ?? this.#editor.place.querySelector(`[aria-controls="add-${this.#list}"]`))?.focus();
  }

  #makeMovable(node) {
    if (!node || this.#moving.has(node)) return;
    this.#moving.add(node);
    movable(node, {signal: this.#editor.signal, nameOf: (at) => this.#words(this.#parts[at]),
      say: (words) => {
        this.#said = words;
        this.#editor.draw();
      },
      move: (from, to) => {
        this.#parts.splice(to, 0, ...this.#parts.splice(from, 1));
        this.#editor.changed();
      }});
  }
}
