// Moves the rows of a short list by their handles: by mouse, by touch and by keyboard. The rows may differ in height.
const kEdge = 60;  // pixels from the window's edges in which it scrolls

/**
 * `move(from, to)` is told of each step while a row is carried; what is shown then is drawn before the next. `say(text)`
 * speaks to who can't see. Rows are `.part` below `list`, handles `.handle` in them; ends with `signal`.
 */
export function movable(list, {move, say, nameOf, signal}) {
  let drag = null;  // {at, before, id}
  const rows = () => [...list.children].filter((row) => row.matches('.part'));
  const handleAt = (index) => rows()[index]?.querySelector('.handle');

  function step(to, {told = true} = {}) {
    const last = rows().length - 1;
    const next = Math.max(0, Math.min(last, to));
    if (next === drag.at) return;
    move(drag.at, next);
    drag.at = next;
    mark();
    if (told) say(`Place ${next + 1} of ${last + 1}`);
  }

  function mark() {
    rows().forEach((row, index) => row.classList.toggle('carried', drag !== null && index === drag.at));
  }

  function end(put) {
    if (!drag) return;
    const {before, at, byKey} = drag;
    const name = nameOf(at);
    if (!put && before !== at) move(at, before);
    const place = put ? at : before;
    drag = null;
    mark();
    if (byKey) {
      handleAt(place)?.setAttribute('aria-pressed', 'false');
      handleAt(place)?.focus();
      say(put && before !== at ? `${name} is now at place ${place + 1}` : `${name} stays where it is`);
    }
  }

  function follow(y) {
    if (y < kEdge) scrollBy(0, -12);
    else if (y > innerHeight - kEdge) scrollBy(0, 12);
    // A row steps over its neighbour when the pointer has passed the neighbour's middle.
    const boxes = rows().map((row) => row.getBoundingClientRect());
    const middle = (box) => box.top + box.height / 2;
    let to = drag.at;
    while (to > 0 && y < middle(boxes[to - 1])) to--;
    while (to < boxes.length - 1 && y > middle(boxes[to + 1])) to++;
    step(to, {told: false});
  }

  list.addEventListener('pointerdown', (event) => {
    const handle = event.target.closest('.handle');
    if (!handle || event.button !== 0 || !event.isPrimary || drag) return;
    event.preventDefault();
    const at = rows().indexOf(handle.closest('.part'));
    drag = {at, before: at, id: event.pointerId};
    list.classList.add('dragging');
    mark();
  }, {signal});
  const pointerEnd = (put) => (event) => {
    if (drag?.id !== event.pointerId) return;
    list.classList.remove('dragging');
    end(put);
  };
  addEventListener('pointermove', (event) => { if (drag?.id === event.pointerId) follow(event.clientY); }, {signal});
  addEventListener('pointerup', pointerEnd(true), {signal});
  addEventListener('pointercancel', pointerEnd(false), {signal});
  // A finger that carries a row must not scroll the page.
  list.addEventListener('touchmove', (event) => { if (drag) event.preventDefault(); }, {passive: false, signal});

  list.addEventListener('keydown', (event) => {
    const row = event.target.closest('.part');
    const handle = event.target.closest('.handle');
    if (!row) return;
    const index = rows().indexOf(row);
    const by = {ArrowUp: -1, ArrowDown: 1, Home: -Infinity, End: Infinity}[event.key];
    if (by !== undefined && (event.altKey || handle)) {
      if (event.altKey && !handle && event.target.matches('input, select, textarea')) return;
      event.preventDefault();
      const held = drag;
      drag ??= {at: index, before: index, byKey: true};
      step(drag.at + by);
      const {at} = drag;
      if (!held) drag = null;
      mark();
      handleAt(at)?.focus();
    } else if (handle && (event.key === 'Enter' || event.key === ' ')) {
      event.preventDefault();
      if (drag) {
        end(true);
      } else {
        drag = {at: index, before: index, byKey: true};
        handle.setAttribute('aria-pressed', 'true');
        mark();
        say(`${nameOf(index)} grabbed, place ${index + 1} of ${rows().length}. Arrow keys move it, Enter drops it, Escape puts it back`);
      }
    } else if (event.key === 'Escape' && drag) {
      event.preventDefault();
      end(false);
    }
  }, {signal});
  list.addEventListener('focusout', (event) => {
    if (drag?.byKey && !list.contains(event.relatedTarget) && event.relatedTarget) end(true);
  }, {signal});
}
