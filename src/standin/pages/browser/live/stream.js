// What happens in the house, as it happens: one stream for all pages of this browser.
import {joinLeader} from './leader.js';
import {Source} from './source.js';

const kAsk = 10000;  // milliseconds between two questions to the worker whether it is there
const kMissed = 2;   // so many in a row without a word

/** By a worker that the pages share. One that is gone, or never came, says nothing of it. */
function joinWorker(hear, otherwise) {
  const worker = new SharedWorker(new URL('./worker.js', import.meta.url), {type: 'module', name: 'vantorix-live'});
  const {port} = worker;
  const ended = new AbortController();
  let unanswered = 0;
  let watch = 0;
  const leave = () => {
    ended.abort();
    clearTimeout(watch);
    worker.onerror = null;
    port.onmessage = null;
    port.postMessage('leave');
  };
  const giveUp = () => {
    leave();
    otherwise();
  };
  const ask = () => {
    if (unanswered++ >= kMissed) {
      giveUp();
      return;
    }
    port.postMessage('ask');
    watch = setTimeout(ask, kAsk);
  };
  /** While somebody looks. */
  const look = () => {
    clearTimeout(watch);
    unanswered = 0;
    if (!document.hidden) watch = setTimeout(ask, kAsk);
  };
  document.addEventListener('visibilitychange', look, {signal: ended.signal});
  look();
  worker.onerror = giveUp;
  port.onmessage = ({data}) => {
    unanswered = 0;
    if (data.type !== 'here') hear(data);
  };
  return {open: () => port.postMessage('open'), leave};
}

function joinAlone(hear) {
  const source = new Source(hear);
  return {open: () => source.open(), leave: () => source.close()};
}

const withoutWorker = (hear) => ('BroadcastChannel' in self ? joinLeader(hear) : joinAlone(hear));

function join(hear) {
  if (!('SharedWorker' in self)) return withoutWorker(hear);
  let way;
  try {
    way = joinWorker(hear, () => { way = withoutWorker(hear); });
  } catch {
    way = withoutWorker(hear);
  }
  return {open: () => way.open(), leave: () => way.leave()};
}

/**
 * `hear` gets what a Source tells; 'opened' comes again whenever something may have been missed. Answers what opens
 * the stream again after it was refused. A page that is left lets go of it, and one that comes back as it was left
 * takes it up again.
 */
export function joinStream(hear) {
  let way = join(hear);
  addEventListener('pagehide', () => {
    way?.leave();
    way = null;
  });
  addEventListener('pageshow', () => { way ??= join(hear); });
  return () => way?.open();
}
