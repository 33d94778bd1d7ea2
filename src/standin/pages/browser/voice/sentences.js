// What can be said to an event, drawn: words, choices, and what may be left out.
import {html, nothing, repeat} from '../kit/html.js';

const kShort = 16;  // alternatives that are shown at once
const kFirst = 3;  // of more than that

/** A pattern as text, as it could be written. */
export function textOf(sequence) {
  return sequence.map((part) => {
    if ('say' in part) return part.say;
    if ('more' in part) return '…';
    const [open, all, close] = part.choice ? ['(', part.choice, ')'] : ['[', part.optional, ']'];
    return open + all.map(textOf).join('|') + (part.count > all.length ? '|…' : '') + close;
  }).join(' ');
}

/**
 * The sentences of an event. `opened` tells what is shown of the choices that are too long to be shown at once:
 * {has(place), toggle(place), list(place, choices, count)}.
 */
export const sentences = (tree, opened) => html`<ul class="said">${tree.map((sequence, at) => html`<li>${
  sequenceParts(sequence, `${at}`, opened)}</li>`)}</ul>`;

const sequenceParts = (sequence, place, opened) => sequence.map((part, at) => [at ? ' ' : nothing, partOf(part, `${place}.${at}`, opened)]);

function partOf(part, place, opened) {
  if ('say' in part) return html`<span class="said-words">${part.say}</span>`;
  if ('more' in part) return html`<span class="quiet">… and ${part.more.toLocaleString()} more parts</span>`;
  const choices = part.choice ?? part.optional;
  const optional = !part.choice;
  const long = part.count > kShort;
  const shown = long ? choices.slice(0, kFirst) : choices;
  return html`<span class=${optional ? 'said-choice said-optional' : 'said-choice'}><span class="sr">${
    optional ? '(if you like: ' : shown.length > 1 ? '(one of: ' : '('}</span>${
    shown.map((sequence, at) => html`${at ? html`<span class="said-or"> or </span>` : nothing}<span class="said-one">${
      sequenceParts(sequence, `${place}.${at}`, opened)}</span>`)}${
    long ? html` <button type="button" class="said-more" aria-expanded=${String(opened.has(place))}
      @click=${() => opened.toggle(place)}>${(part.count - shown.length).toLocaleString()} more</button>` : nothing
    }<span class="sr">)</span></span>${long && opened.has(place) ? opened.list(place, part) : nothing}`;
}

/** The names of a long choice, as many of them as are told, with a field to search among all. */
export const names = ({label, total, found, more, sought, seek}) => html`<div class="said-names">
  <label class="said-seek"><span class="sr">Search ${label}</span><input type="search" autocomplete="off" placeholder=${`Search ${total.toLocaleString()} choices`}
    .value=${sought} @input=${(event) => seek(event.target.value)}></label>
  <ul aria-label=${label} tabindex="0">${repeat(found, (name, at) => at, (name) => html`<li>${name}</li>`)}</ul>
  <p class="quiet" role="status">${!found.length ? 'Nothing fits.' : more ? `${more.toLocaleString()} more: type on to find them.` : nothing}</p></div>`;
