// Runs beside the page, where the sound of the microphone comes: makes of it what the house listens to.
import {Resampler, toWhole} from './resampler.js';

const kAtOnce = 800;  // samples in a message: 50 milliseconds

/** Tells {sound, level} again and again, and after a word from the page {sound, last: true}. `level` is from 0 to 1. */
class HouseEar extends AudioWorkletProcessor {
  #resampler;
  #waiting = [];
  #count = 0;
  #ended = false;

  constructor({processorOptions: {rate}}) {
    super();
    this.#resampler = new Resampler(sampleRate, rate);
    this.port.onmessage = () => {
      if (this.#ended) return;
      this.#ended = true;
      this.#keep(this.#resampler.end());
      this.#tell(true);
    };
  }

  process([channels]) {
    if (this.#ended) return false;
    if (!channels.length) return true;  // nothing is connected yet
    const [first, ...others] = channels;
    const one = others.length ? first.map((sample, at) =>
      others.reduce((sum, other) => sum + other[at], sample) / channels.length) : first;
    this.#keep(this.#resampler.push(one));
    if (this.#count >= kAtOnce) this.#tell(false);
    return true;
  }

  #keep(samples) {
    this.#waiting.push(samples);
    this.#count += samples.length;
  }

  #tell(last) {
    const all = new Float32Array(this.#count);
    let at = 0;
    for (const samples of this.#waiting) {
      all.set(samples, at);
      at += samples.length;
    }
    this.#waiting = [];
    this.#count = 0;
    const sound = toWhole(all);
    this.port.postMessage({sound, level: loudness(all), last}, [sound.buffer]);
  }
}

/** As ears have it: 60 dB below the loudest is nothing. */
function loudness(samples) {
  const power = samples.reduce((sum, sample) => sum + sample * sample, 0) / Math.max(1, samples.length);
  return Math.max(0, Math.min(1, 1 + 10 * Math.log10(power + 1e-12) / 60));
}

registerProcessor('house-ear', HouseEar);
