// What was said and what the house has answered, the newest first.
import {html, nothing} from '../kit/html.js';

const marks = {done: ['✓', 'good', 'Done'], unclear: ['?', 'wait', 'Unclear'], unknown: ['?', 'wait', 'Not understood'],
  silence: ['…', 'wait', 'Silence'], deaf: ['!', 'bad', 'Can’t listen'], failed: ['!', 'bad', 'Failed']};

const spoken = ['Or say “yes” or “no”.', 'Or say “the first one” or “the second one”.',
  'Or say “the first one”, “the second one” or “the third one”.'];

/** `choose(command, button)` says one of the choices of a question. What was asked in the room is answered by voice only
 * there. */
export function answer(told, choose) {
  const [sign, style, words] = marks[told.kind] ?? marks.failed;
  const heard = told.heard ? html`<p class="heard"><span class="sr">You said: </span>“${told.heard}”</p>` : nothing;
  return html`<div class=${`answer answer-${style}`}>
    <span class="answer-mark" role="img" aria-label=${words}>${sign}</span>
    <div class="answer-text">${heard}<p class="says">${told.says}</p>
      ${told.note ? html`<p class="quiet">${told.note}</p>` : nothing}
      ${choose && told.choices?.length ? html`<div class="row answer-choices" role="group" aria-label="Which one?">
        ${told.choices.map(({command, label}) => html`<button type="button" @click=${({currentTarget}) => choose(command, currentTarget)}>${label}</button>`)}</div>
        ${told.inRoom ? nothing : html`<p class="quiet">${spoken[told.choices.length - 1] ?? spoken.at(-1)}</p>`}` : nothing}
    </div></div>`;
}

/** The first one is told to who can't see it. */
export const answers = (all, choose) => html`<div class="answer-now" role="status" tabindex="-1">${
  all.length ? answer(all[0], choose) : nothing}</div>${all.length > 1 ? html`<ol class="answers-before" aria-label="Said before">${
  all.slice(1).map((each) => html`<li>${answer(each)}</li>`)}</ol>` : nothing}`;
