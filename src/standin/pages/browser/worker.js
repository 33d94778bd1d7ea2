// The worker of the installed page. It keeps nothing of the house: it only says so when the house can't be reached.
const kKept = 'silent-house-1';
const kPage = '/unreachable.html';

self.addEventListener('install', (event) => {
  event.waitUntil(caches.open(kKept).then((kept) => kept.add(new Request(kPage, {cache: 'reload'}))).then(() => self.skipWaiting()));
});

self.addEventListener('activate', (event) => {
  const old = (names) => Promise.all(names.filter((name) => name !== kKept).map((name) => caches.delete(name)));
  event.waitUntil(Promise.all([caches.keys().then(old), self.registration.navigationPreload?.enable()])
    .then(() => self.clients.claim()));
});

// The browser asks for the page itself, as if there were no worker: asked for by this one, the server could not tell who
// wants it and what for, and would refuse pages that are for a reader's own eyes.
async function answered(event) {
  try {
    return await event.preloadResponse ?? await fetch(event.request);
  } catch {
    const words = {status: 503, headers: {'Content-Type': 'text/plain; charset=utf-8'}};
    return await caches.match(kPage) ?? new Response('The house can’t be reached', words);  // all may have been cleared
  }
}

self.addEventListener('fetch', (event) => {
  const {mode, method, destination} = event.request;
  if (mode !== 'navigate' || method !== 'GET' || destination !== 'document') return;
  if (self.registration.navigationPreload) event.respondWith(answered(event));
});
