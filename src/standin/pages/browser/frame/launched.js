// Pages that the player opens.
import {el} from '../kit/dom.js';
import {toast} from '../kit/toasts.js';

const kAskedFor = 5000;  // milliseconds after a choice from the menu in which a page is its answer
const kShown = 20000;

let menuUsed = 0;

/** This page has just chosen from the player's menu. */
export function menuWasUsed() {
  menuUsed = Date.now();
}

/** One of this server's own pages is opened here at once if this page has asked for it. */
export function launched(text) {
  let url;
  try {
    url = new URL(text);
  } catch {
    return;
  }
  if (!['http:', 'https:'].includes(url.protocol)) return;
  const own = ['127.0.0.1', 'localhost', location.hostname].includes(url.hostname);
  // With the origin in front: a path of two slashes would name another server.
  const target = own ? location.origin + url.pathname + url.search : url.href;
  if (own && Date.now() - menuUsed < kAskedFor) {
    location.assign(target);
    return;
  }
  toast(['The player opens a page: ', el('a', {href: target, rel: 'noreferrer'}, target)], '', kShown);
}
