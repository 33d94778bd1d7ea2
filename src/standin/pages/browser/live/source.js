// The server's event stream, as a page, or the worker of all pages, reads it.
const kKinds = ['device', 'removed', 'log', 'script', 'playlist', 'frame', 'launch', 'reload'];

/**
 * Tells {type: 'opened'}, {type: 'lost'} while the browser tries again, {type: 'refused'} when it does not, and
 * {type: 'event', kind, data} with the text of an event.
 */
export class Source {
  #tell;
  #stream = null;
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
    const become = (state) => {
      this.state = state;
      this.#tell({type: state});
    };
    stream.onopen = () => become('opened');
    stream.onerror = () => become(stream.readyState === EventSource.CLOSED ? 'refused' : 'lost');
    for (const kind of kKinds) {
      stream.addEventListener(kind, (event) => this.#tell({type: 'event', kind, data: event.data}));
    }
  }

  close() {
    this.#stream?.close();
    this.#stream = null;
  }
}
