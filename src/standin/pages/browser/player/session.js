// The lock screen of a phone and the media keys of a keyboard. A browser gives them to the page that plays sound, and
// the sound of a house comes from elsewhere: so this page plays silence while the house plays, once the visitor has
// pressed something here, and stops when the house does.
import {html, nothing} from '../kit/html.js';
import {complain} from '../kit/server.js';
import {playingCover} from './covers.js';

const kStore = 'media-keys';
const kSilence = new URL('../silence.mp3', import.meta.url).href;  // of ten seconds: browsers pass over what is shorter than five

const supported = () => 'mediaSession' in navigator;
// A phone has one sound at a time: to play silence there would end the visitor's own music, so he is asked first.
const kAsked = matchMedia('(pointer: coarse)').matches;
const wanted = () => localStorage.getItem(kStore) === 'on' || (!kAsked && localStorage.getItem(kStore) !== 'off');
let changed = () => {};

/** The choice whether this browser's keys are the player's, for who has such keys. */
export const keysWord = () => supported() ? html`<label class="keys"><input type="checkbox" .checked=${wanted()}
  @change=${(event) => {
    localStorage.setItem(kStore, event.currentTarget.checked ? 'on' : 'off');
    changed();
  }}> Media keys and the lock screen of this device control the player</label>` : nothing;

export class Session {
  #player;
  #sound = null;
  #touched = false;  // the visitor has pressed something on this page
  #shown = '';

  constructor(player) {
    this.#player = player;
    if (!supported()) return;
    changed = () => this.#update();
    player.on(() => this.#update());
    const touch = () => {
      this.#touched = true;
      this.#update();
    };
    for (const event of ['pointerup', 'keyup']) addEventListener(event, touch, {capture: true, once: true});
    this.#answer();
  }

  #answer() {
    const act = (word, body) => this.#player.act(word, body).catch(complain);
    const seek = (to) => this.#player.seek(to).catch(complain);
    const by = (seconds) => seek(Math.max(0, this.#player.position() + seconds));
    const answers = {
      play: () => act('play'), pause: () => act('pause'), stop: () => act('stop'),
      previoustrack: () => act('previous'), nexttrack: () => act('next'),
      seekto: ({seekTime}) => seek(seekTime),
      seekbackward: ({seekOffset}) => by(-(seekOffset ?? 10)), seekforward: ({seekOffset}) => by(seekOffset ?? 10),
    };
    for (const [word, answer] of Object.entries(answers)) {
      try {
        navigator.mediaSession.setActionHandler(word, answer);
      } catch { /* a key that this browser does not know */ }
    }
  }

  #update() {
    const {state, mayAct, house} = this.#player;
    const {mediaSession} = navigator;
    const active = mayAct && wanted() && house.connected && Boolean(state.item) && state.play !== 'stopped';
    const playing = ['playing', 'loading'].includes(state.play);
    this.#hold(active, playing);
    mediaSession.playbackState = !active ? 'none' : playing ? 'playing' : 'paused';
    const cover = playingCover(this.#player, 1024);
    const shown = active ? [state.item, state.title, state.artist, state.album, cover].join('\n') : '';
    if (shown !== this.#shown) {
      this.#shown = shown;
      mediaSession.metadata = active ? new MediaMetadata({title: state.title, artist: state.artist, album: state.album,
        artwork: cover ? [{src: new URL(cover, location.href).href}] : []}) : null;
    }
    if (!active || !mediaSession.setPositionState) return;
    const known = state.duration > 0 && state.rate >= 0;
    mediaSession.setPositionState(known ? {duration: state.duration, position: Math.min(this.#player.position(), state.duration),
      playbackRate: state.rate || 1} : undefined);
  }

  /** Takes the keys, or gives them back. */
  #hold(active, playing) {
    if (!active || !this.#touched) {
      this.#sound?.pause();
      if (!active) this.#sound = null;
      return;
    }
    if (!this.#sound) {
      this.#sound = new Audio(kSilence);
      this.#sound.loop = true;
    }
    if (playing && this.#sound.paused) this.#sound.play().catch(() => {});
    else if (!playing) this.#sound.pause();
  }
}
