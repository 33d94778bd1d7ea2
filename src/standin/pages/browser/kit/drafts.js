// What was changed and not saved yet. It outlives the page, so that nothing is lost by leaving it.
const stores = new Set();

export class Drafts {
  #store;

  /** `store` names them among what the browser keeps. */
  constructor(store) {
    this.#store = store;
    stores.add(store);
  }

  all() {
    try {
      return JSON.parse(localStorage.getItem(this.#store) || '{}');
    } catch {
      return {};
    }
  }

  /** Null where nothing is unsaved. */
  of(name) {
    return this.all()[name] ?? null;
  }

  /** False when the browser keeps nothing more. */
  keep(name, draft) {
    return this.#write({...this.all(), [name]: draft});
  }

  drop(name) {
    const {[name]: gone, ...rest} = this.all();
    this.#write(rest);
  }

  #write(all) {
    try {
      localStorage.setItem(this.#store, JSON.stringify(all));
      return true;
    } catch {
      return false;
    }
  }
}

/** Who signs out leaves nothing behind. */
export function dropAllDrafts() {
  for (const store of stores) localStorage.removeItem(store);
}
