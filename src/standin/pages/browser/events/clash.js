// Two versions of one event side by side, when somebody else has saved another one meanwhile.
import {html, live} from '../kit/html.js';
import {textOf} from './eventdrafts.js';

const kAgain = {leave: 'leave it alone', restart: 'begin anew', queue: 'run again after', together: 'run beside it'};

const kParts = [
  ['name', 'Name', ['name']], ['group', 'Group', ['group']], ['on', 'On or off', ['on']], ['triggers', 'When', ['triggers']],
  ['conditions', 'If', ['any', 'conditions']], ['actions', 'Do', ['actions']], ['again', 'Triggered again', ['again']],
];

export class Clash {
  #mine;
  #theirs;
  #words;
  #taken = new Set();  // the parts that theirs gives
  #hear;

  /** `words(list, part)` words a part; `decide(rule)` gets what the reader has put together, `back()` that nothing is. */
  constructor(mine, theirs, {words, decide, back, draw}) {
    this.#mine = mine;
    this.#theirs = theirs;
    this.#words = words;
    this.#hear = {decide, back, draw};
  }

  #differs(properties) {
    return textOf(this.#mine, properties) !== textOf(this.#theirs, properties);
  }

  #shown(rule, part) {
    if (part === 'on') return rule.on ? 'on' : 'off';
    if (part === 'again') return kAgain[rule.again] ?? rule.again;
    if (!Array.isArray(rule[part])) return rule[part] || '–';
    return rule[part].length ? html`${part === 'conditions' && rule[part].length > 1 ? html`<span class="quiet">${rule.any ? 'any of' : 'all of'}</span>` : ''}
      <ol>${rule[part].map((each) => html`<li>${this.#words(part, each)}</li>`)}</ol>` : '–';
  }

  #decide() {
    const rule = {...this.#mine, version: this.#theirs.version};
    for (const [part, , properties] of kParts) {
      if (this.#taken.has(part)) for (const name of properties) rule[name] = this.#theirs[name];
    }
    this.#hear.decide(rule);
  }

  template() {
    const differing = kParts.filter(([, , properties]) => this.#differs(properties));
    const side = (part, theirs, words, shown) => html`<label class="clash-side">
      <span class="clash-choice"><input type="radio" name=${`clash-${part}`} .checked=${live(this.#taken.has(part) === theirs)} @change=${() => {
        if (theirs) this.#taken.add(part);
        else this.#taken.delete(part);
        this.#hear.draw();
      }}>${words}</span><span class="clash-shown">${shown}</span></label>`;
    return html`<section class="clash" role="group" aria-labelledby="clash-head" tabindex="-1">
      <h2 id="clash-head">It was changed meanwhile</h2>
      <p>Somebody has saved this event since you opened it. ${differing.length
        ? 'Choose for each part whose version is to stay.' : 'Both versions say the same.'}</p>
      ${differing.map(([part, title]) => html`<fieldset class="clash-part"><legend>${title}</legend>
        ${side(part, false, 'Yours', this.#shown(this.#mine, part))}
        ${side(part, true, 'The saved one', this.#shown(this.#theirs, part))}</fieldset>`)}
      <div class="row"><button type="button" class="primary" @click=${() => this.#decide()}>Save it like this</button>
        <button type="button" @click=${() => { this.#taken = new Set(differing.map(([part]) => part)); this.#hear.draw(); }}>Take all of theirs</button>
        <button type="button" @click=${() => this.#hear.back()}>Back to the editor</button></div></section>`;
  }
}
