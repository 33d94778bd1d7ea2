// The server's own microphone, which listens in the room that the server stands in.
import {html, nothing} from '../kit/html.js';
import {ask, complain, run} from '../kit/server.js';

const words = {starting: 'Trying the microphone…', listening: 'Listening in the room', failed: 'Can’t listen in the room'};
const styles = {starting: 'pill-wait', listening: 'pill-good', failed: 'pill-bad'};

export class Room {
  #signal;
  #draw;
  #heard;
  #told = null;  // as the house has told it last
  #turn = 0;

  /** `draw` is called whenever it looks different, `heard(understanding)` with each thing that was said there since the
   * page was opened. */
  constructor({signal, draw, heard}) {
    this.#signal = signal;
    this.#draw = draw;
    this.#heard = heard;
  }

  async load() {
    await this.#ask();
  }

  async #ask(wish) {
    const mine = ++this.#turn;
    try {
      const told = await ask('/api/voice/room', wish, this.#signal);
      if (mine !== this.#turn) return;
      const before = this.#told;
      this.#told = told;
      if (before && told.heard > before.heard) this.#heard(told.last);
      this.#draw();
    } catch (error) {
      if (wish) throw error;
      complain(error);
    }
  }

  template() {
    if (!this.#told) return nothing;
    const {on, state, trouble} = this.#told;
    const bad = state === 'failed' ? 'hearing-missing' : 'hearing-doubt';
    return html`<button type="button" class="toggle" role="switch" aria-checked=${String(on)} aria-describedby="room-help"
      @click=${(event) => run(event.currentTarget, () => this.#ask({on: !on}))}><span class="toggle-words">Listen in the room, by the server’s own microphone</span><span
      class="toggle-knob" aria-hidden="true"></span></button>
      <p class="quiet" id="room-help">Whoever speaks near the server is then obeyed as you are. The sound stays on this machine, and none of it is kept.</p>
      <div role="status">${on ? html`<p class="hearing-state"><span class=${`pill ${styles[state]}`}>${words[state]}</span></p>` : nothing}${
        trouble ? html`<p class=${bad}>${trouble}</p>` : nothing}${
        state === 'failed' ? html`<p>The house tries again by itself. <button type="button" @click=${(event) =>
          run(event.currentTarget, () => this.#ask({on: true}))}>Try again now</button></p>` : nothing}</div>`;
  }
}
