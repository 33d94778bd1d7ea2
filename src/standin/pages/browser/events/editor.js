// One event: what it is called, when it runs, if it does, what it does, and how to try it out.
import {html, live, render} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {ask, complain, run} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {Clash} from './clash.js';
import {addressOf, bare, drafts, freshRule, fromDraft, opened, textOf} from './eventdrafts.js';
import {takeBack} from './eventlist.js';
import {Parts} from './parts.js';
import {Place} from './place.js';
import {FilledTemplate} from './filling.js';
import {Trying} from './trying.js';
import {wordsOf} from './words.js';

const kAgain = [['leave', 'leave it alone'], ['restart', 'begin anew'], ['queue', 'run once more after it'], ['together', 'run it beside']];

/** `name` is the draft's: an event's number, "new", or "new/" and a template's name. */
export async function editorView(place, context, name) {
  await new Editor(place, context, name).begin();
}

class Editor {
  rule = freshRule();
  place;
  signal;
  draw;
  edit;
  #house;
  #title;
  #name;            // of the draft
  #base = '';       // the stored rule's text
  #loaded = false;
  #gone = false;    // it has been deleted
  #newer = false;   // somebody has saved another version
  #clash = null;
  #problem = '';
  #form = null;     // what is being entered in a form of the plug-in
  #filled = null;   // the template that filled it
  #lists;
  #trying;
  #picks = new Map();
  #kept;
  #goOn;

