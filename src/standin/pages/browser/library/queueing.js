// What stands beside "Play" in the library: what is chosen is played next, or put behind all that is queued.
import {html} from '../kit/html.js';
import {ask, complain, run} from '../kit/server.js';
import {toast, toastWithButton} from '../kit/toasts.js';
import {icon} from '../player/icons.js';
import {dialog} from './adding.js';
import {named, short} from './titles.js';

const kWays = [
  {next: true, words: 'Play next', sign: 'playNext', done: (name) => `${name} is played next`},
  {next: false, words: 'Add to queue', sign: 'addToQueue', done: (name) => `Added ${name} to the queue`},
];

let away = () => {};  // takes the message away whose "Undo" would mean another step by now

/** `order` tells what: {category, group} with `titles`, or `by` whom. */
async function queue(order, way, name) {
  const {undo, version, name: list} = await ask('/api/queue/add', {...order, next: way.next});
  away();
  away = toastWithButton(way.done(short(name)), 'Undo', async () => {
    try {
      const now = await ask(`/api/playlist?${new URLSearchParams({group: list, q: '', offset: 0, limit: 1})}`);
      if (now.version !== version) throw new Error('The queue has been changed since');
      await ask('/api/playlist/undo', {name: list});
      toast(['“', named(name), '” is out of the queue again']);
    } catch (error) {
      complain(error);
    }
  });
  return undo;
}

/** As text, for a whole group. */
export const queueTools = (order, name) => kWays.map((way) => html`<button type="button" aria-label=${`${way.words}: ${short(name)}`}
  @click=${(event) => run(event.currentTarget, () => queue(order, way, name))}>${way.words}</button>`);

/** For a row; where there is little room one button leads to both. */
export const queueButtons = (order, name) => html`${kWays.map((way) => html`<button type="button" class="round wide-only"
    title=${way.words} aria-label=${`${way.words}: ${short(name)}`}
    @click=${(event) => run(event.currentTarget, () => queue(order, way, name))}>${icon(way.sign)}</button>`)}
  <button type="button" class="round plain narrow-only" title="More" aria-label=${`More for ${short(name)}`} aria-haspopup="dialog"
    @click=${() => choose(order, name)}>${icon('more')}</button>`;

function choose(order, name) {
  const entries = document.createElement('ul');
  entries.className = 'box-list';
  const box = dialog(short(name), entries);
  for (const way of kWays) {
    const entry = document.createElement('li');
    const button = document.createElement('button');
    button.type = 'button';
    button.className = 'menu-item';
    button.textContent = way.words;
    button.addEventListener('click', async () => {
      if (await run(button, () => queue(order, way, name))) box.close();
    });
    entry.append(button);
    entries.append(entry);
  }
  entries.querySelector('button').focus();
}
