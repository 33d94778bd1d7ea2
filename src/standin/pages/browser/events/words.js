// An event's parts in words, for those that are not stored yet; the server words the others.
import {bareWords} from './stored.js';

const kDays = ['Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat', 'Sun'];

/** "Mon–Fri", "Sat, Sun"; nothing for every day. */
export function daysWords(days = []) {
  const all = [...days].sort((one, other) => one - other);
  if (!all.length || all.length === 7) return '';
  if (all.length > 2 && all.at(-1) - all[0] === all.length - 1) return `${kDays[all[0] - 1]}–${kDays[all.at(-1) - 1]}`;
  return all.map((day) => kDays[day - 1]).join(', ');
}

const counted = (count, word) => `${count.toLocaleString()} ${word}${count === 1 ? '' : 's'}`;

/** 90 as "1 minute 30 seconds". */
export function timeWords(seconds) {
  const parts = [[Math.floor(seconds / 3600), 'hour'], [Math.floor(seconds / 60) % 60, 'minute'], [seconds % 60, 'second']];
  return parts.filter(([count]) => count).map(([count, word]) => counted(count, word)).join(' ') || 'no time';
}

const onDays = (days) => (daysWords(days) ? `, ${daysWords(days)}` : '');

export const deviceName = (device) => [device?.location, device?.name].filter(Boolean).join(' ') || 'a device that is gone';

const kStatus = {2: 'on', 3: 'off', 4: 'dimmed', 17: 'unknown'};
export const kStatusChoices = [['2', 'on'], ['3', 'off'], ['17', 'unknown']];

function comparison({field, is, value}) {
  const what = {status: '', value: 'value ', text: 'text '}[field];
  if (is === 'changes') return field === 'status' ? 'goes on or off' : `${what}changes`;
  const shown = field === 'status' ? kStatus[value] ?? value : field === 'text' ? `“${value}”` : value;
  return `${what}is ${{equals: '', above: 'above ', below: 'below '}[is]}${shown}`;
}

const deviceWords = (part, devices) => `${part.ref ? deviceName(devices.get(part.ref)) : 'A device'} ${comparison(part)}`;

function sunWords({what, offset = 0, days}) {
  const around = offset ? `${timeWords(Math.abs(offset) * 60)} ${offset < 0 ? 'before ' : 'after '}` : 'At ';
  return `${around}${what}${onDays(days)}`;
}

const plugin = (part) => part.shown || bareWords(part.stored);
const kThen = {nothing: '', pause: ', then pause', stop: ', then stop'};
const kCommands = {on: 'on', off: 'off'};

const kWords = {
  triggers: {
    plugin,
    time: ({at, days}) => `At ${at}${onDays(days)}`,
    sun: sunWords,
    every: ({minutes}) => `Every ${minutes === 1 ? 'minute' : counted(minutes, 'minute')}`,
    start: () => 'The house starts',
    device: deviceWords,
    script: () => 'A script asks for it',
  },
  conditions: {
    plugin,
    device: deviceWords,
    window: ({from, to}) => `It is between ${from} and ${to}`,
    days: ({days}) => (daysWords(days) ? `It is ${daysWords(days)}` : 'It is any day'),
  },
  actions: {
    plugin,
    device: ({ref, command, value, caption}, devices) => {
      const name = ref ? deviceName(devices.get(ref)) : 'A device';
      if (command === 'press') return `${name}: ${caption || '…'}`;
      return `${name} ${kCommands[command] ?? `to ${value}`}`;
    },
    speak: ({text}) => `Say “${text}”`,
    wait: ({seconds}) => `Wait ${timeWords(seconds)}`,
    script: ({name}) => `Run the script ${name || '…'}`,
    event: ({id}, devices, events) => `Trigger ${events.find((event) => event.id === id)?.name ?? 'another event'}`,
    fade: ({to, seconds, then}) => `Fade to ${to} % in ${timeWords(seconds)}${kThen[then]}`,
    wake: ({choices, volume, seconds}) => `Wake with ${choices.length ? counted(choices.length, 'choice') : 'nothing yet'}, `
      + `rising to ${volume} % in ${timeWords(seconds)}`,
  },
};

/** `list` is triggers, conditions or actions. */
export function wordsOf(list, part, {devices, events}) {
  const words = kWords[list][part.kind]?.(part, devices, events) ?? part.kind;
  return part.not ? `Not: ${words}` : words;
}
