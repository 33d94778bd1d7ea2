// The devices: one card each, changed in place when the house says so.
import {ask, el, run, statusNodes, toast} from '../kit/dom.js';
import {nowPlaying, showNowPlaying} from './nowplaying.js';

const kOn = 2;
const kOff = 3;
const kFewValues = 60;

const cards = new Map();

/** The page of all devices. */
export function devicesPage(devices) {
  cards.clear();
  const list = el('div', {class: 'cards', id: 'cards'});
  const empty = el('p', {class: 'empty', id: 'no-devices', hidden: devices.size > 0},
    'No devices yet. They appear as soon as the plug-in has made them.');
  for (const device of devices.values()) list.append(newCard(device));
  // The panel finds its place in the document first.
  queueMicrotask(() => showNowPlaying(devices));
  return el('div', {}, el('h1', {class: 'sr'}, 'Devices'), nowPlaying(), voiceBox(), empty, list);
}

export function deviceChanged(device, devices) {
  showNowPlaying(devices);
  const list = document.getElementById('cards');
  if (!list) return;
  document.getElementById('no-devices').hidden = true;
  const old = cards.get(device.ref);
  if (!old) {
    list.append(newCard(device));
  } else {
    fill(old, device);
    old.classList.remove('changed');
    void old.offsetWidth;  // starts the highlight anew
    old.classList.add('changed');
  }
}

export function deviceRemoved(ref, devices) {
  showNowPlaying(devices);
  cards.get(ref)?.remove();
  cards.delete(ref);
  const hint = document.getElementById('no-devices');
  if (hint) hint.hidden = cards.size > 0;
}

function voiceBox() {
  const input = el('input', {type: 'text', id: 'say', name: 'say', maxlength: 500, autocomplete: 'off',
    placeholder: 'Say something, like “play album Blue”', 'aria-label': 'Say something'});
  const button = el('button', {class: 'primary', type: 'submit'}, 'Say');
  return el('form', {class: 'voice', onsubmit: async (event) => {
    event.preventDefault();
    const text = input.value.trim();
    if (!text) return;
    if (await run(button, () => ask('/api/voice', {text}))) {
      toast(`Heard: ${text}`);
      input.value = '';
    }
    input.focus();
  }}, el('span', {class: 'voice-mark', 'aria-hidden': 'true'}), input, button);
}

function newCard(device) {
  const card = el('article', {class: 'card', 'data-ref': device.ref});
  card.append(
    el('header', {class: 'card-head'}, el('h2', {}), el('span', {class: 'value quiet'}), el('span', {class: 'address'})),
    el('div', {class: 'status'}),
    el('div', {class: 'controls'}));
  cards.set(device.ref, card);
  fill(card, device);
  return card;
}

function fill(card, device) {
  const title = card.querySelector('h2');
  title.textContent = device.name || 'Device';
  title.title = `${device.location} ${device.name}`.trim();
  card.querySelector('.address').textContent = device.address;
  const value = card.querySelector('.value');
  value.hidden = device.value === 0 && device.values > 0;
  value.textContent = device.value === 0 ? '' : `value ${device.value}`;
  const status = card.querySelector('.status');
  status.replaceChildren(...statusNodes(device.text, device.changed));
  status.classList.toggle('blank', !status.textContent.trim());
  if (!status.textContent.trim()) status.append(el('span', {class: 'quiet'}, '—'));

  // Controls are built anew only when they look different, so that the one in use keeps its focus.
  const shape = JSON.stringify([device.buttons, device.switchable, device.status, device.values, device.valueName]);
  if (card.dataset.shape === shape) return;
  card.dataset.shape = shape;
  const focused = document.activeElement?.dataset?.key;
  const had = card.contains(document.activeElement);
  const controls = card.querySelector('.controls');
  controls.replaceChildren();
  if (device.switchable) controls.append(switchOf(device));
  if (device.values > 0) controls.append(device.values <= kFewValues ? selectOf(device) : searchOf(device));
  for (const caption of device.buttons) {
    const button = el('button', {type: 'button', 'data-key': caption}, caption);
    button.addEventListener('click', () => run(button, () => ask('/api/press', {ref: device.ref, caption})));
    controls.append(button);
  }
  if (had && focused) controls.querySelector(`[data-key="${CSS.escape(focused)}"]`)?.focus();
}

