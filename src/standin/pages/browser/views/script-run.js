// What a script that runs, or has run, has to say.
import {html} from '../kit/html.js';
import {Timer} from '../kit/lasting.js';
import {ask} from '../kit/server.js';

const kLookAgain = 400;    // milliseconds between looks at a script that runs
const kAfterFailure = 2000;

export class ScriptRun {
  #signal;
  #draw;
  #run = -1;
  #next = 0;
  #turn = 0;
  #timer;
  #told = {};
  #output = '';

  /** `draw` is called whenever there is more to show. */
  constructor({signal, draw}) {
    this.#signal = signal;
    this.#draw = draw;
    this.#timer = new Timer(signal, () => this.look());
  }

  get running() {
    return Boolean(this.#told.running);
  }

  /** Looks now, and again while the script runs. */
  async look() {
    const mine = ++this.#turn;
    this.#timer.stop();
    try {
      let told = await this.#ask(this.#next);
      if (told.run !== this.#run && this.#next > 0) told = await this.#ask(0);
      if (mine === this.#turn) this.#take(told);
    } catch {
      this.#again(mine, kAfterFailure);
      return;
    }
    if (this.running) this.#again(mine, kLookAgain);
  }

  #ask(from) {
    return ask(`/api/script/run?from=${from}`, undefined, this.#signal);
  }

  #again(mine, time) {
    if (mine === this.#turn) this.#timer.start(time);
  }

  #take(told) {
    if (told.run !== this.#run) this.#output = '';
    this.#run = told.run;
    this.#told = told;
    this.#output += told.output ?? '';
    this.#next = told.next;
    this.#draw();
  }

  /** `goTo(line)` leads to the line of an error. */
  template(goTo) {
    const {run, running, name, error, line} = this.#told;
    const [words, style] = !run ? ['', ''] : running ? [`${name} is running…`, 'pill-wait']
      : error ? [`${name} failed`, 'pill-bad'] : [`${name} has ended`, 'pill-good'];
    return html`
      <div class="output-head"><h2>Output</h2><span class="pill ${style}" role="status">${words}</span></div>
      <button type="button" class="script-error" ?hidden=${!error} @click=${() => goTo(line)}>${error}</button>
      <pre class="output" tabindex="0" role="log" aria-label="Output" .textContent=${this.#output}></pre>`;
  }
}
