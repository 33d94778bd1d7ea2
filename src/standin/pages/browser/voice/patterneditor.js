// Editing what can be said to an event.
import {Drafts} from '../kit/drafts.js';
import {html, live, nothing} from '../kit/html.js';
import {ask, complain, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

const drafts = new Drafts('voice-drafts');

/** What was left unsaved, {text, base}, with the version of the house's text that it began from; null where nothing was. */
export const draftOf = (event) => drafts.of(event);

export class PatternEditor {
  #id;
  #signal;
  #draw;
  #saved;
  #closed;
  #text = null;    // while it is open
  #stored = '';    // the text as the house has it
  #version = '';   // of that
  #base = '';      // the version that the text here began from
  #clash = false;  // somebody else has saved another one meanwhile
  #faults = null;  // of what was saved last; null before that
  #kept = true;    // false when the browser keeps no more drafts

  /** `draw` is called whenever it looks different, `saved` when the house has another pattern, `closed`
   * when it is gone. */
  constructor(id, {signal, draw, saved, closed}) {
    this.#id = id;
    this.#signal = signal;
    this.#draw = draw;
    this.#saved = saved;
    this.#closed = closed;
  }

  get isOpen() {
    return this.#text !== null;
  }

  /** The whole text, which the page may not have been told. `shown` is called once it is there. */
  async open(event, shown = () => {}) {
    try {
      ({pattern: this.#stored, version: this.#version} = await this.#whole(event));
      const draft = draftOf(this.#id);
      this.#text = draft?.text ?? this.#stored;
      this.#base = draft?.base ?? this.#version;
      this.#draw();
      shown();
    } catch (error) {
      complain(error);
    }
  }

  async #whole(event) {
    if ('pattern' in event) return event;
    return ask(`/api/voice/pattern?${new URLSearchParams({event: this.#id})}`, undefined, this.#signal);
  }

  /** The house may have another text by now; what somebody has changed here stays. */
  async renew(event) {
    if (!this.isOpen) return;
    const {pattern, version} = await this.#whole(event);
    if (!this.isOpen || pattern === this.#stored) return;
    if (this.#text === this.#stored) {
      this.#text = pattern;
      this.#base = version;
    }
    this.#stored = pattern;
    this.#version = version;
    this.#faults = null;
    this.#draw();
  }

  close() {
    this.#text = this.#faults = null;
    this.#clash = false;
    this.#draw();
    this.#closed();
  }

  #changed(text) {
    this.#text = text;
    this.#faults = null;
    if (text === this.#stored) drafts.drop(this.#id);
    else this.#kept = drafts.keep(this.#id, {text, base: this.#base});
    this.#draw();
  }

  #discard() {
    drafts.drop(this.#id);
    this.#text = this.#stored;
    this.#base = this.#version;
    this.#faults = null;
    this.#clash = false;
    this.#draw();
  }

  /** `base`: the version in whose place it is put. */
  async #save(name, base = this.#base) {
    const text = this.#text;
    let told;
    try {
      told = await ask('/api/voice/pattern', {event: this.#id, pattern: text, base});
    } catch (error) {
      if (error.status !== 409) throw error;
      await this.#saved();  // what the other one has saved
      this.#clash = true;
      this.#draw();
      return;
    }
    const {faults, version} = told;
    this.#stored = text;
    this.#base = this.#version = version;
    this.#clash = false;
    if (this.#text === text) drafts.drop(this.#id);
    this.#faults = faults;
    toast(faults.length ? `${name}: saved, with ${faults.length === 1 ? 'a fault' : `${faults.length} faults`}` : `${name}: saved`);
    await this.#saved();
    if (!faults.length && this.#text === text) this.close();
    else this.#draw();
  }

  #clashTemplate(name) {
    return html`<div class="pattern-clash" role="alert"><p>Somebody else has changed this meanwhile. Yours is kept, but not saved. It is now:</p>
      <p><code class="pattern-theirs">${this.#stored}</code></p>
      <div class="row"><button type="button" @click=${({currentTarget}) => run(currentTarget, () => this.#save(name, this.#version))}>Save mine instead</button>
        <button type="button" @click=${() => this.#discard()}>Take theirs</button></div></div>`;
  }

  template(event) {
    const id = `pattern-${this.#id}`;
    const faults = this.#faults ?? (this.#text === this.#stored ? event.faults : []);
    const unsaved = this.#text !== this.#stored;
    return html`<form class="pattern" @submit=${(submitted) => {
      submitted.preventDefault();
      run(submitted.currentTarget.querySelector('.primary'), () => this.#save(event.name));
    }}>
      <label for=${id}>What can be said</label>
      <textarea class="pattern-text" id=${id} rows="4" spellcheck="false" autocapitalize="off" aria-describedby="${id}-help ${id}-faults"
        aria-invalid=${faults.length ? 'true' : nothing} .value=${live(this.#text)}
        @input=${(typed) => this.#changed(typed.target.value)}></textarea>
      <div id="${id}-faults" role="status">${faults.length ? html`<ul class="pattern-faults">${faults.map((each) => html`<li>${each}</li>`)}</ul>` : nothing}</div>
      <p class="quiet" id="${id}-help"><code>(this|that)</code> is a choice, <code>[please]</code> may be left out; both may stand within each other.</p>
      ${event.anew ? html`<p class="quiet">The player writes this anew whenever its lists are refreshed.</p>` : nothing}
      ${this.#clash ? this.#clashTemplate(event.name) : nothing}
      <div class="row"><button class="primary" type="submit">Save</button>
        ${unsaved ? html`<button type="button" @click=${() => this.#discard()}>Discard changes</button>` : nothing}
        <button type="button" @click=${() => this.close()}>Close</button>
        <span class="unsaved" role="status">${!unsaved ? '' : this.#kept ? 'Not saved yet' : 'Not saved yet, and this browser can’t keep it'}</span></div>
    </form>`;
  }
}
