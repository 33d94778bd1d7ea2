// Adding titles of the library to playlists, and the dialogs that this takes.
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {address} from './titles.js';

let target = '';  // the list that titles are added to, while some are being gathered

export function gatherFor(name) {
  target = name;
}

export function renamedTarget(before, now) {
  if (target === before) target = now;
}

/** While titles are gathered for a list, this says for which. */
export function addingBar() {
  if (!target) return '';
  return el('div', {class: 'adding', role: 'status'}, el('span', {}, 'Adding to ', el('strong', {}, target)),
    el('button', {type: 'button', class: 'primary', onclick: () => {
      const list = target;
      target = '';
      location.hash = address('PlayList', list);
    }}, 'Done'));
}

/** Adds one title, or the whole group without one. */
export function addButton(category, group, title, words) {
  const what = title?.title || group;
  const add = async (name) => {
    await ask('/api/playlist/add', {name, category, group, ...(title ? {titles: [title]} : {})});
    toast(`Added ${what} to ${name}`);
  };
  const button = el('button', {type: 'button', class: words ? '' : 'round add', 'aria-label': words ? `${words}: ${what}` : `Add ${what} to a playlist`,
    title: 'Add to a playlist', onclick: async () => {
      if (target) run(button, () => add(target)).then(() => button.focus({preventScroll: true}));
      else await choose(`Add ${what}`, add);
    }}, words || el('span', {'aria-hidden': 'true'}, '+'));
  return button;
}

function dialog(heading, ...content) {
  const close = el('button', {type: 'button', class: 'round plain', 'aria-label': 'Close', onclick: () => node.close()}, '✕');
  const node = el('dialog', {class: 'box', 'aria-label': heading}, el('div', {class: 'box-head'}, el('h2', {}, heading), close),
    ...content);
  node.addEventListener('close', () => node.remove());
  document.body.append(node);
  node.showModal();
  return node;
}

async function choose(heading, add) {
  const names = el('ul', {class: 'box-list', 'aria-label': 'Playlists'});
  const problem = el('p', {class: 'problem', role: 'alert', hidden: true});
  const input = el('input', {'aria-label': 'Name of a new playlist', placeholder: 'New playlist', maxlength: 300, autocomplete: 'off'});
  const attempt = async (work) => {
    try {
      await work();
      box.close();
    } catch (error) {
      problem.textContent = error.message;
      problem.hidden = false;
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
    problem.textContent = error.message;
    problem.hidden = false;
  }
}

/** Asks for a name until `use` takes it; answers what that answers, or nothing. */
export function askName(heading, initial, use) {
  return new Promise((resolve) => {
    const input = el('input', {'aria-label': 'Name', maxlength: 300, autocomplete: 'off', value: initial, required: true});
    const problem = el('p', {class: 'problem', role: 'alert', hidden: true});
    const done = el('button', {class: 'primary'}, 'Save');
    const box = dialog(heading, el('form', {class: 'row box-new', onsubmit: async (event) => {
      event.preventDefault();
      done.disabled = true;
      try {
        const answer = await use(input.value);
        resolve(answer);
        box.close();
      } catch (error) {
        problem.textContent = error.message;
        problem.hidden = false;
      }
      done.disabled = false;
    }}, input, done), problem);
    box.addEventListener('close', () => resolve(null));
    input.select();
  });
}
