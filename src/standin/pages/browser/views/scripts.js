// The house's scripts: a list, an editor, and what a run has to say.
import {html, nothing, render, repeat} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {ask, complain, run} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {draftOf, dropDraft, keepDraft} from './drafts.js';
import {ScriptRun} from './script-run.js';

const kNew = '-- The house is reached by name: scriptclass, vxif, host.\nprint(scriptclass.PlayerStatus)\n';

export const scriptsView = {name: 'scripts', title: 'Scripts', owner: true, mount};

async function mount(place, context) {
  await new Scripts(place, context).begin();
}

class Scripts {
  #place;
  #signal;
  #title;
  #known = [];
  #opened = null;  // the stored script in the editor; '' for a new one
  #saved = '';     // its text as it is stored
  #lines = 1;
  #run;
  #draw;           // and what follows an answer, while this is shown
  #show;
  #keep;
  #back;
  #left;           // where the reader was before

  constructor(place, {signal, house, title, keep, kept}) {
    this.#place = place;
    this.#signal = signal;
    this.#title = title;
    this.#left = kept;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#show = whileShown(signal, (name, text) => this.#shown(name, text));
    this.#keep = whileShown(signal, (name, text) => this.#kept(name, text));
    this.#back = whileShown(signal, (name) => this.#cameBack(name));
    this.#run = new ScriptRun({signal, draw: this.#draw});
    keep(() => ({script: this.#opened, top: this.#text?.scrollTop}));
    house.on('script', () => this.#run.look(), signal);
    house.on('again', () => { this.#list(); this.#run.look(); }, signal);
    this.#draw();
  }

  async begin() {
    await this.#list();
    const first = [this.#left.script, ...this.#known].find((name) => name !== undefined && name !== null
      && (this.#known.includes(name) || draftOf(name)));
    await this.#open(first ?? '');
    if (this.#text && this.#left.top) this.#text.scrollTop = this.#left.top;
    this.#run.look();
  }

  get #text() {
    return this.#place.querySelector('#script-text');
  }

  get #name() {
    return this.#place.querySelector('#script-name');
  }

  #drawn() {
    const act = (work) => (event) => run(event.currentTarget, () => work.call(this));
    const stored = this.#known.includes(this.#opened);
    const unsaved = this.#opened !== null && draftOf(this.#opened);
    render(html`<div class="scripts">
      <div class="page-head"><h1>Scripts</h1><button type="button" @click=${() => this.#open('')}>New</button></div>
      <div class="scripts-parts">${this.#names()}
        <div class="editor">
          <input id="script-name" maxlength="50" autocomplete="off" spellcheck="false" aria-label="Name of the script"
            placeholder="Name" @input=${() => this.#changed()}>
          <div class="code-box"><pre class="lines" aria-hidden="true">${numbers(this.#lines)}</pre>
            <textarea id="script-text" class="code" spellcheck="false" wrap="off" autocapitalize="off" rows="16"
              aria-label="Text of the script" @input=${() => this.#changed()} @scroll=${() => this.#scrollLines()}
              @keydown=${(event) => this.#key(event)}></textarea></div>
          <div class="row">
            <button type="button" class="primary" ?disabled=${this.#run.running} @click=${act(this.#start)}>Run now</button>
            <button type="button" ?disabled=${!this.#run.running} @click=${act(this.#stop)}>Stop</button>
            <button type="button" id="script-save" @click=${act(this.#save)}>Save</button>
            <button type="button" ?hidden=${!unsaved} @click=${() => this.#revert()}>Discard changes</button>
            <button type="button" class="danger" ?hidden=${!stored} @click=${act(this.#remove)}>Delete</button>
            <span class="unsaved" role="status">${unsaved ? 'Not saved yet' : ''}</span></div>
          ${this.#run.template((line) => this.#goTo(line))}
        </div></div></div>`, this.#place);
  }

  #names() {
    return html`<ul class="script-names" aria-label="Stored scripts">
      ${repeat(this.#known, (name) => name, (name) => html`<li><button type="button" class="menu-item"
        aria-current=${name === this.#opened ? 'true' : nothing} @click=${() => this.#open(name)}>${name}${
          draftOf(name) ? html`<span class="draft-mark" title="Not saved yet"> ●<span class="sr">, not saved yet</span></span>` : nothing}</button></li>`)}
    </ul>`;
  }

  async #list() {
    try {
      this.#known = (await ask('/api/scripts', undefined, this.#signal)).scripts;
      this.#draw();
    } catch (error) {
      complain(error);
    }
  }

  /** Shows a stored script, or a new one; what was changed in it before and not saved comes back. */
  async #open(name) {
    let text = kNew;
    if (this.#known.includes(name)) {
      try {
        text = (await ask(`/api/script?${new URLSearchParams({name})}`, undefined, this.#signal)).text;
      } catch (error) {
        complain(error);
        return;
      }
    }
    this.#show(name, text);
  }

  #shown(name, text) {
    this.#opened = name;
    this.#saved = text;
    const draft = draftOf(name);
    this.#name.value = draft?.name ?? name;
    this.#text.value = draft?.text ?? text;
    this.#text.scrollTop = 0;
    this.#title(name ? `${name} · Scripts` : 'New script');
    this.#count();
    if (!name) this.#name.focus({preventScroll: true});
  }

  #changed() {
    const [name, text] = [this.#name.value, this.#text.value];
    if (text === this.#saved && name === this.#opened) dropDraft(this.#opened);
    else keepDraft(this.#opened, {name, text});
    this.#count();
  }

  #revert() {
    dropDraft(this.#opened);
    this.#open(this.#opened);
  }

  #count() {
    this.#lines = this.#text.value.split('\n').length;
    this.#draw();
    this.#scrollLines();
  }

  #scrollLines() {
    this.#place.querySelector('.lines').scrollTop = this.#text.scrollTop;
  }

  #key(event) {
    if (!event.ctrlKey && !event.metaKey) return;
    const wanted = {s: '#script-save', Enter: '.editor .primary'}[event.key];
    if (!wanted) return;
    event.preventDefault();
    this.#place.querySelector(wanted).click();
  }

  #chosenName() {
    const name = this.#name.value.trim();
    if (name) return name;
    this.#name.focus();
    throw new Error('Give the script a name first');
  }

  async #save() {
    const [name, text] = [this.#chosenName(), this.#text.value];
    await ask('/api/script', {name, text});
    toast(`${name} is saved`);
    dropDraft(this.#opened);
    dropDraft(name);
    await this.#keep(name, text);
  }

  #kept(name, text) {
    this.#opened = name;
    this.#saved = text;
    this.#title(`${name} · Scripts`);
    return this.#list();
  }

  async #start() {
    await ask('/api/script/run', {name: this.#chosenName(), text: this.#text.value});
    await this.#run.look();
  }

  async #stop() {
    await ask('/api/script/stop', {});
  }

  async #remove() {
    const [name, text] = [this.#opened, this.#saved];
    await ask('/api/script/delete', {name});
    dropDraft(name);
    toastWithButton(`Deleted ${name}`, 'Undo', async () => {
      try {
        await ask('/api/script', {name, text});
        toast(`${name} is back`);
        await this.#back(name);
      } catch (error) {
        complain(error);
      }
    });
    await this.#list();
    await this.#open('');
  }

  async #cameBack(name) {
    await this.#list();
    await this.#open(name);
  }

  /** Puts the cursor to the line of the error. */
  #goTo(line) {
    if (!line) return;
    const {value} = this.#text;
    const before = value.split('\n').slice(0, line - 1).join('\n').length + (line > 1 ? 1 : 0);
    const end = value.indexOf('\n', before);
    this.#text.focus();
    this.#text.setSelectionRange(before, end < 0 ? value.length : end);
  }
}

const numbers = (count) => Array.from({length: count}, (_, index) => index + 1).join('\n');
