// An event in the list.
import {html, nothing} from '../kit/html.js';
import {run} from '../kit/server.js';
import {outcomePill, timeOf, whenWords} from './outcomes.js';
import {within} from './words.js';

const line = (word, texts, between) => (texts.length ? html`<dt>${word}</dt><dd>${
  texts.map((text, at) => (at ? within(text) : text)).join(between)}</dd>` : nothing);

/** `draft`: it has changes that are not saved yet; `act(action)` runs or stops it. */
export function eventRow(event, {edit, on, draft, flip, act}) {
  const {id, name, last, running} = event;
  const button = (action, label, sign) => html`<button type="button" class="round" aria-label=${`${label} of ${name}`} title=${label}
    @click=${(press) => run(press.currentTarget, () => act(action))}><span aria-hidden="true">${sign}</span></button>`;
  return html`<li class="event ${on ? '' : 'event-off'}" data-ref=${id}>
    <button type="button" role="switch" class="toggle" aria-checked=${String(on)} aria-label=${`${name}: on`} ?disabled=${!edit} @click=${flip}><span
      class="toggle-knob" aria-hidden="true"></span></button>
    <div class="event-main"><h3><a href=${`#events/${id}`}>${name}</a>${draft ? html`<span class="draft-mark" title="Not saved yet"> ●<span
        class="sr">, not saved yet</span></span>` : ''}</h3>
      <dl class="rule-words">${line('When', event.when, ', or ')}${line('If', event.if, event.any ? ' or ' : ' and ')}${line('Do', event.do, ', then ')}</dl>
      <p class="event-last">${lastWords(last, running)}${event.next && on ? html`<span class="quiet">Next ${whenWords(event.next)}</span>` : ''}</p></div>
    <div class="event-tools">${edit ? (running ? button('stop', 'Stop the actions', '■') : button('run', 'Run the actions', '▶')) : ''}</div></li>`;
}

function lastWords(last, running) {
  if (running) return html`${outcomePill('running')}${running > 1 ? html`<span class="quiet">${running} times</span>` : ''}`;
  if (!last) return html`<span class="quiet">Not triggered yet</span>`;
  return html`${outcomePill(last.outcome)}<span>${timeOf(last.time)}</span><span class="quiet">${[last.trigger, last.why].filter(Boolean).join(' — ')}</span>`;
}
