// One evaluation as it is read: the trigger, the conditions with what they saw, the actions with what came of them.
import {html, nothing} from '../kit/html.js';
import {outcomePill, spentWords, timeOf} from './outcomes.js';

/** Conditions with what each has seen; which said no is marked. */
export const seenConditions = (conditions) => (conditions.length ? html`<ul class="seen">${conditions.map(({words, saw, holds}) => html`
  <li class=${holds ? 'holds' : 'fails'}><span class="mark" aria-hidden="true">${holds ? '✓' : '✕'}</span><span><span
    class="sr">${holds ? 'Holds: ' : 'Said no: '}</span>${words}${saw ? html` <span class="quiet">saw ${saw}</span>` : ''}</span></li>`)}</ul>` : nothing);

function actionLine(action) {
  const {words, begun, time, spent, failure} = action;
  const [mark, said] = failure ? ['✕', 'Failed: '] : begun ? ['✓', 'Done: '] : ['·', 'Not begun: '];
  return html`<li class=${failure ? 'fails' : begun ? 'holds' : 'idle'}><span class="mark" aria-hidden="true">${mark}</span><span><span
    class="sr">${said}</span>${words}${begun ? html` <span class="quiet">${new Date(time).toLocaleTimeString()}, ${spentWords(spent)}</span>` : ''}${
    failure ? html`<span class="field-error">${failure}</span>` : ''}</span></li>`;
}

/** `named`: with the event's name, as in the history of all. */
export const evaluationDetails = (evaluation) => html`
  ${evaluation.conditions.length ? html`<h4>If</h4>${seenConditions(evaluation.conditions)}` : nothing}
  ${evaluation.actions.length ? html`<h4>Do</h4><ul class="seen">${evaluation.actions.map(actionLine)}</ul>` : nothing}
  ${evaluation.conditions.length + evaluation.actions.length ? nothing : html`<p class="quiet">${
    evaluation.outcome === 'running' ? 'It is under way.' : 'Nothing was asked, and nothing done.'}</p>`}`;

/** In one line. */
export const evaluationLine = (evaluation, {named = false} = {}) => html`<span class="evaluation-time">${timeOf(evaluation.time, true)}</span>
  ${named ? html`<strong class="evaluation-name">${evaluation.name}</strong>` : ''}
  ${outcomePill(evaluation.outcome)}
  <span class="evaluation-why">${[evaluation.trigger, evaluation.why].filter(Boolean).join(' — ')}</span>`;
