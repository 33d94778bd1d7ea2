// When it is looked where the title has come to: once a second, by all who show it in the same moment, so that the
// browser draws the page once.

const kTurn = 1000;  // milliseconds of the title between two looks

export class Ticks {
  #player;
  #looks = new Set();
  #timer = 0;

  constructor(player) {
    this.#player = player;
    document.addEventListener('visibilitychange', () => this.#turn());
    player.on(() => this.#wait());
  }

  /** `look()` is called from then on, until the signal ends it. */
  on(look, signal) {
    this.#looks.add(look);
    signal?.addEventListener('abort', () => this.#looks.delete(look), {once: true});
  }

  #turn() {
    for (const look of [...this.#looks]) look();
    this.#wait();
  }

  /** Nothing turns while nobody looks, or nothing moves. */
  #wait() {
    clearTimeout(this.#timer);
    const {rate} = this.#player.state;
    if (!rate || document.hidden) return;
    const rest = kTurn - (this.#player.position() * 1000) % kTurn;
    this.#timer = setTimeout(() => this.#turn(), rest / Math.max(1, Math.abs(rate)) + 4);
  }
}
