// The devices' buttons: what each will do, and what it has done where the devices don't show it.
import {el} from '../kit/dom.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';
import {playerDevices, textOf} from './player.js';

const kTells = {'Vol Up': tellVolume, 'Vol Down': tellVolume, 'Add to PlayList': tellAddition};
const kList = 'Vantorix';  // the playlist that the player adds to

/** A button that means one of two things says which of them comes next. */
export function captionOf(device, caption) {
  return caption === 'Pause' && textOf(device) === 'Paused' ? 'Resume' : caption;
}

export function pressed(button, device, caption, devices) {
  return run(button, async () => {
    await ask('/api/press', {ref: device.ref, caption});
    await kTells[caption]?.(devices);
  });
}

let volumeShown = () => {};

/** No device shows how loud it is. */
async function tellVolume() {
  const {volume} = await ask('/api/volume');
  volumeShown();
  volumeShown = toast(`Volume ${volume}`);
}

/** The player adds what was chosen to be played, and says nothing of its own: the list is looked at. */
async function tellAddition(devices) {
  const title = textOf(playerDevices(devices).Title);
  const query = new URLSearchParams({group: kList, q: title, offset: 0, limit: 1, fresh: 1});
  const found = title && await ask(`/api/playlist?${query}`).catch(() => null);
  if (!found?.total) throw new Error('Nothing was added: choose something of the library to play first');
  toast([`Added ${title} to `, el('a', {href: `#library/PlayList/${kList}`}, kList)]);
}
