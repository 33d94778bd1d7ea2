// What a view does later, as long as it lasts: its signal is aborted when the view is left.

/** The work, which does nothing once the view is left. */
export const whileShown = (signal, work) => (...given) => signal.aborted ? undefined : work(...given);

/** Work that is done some time after `start(time)`, once, and not before if it is started anew. */
export class Timer {
  #signal;
  #work;
  #id = 0;

  constructor(signal, work) {
    this.#signal = signal;
    this.#work = work;
    signal.addEventListener('abort', () => this.stop());
  }

  start(time = 0) {
    this.stop();
    if (this.#signal.aborted) return;
    this.#id = setTimeout(() => {
      this.#id = 0;
      this.#work();
    }, time);
  }

  /** The same, but what has been started already stays as it is. */
  ensure(time) {
    if (!this.#id) this.start(time);
  }

  stop() {
    clearTimeout(this.#id);
    this.#id = 0;
  }
}

/** Work on a later turn. */
export const later = (signal, work) => new Timer(signal, work).start();

/** Work again and again. */
export function every(signal, time, work) {
  if (signal.aborted) return;
  const id = setInterval(work, time);
  signal.addEventListener('abort', () => clearInterval(id));
}
