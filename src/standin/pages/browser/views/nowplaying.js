// What plays now, at a glance: put together from the devices that the player keeps.
import {el, statusNodes} from '../kit/dom.js';

const kParts = ['Status', 'Title', 'Artist', 'Album', 'Genre', 'Length'];
const kCover = /WMPCoverSmall/i;

/** The panel, empty at first. */
export function nowPlaying() {
  return el('section', {class: 'now', id: 'now', 'aria-label': 'Now playing', hidden: true});
}

/** Fills the panel from the devices; it stays away while there is no title to show. */
export function showNowPlaying(devices) {
  const panel = document.getElementById('now');
  if (!panel) return;
  const found = {};
  for (const device of devices.values()) {
    if (kParts.includes(device.name) && device.location === 'Media Player') found[device.name] = device;
  }
  const text = (name) => {
    const device = found[name];
    return device ? statusNodes(device.text, device.changed)
      .map((node) => node.textContent).join('').replace(/\s+/g, ' ').trim() : '';
  };
  panel.hidden = !text('Title');
  if (panel.hidden) return;
  const facts = [text('Genre'), text('Length')].filter(Boolean);
  panel.replaceChildren(
    art(found.Album || found.Title),
    el('div', {class: 'now-text'},
      el('p', {class: 'now-state'}, text('Status') || 'Now playing'),
      el('p', {class: 'now-title'}, text('Title')),
      el('p', {class: 'now-by'}, [text('Artist'), text('Album')].filter(Boolean).join(' · ')),
      facts.length ? el('p', {class: 'now-facts'}, ...facts.map((fact) => el('span', {class: 'chip'}, fact))) : null));
}

function art(device) {
  const cover = statusNodes(device.text, device.changed).find((node) => node.nodeName === 'IMG' && kCover.test(node.src));
  if (!cover) return el('div', {class: 'art', 'aria-hidden': 'true'}, '♪');
  cover.removeAttribute('width');
  cover.removeAttribute('height');
  return el('div', {class: 'art'}, cover);
}
