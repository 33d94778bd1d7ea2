// The bar at the foot of every page: what plays, and what can be done with it.
import {el} from '../kit/dom.js';
import {html, nothing, render} from '../kit/html.js';
import {joined} from '../library/titles.js';
import {Controls} from './controls.js';
import {CoverPicture} from './covers.js';
import {icon} from './icons.js';

export class Bar {
  #player;
  #controls;
  #cover = new CoverPicture(256);
  #line = el('span', {class: 'player-reached'});
  #current;
  node = el('aside', {class: 'player-bar', id: 'player-bar', 'aria-label': 'Player', hidden: true});

  /** `current()` answers the name of the page that is shown. */
  constructor(player, current) {
    this.#player = player;
    this.#current = current;
    this.#controls = new Controls(player, undefined, (at) => this.#reached(at));
    player.on(() => this.draw());
  }

  draw() {
    const {house, state} = this.#player;
    const here = Boolean(house.state.user);
    this.node.hidden = !here;
    document.body.classList.toggle('with-player', here);
    if (!here) return;
    this.node.classList.toggle('stale', !house.connected);
    this.#cover.show(this.#player);
    this.#controls.update();
    render(this.#template(state), this.node);
  }

  #template(state) {
    const controls = this.#controls;
    const {mayAct} = this.#player;
    const large = this.#current() === 'playing';  // that page has the position itself; nobody needs it twice
    return html`${this.#line}<a class="player-what" href="/#playing" aria-current=${large ? 'page' : nothing}>${this.#cover.node}
        <span class="player-words"><span class="sr">Now playing: </span><span class="player-title">${state.title || this.#silence(state)}</span>
          <span class="player-by">${joined(state.artist, state.album)}</span></span></a>
      <div class="player-middle">
        ${mayAct ? html`<div class="player-buttons" role="group" aria-label="Playback">${controls.shuffleButton}${controls.previousButton}
          ${controls.playButton}${controls.nextButton}${controls.loopButton}</div>` : ''}
        ${large ? '' : controls.progress}</div>
      <div class="player-right">${mayAct ? html`${controls.muteButton}${controls.volume.node}` : nothing}
        <a class="control to-queue" href="/#playing" aria-label="Queue" title="Queue">${icon('queue')}</a></div>`;
  }

  /** The line of narrow pages. */
  #reached(at) {
    const {duration, item} = this.#player.state;
    const share = item && duration ? Math.min(1, at / duration) : 0;
    this.#line.style.transform = `scaleX(${Math.round(share * 1000) / 1000})`;
  }

  #silence(state) {
    if (!this.#player.house.connected) return 'The house can’t be reached';
    return state.known ? 'Nothing is playing' : 'The player isn’t ready';
  }
}
