// Moves the rows of a long list by mouse, by touch and by keyboard.
import {kRow} from './longlist.js';

const kLongPress = 450;  // milliseconds
const kSlack = 6;        // pixels before a press becomes a drag
const kEdge = 56;        // pixels from the list's edges in which it scrolls
const kFastest = 18;     // pixels a frame

/**
 * `allowed()` tells whether rows may be moved now; `onMove(from, to, byKey)` is told where one has been put,
 * `onSettled()` that none is on its way any longer; `say(text)` speaks to who can't see. Ends with `signal`.
 */
export function reorder(list, {allowed, onMove, onSettled, say, nameOf, signal}) {
  let press = null;  // a pointer that is down and may become a drag
  let drag = null;   // {from, to, y, grip} or {from, to, byKey: true}
  let frame = 0;
  let silent = false;  // the click that ends a drag is none

  function begin() {
    const {index, y, id} = press;
    const top = y - list.node.getBoundingClientRect().top + list.node.scrollTop;
    drag = {from: index, to: index, y, grip: top - index * kRow};
    list.node.classList.add('dragging');
    try {
      list.node.setPointerCapture(id);
    } catch { /* the pointer has gone already */ }
    step();
  }

  function step() {
    cancelAnimationFrame(frame);
    if (!drag || drag.byKey) return;
    const box = list.node.getBoundingClientRect();
    const upper = Math.max(box.top, 0);
    const lower = Math.min(box.bottom, window.innerHeight);
    const near = drag.y < upper + kEdge ? drag.y - upper - kEdge : drag.y > lower - kEdge ? drag.y - lower + kEdge : 0;
    if (near) list.node.scrollTop += Math.sign(near) * Math.min(kFastest, Math.ceil(Math.abs(near) / 4));
    const most = (list.total() - 1) * kRow;
    const top = Math.max(0, Math.min(most, drag.y - box.top + list.node.scrollTop - drag.grip));
    drag.to = Math.round(top / kRow);
    list.arrange({from: drag.from, to: drag.to, top});
    frame = requestAnimationFrame(step);
  }

  function settle(dropped) {
    clearTimeout(press?.timer);
    press = null;
    if (!drag) return;
    const {from, to, byKey} = drag;
    drag = null;
    cancelAnimationFrame(frame);
    list.node.classList.remove('dragging');
    list.rowAt(from)?.querySelector('.handle')?.removeAttribute('aria-pressed');
    list.arrange(null);
    if (dropped && from !== to) onMove(from, to, byKey);
    else if (byKey) say(`${nameOf(from)} stays where it is`);
    onSettled();
  }

  list.node.addEventListener('pointerdown', (event) => {
    const row = event.target.closest('.long-row');
    if (!row || event.button !== 0 || !event.isPrimary || drag || !allowed()) return;
    const byHandle = Boolean(event.target.closest('.handle'));
    if (!byHandle && event.target.closest('.round')) return;
    const index = Number(row.dataset.index);
    silent = false;
    press = {id: event.pointerId, index, x: event.clientX, y: event.clientY, waits: event.pointerType !== 'mouse' && !byHandle,
      timer: 0};
    if (press.waits) press.timer = setTimeout(() => { if (press) begin(); }, kLongPress);
  });
  addEventListener('pointermove', (event) => {
    if (!press || event.pointerId !== press.id) return;
    if (drag) {
      drag.y = event.clientY;
      return;
    }
    const far = Math.hypot(event.clientX - press.x, event.clientY - press.y) > kSlack;
    if (!far) return;
    if (press.waits) {  // a finger that moves at once scrolls
      clearTimeout(press.timer);
      press = null;
    } else {
      begin();
      drag.y = event.clientY;
    }
  }, {signal});
  addEventListener('pointerup', (event) => {
    if (!press || event.pointerId !== press.id) return;
    if (drag && !drag.byKey) {
      silent = true;
      setTimeout(() => { silent = false; });
      drag.y = event.clientY;
      step();
    }
    settle(true);
  }, {signal});
  addEventListener('pointercancel', (event) => { if (press && event.pointerId === press.id) settle(false); }, {signal});
  addEventListener('keydown', (event) => {
    if (event.key !== 'Escape' || !drag) return;
    event.preventDefault();
    settle(false);
  }, {signal, capture: true});
  // A finger that carries a row must not scroll the list.
  list.node.addEventListener('touchmove', (event) => { if (drag) event.preventDefault(); }, {passive: false});
  list.node.addEventListener('contextmenu', (event) => { if (press || drag) event.preventDefault(); });
  list.node.addEventListener('dragstart', (event) => event.preventDefault());
  list.node.addEventListener('click', (event) => {
    if (!silent) return;
    silent = false;
    event.preventDefault();
    event.stopPropagation();
  }, true);

  const target = (key) => {
    const seen = Math.max(1, Math.floor(list.node.clientHeight / kRow) - 1);
    const to = {ArrowUp: -1, ArrowDown: 1, PageUp: -seen, PageDown: seen, Home: -Infinity, End: Infinity}[key];
    return to;
  };
  const clamp = (index) => Math.max(0, Math.min(list.total() - 1, index));

  list.node.addEventListener('keydown', (event) => {
    const row = event.target.closest('.long-row');
    if (!row || !allowed()) return;
    const index = Number(row.dataset.index);
    const by = target(event.key);
    if (drag?.byKey) {
      if (by !== undefined) {
        drag.to = clamp(drag.to + by);
        list.bringIntoView(drag.to);
        list.arrange({from: drag.from, to: drag.to});
        say(`Place ${drag.to + 1} of ${list.total()}`);
      } else if (event.key === 'Enter' || event.key === ' ') {
        settle(true);
      } else if (event.key !== 'Tab') {
        return;
      } else {
        settle(false);
        return;
      }
      event.preventDefault();
      event.stopImmediatePropagation();
      return;
    }
    if (event.altKey && by !== undefined && !drag) {
      event.preventDefault();
      event.stopImmediatePropagation();
      const to = clamp(index + by);
      if (to !== index) onMove(index, to, true);
    } else if (event.target.closest('.handle') && (event.key === 'Enter' || event.key === ' ') && !drag) {
      event.preventDefault();
      event.stopImmediatePropagation();
      drag = {from: index, to: index, byKey: true};
      event.target.closest('.handle').setAttribute('aria-pressed', 'true');
      list.arrange({from: index, to: index});
      say(`${nameOf(index)} grabbed, place ${index + 1} of ${list.total()}. Arrow keys move it, Enter drops it, Escape puts it back`);
    }
  }, true);
  list.node.addEventListener('focusout', (event) => {
    if (drag?.byKey && !event.relatedTarget?.closest?.('.long-row')) settle(false);
  });

  return {active: () => drag !== null, end: () => settle(false)};
}
