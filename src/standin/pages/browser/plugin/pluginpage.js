// Pages of the plug-in. Their text is plain HTML of an older kind; here it gets what its users need today: labels,
// lists that work from the keyboard, a place that is kept from one page to the next.
import {el} from '../kit/dom.js';
import {toast} from '../kit/toasts.js';

const kPlace = 'plugin-page-place';
const kPlaceLasts = 60000;  // milliseconds
const kMoves = ['ArrowDown', 'ArrowUp', 'ArrowLeft', 'ArrowRight', 'Home', 'End', 'PageDown', 'PageUp'];

let numbers = 0;
let sending = false;

/** Shows the page whose text `panel` holds, ready to be used. A message of the server's own stands there already. */
export async function preparePluginPage(panel) {
  const text = panel.querySelector('script[type="text/plain"]')?.textContent;
  if (text !== undefined) {
    const {readPageText} = await import('./pagetext.js');
    panel.replaceChildren(readPageText(asWritten(text)));
  }
  // A page that answers a post would post again when it is loaded anew. Loading it anew is a fresh look instead;
  // sending the reader on after the post is no way, since a fresh look forgets what was selected.
  history.replaceState(history.state, '', location.href);
  for (const heading of all(panel, 'h3')) heading.setAttribute('aria-level', '1');
  for (const message of all(panel, '.message')) {
    message.setAttribute('role', message.classList.contains('message-bad') ? 'alert' : 'status');
  }
  for (const control of controls(panel)) label(control);
  for (const first of all(panel, 'input[type=radio]')) group(first);
  for (const list of all(panel, 'select')) nameEmptyChoice(list);
  for (const list of all(panel, 'select[data-sends]')) sendOnChange(list);
  for (const form of all(panel, 'form')) sendOnce(form);
  addEventListener('pageshow', () => markSending(panel, false));
  returnToPlace(panel);
}

/** The server parts what would end the element that holds the text, by a backslash. */
const asWritten = (text) => text.replace(/<(\\*)\\(?=!--|\/?script)/gi, '<$1');

const all = (panel, selector) => [...panel.querySelectorAll(selector)];

const controls = (panel) => all(panel, 'input:not([type=hidden]):not([type=submit]), select');

const freshId = () => `field-${++numbers}`;

// Labels

/** The words stand before a field and behind a box, as bare text. */
function label(control) {
  control.id = freshId();
  if (control.type === 'checkbox' || control.type === 'radio') labelBehind(control);
  else labelBefore(control);
}

function labelBehind(box) {
  const words = [];
  for (let node = box.nextSibling; node?.nodeType === Node.TEXT_NODE; node = node.nextSibling) words.push(node);
  const made = el('label', {class: 'choice'});
  box.before(made);
  made.append(box, ...words);
  if (!made.textContent.trim()) box.setAttribute('aria-label', wordsOf(box.name));
}

function labelBefore(field) {
  let node = field.previousSibling;
  const blank = (each) => each?.nodeName === 'BR' || (each?.nodeType === Node.TEXT_NODE && !each.data.trim());
  while (blank(node)) node = node.previousSibling;
  if (node?.nodeType === Node.TEXT_NODE) {
    node.replaceWith(el('label', {class: 'words', for: field.id}, node.data.trim()));
  } else if (node?.nodeName === 'INPUT' && node.type === 'submit') {
    besideItsButton(field, node);
  } else {
    field.before(el('label', {class: 'words', for: field.id}, wordsOf(field.name)));
  }
}

/** Enter in such a field means its button, not the first one of the form. */
function besideItsButton(field, button) {
  field.setAttribute('aria-label', wordsOf(field.name));
  field.placeholder = wordsOf(field.name);
  field.addEventListener('keydown', (event) => {
    if (event.key !== 'Enter' || event.isComposing) return;
    event.preventDefault();
    button.click();
  });
}

const wordsOf = (name) => name.replaceAll('PlayList', 'Playlist').replaceAll('_', ' ')
  .replace(/([a-z])([A-Z])/g, (_, end, begin) => `${end} ${begin.toLowerCase()}`) || 'Field';

