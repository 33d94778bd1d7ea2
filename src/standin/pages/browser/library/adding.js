// Adding titles of the library to playlists, and the dialogs that this takes.
import {el} from '../kit/dom.js';
import {html} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {address} from './kinds.js';
import {named, short} from './titles.js';

let target = '';  // the list that titles are added to, while some are being gathered

export function gatherFor(name) {
  target = name;
}

export function renamedTarget(before, now) {
  if (target === before) target = now;
}

function stopGathering() {
  const list = target;
  target = '';
  location.hash = address('PlayList', list);
}

/** While titles are gathered for a list, this says for which. */
export const addingBar = () => target ? html`<div class="adding" role="status"><span>Adding to
  <strong>${named(target)}</strong></span><button type="button" class="primary" @click=${stopGathering}>Done</button></div>` : '';

/** Adds what the order names to a list of the user's choice; `what` is its name for him. */
export function addButton(order, what, words) {
  const add = async (name) => {
    await ask('/api/playlist/add', {name, ...order});
    toast(['Added ', named(what), ' to ', named(name)]);
  };
  const start = (button) => target ? run(button, () => add(target)) : choose(`Add ${short(what)}`, add);
  return html`<button type="button" class=${words ? '' : 'round add'} title="Add to a playlist"
    aria-label=${words ? `${words}: ${short(what)}` : `Add ${short(what)} to a playlist`}
    @click=${(event) => start(event.currentTarget)}>${words || html`<span aria-hidden="true">+</span>`}</button>`;
}

export function dialog(heading, ...content) {
  const close = el('button', {type: 'button', class: 'round plain', 'aria-label': 'Close', onclick: () => node.close()}, '✕');
  const node = el('dialog', {class: 'box', 'aria-label': heading}, el('div', {class: 'box-head'}, el('h2', {}, heading), close),
    ...content);
  node.addEventListener('close', () => node.remove());
  document.body.append(node);
  node.showModal();
  return node;
}

const problemLine = () => el('p', {class: 'problem', role: 'alert', hidden: true});

function tell(problem, error) {
  problem.textContent = error.message;
  problem.hidden = false;
}

async function choose(heading, add) {
  const names = el('ul', {class: 'box-list', 'aria-label': 'Playlists'});
  const problem = problemLine();
  const input = el('input', {'aria-label': 'Name of a new playlist', placeholder: 'New playlist', maxlength: 300,
    autocomplete: 'off'});
  const attempt = async (work) => {
    try {
      await work();
      box.close();
    } catch (error) {
      tell(problem, error);
    }
  };
  const form = el('form', {class: 'row box-new', onsubmit: (event) => {
    event.preventDefault();
    attempt(async () => {
      const made = await ask('/api/playlist/create', {name: input.value});
      await add(made.name);
    });
  }}, input, el('button', {class: 'primary'}, 'Create and add'));
  const box = dialog(heading, names, form, problem);
  try {
    const answer = await ask('/api/library?category=PlayList&limit=500');
    names.append(...answer.names.map((name) => el('li', {}, el('button', {type: 'button', class: 'menu-item',
      onclick: () => attempt(() => add(name))}, name))));
    (names.querySelector('button') || input).focus();
  } catch (error) {
    tell(problem, error);
  }
}

/** Asks for a name until `use` takes it; answers what that answers, or nothing. */
export function askName(heading, initial, use) {
  return new Promise((resolve) => {
    const input = el('input', {'aria-label': 'Name', maxlength: 300, autocomplete: 'off', value: initial,
      required: true});
    const problem = problemLine();
    const done = el('button', {class: 'primary'}, 'Save');
    const save = async () => {
      done.disabled = true;
      try {
        resolve(await use(input.value));
        box.close();
      } catch (error) {
        tell(problem, error);
      }
      done.disabled = false;
    };
    const box = dialog(heading, el('form', {class: 'row box-new', onsubmit: (event) => {
      event.preventDefault();
      save();
    }}, input, done), problem);
    box.addEventListener('close', () => resolve(null));
    input.select();
  });
}
