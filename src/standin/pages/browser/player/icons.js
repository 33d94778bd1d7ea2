// The signs on the player's buttons.
import {html} from '../kit/html.js';

const filled = {
  play: 'M8 4.8v14.4L19.5 12z',
  pause: 'M6.5 5h4v14h-4zM13.5 5h4v14h-4z',
  next: 'M5.5 5 15 12l-9.5 7zM16.2 5h2.6v14h-2.6z',
  previous: 'M18.5 5 9 12l9.5 7zM5.2 5h2.6v14H5.2z',
};
const drawn = {
  shuffle: 'M3 7h3.5l7 10H20M3 17h3.5l2.3-3.2M11.2 10.2 13.5 7H20M17 4l3 3-3 3M17 14l3 3-3 3',
  loop: 'M17 3l3.5 3.5L17 10M20 6.5H8A4.5 4.5 0 0 0 3.5 11v1M7 21l-3.5-3.5L7 14M4 17.5h12a4.5 4.5 0 0 0 4.5-4.5v-1',
  volume: 'M4 9.5v5h3.5L12 19V5L7.5 9.5zM15.5 9a4.2 4.2 0 0 1 0 6M18 6.5a7.8 7.8 0 0 1 0 11',
  muted: 'M4 9.5v5h3.5L12 19V5L7.5 9.5zM16 9.5l5 5M21 9.5l-5 5',
  queue: 'M4 6h16M4 11h10M4 16h10M17.5 13.5v6l4.5-3z',
  playNext: 'M4 6h16M4 11h8M4 16h8M15 12l4.5 3.2L15 18.5zM21.5 12v6.5',
  addToQueue: 'M4 6h16M4 11h16M4 16h8M18.5 13.5v7M15 17h7',
  microphone: 'M12 3.5a3 3 0 0 0-3 3v5a3 3 0 0 0 6 0v-5a3 3 0 0 0-3-3zM5.5 11.5a6.5 6.5 0 0 0 13 0M12 18v3',
  more: 'M5 12h.01M12 12h.01M19 12h.01',
};

export const icon = (name) => html`<svg class=${`icon ${name in filled ? 'filled' : 'drawn'} icon-${name}`} viewBox="0 0 24 24"
  aria-hidden="true" focusable="false"><path d=${filled[name] ?? drawn[name]}></path></svg>`;
