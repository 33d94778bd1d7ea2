// What the library's lists have in common: addresses, search, playing, and what a title tells of itself.
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

const kPause = 200;  // milliseconds without a key before the search starts

export const address = (category, group) => `#library/${category}${group ? '/' + encodeURIComponent(group) : ''}`;

/** The search begins when the keys pause; the arrow leads into the list. */
export function searchKeys(search, list, load) {
  let timer = 0;
  search.addEventListener('input', () => {
    clearTimeout(timer);
    timer = setTimeout(load, kPause);
  });
  search.addEventListener('keydown', (event) => {
    if (event.key !== 'ArrowDown') return;
    event.preventDefault();
    list.focusFirst();
  });
}

export function play(button, category, name, title) {
  return run(button, async () => {
    await ask('/api/play', {category, name, title});
    toast(`Playing ${title || name}`);
  }).then(() => button.focus({preventScroll: true}));
}

export function playButton(category, name, title) {
  const button = el('button', {type: 'button', class: 'round', 'aria-label': `Play ${title || name}`, title: 'Play',
    onclick: () => play(button, category, name, title)}, el('span', {'aria-hidden': 'true'}, '▶'));
  return button;
}

/** The title tells more of itself when it is chosen: below its name, and in full above the list. */
export function titleButton(category, group, title, details) {
  const facts = el('span', {class: 'row-facts'});
  return el('button', {type: 'button', class: 'row-main', title, onclick: async () => {
    try {
      const told = await ask(`/api/media?${new URLSearchParams({category, name: group, title})}`);
      facts.textContent = [told.artist, told.album, told.genre, length(told.seconds)].filter(Boolean).join(' · ')
        || 'Nothing more is known';
      const close = el('button', {type: 'button', class: 'round plain', 'aria-label': 'Close',
        onclick: () => { details.hidden = true; }}, '✕');
      details.replaceChildren(el('div', {}, el('strong', {class: 'whole'}, title), el('p', {class: 'quiet'}, facts.textContent)), close);
      details.hidden = false;
    } catch (error) {
      toast(error.message, 'bad');
    }
  }}, el('span', {class: 'row-name'}, title), facts);
}

function length(seconds) {
  if (seconds === undefined) return '';
  const whole = Math.round(seconds);
  return `${Math.floor(whole / 60)}:${String(whole % 60).padStart(2, '0')}`;
}
