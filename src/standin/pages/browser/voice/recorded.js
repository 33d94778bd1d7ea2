// A recorded file instead of the microphone.
import {kLongest, kRate} from './listening.js';
import {toWhole} from './resampler.js';

const kLargest = 6 << 20;  // bytes: half a minute of a disc's quality. A small file may hold hours; this bounds them.

/** What is in it, as the house listens to it. Throws an Error in words. */
export async function soundOf(file) {
  if (file.size > kLargest) throw new Error(`${file.name} is too large: a recording of up to ${kLongest} seconds is enough`);
  const context = new OfflineAudioContext(1, 1, kRate);  // what it decodes has its rate
  let decoded;
  try {
    decoded = await context.decodeAudioData(await file.arrayBuffer());
  } catch {
    throw new Error(`${file.name} is no recording that this browser can read`);
  }
  if (decoded.duration > kLongest) throw new Error(`${file.name} is longer than ${kLongest} seconds`);
  const channels = Array.from({length: decoded.numberOfChannels}, (_, at) => decoded.getChannelData(at));
  return toWhole(channels[0].map((_, at) => channels.reduce((sum, each) => sum + each[at], 0) / channels.length));
}
