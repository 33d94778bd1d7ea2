// Scripts that were changed and not saved yet. They outlive the page, so that nothing is lost by leaving it.
const kStore = 'script-drafts';

function stored() {
  try {
    return JSON.parse(localStorage.getItem(kStore) || '{}');
  } catch {
    return {};
  }
}

/** Of the script of that name; '' is the new one. Null where nothing is unsaved, else {name, text}. */
export const draftOf = (script) => stored()[script] ?? null;

export function keepDraft(script, draft) {
  localStorage.setItem(kStore, JSON.stringify({...stored(), [script]: draft}));
}

export function dropDraft(script) {
  const {[script]: gone, ...rest} = stored();
  localStorage.setItem(kStore, JSON.stringify(rest));
}

/** Who signs out leaves nothing behind. */
export function dropDrafts() {
  localStorage.removeItem(kStore);
}
