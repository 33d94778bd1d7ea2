// Shows the view that the address names.
import {el} from '../kit/dom.js';
import {entryName, focusAgain, focusBelow, keepPlace, placeOf} from './places.js';

const kBrand = 'Vantorix';

/**
 * A view is {name, title, mount, owner}: its word in the address (#name/…), the document's title, and whether it is
 * the owner's alone.
 *
 * `mount(place, context)` fills the empty element `place`, and answers, once its content is there, with or without a
 * promise. All that it starts ends with `context.signal`. The context:
 *   signal       aborted when the view is left
 *   house        the state of the house, and what happens in it (House); listeners take the signal
 *   path         what stands behind the view's name in the address, in parts, decoded
 *   title(text)  names what is shown; the document's title begins with it
 *   keep(work)   `work` answers what the view wants back when the reader comes back to it
 *   kept         what it answered then; an empty object otherwise
 */
export class Router {
  #page;
  #main;
  #house;
  #views;
  #shown = null;  // {view, controller, entry, keep}

  constructor({page, main, house, views}) {
    this.#page = page;
    this.#main = main;
    this.#house = house;
    this.#views = views;
  }

  start() {
    history.scrollRestoration = 'manual';
    addEventListener('hashchange', () => this.show({moved: true}));
    addEventListener('pagehide', () => this.#remember());
  }

  /** The views that this user may see. */
  get views() {
    return this.#views.filter((view) => !view.owner || !this.#house.state.user?.guest);
  }

  get current() {
    const name = location.hash.slice(1).split('/')[0];
    return this.views.find((view) => view.name === name) ?? this.views[0];
  }

  get shown() {
    return this.#shown?.view ?? null;
  }

  leave() {
    this.#remember();
    this.#shown?.controller.abort();
    this.#shown = null;
    this.#page.replaceChildren();
  }

  /** Shows what the address names; `view` in its place for whom it is not meant. */
  async show({moved = false, view = this.current} = {}) {
    this.leave();
    const {name: entry, seen} = entryName();
    const place = seen ? placeOf(entry) : null;
    const controller = new AbortController();
    const shown = this.#shown = {view, controller, entry, keep: () => ({})};
    const node = el('div', {class: `view view-${view.name}`});
    this.#page.append(node);
    const title = (text) => {
      if (!controller.signal.aborted) document.title = `${text} – ${kBrand}`;
    };
    title(view.title);
    if (moved) this.#toTop();
    node.ariaBusy = 'true';  // what stands below it is shown once it is there
    try {
      await view.mount(node, {
        signal: controller.signal, house: this.#house, path: pathBehind(location.hash), title,
        keep: (work) => { shown.keep = work; }, kept: place?.kept ?? {},
      });
    } finally {
      node.ariaBusy = null;
    }
    if (controller.signal.aborted || !place) return;
    scrollTo({top: place.top});
    focusAgain(node, place.focus);
  }

  #toTop() {
    scrollTo({top: 0});
    this.#main.focus({preventScroll: true});
  }

  #remember() {
    if (!this.#shown) return;
    const {entry, keep} = this.#shown;
    keepPlace(entry, {top: scrollY, focus: focusBelow(this.#page), kept: keep()});
  }
}

function pathBehind(hash) {
  return hash.slice(1).split('/').slice(1).map((part) => {
    try {
      return decodeURIComponent(part);
    } catch {
      return '';  // no name then
    }
  });
}
