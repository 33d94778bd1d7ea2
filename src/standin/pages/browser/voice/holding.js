// A button that is held: by the mouse, a finger, the space bar or Enter. A click that comes from none of them, as a
// screen reader gives it, begins, and the next one ends.

/** `begin`, `end` and `cancel` are called as it is held, let go of, and lost. */
export function holdable(button, {begin, end, cancel}) {
  let held = null;  // the pointer or the key
  const hold = (by) => {
    held = by;
    begin();
  };
  const release = (by, work) => {
    if (held !== by) return;
    held = null;
    work();
  };
  const pointer = (event) => `pointer ${event.pointerId}`;
  const holds = ({key}) => key === ' ' || key === 'Enter';

  button.addEventListener('pointerdown', (event) => {
    if (event.button !== 0 || held !== null || button.disabled) return;
    button.setPointerCapture(event.pointerId);  // it may leave the button
    hold(pointer(event));
  });
  button.addEventListener('pointerup', (event) => release(pointer(event), end));
  for (const kind of ['pointercancel', 'lostpointercapture']) {
    button.addEventListener(kind, (event) => release(pointer(event), cancel));
  }
  button.addEventListener('contextmenu', (event) => event.preventDefault());  // of a finger that stays
  button.addEventListener('keydown', (event) => {
    if (event.key === 'Escape' && held !== null) release(held, cancel);
    if (!holds(event)) return;
    event.preventDefault();
    if (held === null && !event.repeat) hold(event.key);
  });
  button.addEventListener('keyup', (event) => {
    if (!holds(event)) return;
    event.preventDefault();
    release(event.key, end);
  });
  button.addEventListener('blur', () => { if (held !== null) release(held, cancel); });
  button.addEventListener('click', (event) => {
    if (event.detail > 0) return;
    if (held === null) hold('click');
    else release('click', end);
  });
  /** It has ended by itself. */
  return () => { held = null; };
}
