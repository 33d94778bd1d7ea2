// What the player's own devices say, for views that put it together.
import {partsOf, wordsOf} from '../kit/devicetext.js';

const kPlayer = 'Media Player';

/** The player's devices by their names. */
export function playerDevices(devices) {
  const found = {};
  for (const device of devices.values()) if (device.location === kPlayer) found[device.name] = device;
  return found;
}

export const textOf = (device) => (device ? wordsOf(partsOf(device)) : '');

/** "Playing", "Paused", … */
export const statusOf = (devices) => textOf(playerDevices(devices).Status);
