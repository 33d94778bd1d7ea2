// Trying an event out: what it would do, what it does, and what has come of it last.
import {html} from '../kit/html.js';
import {Timer} from '../kit/lasting.js';
import {ask, complain, run} from '../kit/server.js';
import {evaluationDetails, evaluationLine, seenConditions} from './evaluation.js';

const kTogether = 150;  // milliseconds in which changes are read once

export class Trying {
  #editor;
  #signal;
  #answer = null;  // of "What would happen?"
  #last = null;    // the newest evaluation

  /** `editor`: {id, dirty, edit, draft(), draw()}. */
  constructor(editor, {signal, house}) {
    this.#editor = editor;
    this.#signal = signal;
    const soon = new Timer(signal, () => this.look());
    house.on('event', (event) => { if (event.id === editor.id) soon.ensure(kTogether); }, signal);
    house.on('again', () => this.look(), signal);
  }

  async look() {
    const {id} = this.#editor;
    if (!id) return;
    try {
      const {evaluations} = await ask(`/api/event/history?id=${id}&count=1`, undefined, this.#signal);
      this.#last = evaluations[0] ?? null;
      this.#editor.draw();
    } catch (error) {
      complain(error);
    }
  }

  /** What was foreseen for another rule is nothing for this one. */
  forget() {
    this.#answer = null;
  }

  async #would() {
    const {id, dirty} = this.#editor;
    this.#answer = await ask('/api/event/dry', id && !dirty ? {id} : {id: id || 0, rule: this.#editor.draft()});
    this.#editor.draw();
  }

  async #act(action) {
    this.#answer = null;
    await ask(`/api/event/${action}`, {id: this.#editor.id});
    await this.look();
  }

  template() {
    const {id, dirty, edit} = this.#editor;
    const running = this.#last?.outcome === 'running';
    const act = (work) => (event) => run(event.currentTarget, work);
    return html`<section class="trying" aria-labelledby="trying-head"><h2 id="trying-head">Try it</h2>
      ${edit ? html`<div class="row">
        <button type="button" @click=${act(() => this.#would())}>What would happen?</button>
        <button type="button" ?disabled=${!id} @click=${act(() => this.#act('trigger'))}>As if triggered</button>
        <button type="button" ?disabled=${!id} @click=${act(() => this.#act('run'))}>Run the actions</button>
        ${running ? html`<button type="button" class="danger" @click=${act(() => this.#act('stop'))}>Stop</button>` : ''}</div>
        <p class="quiet try-hint">${!id ? 'An event runs once it is saved. “What would happen?” only asks.'
          : dirty ? 'What runs is the event as it is saved. “What would happen?” asks for it as it stands here.'
            : '“Run the actions” asks no condition; “As if triggered” does.'}</p>` : ''}
      <div role="status">${this.#answer ? this.#foreseen() : ''}</div>
      ${this.#last && !this.#answer ? html`<div class="last-run"><p>${evaluationLine(this.#last)}</p>
        <div class="evaluation">${evaluationDetails(this.#last)}</div>
        <p><a href=${`#events/${id}/history`}>History</a></p></div>` : ''}
      ${id && !this.#last && !this.#answer ? html`<p class="quiet">It has not been triggered yet.</p>` : ''}</section>`;
  }

  #foreseen() {
    const {conditions, would, actions, why} = this.#answer;
    return html`<div class="foreseen ${would ? 'would' : 'wouldnt'}">
      <div class="foreseen-head"><p><strong>${would ? 'It would run.' : 'It would not run.'}</strong> ${why}</p>
        <button type="button" class="round plain" aria-label="Close the answer" @click=${() => {
          this.#answer = null;
          this.#editor.draw();
        }}>✕</button></div>
      ${seenConditions(conditions)}
      ${would && actions.length ? html`<h4>Then</h4><ol class="then">${actions.map((words) => html`<li>${words}</li>`)}</ol>` : ''}
      <p class="quiet">Nothing has been done.</p></div>`;
  }
}
