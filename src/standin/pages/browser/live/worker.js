// Runs once for all pages of a browser and reads the one stream for them: a browser opens six connections to a
// server and no more, so that one stream a page would leave the seventh page without an answer to anything.
import {Source} from './source.js';

const pages = new Set();
let source = null;

const tellAll = (message) => pages.forEach((page) => page.postMessage(message));

function open() {
  if (source) source.open();
  else source = new Source(tellAll);
}

function leave(page) {
  pages.delete(page);
  if (pages.size) return;
  source?.close();
  source = null;
}

self.onconnect = ({ports: [page]}) => {
  page.onmessage = ({data}) => {
    if (data === 'leave') leave(page);
    else if (data === 'ask') page.postMessage({type: 'here'});
    else open();
  };
  pages.add(page);
  open();
  if (source.state === 'opened') page.postMessage({type: 'opened'});
};
