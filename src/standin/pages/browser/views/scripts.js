// The house's scripts: a list, an editor, and what a run has to say.
import {ask, el, run, toast} from '../kit/dom.js';

const kLookAgain = 400;  // milliseconds between looks at a script that runs
const kNew = '-- The house is reached by name: scriptclass, vxif, host.\nprint(scriptclass.PlayerStatus)\n';

let view = null;  // the page's elements while it is shown

export function leaveScripts() {
  clearTimeout(view?.timer);
  view = null;
}

/** A script has begun or ended somewhere. */
export function scriptChanged() {
  if (view) look();
}

export async function scriptsPage(page, stayed) {
  if (stayed && view) return;
  const names = el('ul', {class: 'script-names', 'aria-label': 'Stored scripts'});
  const name = el('input', {id: 'script-name', maxlength: 50, autocomplete: 'off', spellcheck: 'false',
    'aria-label': 'Name of the script', placeholder: 'Name'});
  const lines = el('pre', {class: 'lines', 'aria-hidden': 'true'}, '1');
  const text = el('textarea', {id: 'script-text', class: 'code', spellcheck: 'false', wrap: 'off', autocapitalize: 'off',
    'aria-label': 'Text of the script', rows: 16});
  const output = el('pre', {class: 'output', tabindex: 0, role: 'log', 'aria-label': 'Output'});
  const state = el('span', {class: 'pill', role: 'status'});
  const error = el('button', {type: 'button', class: 'script-error', hidden: true, onclick: () => goTo(view.line)});
  const button = (words, style, work) => {
    const made = el('button', {type: 'button', class: style, onclick: () => run(made, work)}, words);
    return made;
  };
  const save = button('Save', '', saveNow);
  const start = button('Run now', 'primary', startNow);
  const stop = button('Stop', '', () => ask('/api/script/stop', {}));
  const remove = button('Delete', 'danger', removeNow);
  const fresh = button('New', '', async () => open('', kNew));
  view = {names, name, text, lines, output, state, error, start, stop, remove, saved: '', known: [], run: -1, next: 0,
    line: 0, timer: 0};

  text.addEventListener('input', number);
  text.addEventListener('scroll', () => { lines.scrollTop = text.scrollTop; });
  text.addEventListener('keydown', (event) => {
    if (event.key === 's' && (event.ctrlKey || event.metaKey)) {
      event.preventDefault();
      save.click();
    } else if (event.key === 'Enter' && (event.ctrlKey || event.metaKey)) {
      event.preventDefault();
      start.click();
    }
  });
  page.replaceChildren(el('div', {class: 'scripts'},
    el('div', {class: 'page-head'}, el('h1', {}, 'Scripts'), fresh),
    el('div', {class: 'scripts-parts'}, names,
      el('div', {class: 'editor'}, name, el('div', {class: 'code-box'}, lines, text),
        el('div', {class: 'row'}, start, stop, save, remove),
        el('div', {class: 'output-head'}, el('h2', {}, 'Output'), state), error, output))));
  await list();
  if (view?.known.length) await choose(view.known[0]);
  else open('', kNew);
  look();
}

function number() {
  const count = view.text.value.split('\n').length;
  view.lines.textContent = Array.from({length: count}, (_, index) => index + 1).join('\n');
  view.lines.scrollTop = view.text.scrollTop;
}

function open(name, text) {
  view.name.value = name;
  view.text.value = text;
  view.saved = text;
  view.remove.hidden = !view.known.includes(name);
  view.text.scrollTop = 0;
  number();
  mark();
  if (!name) view.name.focus({preventScroll: true});
}

function mark() {
  for (const button of view.names.querySelectorAll('button')) {
    if (button.textContent === view.name.value) button.setAttribute('aria-current', 'true');
    else button.removeAttribute('aria-current');
  }
}

async function list() {
  try {
    const {scripts} = await ask('/api/scripts');
    if (!view) return;
    view.known = scripts;
    view.names.replaceChildren(...scripts.map((name) => el('li', {}, el('button', {type: 'button', class: 'menu-item',
      onclick: () => choose(name)}, name))));
    mark();
  } catch (failure) {
    toast(failure.message, 'bad');
  }
}

async function choose(name) {
  if (view.text.value !== view.saved && !confirm('What you have changed is not saved. Leave it?')) return;
  try {
    const script = await ask(`/api/script?${new URLSearchParams({name})}`);
    if (view) open(script.name, script.text);
  } catch (failure) {
    toast(failure.message, 'bad');
  }
}

function chosenName() {
  const name = view.name.value.trim();
  if (name) return name;
  view.name.focus();
  throw new Error('Give the script a name first');
}

async function saveNow() {
  const [name, text] = [chosenName(), view.text.value];
  await ask('/api/script', {name, text});
  toast(`${name} is saved`);
  if (!view) return;
  view.saved = text;
  await list();
  if (view) view.remove.hidden = false;
}

async function startNow() {
  await ask('/api/script/run', {name: chosenName(), text: view.text.value});
  await look();
}

async function removeNow() {
  const name = chosenName();
  if (!confirm(`Delete the script ${name}?`)) return;
  await ask('/api/script/delete', {name});
  await list();
  if (view) open('', kNew);
}

/** Shows what the run has to say, and looks again while it goes on. */
async function look() {
  const mine = view;
  clearTimeout(mine.timer);
  let told;
  try {
    told = await ask(`/api/script/run?from=${mine.next}`);
    if (told.run !== mine.run && mine.next > 0) told = await ask('/api/script/run?from=0');
  } catch {
    if (view === mine) mine.timer = setTimeout(look, 2000);
    return;
  }
  if (view !== mine) return;
  if (told.run !== mine.run) mine.output.textContent = '';
  mine.run = told.run;
  if (told.run) show(told);
  mine.stop.disabled = !told.running;
  mine.start.disabled = Boolean(told.running);
  clearTimeout(mine.timer);
  if (told.running) mine.timer = setTimeout(look, kLookAgain);
}

function show(told) {
  if (told.output && told.next > view.next || told.next < view.next || !view.output.textContent) {
    view.output.append(told.output);
    view.output.scrollTop = view.output.scrollHeight;
  }
  view.next = told.next;
  view.line = told.line;
  view.error.hidden = !told.error;
  view.error.textContent = told.error;
  view.state.textContent = told.running ? `${told.name} is running…` : told.error ? `${told.name} failed`
    : `${told.name} has ended`;
  view.state.className = `pill ${told.running ? 'pill-wait' : told.error ? 'pill-bad' : 'pill-good'}`;
}

/** Puts the cursor to the line of the error. */
function goTo(line) {
  if (!line) return;
  const before = view.text.value.split('\n').slice(0, line - 1).join('\n').length + (line > 1 ? 1 : 0);
  const end = view.text.value.indexOf('\n', before);
  view.text.focus();
  view.text.setSelectionRange(before, end < 0 ? view.text.value.length : end);
}
