// Another sample rate for a sound that comes piece by piece. What the new rate can't hold is taken away first: folded
// back it would be heard as noise in the middle of the words.
const kCrossings = 16;  // of the filter on either side: the more, the steeper
const kPhases = 256;    // places between two samples at which the filter is known
const kPass = 0.92;     // of what the lower rate can hold

const sinc = (x) => (x === 0 ? 1 : Math.sin(Math.PI * x) / (Math.PI * x));
// Blackman's: what is taken away is down by some 74 dB.
const windowAt = (x) => 0.42 + 0.5 * Math.cos(Math.PI * x) + 0.08 * Math.cos(2 * Math.PI * x);

/** Samples of `from` a second become samples of `to` a second, both as Float32Array. */
export class Resampler {
  #step;           // samples of the old rate from one of the new rate to the next
  #half;           // of the filter, in samples of the old rate
  #filter;         // [phase][tap]
  #kept;           // the samples that are still needed
  #next;           // where in them the next one of the new rate lies

  constructor(from, to) {
    this.#step = from / to;
    const cut = kPass * Math.min(1, to / from);
    this.#half = Math.ceil(kCrossings / cut);
    this.#filter = Array.from({length: kPhases + 1}, (_, phase) => this.#taps(phase / kPhases, cut));
    this.#kept = new Float32Array(this.#half);
    this.#next = this.#half;
  }

  #taps(shift, cut) {
    const taps = new Float32Array(2 * this.#half);
    let sum = 0;
    for (let i = 0; i < taps.length; i++) {
      const x = i - this.#half + 1 - shift;
      taps[i] = Math.abs(x) < this.#half ? sinc(x * cut) * windowAt(x / this.#half) : 0;
      sum += taps[i];
    }
    return taps.map((tap) => tap / sum);
  }

  push(samples) {
    const all = new Float32Array(this.#kept.length + samples.length);
    all.set(this.#kept);
    all.set(samples, this.#kept.length);
    const out = [];
    for (; this.#next + this.#half < all.length; this.#next += this.#step) out.push(this.#at(all, this.#next));
    const used = Math.max(0, Math.floor(this.#next) - this.#half);
    this.#kept = all.slice(used);
    this.#next -= used;
    return Float32Array.from(out);
  }

  /** What is left when nothing more comes. */
  end() {
    return this.push(new Float32Array(this.#half));
  }

  #at(all, place) {
    const whole = Math.floor(place);
    const phase = (place - whole) * kPhases;
    const below = Math.floor(phase);
    const [one, other] = [this.#filter[below], this.#filter[below + 1]];
    const share = phase - below;
    let sum = 0;
    for (let i = 0, at = whole - this.#half + 1; i < one.length; i++, at++) {
      sum += all[at] * (one[i] + (other[i] - one[i]) * share);
    }
    return sum;
  }
}

/** Samples from -1 to 1 as whole numbers of 16 bits. */
export function toWhole(samples) {
  return Int16Array.from(samples, (sample) => Math.round(Math.max(-1, Math.min(1, sample)) * 32767));
}
