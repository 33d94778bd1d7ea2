// The worker of the installed page. It keeps nothing of the house: it only says so when the house can't be reached.
const kKept = 'silent-house-1';
const kPage = '/unreachable.html';

self.addEventListener('install', (event) => {
  event.waitUntil(caches.open(kKept).then((kept) => kept.add(new Request(kPage, {cache: 'reload'}))).then(() => self.skipWaiting()));
});

self.addEventListener('activate', (event) => {
  const old = (names) => Promise.all(names.filter((name) => name !== kKept).map((name) => caches.delete(name)));
  event.waitUntil(caches.keys().then(old).then(() => self.clients.claim()));
});

self.addEventListener('fetch', (event) => {
  if (event.request.mode !== 'navigate' || event.request.method !== 'GET') return;  // the browser's own business
  event.respondWith(fetch(event.request).catch(() => caches.match(kPage)));
});
