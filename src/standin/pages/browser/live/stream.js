// What happens in the house, as it happens: one stream for all pages of this browser.
import {joinLeader} from './leader.js';
import {Source} from './source.js';

/** By a worker that the pages share. */
function joinWorker(hear, otherwise) {
  const worker = new SharedWorker(new URL('./worker.js', import.meta.url), {type: 'module', name: 'vantorix-live'});
  worker.onerror = otherwise;
  worker.port.onmessage = ({data}) => hear(data);
  return {
    open: () => worker.port.postMessage('open'),
    leave: () => worker.port.postMessage('leave'),
  };
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
