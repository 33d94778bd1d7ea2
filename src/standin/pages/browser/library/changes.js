// The changes of a list, sent one after the other while the page shows them already.
import {ask} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

/**
 * `list` has {name, version}; `told(answer)` hears each answer, `say(text)` speaks to who can't see, `refresh()` reads
 * the list anew where what is shown may differ from what is there.
 */
export class Changes {
  #list;
  #told;
  #say;
  #refresh;
  #sequence = Promise.resolve();
  #generation = 0;  // of the list as it is shown; what belongs to an older one is not sent
  #inFlight = 0;
  late = false;     // somebody else's change has come in between

  constructor(list, {told, say, refresh}) {
    this.#list = list;
    this.#told = told;
    this.#say = say;
    this.#refresh = refresh;
  }

  get busy() {
    return this.#inFlight > 0;
  }

  /** Has the work done when the changes before it have been. */
  after(work) {
    this.#sequence = this.#sequence.then(work);
    return this.#sequence;
  }

  /** Sends a change; has the list read anew when it is refused. `order()` answers what the server takes. */
  send(action, order, words) {
    const mine = this.#generation;
    this.#inFlight++;
    return this.after(async () => {
      if (mine === this.#generation) await this.#take(action, order, words);
    }).finally(() => {
      this.#inFlight--;
      this.settle();
    });
  }

  async #take(action, order, words) {
    try {
      const answer = await ask(`/api/playlist/${action}`, {name: this.#list.name, ...await order()});
      if (answer.version !== this.#list.version + 1) this.late = true;
      this.#list.version = answer.version;
      this.#told(answer);
      if (words) this.#say(words);
    } catch (error) {
      this.#generation++;
      this.late = true;
      this.#list.fresh = true;
      toast(error.message, 'bad');
      this.#say(error.message);
    }
  }

  /** Reads the list when that waits for nothing any longer. */
  settle() {
    if (this.late && !this.busy) this.#refresh();
  }
}
