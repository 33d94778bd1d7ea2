// What makes the page one that can be installed: its worker, which only speaks while the house is silent. Browsers
// take one only over a connection that is safe, or on this very machine.
export function install() {
  if (!('serviceWorker' in navigator)) return;
  navigator.serviceWorker.register('/worker.js').catch(() => {});
}
