// The kinds of triggers, conditions and actions: what one begins as, and its fields.
import {html} from '../kit/html.js';
import {fromHere, PickList} from '../kit/picklist.js';
import {choice, devicePick, duration, longText, number, text, time, valuePick, weekdays} from './controls.js';
import {placeLine} from './place.js';
import {kStatusChoices} from './words.js';

// A kind's `fields(part, change, tools)` is the template of its fields; `change(patch)` changes the part. `tools`:
// house, choices, `pick(part, name, make)` keeps a field that is made once, `draw()`.

/** Made anew when `mark` is another. */
const pickOf = (tools, part, name, mark, make) => tools.pick(part, `${name} ${mark}`, make);

const deviceField = (part, change, tools, options = {}) => html`<div class="part-field part-wide"><span aria-hidden="true">Device</span>${
  pickOf(tools, part, 'device', '', () => devicePick({signal: tools.signal, label: 'Device', ref: part.ref,
    house: tools.house, change: (ref) => change({ref}), ...options})).node}</div>`;

const kFields = [['status', 'goes on or off'], ['value', 'value'], ['text', 'text']];
const kCompared = {status: [['changes', 'changes'], ['equals', 'is']],
  value: [['changes', 'changes'], ['equals', 'is'], ['above', 'is above'], ['below', 'is below']],
  text: [['changes', 'changes'], ['equals', 'is'], ['above', 'is above'], ['below', 'is below']]};

function comparedFields(part, change, tools, trigger) {
  const device = tools.house.state.devices.get(part.ref);
  const compared = kCompared[part.field].filter(([is]) => trigger || is !== 'changes');
  const toField = (field) => {
    const known = kCompared[field].some(([is]) => is === part.is);
    change({field, is: known ? part.is : 'equals', value: field === 'status' ? '2' : ''});
  };
  return html`${deviceField(part, change, tools)}
    ${choice('What of it', part.field, kFields.map(([field, words]) => [field, field === 'status' ? 'on or off' : words]), toField)}
    ${choice('How', part.is, compared, (is) => change({is}))}
    ${part.is === 'changes' ? '' : wantedValue(part, change, tools, device)}`;
}

function wantedValue(part, change, tools, device) {
  if (part.field === 'status') {
    const known = kStatusChoices.some(([value]) => value === part.value);
    return choice('Which', part.value, known ? kStatusChoices : [...kStatusChoices, [part.value, `number ${part.value}`]],
      (value) => change({value}));
  }
  if (part.field === 'value' && part.is === 'equals' && device?.values) return namedValue(part, change, tools, device);
  return text('Which', part.value ?? '', (value) => change({value}), {maxlength: 500});
}

const namedValue = (part, change, tools, device) => html`<div class="part-field part-wide"><span aria-hidden="true">Value</span>${
  pickOf(tools, part, 'value', device.ref, () => valuePick({signal: tools.signal, label: 'Value', device, value: part.value,
    change: (value) => change({value: typeof part.value === 'number' ? Number(value) : value})})).node}</div>`;

const named = (label, names, part, property, change, tools) => html`<div class="part-field part-wide"><span aria-hidden="true">${label}</span>${
  pickOf(tools, part, property, '', () => new PickList({signal: tools.signal, label, value: names.get(part[property]) ?? '',
    placeholder: `Choose a ${label.toLowerCase()}`, fetch: fromHere([...names.values()]),
    change: (name) => change({[property]: [...names].find(([, each]) => each === name)[0]})})).node}</div>`;

const eventField = (part, change, tools) =>
  named('Event', new Map(tools.choices.events.map(({id, name}) => [id, name])), part, 'id', change, tools);

function deviceCommandFields(part, change, tools) {
  const device = tools.house.state.devices.get(part.ref);
  const buttons = device?.buttons ?? [];
  const commands = [['on', 'turn on'], ['off', 'turn off'],
    ...(!device || device.values || part.command === 'value' ? [['value', 'set to a value']] : []),
    ...(buttons.length || part.command === 'press' ? [['press', 'press a button']] : [])];
  const captions = buttons.includes(part.caption) || !part.caption ? buttons : [...buttons, part.caption];
  const toDevice = (patch) => {
    const next = tools.house.state.devices.get(patch.ref);
    change({...patch, command: next?.switchable ? 'on' : next?.values ? 'value' : next?.buttons.length ? 'press' : part.command,
      value: 0, caption: next?.buttons[0] ?? ''});
  };
  return html`${deviceField(part, toDevice, tools)}
    ${choice('Do', part.command, commands, (command) => change({command, caption: part.caption || buttons[0] || '', value: part.value ?? 0}))}
    ${part.command === 'press' ? choice('Button', part.caption, captions.map((each) => [each, each]), (caption) => change({caption})) : ''}
    ${part.command === 'value' ? (device?.values ? namedValue(part, change, tools, device)
      : number('Value', part.value ?? 0, {min: 0, max: 32767}, (value) => change({value}))) : ''}`;
}

