// The text of a plug-in's page holds names as they are, and a name may hold anything. Of that text there comes to
// stand here what the plug-in's own builders make, and nothing else; and what is posted from it is what its reader has
// seen. The text is read where nothing runs, loads or shows; what is left of it has no styles and no ids.
import DOMPurify from '../lib/dompurify/dist/purify.es.mjs';

const any = /^/;
const flag = {disabled: any};

/** Every element that may stand in a page, with its attributes and how their values have to look. */
const kAllowed = {
  __proto__: null,
  b: {}, h3: {}, p: {}, br: {clear: any}, hr: {noshade: any},
  span: {class: /^tablecellcustom$/, style: any},  // its style becomes a class
  input: {...flag, type: /^(hidden|submit|text|checkbox|radio)$/i, name: any, value: any, checked: any,
    size: /^\d{1,2}$/, class: /^(formbutton|formtext)$/},
  select: {...flag, name: any, size: /^\d{1,2}$/, class: /^formdropdown$/,
    onchange: /^\s*(this\.)?form\.submit\(\);?\s*$/},  // it becomes a mark
  option: {},  // made anew
};

/** What these hold is not there to be read. */
const kUnread = new Set(['audio', 'iframe', 'noembed', 'noframes', 'object', 'plaintext', 'script', 'style', 'template',
  'textarea', 'title', 'video', 'xmp']);

/** What would stand within so many others is left out, so that no name costs its reader minutes. */
const kDeepest = 8;
const kNesting = new Set(['b', 'h3', 'p', 'span']);

const kRules = {
  ALLOWED_TAGS: [...Object.keys(kAllowed), '#text'],
  ALLOWED_ATTR: [...new Set(Object.values(kAllowed).flatMap(Object.keys))],
  ALLOWED_NAMESPACES: ['http://www.w3.org/1999/xhtml'],
  ALLOW_ARIA_ATTR: false,
  ALLOW_DATA_ATTR: false,
  KEEP_CONTENT: false,
  RETURN_DOM_FRAGMENT: true,
  SAFE_FOR_XML: false,  // it takes values such as "a-->b" away; what is left here is never written as text again
};

/**
 * The page of a text, as nodes: at most one form, around everything. A message is a span of the class `message-good`
 * or `message-bad`, a list that sends its form when it changes has the attribute `data-sends`.
 */
export function readPageText(text) {
  const read = new DOMParser().parseFromString(text, 'text/html');  // runs and loads nothing
  const entries = takeEntries(read);
  DOMPurify.addHook('uponSanitizeAttribute', narrow);
  const page = DOMPurify.sanitize(withoutForeign(read.body).innerHTML, kRules);
  DOMPurify.removeHook('uponSanitizeAttribute');
  for (const list of page.querySelectorAll('select')) plainList(list, entries);
  for (const words of page.querySelectorAll('span')) message(words);
  honestFields(page);
  if (!page.querySelector('input, select')) return page;
  const form = document.createElement('form');
  form.method = 'post';
  form.append(page);
  return form;
}

function narrow(node, data) {
  const looks = kAllowed[node.localName];
  const look = looks && Object.hasOwn(looks, data.attrName) && looks[data.attrName];
  if (!look || !look.test(data.attrValue)) data.keepAttr = false;
}

/** What a form says of itself, its fields say otherwise, by their names. */
const reader = (type, name) => {
  const {get} = Object.getOwnPropertyDescriptor(type.prototype, name);
  return (node) => get.call(node);
};
const parentOf = reader(Node, 'parentNode');
const nameOf = reader(Element, 'localName');

/**
 * A copy without the elements that no page has, or not within so many others. What they hold stays if it is there to
 * be read.
 */
function withoutForeign(body) {
  const copy = body.ownerDocument.createElement('div');
  const places = new Map([[body, {into: copy, depth: 0}]]);  // where the copies of what an element holds go
  const walker = document.createTreeWalker(body, NodeFilter.SHOW_ELEMENT | NodeFilter.SHOW_TEXT);
  while (walker.nextNode()) {
    const node = walker.currentNode;
    const place = places.get(parentOf(node));
    if (!place) continue;
    if (node.nodeType === Node.TEXT_NODE) {
      place.into.append(node.data);
    } else if (node instanceof HTMLElement && !kUnread.has(nameOf(node))) {
      const stays = kAllowed[nameOf(node)] && (place.depth < kDeepest || !kNesting.has(nameOf(node)));
      places.set(node, stays ? {into: place.into.appendChild(node.cloneNode()), depth: place.depth + 1} : place);
    }
  }
  return copy;
}

/** Takes the entries out of every list, which may be as many as the library has titles, and leaves a number there. */
function takeEntries(read) {
  const lists = [...read.querySelectorAll('select')].filter((each) => each instanceof HTMLSelectElement);
  return lists.map((list, number) => {
    const entries = [...list.options]
      .map((each) => ({text: each.text, value: valueOf(each), chosen: each.defaultSelected}));
    list.replaceChildren(new Option(String(number)));
    return entries;
  });
}

/** What is chosen is what is read. Blanks at the ends are not shown. */
function valueOf({value, text}) {
  return value.replace(/[ \t\n\f\r]+/g, ' ').trim() === text ? value : text;
}

function plainList(list, entries) {
  if (list.hasAttribute('onchange')) list.dataset.sends = '';
  list.removeAttribute('onchange');
  const own = entries[Number(list.options[0]?.text)] || [];
  const made = document.createDocumentFragment();
  for (const {text, value, chosen} of own) made.append(new Option(text, value, chosen, chosen));
  list.replaceChildren(made);
}

function message(words) {
  const style = words.getAttribute('style') || '';
  words.removeAttribute('style');
  const bad = /color:\s*red/i.test(style);
  if (words.parentNode.nodeType !== Node.DOCUMENT_FRAGMENT_NODE || !bad && !/font-weight:\s*bold/i.test(style)) return;
  words.className = `message ${bad ? 'message-bad' : 'message-good'}`;
}

/**
 * Leaves the fields that tell their reader what they post. A field's name is taken once, and the last one has it: so
 * the plug-in reads a post, and its own fields stand behind its message. What is to be done is named by a button, and
 * by nothing else. A hidden field says where a post comes from, or again what a field in sight says.
 */
function honestFields(page) {
  const fields = [...page.querySelectorAll('input, select')];
  const shown = new Set(fields.filter((each) => each.type === 'text' && each.disabled).map((each) => each.value));
  const taken = new Map();
  for (const field of fields.reverse()) {
    if (!isHonest(field, shown) || !take(taken, field)) field.remove();
  }
}

function isHonest(field, shown) {
  if (field.nodeName === 'INPUT' && !field.hasAttribute('type')) return false;
  if (!/^[a-z]\w{0,40}$/i.test(field.name)) return false;
  if ((field.type === 'submit') !== (field.name.toLowerCase() === 'button')) return false;
  return field.type !== 'hidden' || ['ref_page', 'wmp_page'].includes(field.name) || shown.has(field.value);
}

/** Buttons and radio buttons share a name and differ in what they say. */
function take(taken, field) {
  const name = field.name.toLowerCase();
  const shared = ['submit', 'radio'].includes(field.type);
  if (!taken.has(name)) taken.set(name, {type: field.type, values: new Set()});
  else if (!shared || taken.get(name).type !== field.type) return false;
  const {values} = taken.get(name);
  if (values.has(field.value)) return false;
  values.add(field.value);
  return true;
}
