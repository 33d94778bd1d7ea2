// Small helpers for building the page without ever reading text as markup.

/** Makes an element: el('button', {class: 'primary', onclick: f}, 'Text', child, ...). */
export function el(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith('on')) node.addEventListener(name.slice(2), value);
    else if (name === 'value') node.value = value;
    else node.setAttribute(name, value === true ? '' : value);
  }
  node.append(...children.filter((child) => child !== null && child !== undefined));
  return node;
}

/** Where they are shown. */
export const toasts = el('div', {class: 'toasts', role: 'status', 'aria-live': 'polite'});

/** Shows a short message that goes away by itself; `words` are texts and nodes. */
export function toast(words, kind = '', time = kind === 'bad' ? 8000 : 4000) {
  const node = el('div', {class: `toast ${kind}`}, ...[words].flat());
  toasts.append(node);
  setTimeout(() => node.remove(), time);
}

/** Asks the server; throws an Error with its own words. */
export async function ask(path, body) {
  const options = body === undefined ? {} : {
    method: 'POST', headers: {'Content-Type': 'application/json'}, body: JSON.stringify(body)};
  let response;
  try {
    response = await fetch(path, options);
  } catch {
    throw new Error('The server can’t be reached');
  }
  const answer = await response.json().catch(() => ({}));
  if (!response.ok) {
    const error = new Error(answer.error || `The server answered with ${response.status}`);
    error.status = response.status;
    error.answer = answer;
    throw error;
  }
  return answer;
}

/** Runs a command; the button is busy meanwhile, and what goes wrong is told. */
export async function run(button, work) {
  button?.setAttribute('aria-busy', 'true');
  if (button) button.disabled = true;
  try {
    await work();
    return true;
  } catch (error) {
    toast(error.message, 'bad');
    return false;
  } finally {
    button?.removeAttribute('aria-busy');
    if (button) button.disabled = false;
  }
}

/**
 * A device's status text as nodes: pictures of this house, line breaks, bold text, and plain text. Everything
 * else that looks like markup is left out, so that nothing in it can run.
 */
export function statusNodes(html, version) {
  const parsed = new DOMParser().parseFromString(html, 'text/html');  // runs and loads nothing
  const out = [];
  const walk = (parent, into) => {
    for (const node of parent.childNodes) {
      if (node.nodeType === Node.TEXT_NODE) {
        into.push(document.createTextNode(node.data));
      } else if (node.nodeName === 'IMG') {
        const picture = pictureOf(node, version);
        if (picture) into.push(picture);
      } else if (node.nodeName === 'BR') {
        into.push(document.createElement('br'));
      } else if (!['SCRIPT', 'STYLE', 'TEMPLATE'].includes(node.nodeName)) {
        const inner = [];
        walk(node, inner);
        if (['B', 'STRONG', 'I', 'EM'].includes(node.nodeName)) into.push(el(node.nodeName, {}, ...inner));
        else into.push(...inner);
      }
    }
  };
  walk(parsed.body, out);
  return out;
}

function pictureOf(node, version) {
  const path = (node.getAttribute('src') || '').replaceAll('\\', '/').replace(/^\/+/, '');
  if (!path || /^[a-z][a-z0-9+.-]*:/i.test(path)) return null;
  const number = (name) => Math.min(512, Math.max(1, parseInt(node.getAttribute(name), 10) || 16));
  const source = '/' + path.split('/').map(encodeURIComponent).join('/') + `?v=${version}`;
  return el('img', {src: source, width: number('width'), height: number('height'), alt: ''});
}
