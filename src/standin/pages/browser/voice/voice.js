// The page "Voice": a talk with the house, and what can be said to it.
import {html, nothing, render, repeat} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {ask, complain, run} from '../kit/server.js';
import {Choices} from './choices.js';
import {draftOf, PatternEditor} from './patterneditor.js';
import {Room} from './room.js';
import {sentences} from './sentences.js';
import {Talk} from './talk.js';

export const voiceView = {name: 'voice', title: 'Voice', mount};

function mount(place, context) {
  return new VoicePage(place, context).load();
}

class VoicePage {
  #place;
  #signal;
  #house;
  #draw;
  #talk;
  #room;
  #told = null;         // as the house has told it last
  #turn = 0;
  #choices = new Map();  // by event
  #editors = new Map();

  constructor(place, {signal, house, keep, kept}) {
    this.#place = place;
    this.#signal = signal;
    this.#house = house;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#talk = new Talk({signal, house, draw: this.#draw, said: kept.said});
    keep(() => ({said: this.#talk.said}));
    this.#room = new Room({signal, draw: this.#draw, heard: (told) => this.#talk.add({...told, inRoom: true}, 'Heard in the room')});
    house.on('voice', () => this.load(), signal);
    house.on('again', () => this.load(), signal);
    house.on('room', () => this.#loadRoom(), signal);
    house.on('state', this.#draw, signal);
    this.#draw();
  }

  get #isOwner() {
    return this.#house.state.user && !this.#house.state.user.guest;
  }

  async #loadRoom() {
    if (this.#isOwner) await this.#room.load();
  }

  async load() {
    const mine = ++this.#turn;
    this.#loadRoom();
    try {
      const told = await ask('/api/voice', undefined, this.#signal);
      if (mine !== this.#turn) return;
      this.#told = told;
      for (const choices of this.#choices.values()) choices.renew();
      this.#openDrafts();
      this.#draw();
      await Promise.all(told.events.map((event) => this.#editors.get(event.id)?.renew(event)));
    } catch (error) {
      complain(error);
    }
  }

  /** What was left unsaved is there again. */
  #openDrafts() {
    if (!this.#isOwner) return;
    for (const event of this.#told.events) {
      if (draftOf(event.id) !== null && !this.#editors.has(event.id)) this.#editorOf(event).open(event);
    }
  }

  #choicesOf({id}) {
    if (!this.#choices.has(id)) this.#choices.set(id, new Choices(id, {signal: this.#signal, draw: this.#draw}));
    return this.#choices.get(id);
  }

  #editorOf({id}) {
    if (!this.#editors.has(id)) {
      const closed = () => this.#focus(id, '.said-title button');
      this.#editors.set(id, new PatternEditor(id, {signal: this.#signal, draw: this.#draw, saved: () => this.load(), closed}));
    }
    return this.#editors.get(id);
  }

  /** The button that was pressed is gone: the focus goes on to what has taken its place. */
  #focus(id, selector) {
    this.#place.querySelector(`[data-ref="event-${id}"] ${selector}`)?.focus();
  }

  #drawn() {
    const {recogniser, events} = this.#told ?? {};
    render(html`<div class="page-head"><h1>Voice</h1></div>
      <div class="voice-parts">
        <section class="talking" aria-label="Talk to the house">${this.#talk.microphone()}${this.#talk.box()}${this.#talk.answers()}</section>
        ${recogniser ? this.#state(recogniser) : nothing}
      </div>
      ${events ? html`<h2 class="said-head" id="said-head">What can be said</h2>${this.#events(events)}` : nothing}`, this.#place);
  }

  #state({state, missing, stale, words, unspoken}) {
    return html`<aside class="hearing" aria-label="How the house listens">
      ${this.#isOwner ? html`<p class="hearing-state">${pillOf(state, missing, stale)}</p>` : nothing}
      ${this.#isOwner && (missing || stale) ? html`<p class="hearing-missing">${missing || stale}</p>
        <p>${missing ? 'What is typed is understood all the same. ' : nothing}The house tries again by itself, and at once when somebody speaks.</p>` : nothing}
      ${this.#isOwner && state === 'ready' ? html`<p class="quiet">It knows ${words.toLocaleString()} words by ear, all of them on this machine.</p>` : nothing}
      ${this.#isOwner && unspoken.length ? html`<details><summary>Names that it can’t hear</summary><p class="quiet">Nobody has told it how these are spoken:
        ${unspoken.join(', ')}</p></details>` : nothing}
      ${this.#isOwner ? [this.#speaks(), this.#room.template()] : html`<p>Guests type here. The owner may speak, too, and change what can be said.</p>`}</aside>`;
  }

  #speaks() {
    const {speaks} = this.#told;
    return html`<button type="button" class="toggle" role="switch" aria-checked=${String(speaks)}
      @click=${(event) => run(event.currentTarget, async () => {
        await ask('/api/voice/speaks', {on: !speaks});
        this.#told.speaks = !speaks;
        this.#draw();
      })}><span class="toggle-words">The house says its answers aloud</span><span class="toggle-knob" aria-hidden="true"></span></button>`;
  }

  #events(events) {
    if (!events.length) {
      return html`<div class="empty"><p>Nothing can be said yet but what the player knows by itself: “stop”, “next”, “volume up” …</p>
        <p>An event with a voice pattern adds to it; the player brings its own when it starts.</p></div>`;
    }
    return html`<ul class="said-events" aria-labelledby="said-head">${repeat(events, ({id}) => id, (event) => this.#event(event))}</ul>`;
  }

  #event(event) {
    const editor = this.#isOwner ? this.#editorOf(event) : null;
    return html`<li class="card said-event" data-ref="event-${event.id}">
      <div class="said-title"><h3>${event.name}</h3>
        ${editor && !editor.isOpen ? html`<button type="button" aria-label="Change ${event.name}" @click=${() => editor.open(event, () => this.#focus(event.id, 'textarea'))}>Change</button>` : nothing}</div>
      <p class="quiet said-to">${event.devices.length ? html`To ${event.devices.join(', ')}` : 'No device listens to it'}</p>
      ${event.faults.length && !editor?.isOpen ? html`<ul class="pattern-faults">${event.faults.map((each) => html`<li>${each}</li>`)}</ul>` : nothing}
      ${event.tree.length ? sentences(event.tree, this.#choicesOf(event)) : html`<p class="quiet">Nothing can be said to it.</p>`}
      ${editor?.isOpen ? editor.template(event) : nothing}</li>`;
  }
}

function pillOf(state, missing, stale) {
  const [words, style] = missing || state === 'failed' ? ['Can’t listen', 'pill-bad']
    : stale ? ['Ready, but not for what is new', 'pill-wait']
    : {ready: ['Ready to listen', 'pill-good'], starting: ['Learning what can be said…', 'pill-wait']}[state] ?? ['Not listening yet', ''];
  return html`<span class=${`pill ${style}`} role="status">${words}</span>`;
}
