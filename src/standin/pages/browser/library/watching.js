// Tells the server which list this page shows, so that it looks at what others change there.
import {ask} from '../kit/server.js';

const kAgain = 5000;  // milliseconds between two words of it
const kPage = Math.random().toString(36).slice(2) + Date.now().toString(36);

/** `shown()` answers the list's name, or an empty one for the names of all lists. Answers what tells it at once. */
export function watch(shown, signal) {
  const tell = () => {
    if (signal.aborted || document.visibilityState !== 'visible') return;
    ask('/api/playlist/watch', {page: kPage, name: shown()}).catch(() => {});
  };
  const timer = setInterval(tell, kAgain);
  signal.addEventListener('abort', () => clearInterval(timer));
  tell();
  return tell;
}