export const kOwn = {
  triggers: {
    time: {label: 'Time of day', fresh: () => ({at: '07:00', days: []}),
      fields: (part, change) => html`${time('At', part.at, (at) => change({at}))}${weekdays(part.days ?? [], (days) => change({days}))}`},
    sun: {label: 'Sunrise or sunset', fresh: () => ({what: 'sunset', offset: 0, days: []}),
      fields: (part, change, tools) => html`${choice('When', part.what, [['sunrise', 'sunrise'], ['sunset', 'sunset']], (what) => change({what}))}
        ${number('Minutes', Math.abs(part.offset), {min: 0, max: 720}, (count) => change({offset: part.offset < 0 ? -count : count}))}
        ${choice('Before or after', part.offset < 0 ? 'before' : 'after', [['before', 'before'], ['after', 'after']],
          (side) => change({offset: (side === 'before' ? -1 : 1) * Math.abs(part.offset || (side === 'before' ? 30 : 0))}))}
        ${weekdays(part.days ?? [], (days) => change({days}))}${placeLine(tools)}`},
    every: {label: 'Every so many minutes', fresh: () => ({minutes: 15}),
      fields: (part, change) => number('Minutes', part.minutes, {min: 1, max: 1440}, (minutes) => change({minutes}))},
    start: {label: 'The house starts', fresh: () => ({}),
      fields: () => html`<p class="quiet">When the house has started and its player is ready.</p>`},
    device: {label: 'A device', fresh: () => ({ref: 0, field: 'status', is: 'changes', value: ''}),
      fields: (part, change, tools) => comparedFields(part, change, tools, true)},
    script: {label: 'A script asks', fresh: () => ({}),
      fields: () => html`<p class="quiet">A script triggers this event by its name.</p>`},
  },
  conditions: {
    device: {label: 'A device', fresh: () => ({ref: 0, field: 'status', is: 'equals', value: '2', not: false}),
      fields: (part, change, tools) => comparedFields(part, change, tools, false)},
    window: {label: 'Time of day', fresh: () => ({from: '22:00', to: '06:00', not: false}),
      fields: (part, change) => html`${time('From', part.from, (from) => change({from}))}${time('To', part.to, (to) => change({to}))}
        <p class="quiet part-wide">${part.from > part.to ? 'Over midnight' : ''}</p>`},
    days: {label: 'Days of the week', fresh: () => ({days: [1, 2, 3, 4, 5], not: false}),
      fields: (part, change) => weekdays(part.days ?? [], (days) => change({days}))},
    event: {label: 'Another event has run', fresh: () => ({id: 0, not: false}),
      fields: (part, change, tools) => html`${eventField(part, change, tools)}
        <p class="quiet part-wide">Holds when that event ran the last time that it was triggered, and this one has not been asked since:
          what the other has done can be taken back once.</p>`},
  },
  actions: {
    device: {label: 'A device', fresh: () => ({ref: 0, command: 'on', value: 0, caption: ''}), fields: deviceCommandFields},
    speak: {label: 'Say something', fresh: () => ({text: ''}),
      fields: (part, change) => longText('Words', part.text, (words) => change({text: words}))},
    wait: {label: 'Wait', fresh: () => ({seconds: 60}),
      fields: (part, change) => duration('For', part, {min: 1, max: 86400}, change)},
    fade: {label: 'Fade the music', fresh: () => ({to: 0, seconds: 600, then: 'stop'}),
      fields: (part, change) => html`${number('To volume, %', part.to, {min: 0, max: 100}, (to) => change({to}))}
        ${duration('In', part, {min: 1, max: 7200}, change)}
        ${choice('Then', part.then, [['nothing', 'nothing more'], ['pause', 'pause'], ['stop', 'stop, and give the volume back']],
          (then) => change({then}))}`},
    wake: {label: 'Wake somebody', fresh: () => ({choices: [], words: 'Good morning', volume: 50, seconds: 60}),
      fields: (part, change, tools) => html`${tools.wakeChoices(part, change)}
        ${number('Up to volume, %', part.volume, {min: 1, max: 100}, (volume) => change({volume}))}
        ${duration('Rising for', part, {min: 0, max: 3600}, change)}
        ${text('Said when no music is heard', part.words, (words) => change({words}))}
        <p class="quiet part-wide">The first choice that is heard within ten seconds stays. When none is, a tone sounds and these
          words are said.</p>`},
    script: {label: 'Run a script', fresh: () => ({name: ''}),
      fields: (part, change, tools) => named('Script', new Map(tools.choices.scripts.map((name) => [name, name])), part, 'name', change, tools)},
    event: {label: 'Trigger another event', fresh: () => ({id: 0}),
      fields: eventField},
  },
};

/** What is missing in a part; empty when it can be saved. */
export function missingIn(list, part) {
  if (part.kind === 'device' && !part.ref) return 'Choose a device';
  if (part.kind === 'device' && part.command === 'press' && !part.caption) return 'Choose a button';
  if (['above', 'below'].includes(part.is) && !/^[+-]?\d+(\.\d+)?$/.test(part.value)) return 'Write a number';
  if (part.kind === 'window' && part.from === part.to) return 'Choose two different times';
  if (part.kind === 'speak' && !part.text.trim()) return 'Write what is to be said';
  if (list === 'actions' && part.kind === 'script' && !part.name) return 'Choose a script';
  if (part.kind === 'event' && !part.id) return 'Choose an event';
  if (part.kind === 'wake' && !part.choices.length) return 'Choose what to wake with';
  return '';
}
