// What has come of an event's triggers, in words.
import {html} from '../kit/html.js';

const kOutcomes = {
  running: ['Running', 'pill-wait'], done: ['Ran', 'pill-good'], failed: ['Failed', 'pill-bad'], refused: ['Did not run', ''],
  left: ['Left alone', ''], stopped: ['Stopped', 'pill-warn'], cut: ['Cut short', 'pill-warn'], circle: ['Cut: a circle', 'pill-bad'],
  missed: ['Missed', 'pill-warn'],
};

export function outcomePill(outcome) {
  const [words, style] = kOutcomes[outcome] ?? [outcome, ''];
  return html`<span class="pill ${style}">${words}</span>`;
}

const kDay = 86400000;
const atMidnight = (time) => new Date(time).setHours(0, 0, 0, 0);
const clock = (date, seconds) => date.toLocaleTimeString([], {hour: '2-digit', minute: '2-digit', ...(seconds ? {second: '2-digit'} : {})});

/** "today 21:04", "yesterday 07:00", "3 May 07:00". */
export function whenWords(time, seconds = false) {
  const date = new Date(time);
  const days = Math.round((atMidnight(Date.now()) - atMidnight(time)) / kDay);
  const day = {0: 'today', 1: 'yesterday', '-1': 'tomorrow'}[days]
    ?? date.toLocaleDateString([], {day: 'numeric', month: 'short', ...(Math.abs(days) > 300 ? {year: 'numeric'} : {})});
  return `${day} ${clock(date, seconds)}`;
}

export const timeOf = (time, seconds) => html`<time datetime=${new Date(time).toISOString()}
  title=${new Date(time).toLocaleString()}>${whenWords(time, seconds)}</time>`;

/** Milliseconds as one reads them. */
export const spentWords = (spent) => (spent < 1000 ? `${spent} ms` : spent < 60000 ? `${(spent / 1000).toFixed(1)} s`
  : `${Math.floor(spent / 60000)} min ${Math.round(spent / 1000) % 60} s`);
