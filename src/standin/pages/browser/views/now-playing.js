// What plays now, at a glance: put together from the devices that the player keeps.
import {partsOf, pictureIn} from '../kit/devicetext.js';
import {html, nothing} from '../kit/html.js';
import {playerDevices, textOf} from './player.js';

const kCover = /WMPCoverSmall/i;

/** Nothing where there is no player. `connected`: what is shown is known to be so now. */
export function nowPlaying(devices, connected) {
  const {Status, Title, Artist, Album, Genre, Length} = playerDevices(devices);
  if (!Title) return nothing;
  const title = textOf(Title);
  const by = [Artist, Album].map(textOf).filter(Boolean).join(' · ');
  const facts = [Genre, Length].map(textOf).filter(Boolean);
  return html`<section class="now ${connected ? '' : 'stale'}" id="now" aria-label="Now playing">
    ${art(Album ?? Title)}
    <div class="now-text">
      <p class="now-state">${connected ? textOf(Status) || 'Now playing' : 'Last heard of'}</p>
      ${title ? html`<p class="now-title">${title}</p><p class="now-by">${by}</p>` : html`
        <p class="now-title">Nothing has been played yet</p>
        <p class="now-by"><a href="#library/Album">Choose an album</a>, or press ▶ below</p>`}
      <p class="now-facts">${facts.map((fact) => html`<span class="chip">${fact}</span>`)}</p>
    </div></section>`;
}

function art(device) {
  const cover = pictureIn(partsOf(device), kCover);
  return cover ? html`<div class="art"><img src=${cover.src} alt=""></div>`
    : html`<div class="art" aria-hidden="true">♪</div>`;
}
