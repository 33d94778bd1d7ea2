// Short messages that go away by themselves.
import {el} from './dom.js';

const kTime = 4000;     // milliseconds
const kBadTime = 8000;  // what went wrong takes longer to read

/** Where they are shown. */
export const toasts = el('div', {class: 'toasts', role: 'status', 'aria-live': 'polite'});

/** Shows a message; `words` are texts and nodes. Answers what takes it away. */
export function toast(words, kind = '', time = kind === 'bad' ? kBadTime : kTime) {
  const node = el('div', {class: `toast ${kind}`}, ...[words].flat());
  toasts.append(node);
  const timer = setTimeout(() => node.remove(), time);
  return () => {
    clearTimeout(timer);
    node.remove();
  };
}

/** A message with a way back. */
export function toastWithButton(text, words, work, time = 8000) {
  const button = el('button', {type: 'button', class: 'toast-button', onclick: () => {
    away();
    work();
  }}, words);
  const away = toast([`${text} `, button], '', time);
  return away;
}
