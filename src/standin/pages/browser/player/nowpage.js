// The page "Now playing": the cover, all that can be done with what plays, and the queue.
import {el} from '../kit/dom.js';
import {html, nothing, render} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {address} from '../library/kinds.js';
import {Controls} from './controls.js';
import {CoverPicture} from './covers.js';
import {QueueList} from './queue.js';
import {keysWord} from './session.js';

export const nowPlayingView = (player) => ({name: 'playing', title: 'Now playing', mount: (place, context) => mount(place, context, player)});

async function mount(place, context, player) {
  const {signal, house, kept} = context;
  const controls = new Controls(player, signal);
  const cover = new CoverPicture(1024);
  const left = el('section', {class: 'playing-now', 'aria-label': 'What plays'});
  const right = el('section', {class: 'playing-queue', 'aria-label': 'Queue'});
  place.append(el('h1', {class: 'sr'}, 'Now playing'), el('div', {class: 'playing'}, left, right));
  const draw = whileShown(signal, () => {
    cover.show(player);
    controls.update();
    left.classList.toggle('stale', !house.connected);
    context.title(player.state.title || 'Now playing');
    render(template(player, controls, cover), left);
  });
  player.on(draw, signal);
  draw();
  await new QueueList(right, context, player).start(kept.list);
}

function template(player, controls, cover) {
  const {state, mayAct} = player;
  const {title, artist, album} = state;
  return html`${cover.node}
    <div class="playing-words"><p class="playing-title">${title || (state.known ? 'Nothing is playing' : 'The player isn’t ready')}</p>
      <p class="playing-by">${artist ? html`<a href=${address('Artist', artist)}>${artist}</a>` : ''}${artist && album ? ' · ' : ''}${
  album ? html`<a href=${address('Album', album)}>${album}</a>` : ''}</p></div>
    ${controls.progress}
    ${mayAct ? html`<div class="player-buttons" role="group" aria-label="Playback">${controls.shuffleButton}${controls.previousButton}
      ${controls.playButton}${controls.nextButton}${controls.loopButton}</div>
      <div class="player-loud" role="group" aria-label="Sound">${controls.muteButton}${controls.volume.node}</div>
      ${keysWord()}` : nothing}`;
}