  constructor(place, {signal, house, title, keep, kept}, name) {
    this.place = place;
    this.signal = signal;
    this.draw = whileShown(signal, () => this.#drawn());
    this.#goOn = whileShown(signal, (fresh) => this.#goesOn(fresh));
    this.edit = !house.state.user.guest;
    this.#house = house;
    this.#title = title;
    this.#name = name;
    this.#kept = kept;
    this.tools = {house, signal, choices: {devices: [], scripts: [], events: []}, place: new Place({signal, draw: () => this.draw()}),
      storedWords: new Map(), pick: (part, key, make) => this.#pick(part, key, make), draw: () => this.draw()};
    this.#lists = {triggers: new Parts('triggers', this), conditions: new Parts('conditions', this), actions: new Parts('actions', this)};
    this.#trying = new Trying(this, {signal, house});
    keep(() => ({}));
    house.on('event', ({id}) => { if (!id || id === this.id) this.#look(); }, signal);
    house.on('again', () => this.#look(), signal);
    place.addEventListener('keydown', (event) => this.#key(event), {signal});
  }

  get id() {
    return this.rule.id ?? 0;
  }

  get dirty() {
    return textOf(this.rule) !== this.#base;
  }

  draft() {
    return bare(this.rule);
  }

  /** A field that is made once for a part, so that it keeps what is typed in it. */
  #pick(part, key, make) {
    const known = this.#picks.get(part.key) ?? new Map();
    this.#picks.set(part.key, known);
    if (!known.has(key)) known.set(key, make());
    return known.get(key);
  }

  async begin() {
    const id = Number(this.#name) || 0;
    const draft = this.edit ? drafts.of(this.#name) : null;
    try {
      const [stored] = await Promise.all([id ? ask(`/api/event?id=${id}`, undefined, this.signal) : freshRule(), this.#readChoices()]);
      this.#take(opened(stored), draft);
    } catch (error) {
      if (error.status !== 404) complain(error);
      else if (draft) this.#takeLost(draft);
      else this.#gone = true;
    }
    this.#loaded = true;
    if (!id && this.edit) this.#filled = FilledTemplate.of(this.#name, draft, this);
    if (this.#filled && !draft) this.#filled.begin();
    this.draw();
    if (draft?.form) this.#lists[draft.form.list]?.resume(draft.form);
    this.#trying.look();
    if (!id && !draft && !this.#filled) this.place.querySelector('#event-name')?.focus({preventScroll: true});
  }

  /** An event can be looked at and saved without them. */
  async #readChoices() {
    try {
      this.tools.choices = await ask('/api/event/choices', undefined, this.signal);
    } catch (error) {
      complain(error);
    }
  }

  #take(stored, draft) {
    this.#base = textOf(stored);
    this.rule = draft ? fromDraft(draft.rule) : stored;
    for (const [text, words] of draft?.words ?? []) this.tools.storedWords.set(text, words);
    this.#newer = Boolean(draft && stored.version && draft.rule.version !== stored.version);
    this.#form = draft?.form ?? null;
  }

  /** An event that has been deleted while its draft was kept is a new one. */
  #takeLost(draft) {
    const {id, version, ...rule} = draft.rule;
    this.rule = fromDraft(rule);
    this.#problem = 'This event has been deleted meanwhile. Saving makes it anew.';
  }

  /** What is stored has changed: shown at once where nothing was changed here. */
  async #look() {
    if (!this.id || !this.#loaded || this.#clash) return;
    this.#trying.look();
    try {
      const stored = opened(await ask(`/api/event?id=${this.id}`, undefined, this.signal));
      if (stored.version === this.rule.version) {
        this.#reword(stored);
        return;
      }
      if (this.dirty) {
        this.#newer = true;
      } else {
        this.rule = stored;
        this.#base = textOf(stored);
        for (const list of Object.values(this.#lists)) list.reset();
      }
      this.draw();
    } catch (error) {
      if (error.status !== 404) return;
      this.#gone = !this.dirty;
      if (this.dirty) this.#takeLost({rule: this.rule});
      this.draw();
    }
  }

  /** The rule is another than before; `byHand` unless a template did it. */
  changed(byHand = true) {
    if (byHand) this.#filled?.touched();
    this.#problem = '';
    this.#trying.forget();
    this.#keep();
    this.draw();
  }

  /** What is being entered in a form of the plug-in; null when there is none. */
  keepForm(form) {
    this.#form = form;
    this.#keep();
  }

  #keep() {
    if (!this.edit || !this.#loaded) return;
    if (!this.dirty && !this.#form) {
      drafts.drop(this.#name);
      return;
    }
    if (!drafts.keep(this.#name, this.#draft())) this.#problem = 'This browser keeps no more drafts: save before you leave the page';
  }

  #draft() {
    return {rule: this.rule, form: this.#form, words: [...this.tools.storedWords], template: this.#filled?.state()};
  }

  #discard() {
    for (const list of Object.values(this.#lists)) list.reset();
    drafts.drop(this.#name);
    if (!Number(this.#name)) {
      location.hash = '#events';
      return undefined;
    }
    this.#newer = false;
    this.#problem = '';
    this.#form = null;
    return this.begin();
  }

  async #save() {
    const name = this.place.querySelector('#event-name');
    if (!this.rule.name.trim()) {
      name.focus();
      this.#say('Give the event a name first');
      return;
    }
    const lacking = Object.values(this.#lists).find((list) => list.missing());
    if (lacking) {
      lacking.showMissing();
      this.#say('Something is missing');
      this.place.querySelector('.part-open .part-words')?.focus();
      return;
    }
    try {
      const {id, version} = await ask('/api/event/save', this.draft());
      await this.#saved(id, version);
    } catch (error) {
      if (error.status === 409 && error.answer.theirs) this.#meet(error.answer.theirs);
      else if (error.status === 404) this.#takeLost({rule: this.rule});
      else this.#refused(error);
      this.draw();
    }
  }

  /** Leads to what the server has refused. */
  #refused(error) {
    const [list, at] = (error.answer?.place ?? '').split('/');
    this.#lists[list]?.show(Number(at));
    this.#say(error.message);
    const wrong = list === 'name' ? '#event-name' : '.part-open .part-words';
    this.place.querySelector(wrong)?.focus();
  }

  #say(problem) {
    this.#problem = problem;
    this.draw();
  }

  async #saved(id, version) {
    const fresh = !this.rule.id;
    this.rule.id = id;
    this.rule.version = version;
    this.#base = textOf(this.rule);
    this.#newer = false;
    this.#problem = '';
    this.#clash = null;
    drafts.drop(this.#name);
    if (this.#form) drafts.keep(id, this.#draft());  // what is still being entered in a form goes on there
    toast(`“${this.rule.name}” is saved`);
    await this.#filled?.savePartner(id);
    await this.#goOn(fresh);
  }

  /** The page of what has been saved. */
  #goesOn(fresh) {
    if (fresh) return location.replace(addressOf(this.rule.id));
    this.draw();
    return this.#readAgain();
  }

  /** With the words of what was saved. */
  async #readAgain() {
    try {
      this.#reword(opened(await ask(`/api/event?id=${this.id}`, undefined, this.signal)));
    } catch { /* in the page's own words then */ }
  }

  /** The player's words for a part may come later than the part itself. */
  #reword(stored) {
    if (this.dirty || textOf(stored) !== this.#base) return;
    for (const list of ['triggers', 'conditions', 'actions']) {
      this.rule[list].forEach((part, at) => { part.shown = stored[list][at].shown; });
    }
    this.draw();
  }

  async #meet(theirs) {
    let stored = theirs;
    try {
      stored = await ask(`/api/event?id=${theirs.id}`, undefined, this.signal);  // with its words
    } catch { /* without them then */ }
    this.#clash = new Clash(this.rule, opened(stored), {draw: () => this.draw(),
      words: (list, part) => wordsOf(list, part, this.tools),
      back: () => { this.#clash = null; this.draw(); },
      decide: (rule) => {
        this.rule = rule;
        this.#clash = null;
        for (const list of Object.values(this.#lists)) list.reset();
        this.changed();
        return this.#save();
      }});
    this.draw();
    scrollTo({top: 0});
    this.place.querySelector('.clash')?.focus({preventScroll: true});
  }

  async #remove() {
    const {id, version, name} = this.rule;
    let step = '';
    try {
      step = (await ask('/api/event/delete', {id, version})).undo;
    } catch (error) {
      if (error.status !== 409) throw error;
      this.#newer = true;
      this.draw();
      throw new Error('It has been changed meanwhile: look at it before you delete it');
    }
    drafts.drop(this.#name);
    this.#base = textOf(this.rule);
    location.hash = '#events';
    toastWithButton(`Deleted “${name}”`, 'Undo', () => takeBack(step));
  }

  #key(event) {
    if (!(event.ctrlKey || event.metaKey) || event.key !== 's' || !this.edit) return;
    event.preventDefault();
    this.place.querySelector('#event-save')?.click();
  }

  #drawn() {
    if (!this.#loaded) return;
    this.#title(`${this.rule.name.trim() || 'New event'} · Events`);
    render(this.#gone ? this.#goneTemplate() : this.#clash ? this.#clash.template() : this.#template(), this.place);
  }

  #goneTemplate() {
    return html`<div class="page-head"><div class="head-words"><a class="back" href="#events" aria-label="Back to the events">‹</a>
      <h1>Event</h1></div></div><p class="empty">This event is no longer there. “Undo” above the events brings back what was
      deleted last.</p>`;
  }

  #template() {
    const {rule, edit} = this;
    const set = (name) => (event) => {
      rule[name] = event.target.value;
      this.changed();
    };
    return html`<div class="page-head"><div class="head-words"><a class="back" href="#events" aria-label="Back to the events">‹</a>
        <h1>${rule.name.trim() || 'New event'}</h1></div>
        <div class="tools"><button type="button" role="switch" class="toggle" aria-checked=${String(rule.on)} ?disabled=${!edit}
            @click=${() => { rule.on = !rule.on; this.changed(); }}><span class="toggle-knob" aria-hidden="true"></span>On</button>
          ${this.id ? html`<a class="button" href=${`#events/${this.id}/history`}>History</a>` : ''}</div></div>
      ${this.#newer ? html`<div class="notice-bar" role="status"><p>Somebody has saved another version meanwhile. Saving shows both.</p></div>` : ''}
      <div class="event-parts"><div class="event-rule">
        ${this.#filled?.template() ?? ''}
        <div class="event-names">
          <label class="field">Name<input id="event-name" maxlength="200" autocomplete="off" ?readonly=${!edit} .value=${live(rule.name)}
            @input=${set('name')}></label>
          <label class="field">Group<input id="event-group" maxlength="200" autocomplete="off" ?readonly=${!edit} list="event-groups"
            placeholder=${edit ? 'None' : ''} .value=${live(rule.group)} @input=${set('group')}></label>
          <datalist id="event-groups">${this.#groups().map((group) => html`<option value=${group}></option>`)}</datalist></div>
        ${this.#section('triggers', 'When', 'any of these happens', 'Nothing triggers it: it runs when you, a script or another event asks for it.')}
        ${this.#section('conditions', 'If', '', 'No conditions: it always runs.')}
        ${this.#section('actions', 'Do', 'in this order', 'It does nothing yet.')}
        <label class="field again">When it is triggered while it runs<select ?disabled=${!edit} @change=${set('again')}>
          ${kAgain.map(([value, words]) => html`<option value=${value} .selected=${live(value === rule.again)}>${words}</option>`)}</select></label>
        ${this.#filled?.partnerTemplate() ?? ''}
        ${edit ? this.#ending() : ''}
      </div>${this.#trying.template()}</div>`;
  }

  #groups() {
    return [...new Set(this.tools.choices.events.map(({group}) => group).filter(Boolean))];
  }

  #section(list, title, words, empty) {
    const {rule} = this;
    const anyOrAll = list === 'conditions' && rule.conditions.length > 1;
    return html`<section class="event-section" aria-labelledby=${`head-${list}`}><div class="section-head"><h2 id=${`head-${list}`}>${title}</h2>
      ${anyOrAll ? html`<select aria-label="How many conditions must hold" ?disabled=${!this.edit} @change=${(event) => {
        rule.any = event.target.value === 'any';
        this.changed();
      }}><option value="all" .selected=${live(!rule.any)}>all of these hold</option><option value="any" .selected=${live(rule.any)}>any of these holds</option></select>`
        : rule[list].length > 1 ? html`<span class="quiet">${words}</span>` : ''}</div>
      ${this.#lists[list].template({edit: this.edit, empty})}</section>`;
  }

  #ending() {
    const {dirty} = this;
    return html`<div class="event-end"><p class="problem" role="alert" ?hidden=${!this.#problem}>${this.#problem}</p>
      <div class="row"><button type="button" class="primary" id="event-save" @click=${(event) => run(event.currentTarget, () => this.#save())}>Save</button>
        <button type="button" ?hidden=${!dirty && !this.#form} @click=${() => this.#discard()}>Discard ${this.id ? 'changes' : 'draft'}</button>
        <button type="button" class="danger" ?hidden=${!this.id} @click=${(event) => run(event.currentTarget, () => this.#remove())}>Delete</button>
        <span class="unsaved" role="status">${dirty ? 'Not saved yet' : ''}</span></div></div>`;
  }
}
