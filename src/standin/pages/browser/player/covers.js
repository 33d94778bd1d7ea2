// The addresses of pictures, and what is shown where there is none.
import {el} from '../kit/dom.js';

const kSoon = 2000;    // milliseconds until a picture that did not come is asked for again
const kLater = 60000;  // at most, when it goes on not coming

const query = (of) => `/api/cover?${new URLSearchParams(of)}`;

/** `size`: 256 or 1024. */
export const albumCover = (album, artist, size) => query({album, ...(artist ? {artist} : {}), size});

/**
 * Of what plays; by its key it is kept for good, otherwise the address changes with what plays. Null while the house
 * looks for it.
 */
export function playingCover({state, pictures}, size) {
  if (!state.item) return '';
  if (state.cover === null) return null;
  return state.cover ? query({key: state.cover, size}) : query({playing: '', size, of: `${state.item}-${pictures}`});
}

/** A picture that keeps the old one until the new one has come, and shows a note where there is none. */
export class CoverPicture {
  #player = null;
  #shown = '';
  #key = '';
  #wait = kSoon;
  #again = 0;
  #image = el('img', {alt: '', decoding: 'async', draggable: 'false', hidden: true});
  #note = el('span', {class: 'cover-note', 'aria-hidden': 'true'}, '♪');
  node;

  constructor(size) {
    this.node = el('span', {class: 'cover'}, this.#note, this.#image);
    this.size = size;
    this.#image.addEventListener('load', () => {
      this.#wait = kSoon;
      this.#has(true);
    });
    this.#image.addEventListener('error', () => this.#failed());
  }

  show(player) {
    this.#player = player;
    const address = playingCover(player, this.size);
    if (address === null || address === this.#shown) return;
    clearTimeout(this.#again);
    this.#shown = address;
    this.#key = player.state.cover;
    if (address) this.#image.src = address;
    else this.#has(false);
  }

  /** The house may have been on its way down, or the picture cleared away there: it is asked for once more. */
  #failed() {
    this.#has(false);
    clearTimeout(this.#again);
    this.#again = setTimeout(() => this.#retry(), this.#wait);
    this.#wait = Math.min(this.#wait * 2, kLater);
  }

  #retry() {
    if (document.hidden) {
      document.addEventListener('visibilitychange', () => this.#retry(), {once: true});
      return;
    }
    if (!this.node.isConnected) return;
    this.#shown = '';
    this.#player.lost(this.#key);
    this.show(this.#player);
  }

  #has(picture) {
    this.#image.hidden = !picture;
    this.#note.hidden = picture;
  }
}
