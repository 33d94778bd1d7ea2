// The devices' buttons: what each will do, and what it has done where the devices don't show it.
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {textOf} from './player.js';

const kAdds = 'Add to PlayList';
const kTells = {'Vol Up': tellVolume, 'Vol Down': tellVolume, [kAdds]: tellAddition};

/** Those that whoever looks may press: guests change no playlist. */
export const buttonsOf = (device, guest) => guest ? device.buttons.filter((caption) => caption !== kAdds) : device.buttons;

/** A button that means one of two things says which of them comes next. */
export function captionOf(device, caption) {
  return caption === 'Pause' && textOf(device) === 'Paused' ? 'Resume' : caption;
}

export function pressed(button, device, caption) {
  return run(button, async () => {
    const answer = await ask('/api/press', {ref: device.ref, caption});
    await kTells[caption]?.(answer);
  });
}

let volumeShown = () => {};

/** No device shows how loud it is. */
async function tellVolume() {
  const {volume} = await ask('/api/volume');
  volumeShown();
  volumeShown = toast(`Volume ${volume}`);
}

function tellAddition({added, list}) {
  toast([`Added ${added} to `, el('a', {href: `#library/PlayList/${encodeURIComponent(list)}`}, list)]);
}
