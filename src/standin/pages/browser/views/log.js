// The log: newest last, by type, live.
import {ask, el, toast} from '../kit/dom.js';

const kMostShown = 2000;
let type = '';
let list = null;
let types = null;

export async function logPage(page) {
  list = el('ol', {class: 'log', tabindex: 0, 'aria-label': 'Log lines'});
  types = el('select', {id: 'log-type', onchange: () => { type = types.value; load(); }});
  const older = el('button', {type: 'button', onclick: () => load(true)}, 'Older lines');
  page.replaceChildren(
    el('div', {class: 'page-head'}, el('h1', {}, 'Log'),
      el('div', {class: 'tools'}, el('label', {for: 'log-type'}, 'Show'), types, older)), list);
  await load();
}

/** What was missed while the connection was lost. */
export function reloadLog() { if (list) load(); }

export function leaveLog() { list = null; }

async function load(older = false) {
  try {
    const before = older ? Number(list.firstElementChild?.dataset.id || 0) : 0;
    const answer = await ask(`/api/log?type=${encodeURIComponent(type)}&before=${before}`);
    if (!list) return;
    const rows = answer.lines.map(row);
    if (older) {
      if (!rows.length) toast('There are no older lines');
      list.prepend(...rows);
    } else {
      list.replaceChildren(...rows);
      list.scrollTop = list.scrollHeight;
    }
    types.replaceChildren(el('option', {value: ''}, 'All types'),
      ...answer.types.map((name) => el('option', {value: name}, name)));
    types.value = type;
  } catch (error) {
    toast(error.message, 'bad');
  }
}

export function logLine(line) {
  if (!list || (type && line.type !== type)) return;
  const last = Number(list.lastElementChild?.dataset.id || 0);
  if (line.id && line.id <= last) return;
  const atEnd = list.scrollHeight - list.scrollTop - list.clientHeight < 40;
  list.append(row(line));
  if (list.children.length > kMostShown) list.firstElementChild.remove();
  if (atEnd) list.scrollTop = list.scrollHeight;
}

function row(line) {
  const time = new Date(line.time);
  return el('li', {'data-id': line.id, 'data-type': line.type.toLowerCase()},
    el('time', {datetime: time.toISOString(), title: time.toLocaleString()}, time.toLocaleTimeString()),
    el('span', {class: 'tag'}, line.type), el('span', {class: 'line'}, line.text));
}
