// Where the reader was on each page of this tab's history, so that "Back" leads to the same place on it.
const kStore = 'places';
const kMost = 60;

const focusable = 'a[href], button, input, select, textarea, [tabindex]';
const anchored = '[id], [data-index], [data-ref]';

/** The name of the history's entry that is shown; a new one gets a name. */
export function entryName() {
  const known = history.state?.entry;
  if (known) return {name: known, seen: true};
  const name = Math.random().toString(36).slice(2);
  history.replaceState({...history.state, entry: name}, '');
  return {name, seen: false};
}

function stored() {
  try {
    return new Map(JSON.parse(sessionStorage.getItem(kStore) || '[]'));
  } catch {
    return new Map();
  }
}

export function keepPlace(name, place) {
  const all = stored();
  all.delete(name);
  all.set(name, place);
  sessionStorage.setItem(kStore, JSON.stringify([...all].slice(-kMost)));
}

/** Null where there is none. */
export const placeOf = (name) => stored().get(name) ?? null;

/** What has the focus below `root`, in words that find it again on the same page drawn anew. */
export function focusBelow(root) {
  const at = document.activeElement;
  const anchor = at && root.contains(at) ? at.closest(anchored) : null;
  if (!anchor || !root.contains(anchor)) return null;
  const [name] = ['id', 'data-index', 'data-ref'].filter((each) => anchor.hasAttribute(each));
  return {name, value: anchor.getAttribute(name), number: [...anchor.querySelectorAll(focusable)].indexOf(at)};
}

/** False when it is no longer there. */
export function focusAgain(root, place) {
  if (!place) return false;
  const anchor = root.querySelector(`[${place.name}="${CSS.escape(place.value)}"]`);
  const found = place.number < 0 ? anchor : anchor?.querySelectorAll(focusable)[place.number];
  found?.focus({preventScroll: true});
  return Boolean(found);
}
