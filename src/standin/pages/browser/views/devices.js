// The devices: one card each, changed in place when the house says so.
import {html, nothing, render, repeat} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {Talk} from '../voice/talk.js';
import {DeviceCard} from './device-card.js';
import {nowPlaying} from './now-playing.js';

export const devicesView = {name: 'devices', title: 'Devices', mount};

function mount(place, {signal, house}) {
  const cards = new Map();
  const draw = whileShown(signal, () => render(page(house, talk, cardOf), place));
  const talk = new Talk({signal, house, draw, small: true});
  const cardOf = (ref) => {
    if (!cards.has(ref)) cards.set(ref, new DeviceCard(ref, {signal, draw, guest: () => Boolean(house.state.user?.guest)}));
    return cards.get(ref);
  };
  house.on('device', ({ref}) => {
    if (cards.has(ref)) cards.get(ref).changed();
    draw();
  }, signal);
  house.on('removed', (ref) => {
    cards.delete(ref);
    draw();
  }, signal);
  house.on('state', draw, signal);
  draw();
}

function page({state: {devices}, connected}, talk, cardOf) {
  return html`<h1 class="sr">Devices</h1>
    ${nowPlaying(devices, connected)}
    ${talk.box()}
    ${talk.answers()}
    ${devices.size ? nothing : html`<div class="empty" id="no-devices"><p>No devices yet.</p>
      <p>They appear as soon as the player has started; the log tells how far it is.</p>
      <a class="way" href="/#log">To the log</a></div>`}
    <div class="cards ${connected ? '' : 'stale'}" id="cards">${repeat(devices.values(), ({ref}) => ref, (device) => cardOf(device.ref).template(device))}</div>`;
}
