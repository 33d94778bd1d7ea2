// The addresses of pictures, and what is shown where there is none.
import {el} from '../kit/dom.js';

const query = (of) => `/api/cover?${new URLSearchParams(of)}`;

/** `size`: 256 or 1024. */
export const albumCover = (album, artist, size) => query({album, ...(artist ? {artist} : {}), size});

/** Of what plays; by its key it is kept for good, otherwise the address changes with what plays. */
export function playingCover({state, pictures}, size) {
  if (!state.item) return '';
  return state.cover ? query({key: state.cover, size}) : query({playing: '', size, of: `${state.item}-${pictures}`});
}

/** A picture that keeps the old one until the new one has come, and shows a note where there is none. */
export class CoverPicture {
  #shown = '';
  #image = el('img', {alt: '', decoding: 'async', draggable: 'false', hidden: true});
  #note = el('span', {class: 'cover-note', 'aria-hidden': 'true'}, '♪');
  node;

  constructor(size) {
    this.node = el('span', {class: 'cover'}, this.#note, this.#image);
    this.size = size;
    this.#image.addEventListener('load', () => this.#has(true));
    this.#image.addEventListener('error', () => this.#has(false));
  }

  show(player) {
    const address = playingCover(player, this.size);
    if (address === this.#shown) return;
    this.#shown = address;
    if (address) this.#image.src = address;
    else this.#has(false);
  }

  #has(picture) {
    this.#image.hidden = !picture;
    this.#note.hidden = picture;
  }
}
