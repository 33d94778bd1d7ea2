// The player's own menu.
import {menuWasUsed} from '../frame/launched.js';
import {html, render} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {statusOf} from './player.js';

export const menuView = {name: 'menu', title: 'Menu', owner: true, shown: (state) => state.menu.length > 0, mount};

function mount(place, {signal, house}) {
  const draw = () => render(page(house.state), place);
  house.on('state', draw, signal);
  house.on('device', draw, signal);
  draw();
}

function page({menu, devices}) {
  return html`<h1>Menu</h1>
    ${[...grouped(menu)].map(([section, items]) => html`<section class="panel"><h2>${section}</h2>
      <div class="menu-items">${items.map(({item}) => entry(item, devices))}</div></section>`)}
    ${menu.length ? '' : html`<p class="empty">The menu fills when the player is ready.</p>`}`;
}

function grouped(menu) {
  const sections = new Map();
  for (const each of menu) sections.set(each.section, [...(sections.get(each.section) ?? []), each]);
  return sections;
}

const entry = (item, devices) => html`<button type="button" class="menu-item" @click=${(event) => {
  menuWasUsed();
  run(event.currentTarget, () => ask('/api/menu', {item}));
}}>${wordsFor(item, devices)}</button>`;

/** A choice that means one of two things says which of them comes next. */
function wordsFor(item, devices) {
  if (item !== 'Pause/Resume') return item;
  return {Playing: 'Pause', Paused: 'Resume'}[statusOf(devices)] ?? item;
}