function switchOf(device) {
  const send = (button, command) => run(button, () => ask('/api/command', {ref: device.ref, command}));
  const make = (text, command, pressed) => {
    const button = el('button', {type: 'button', 'aria-pressed': String(pressed), 'data-key': command}, text);
    button.addEventListener('click', () => send(button, command));
    return button;
  };
  return el('div', {class: 'switch', role: 'group', 'aria-label': `${device.name}: on or off`},
    make('On', 'on', device.status === kOn), make('Off', 'off', device.status === kOff));
}

function choose(device, control, value) {
  return run(control, () => ask('/api/command', {ref: device.ref, command: 'value', value: Number(value)}));
}

function selectOf(device) {
  const select = el('select', {'aria-label': device.name, 'data-key': 'value'});
  let loaded = false;
  const load = async () => {
    if (loaded) return;
    loaded = true;
    try {
      const {values} = await ask(`/api/values?ref=${device.ref}&q=`);
      select.replaceChildren(...values.map((entry) =>
        el('option', {value: entry.value}, entry.name.trim() || 'Choose…')));
      select.value = String(device.value);
    } catch (error) {
      loaded = false;
      toast(error.message, 'bad');
    }
  };
  select.append(el('option', {value: device.value}, device.valueName || 'Choose…'));
  load();
  select.addEventListener('change', () => choose(device, select, select.value));
  return select;
}

function searchOf(device) {
  const id = `found-${device.ref}`;
  const input = el('input', {type: 'search', role: 'combobox', 'aria-expanded': 'false', 'aria-controls': id,
    'aria-autocomplete': 'list', 'aria-label': `${device.name}: search`, placeholder: device.valueName ||
    `Search ${device.values} entries`, 'data-key': 'search', autocomplete: 'off'});
  const list = el('ul', {class: 'found', id, role: 'listbox', hidden: true});
  let turn = 0;
  let active = -1;
  const close = () => { list.hidden = true; active = -1; input.setAttribute('aria-expanded', 'false'); };
  const mark = (index) => {
    active = Math.max(0, Math.min(index, list.children.length - 1));
    [...list.children].forEach((item, at) => item.setAttribute('aria-selected', String(at === active)));
    list.children[active]?.scrollIntoView({block: 'nearest'});
  };
  const take = (entry) => { close(); input.value = ''; choose(device, input, entry.dataset.value); };
  const look = async () => {
    const mine = ++turn;
    try {
      const {values, total} = await ask(`/api/values?ref=${device.ref}&q=${encodeURIComponent(input.value.trim())}`);
      if (mine !== turn) return;
      list.replaceChildren(...values.filter((entry) => entry.name.trim()).map((entry) => el('li', {role: 'option',
        'data-value': entry.value, 'aria-selected': 'false', onmousedown: (event) => event.preventDefault(),
        onclick: (event) => take(event.currentTarget)}, entry.name)));
      if (total > values.length) {
        list.append(el('li', {class: 'quiet', 'aria-disabled': 'true'}, `${total - values.length} more: type on`));
      }
      list.hidden = list.children.length === 0;
      input.setAttribute('aria-expanded', String(!list.hidden));
      active = -1;
    } catch (error) {
      toast(error.message, 'bad');
    }
  };
  input.addEventListener('input', look);
  input.addEventListener('focus', look);
  input.addEventListener('blur', close);
  input.addEventListener('keydown', (event) => {
    if (event.key === 'ArrowDown') mark(active + 1);
    else if (event.key === 'ArrowUp') mark(active - 1);
    else if (event.key === 'Escape') close();
    else if (event.key === 'Enter' && list.children[active]?.dataset.value) take(list.children[active]);
    else return;
    event.preventDefault();
  });
  return el('div', {class: 'search'}, input, list);
}