/** Radio buttons of one name are one question, whose words stand before the first of them. */
function group(first) {
  const choice = first.closest('.choice');
  if (!choice || choice.parentNode.classList.contains('choices')) return;
  const before = choice.previousSibling;
  const box = el('span', {class: 'choices', role: 'radiogroup'});
  choice.before(box);
  if (before?.nodeType === Node.TEXT_NODE && before.data.trim()) {
    const words = el('span', {class: 'words', id: freshId()}, before.data.trim());
    before.remove();
    box.append(words);
    box.setAttribute('aria-labelledby', words.id);
  } else {
    box.setAttribute('aria-label', wordsOf(first.name));
  }
  const same = (node) => node?.classList?.contains('choice') && node.firstElementChild?.name === first.name;
  for (let next = choice; same(next);) {
    const after = next.nextSibling;
    box.append(next);
    next = after;
  }
}

function nameEmptyChoice(list) {
  const first = list.options[0];
  if (list.size <= 1 && first && !first.value && list.options.length > 1) first.label = 'Choose…';
}

// Sending

/**
 * A list that sends its form when it changes. The arrow keys change a closed list with each step; then it waits
 * until it is left, or for Enter, so that every entry can be reached.
 */
function sendOnChange(list) {
  const hint = el('span', {class: 'hint quiet', id: freshId(), role: 'status'});
  list.after(hint);
  list.setAttribute('aria-describedby', hint.id);
  const entries = [...list.options];
  const shown = (entries.find((each) => each.defaultSelected) || entries[0])?.value;
  let stepping = false;
  let waits = false;
  const send = (next) => {
    if (!waits || sending) return;
    waits = false;
    keepPlace(next || list);
    markSending(list.closest('.plugin-page'), true);
    list.form.submit();
  };
  list.addEventListener('pointerdown', () => { stepping = false; });
  list.addEventListener('keydown', (event) => {
    if (event.key === 'Enter' && waits) {
      event.preventDefault();
      send();
    } else if (kMoves.includes(event.key) && !event.altKey || event.key.length === 1 && event.key !== ' ') {
      stepping = true;
    } else if (event.key === ' ' || event.altKey) {
      stepping = false;  // it opens
    }
  });
  list.addEventListener('change', () => {
    waits = !stepping || list.value !== shown;  // back where it was, there is nowhere to go
    if (!stepping) send();
    else hint.textContent = waits ? 'Press Enter to go to this choice' : '';
  });
  list.addEventListener('blur', (event) => {
    // Leaving the window is not leaving the list.
    if (document.hasFocus()) send(event.relatedTarget);
  });
}

/** What is sent twice in a hurry is meant once. */
function sendOnce(form) {
  form.addEventListener('submit', (event) => {
    if (sending) {
      event.preventDefault();
      return;
    }
    keepPlace(event.submitter);
    markSending(form.closest('.plugin-page'), true);
  });
}

function markSending(panel, value) {
  sending = value;
  panel.toggleAttribute('data-sending', value);
}

// The place on the page

const keyOf = (control) => [control.nodeName, control.name, control.type === 'submit' ? control.value : ''].join('\n');

function keepPlace(control) {
  const place = {path: location.pathname, time: Date.now(), top: scrollY, key: control?.name ? keyOf(control) : '',
    saved: control?.value === 'Update'};
  sessionStorage.setItem(kPlace, JSON.stringify(place));
}

/** The answer to a post is a new page: the reader stays where the post was made. */
function returnToPlace(panel) {
  const place = JSON.parse(sessionStorage.getItem(kPlace) || 'null');
  sessionStorage.removeItem(kPlace);
  if (place?.path !== location.pathname || Date.now() - place.time > kPlaceLasts) return;
  scrollTo({top: panel.querySelector('.message') ? 0 : place.top});
  // Such a page says nothing of its own.
  if (place.saved && panel.querySelector('form') && !panel.querySelector('.message')) toast('The settings are saved');
  const control = [...controls(panel), ...panel.querySelectorAll('input[type=submit]')]
    .find((each) => keyOf(each) === place.key);
  control?.focus({preventScroll: true});
}
