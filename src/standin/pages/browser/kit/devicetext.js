// A device's status text: pictures of this house, line breaks, bold text, and plain text. All else that looks like
// markup is left out, so that nothing in it can run.
import {html} from './html.js';

/** The text as parts: {text}, {picture: {src, width, height}}, {line: true}, {strong: parts}. */
export function partsOf(device) {
  const parsed = new DOMParser().parseFromString(device.text, 'text/html');  // runs and loads nothing
  return partsIn(parsed.body, device.changed);
}

function partsIn(parent, version) {
  const parts = [];
  for (const node of parent.childNodes) {
    if (node.nodeType === Node.TEXT_NODE) {
      parts.push({text: node.data});
    } else if (node.nodeName === 'IMG') {
      const picture = pictureOf(node, version);
      if (picture) parts.push({picture});
    } else if (node.nodeName === 'BR') {
      parts.push({line: true});
    } else if (['B', 'STRONG', 'I', 'EM'].includes(node.nodeName)) {
      parts.push({strong: partsIn(node, version)});
    } else if (!['SCRIPT', 'STYLE', 'TEMPLATE'].includes(node.nodeName)) {
      parts.push(...partsIn(node, version));
    }
  }
  return parts;
}

function pictureOf(node, version) {
  const path = (node.getAttribute('src') || '').replaceAll('\\', '/').replace(/^\/+/, '');
  if (!path || /^[a-z][a-z0-9+.-]*:/i.test(path)) return null;
  const number = (name) => Math.min(512, Math.max(1, parseInt(node.getAttribute(name), 10) || 16));
  const src = '/' + path.split('/').map(encodeURIComponent).join('/') + `?v=${version}`;
  return {src, width: number('width'), height: number('height')};
}

/** The words alone. */
export const wordsOf = (parts) => parts
  .map((part) => part.text ?? (part.line ? ' ' : part.strong ? wordsOf(part.strong) : ''))
  .join('').replace(/\s+/g, ' ').trim();

export const pictureIn = (parts, wanted) => parts.map((part) => part.picture)
  .find((picture) => picture && wanted.test(picture.src));

/** The parts as they are shown. */
export const shownParts = (parts) => parts.map((part) => {
  if (part.picture) return html`<img src=${part.picture.src} width=${part.picture.width} height=${part.picture.height} alt="">`;
  if (part.line) return html`<br>`;
  return part.strong ? html`<b>${shownParts(part.strong)}</b>` : part.text;
});
