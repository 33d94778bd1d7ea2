// Fields of the house's own parts of an event.
import {html, live} from '../kit/html.js';
import {fromHere, PickList} from '../kit/picklist.js';
import {ask} from '../kit/server.js';
import {deviceName} from './words.js';

const kDayNames = ['Monday', 'Tuesday', 'Wednesday', 'Thursday', 'Friday', 'Saturday', 'Sunday'];

/** A list of pairs [value, words]. */
export const choice = (label, value, pairs, change, {hidden = false} = {}) => html`<label class="part-field" ?hidden=${hidden}>${label}
  <select @change=${(event) => change(event.target.value)}>${pairs.map(([each, words]) =>
    html`<option value=${each} .selected=${live(String(each) === String(value))}>${words}</option>`)}</select></label>`;

export const text = (label, value, change, {maxlength = 2000, placeholder = ''} = {}) => html`<label class="part-field part-wide">${label}
  <input type="text" .value=${live(value)} maxlength=${maxlength} placeholder=${placeholder} autocomplete="off"
    @input=${(event) => change(event.target.value)}></label>`;

export const longText = (label, value, change) => html`<label class="part-field part-wide">${label}
  <textarea rows="2" maxlength="60000" .value=${live(value)} @input=${(event) => change(event.target.value)}></textarea></label>`;

export const time = (label, value, change) => html`<label class="part-field">${label}
  <input type="time" required .value=${live(value)} @change=${(event) => { if (event.target.value) change(event.target.value); }}></label>`;

/** What is out of bounds is drawn back when the field is left. */
export const number = (label, value, {min, max}, change) => html`<label class="part-field">${label}
  <input type="number" inputmode="numeric" min=${min} max=${max} .value=${live(String(value))}
    @change=${(event) => {
      const wanted = Math.round(Number(event.target.value));
      const bounded = Math.max(min, Math.min(max, Number.isFinite(wanted) ? wanted : min));
      event.target.value = bounded;
      change(bounded);
    }}></label>`;

const kUnits = [[1, 'seconds'], [60, 'minutes'], [3600, 'hours']];
const units = new WeakMap();  // what the reader has chosen to count in, by part

/** A time of `part.seconds`, in the unit that fits or that was chosen. */
export function duration(label, part, {min, max}, change) {
  const fitting = part.seconds && part.seconds % 3600 === 0 ? 3600 : part.seconds && part.seconds % 60 === 0 ? 60 : 1;
  const chosen = units.get(part);
  const unit = chosen && part.seconds % chosen === 0 ? chosen : fitting;
  const take = (seconds) => change({seconds: Math.max(min, Math.min(max, seconds))});
  return html`<span class="part-pair">${number(label, part.seconds / unit,
    {min: Math.ceil(min / unit), max: Math.floor(max / unit)}, (count) => take(count * unit))}
    ${choice(html`<span class="sr">${label}: unit</span>`, unit, kUnits.filter(([each]) => each <= max), (value) => {
      const next = Number(value);
      const count = part.seconds / unit;
      units.set(part, next);
      take(Math.round(count * next));
    })}</span>`;
}

/** No day pressed is every day. */
export function weekdays(days, change) {
  const toggle = (day) => change(days.includes(day) ? days.filter((each) => each !== day) : [...days, day].sort((a, b) => a - b));
  return html`<div class="part-field part-days" role="group" aria-label="Days"><span aria-hidden="true">Days</span><span class="days">${
    kDayNames.map((name, at) => html`<button type="button" aria-pressed=${String(days.includes(at + 1))}
      @click=${() => toggle(at + 1)}>${name.slice(0, 2)}<span class="sr">${name.slice(2)}</span></button>`)}</span>
    <span class="quiet days-words">${days.length ? '' : 'Every day'}</span></div>`;
}

/** The house's devices, those of a room side by side. */
export const devicesOf = (house) => [...house.state.devices.values()]
  .sort((one, other) => deviceName(one).localeCompare(deviceName(other)));

/** A field to look for a device in. */
export function devicePick({signal, label, ref, house, change, wanted = () => true, empty}) {
  const devices = devicesOf(house).filter(wanted);
  const names = new Map(devices.map((device) => [nameIn(devices, device), device.ref]));
  const nameOf = (number) => [...names].find(([, each]) => each === number)?.[0] ?? (number ? `Device ${number} (gone)` : '');
  return new PickList({signal, label, value: nameOf(ref), placeholder: 'Choose a device', empty,
    fetch: fromHere([...(empty ? [''] : []), ...names.keys()]), change: (name) => change(names.get(name) ?? 0)});
}

/** Two devices of one name are told apart by their addresses. */
function nameIn(devices, device) {
  const name = deviceName(device);
  return devices.some((other) => other !== device && deviceName(other) === name) ? `${name} (${device.address})` : name;
}

/** The names of a device's values. */
export function valuePick({signal, label, device, value, change}) {
  const known = new Map(device.value === Number(value) && device.valueName ? [[String(value), device.valueName]] : []);
  const fetch = async (from, count, search, signal) => {
    const {values} = await ask(`/api/values?${new URLSearchParams({ref: device.ref, q: search})}`, undefined, signal);
    for (const each of values) known.set(String(each.value), each.name);
    return {count: values.length, options: values.slice(from, from + count).map((each) => String(each.value))};
  };
  return new PickList({signal, label, value: String(value ?? ''), fetch, change: (chosen) => change(String(chosen)),
    name: (option) => (known.get(option)?.trim() ? `${known.get(option).trim()} (${option})` : option)});
}
