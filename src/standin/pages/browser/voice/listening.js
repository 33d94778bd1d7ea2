// What is said to the house, typed or spoken, and what it makes of it.
import {ask, askWith} from '../kit/server.js';

export const kRate = 16000;  // samples a second
export const kLongest = 30;  // seconds

/** The house's understanding, {kind, heard, command, events, says, choices, …}: of what it did not do, too. Throws an
 * Error in words where there is none. */
export async function understanding(asked) {
  try {
    return await asked;
  } catch (error) {
    if (error.answer?.kind) return error.answer;
    throw error;
  }
}

export const say = (text, signal) => understanding(ask('/api/voice', {text}, signal));

/** Sound as Int16Array, in one piece when all has been said. */
export const hear = (sound, signal) => understanding(askWith('/api/voice/listen', {signal, method: 'POST',
  headers: {'Content-Type': `audio/l16;rate=${kRate}`}, body: littleEndian(sound)}));

/** Has the player make room for who speaks, or ends that; without it he is only heard less well. The house ends it by
 * itself when it has heard him, too. */
export const quiet = (on) => askWith('/api/voice/quiet', {method: 'POST', keepalive: true,  // a page that is left asks, too
  headers: {'Content-Type': 'application/json'}, body: JSON.stringify({on})}).catch(() => {});

export function littleEndian(sound) {
  const bytes = new DataView(new ArrayBuffer(sound.length * 2));
  sound.forEach((sample, at) => bytes.setInt16(at * 2, sample, true));
  return bytes.buffer;
}
