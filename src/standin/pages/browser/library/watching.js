// Tells the server which list this page shows, so that it looks at what others change there.
import {every, whileShown} from '../kit/lasting.js';
import {ask} from '../kit/server.js';

const kAgain = 5000;  // milliseconds between two words of it
const kPage = Math.random().toString(36).slice(2) + Date.now().toString(36);

/** `shown()` answers the list's name, or an empty one for the names of all lists. Answers what tells it at once. */
export function watch(shown, signal) {
  const tell = whileShown(signal, () => {
    if (document.visibilityState === 'visible') ask('/api/playlist/watch', {page: kPage, name: shown()}).catch(() => {});
  });
  every(signal, kAgain, tell);
  tell();
  return tell;
}
