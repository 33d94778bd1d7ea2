// The house's events: what each does, whether it is on, and what has come of it last.
import {html, live, nothing, render, repeat} from '../kit/html.js';
import {later, Timer, whileShown} from '../kit/lasting.js';
import {folded} from '../kit/picklist.js';
import {ask, complain} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {sentence, Turns} from '../kit/turns.js';
import {drafts, nameOfDraft} from './eventdrafts.js';
import {eventRow} from './eventrow.js';
import {templateCards} from './templatecards.js';

const kFirst = 40;       // rows that are drawn at once; the others follow while the page is idle
const kMore = 120;
const kTogether = 200;   // milliseconds in which changes are read once
const kPause = 1500;     // between two readings

export async function listView(place, context) {
  await new EventList(place, context).begin();
}

/** Takes a deletion back, which undoing calls `step`, unless something else has been changed since. */
export async function takeBack(step) {
  try {
    const {undo} = await ask('/api/events');
    if (undo !== step) throw new Error('Events have been changed since: “Undo” above the events goes back step by step');
    toast(sentence((await ask('/api/events/undo', {})).done));
  } catch (error) {
    toast(error.message, 'bad');
  }
}

class EventList {
  #place;
  #signal;
  #draw;
  #house;
  #edit;
  #events = [];
  #found = [];
  #read = false;
  #sought;
  #shown;
  #turns;
  #last = 0;
  #changed = new Map();  // switches that were pressed, until the server's answer is read
  #drawing = false;

