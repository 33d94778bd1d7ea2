// How the house's clock differs from this page's own, from what the house says of the time and when that is heard.

const kDrift = 1e-4;  // two clocks part by no more than this share of the time that passes

/** All times are milliseconds. */
export class Clocks {
  #low = -Infinity;  // the house's clock less this page's, at least
  #high = Infinity;  // and at most
  #at = 0;           // when that was so

  /** Another clock counts from now on: that of a house which has begun anew, or of a page that has slept. */
  forget() {
    [this.#low, this.#high] = [-Infinity, Infinity];
  }

  /**
   * The house has said that it is `clock`, not later than `now` of this page's clock; and not before `since`, where
   * that is known.
   */
  heard(clock, now, since = -Infinity) {
    const [low, high] = [clock - now, clock - since];
    const grown = (now - this.#at) * kDrift;
    this.#low = Math.max(this.#low - grown, low);
    this.#high = Math.min(this.#high + grown, high);
    if (this.#low > this.#high) [this.#low, this.#high] = [low, high];  // one of the two has been set
    this.#at = now;
  }

  /** What is to be added to this page's clock for the house's. */
  get apart() {
    if (this.#high === Infinity) return this.#low === -Infinity ? 0 : this.#low;
    return (this.#low + this.#high) / 2;
  }

  /** By how much that may be wrong at that moment. */
  doubt(now) {
    return (this.#high - this.#low) / 2 + (now - this.#at) * kDrift;
  }
}
