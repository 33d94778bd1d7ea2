// An event's parts in words, as the server words those that are stored.
import {bareWords} from './stored.js';

const kDays = ['Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat', 'Sun'];
const kMostOfText = 120;

/** "Mon to Fri", "Sat, Sun"; nothing for every day. */
export function daysWords(days = []) {
  const set = new Set(days);
  if (!set.size || set.size === 7) return '';
  const parts = [];
  for (let first = 1; first <= 7; first++) {
    if (!set.has(first)) continue;
    let last = first;
    while (set.has(last + 1)) last++;
    if (last < first + 2) last = first;  // two are named both
    parts.push(last > first ? `${kDays[first - 1]} to ${kDays[last - 1]}` : kDays[first - 1]);
    first = last;
  }
  return parts.join(', ');
}

const counted = (count, word) => `${count} ${word}${count === 1 ? '' : 's'}`;

export function timeWords(seconds) {
  if (seconds && seconds % 3600 === 0) return counted(seconds / 3600, 'hour');
  if (seconds && seconds % 60 === 0) return counted(seconds / 60, 'minute');
  return counted(seconds, 'second');
}

const onDays = (days) => (daysWords(days) ? ` on ${daysWords(days)}` : '');
const quoted = (text) => `“${text.length > kMostOfText ? `${text.slice(0, kMostOfText)}…` : text}”`;

export const deviceName = (device) => [device?.location, device?.name].filter(Boolean).join(' ');

const kStatus = {2: 'on', 3: 'off'};
export const kStatusChoices = [['2', 'on'], ['3', 'off'], ['17', 'unknown']];

const nameOf = (ref, devices) => (!ref ? 'A device' : devices.has(ref) ? deviceName(devices.get(ref)) : `Device ${ref} (gone)`);
const valueOf = ({field, value}) => (field === 'text' ? quoted(value) : value);

function deviceTrigger(part, {devices}) {
  const name = nameOf(part.ref, devices);
  const its = `${name}'s ${part.field}`;
  if (part.is === 'changes') return `${its} changes`;
  if (part.is !== 'equals') return `${its} goes ${part.is} ${valueOf(part)}`;
  return part.field === 'status' && kStatus[part.value] ? `${name} turns ${kStatus[part.value]}` : `${its} becomes ${valueOf(part)}`;
}

function deviceCondition(part, {devices}) {
  const name = nameOf(part.ref, devices);
  const is = part.not ? 'is not' : 'is';
  if (part.field === 'status' && part.is === 'equals' && kStatus[part.value]) return `${name} ${is} ${kStatus[part.value]}`;
  return `${name}'s ${part.field} ${is} ${part.is === 'equals' ? '' : `${part.is} `}${valueOf(part)}`;
}

function sunWords({what, offset = 0, days}) {
  const when = offset ? `${timeWords(Math.abs(offset) * 60)} ${offset < 0 ? 'before' : 'after'} ${what}`
    : what === 'sunrise' ? 'Sunrise' : 'Sunset';
  return when + onDays(days);
}

function deviceAction({ref, command, value, caption}, {devices}) {
  const name = nameOf(ref, devices);
  if (command === 'press') return `Press ${quoted(caption || '…')} of ${name}`;
  return command === 'value' ? `Set ${name} to ${value}` : `Turn ${name} ${command}`;
}

function wakeWords({choices, words, volume, seconds}, {stored}) {
  const tried = [...choices.map(stored), words ? `a tone and ${quoted(words)}` : 'a tone'].join(', else ');
  return `Wake up with ${tried}; the volume rises to ${volume}${seconds ? ` over ${timeWords(seconds)}` : ' at once'}`;
}

/** Nothing where none has been chosen yet. */
function eventName(id, events) {
  const known = events.find((event) => event.id === id);
  return known ? quoted(known.name) : id ? `event ${id} (gone)` : undefined;
}

const kThen = {nothing: '', pause: ', then pause', stop: ', then stop'};
const plugin = (part) => (part.not ? 'Not: ' : '') + (part.shown || bareWords(part.stored));

const kWords = {
  triggers: {
    plugin,
    time: ({at, days}) => at + onDays(days),
    sun: sunWords,
    every: ({minutes}) => (minutes === 1 ? 'Every minute' : minutes === 60 ? 'Every hour' : `Every ${timeWords(minutes * 60)}`),
    start: () => 'The house starts',
    device: deviceTrigger,
    script: () => 'A script asks for it',
  },
  conditions: {
    plugin,
    device: deviceCondition,
    window: ({from, to, not}) => `It ${not ? 'is not' : 'is'} between ${from} and ${to}`,
    days: ({days, not}) => `It ${not ? 'is not' : 'is'} ${daysWords(days) || 'any day'}`,
    event: ({id, not}, {events}) => `Since this was asked last, ${eventName(id, events) ?? 'another event'} has ${not ? 'not ' : ''}run`,
  },
  actions: {
    plugin,
    device: deviceAction,
    speak: ({text}) => `Say ${quoted(text)}`,
    wait: ({seconds}) => `Wait ${timeWords(seconds)}`,
    script: ({name}) => `Run the script ${quoted(name || '…')}`,
    event: ({id}, {events}) => `Trigger ${eventName(id, events) ?? 'another event'}`,
    fade: ({to, seconds, then}) => `Fade the volume to ${to} over ${timeWords(seconds)}${kThen[then]}`,
    wake: wakeWords,
  },
};

/**
 * `list` is triggers, conditions or actions; `tools` know the house, what there is to choose from, and the words of the
 * player's texts.
 */
export function wordsOf(list, part, {house, choices, storedWords}) {
  const known = {devices: house.state.devices, events: choices.events, stored: (text) => storedWords.get(text) ?? bareWords(text)};
  return kWords[list][part.kind]?.(part, known) ?? part.kind;
}

/** A part's words within a sentence. */
export const within = (words) => words.replace(/^(Turn|Press|Set|Say|Wait|Run|Trigger|Fade|Wake|It|A|The)\b/, (word) => word.toLowerCase());