  constructor(place, {signal, house, keep, kept}) {
    this.#place = place;
    this.#signal = signal;
    this.#draw = whileShown(signal, () => this.#drawn());
    this.#house = house;
    this.#edit = !house.state.user.guest;
    this.#sought = kept.sought ?? '';
    this.#shown = Math.max(kFirst, kept.shown ?? 0);
    keep(() => ({sought: this.#sought, shown: this.#above()}));
    if (this.#edit) this.#turns = new Turns((action) => this.#turn(action), () => this.#draw(), signal);
    const soon = new Timer(signal, () => this.look());
    house.on('event', () => soon.ensure(Math.max(kTogether, this.#last + kPause - Date.now())), signal);
    house.on('again', () => this.look(), signal);
    this.#draw();
  }

  async begin() {
    await this.look();
  }

  /** How many rows lead to the end of what is seen. */
  #above() {
    return [...this.#place.querySelectorAll('.event')].filter((row) => row.getBoundingClientRect().top < innerHeight).length;
  }

  async look() {
    this.#last = Date.now();
    try {
      const answer = await ask('/api/events', undefined, this.#signal);
      this.#events = answer.events;
      this.#changed.clear();
      this.#read = true;
      this.#find();
      this.#turns?.show({undo: named(answer.undo), redo: named(answer.redo)});
      this.#draw();
      this.#drawMore();
    } catch (error) {
      complain(error);
    }
  }

  #find() {
    const words = folded(this.#sought).split(/\s+/).filter(Boolean);
    this.#found = !words.length ? this.#events : this.#events.filter((event) => {
      event.folded ??= folded([event.name, event.group, ...event.when, ...event.if, ...event.do].join(' '));
      return words.every((word) => event.folded.includes(word));
    });
  }

  /** The rows below those in sight come while nothing else is to be done; they change nothing above. */
  #drawMore() {
    if (this.#shown >= this.#found.length || this.#drawing) return;
    this.#drawing = true;
    requestAnimationFrame(() => later(this.#signal, () => {
      this.#drawing = false;
      this.#shown += Math.max(kMore, Math.floor(this.#shown / 2));
      this.#draw();
      this.#drawMore();
    }));
  }

  #seek(text) {
    this.#sought = text;
    this.#find();
    this.#draw();
    this.#drawMore();
  }

  /** A step that somebody else's change stands in the way of is only forgotten when the reader says so. */
  async #turn(action) {
    const [, skip, step] = /^(skip-)?(.*)$/.exec(action);
    try {
      const answer = await ask(`/api/events/${step}`, skip ? {skip: true} : {});
      this.#turns.stuck(null);
      if (answer.done) toast(sentence(answer.done));
      await this.look();
    } catch (error) {
      if (error.status === 409) this.#turns.stuck(error.message, step);
      else complain(error);
    }
  }

  async #switch(event) {
    const on = !(this.#changed.get(event.id) ?? event.on);
    this.#changed.set(event.id, on);
    this.#draw();
    try {
      await ask('/api/event/switch', {id: event.id, on});
    } catch (error) {
      complain(error);
    }
    await this.look();
  }

  async #act(action, event) {
    await ask(`/api/event/${action}`, {id: event.id});
    if (action === 'run') toast(`The actions of “${event.name}” run`);
    await this.look();
  }

  #drawn() {
    const none = this.#read && !this.#events.length;
    render(html`<div class="page-head"><h1>Events</h1><div class="tools event-bar">${this.#edit ? this.#turns.buttons() : ''}
        <a class="button" href="#events/history">History</a>
        ${this.#edit ? html`<a class="button" href="#events/templates">Templates</a>
          <a class="button primary" href="#events/new">New event</a>` : ''}</div></div>
      ${this.#edit ? [this.#turns.notice(), this.#unsaved()] : ''}
      ${none ? this.#empty() : this.#list()}`, this.#place);
  }

  #empty() {
    if (!this.#edit) return html`<p class="empty">There are no events yet. The owner of the house makes them.</p>`;
    return html`<div class="events-none"><h2>When something happens, let the house act</h2>
      <p>An event says when it runs, under which conditions, and what it does. Begin with one of these, or with
        <a href="#events/new">an empty one</a>.</p>${templateCards()}</div>`;
  }

  /** Drafts by name, those of events with the event's row too. */
  #unsaved() {
    const all = Object.entries(drafts.all());
    if (!all.length) return '';
    return html`<div class="drafts" role="group" aria-label="Not saved yet"><span>Not saved yet:</span>
      ${all.map(([name, draft]) => html`<a href=${`#events/${name}`}>${nameOfDraft(draft)}</a>`)}</div>`;
  }

  #list() {
    const rows = this.#found.slice(0, this.#shown);
    const groups = Map.groupBy ? Map.groupBy(rows, ({group}) => group) : groupsOf(rows);
    const count = this.#found.length;
    const words = !this.#read ? 'Loading…' : this.#sought ? `${count.toLocaleString()} of ${this.#events.length.toLocaleString()} events`
      : `${count.toLocaleString()} event${count === 1 ? '' : 's'}`;
    const unsaved = this.#edit ? drafts.all() : {};
    return html`<div class="library-search"><input type="search" id="event-search" placeholder="Search events" aria-label="Search events"
          autocomplete="off" .value=${live(this.#sought)} @input=${(event) => this.#seek(event.target.value)}>
        <p class="quiet library-count" role="status">${words}</p></div>
      ${this.#read && !count ? html`<p class="empty">No event has “${this.#sought}” in its name or in what it does.</p>` : ''}
      <div class="event-groups">${repeat([...groups], ([group]) => group, ([group, events]) => html`<section class="event-group"
        aria-label=${group || 'Events without a group'}>${group ? html`<h2>${group}</h2>` : nothing}
        <ul class="events">${repeat(events, ({id}) => id, (event) => eventRow(event, {edit: this.#edit, on: this.#changed.get(event.id) ?? event.on,
          draft: event.id in unsaved, flip: () => this.#switch(event), act: (action) => this.#act(action, event)}))}</ul></section>`)}</div>`;
  }
}

/** A step as its button names it. */
const named = (step) => step && step[0].toLowerCase() + step.slice(1);

function groupsOf(rows) {
  const groups = new Map();
  for (const row of rows) groups.set(row.group, [...groups.get(row.group) ?? [], row]);
  return groups;
}
