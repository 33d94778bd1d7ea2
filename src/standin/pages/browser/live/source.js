// The server's event stream, as a page, or the worker of all pages, reads it.
const kKinds = ['device', 'removed', 'log', 'script', 'playlist', 'player', 'cover', 'event', 'dialog', 'frame', 'launch', 'voice',
  'room', 'reload'];
const kSilence = 12000;  // milliseconds without a word after which the connection is dead: the server says one every 5 s
const kOpening = 30000;  // after which it is begun anew
const kLook = 4000;

/**
 * Tells {type: 'opened'}, {type: 'lost'} while the browser tries again, {type: 'refused'} when it does not, and
 * {type: 'event', kind, data} with the text of an event.
 */
export class Source {
  #tell;
  #stream = null;
  #watch = 0;
  #heard = 0;  // when the server last said a word
  state = '';

  constructor(tell) {
    this.#tell = tell;
    this.open();
  }

  /** Begins, unless it is under way. */
  open() {
    if (this.#stream && this.state !== 'refused') return;
    const stream = this.#stream = new EventSource('/api/live');
    this.state = 'opening';
    this.#heard = Date.now();
    this.#watch ||= setInterval(() => this.#look(), kLook);
    const become = (state) => {
      if (stream !== this.#stream) return;
      this.state = state;
      this.#heard = Date.now();
      this.#tell({type: state});
    };
    stream.onopen = () => become('opened');
    stream.onerror = () => become(stream.readyState === EventSource.CLOSED ? 'refused' : 'lost');
    for (const kind of kKinds) {
      stream.addEventListener(kind, (event) => {
        this.#heard = Date.now();
        this.#tell({type: 'event', kind, data: event.data});
      });
    }
    stream.addEventListener('alive', () => { this.#heard = Date.now(); });
  }

  /** A connection may die without a word, as when a machine sleeps or a cable is pulled. */
  #look() {
    const patience = this.state === 'opened' ? kSilence : kOpening;
    if (this.state === 'refused' || Date.now() - this.#heard < patience) return;
    this.close();
    this.#tell({type: 'lost'});
    this.open();
  }

  close() {
    clearInterval(this.#watch);
    this.#watch = 0;
    this.#stream?.close();
    this.#stream = null;
  }
}
