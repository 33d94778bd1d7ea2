// Words with the server.
import {toast} from './toasts.js';

/** Asks the server; throws an Error with its own words. With a body it is a command. */
export async function ask(path, body, signal) {
  return askWith(path, body === undefined ? {signal} : {
    signal, method: 'POST', headers: {'Content-Type': 'application/json'}, body: JSON.stringify(body)});
}

/** The same, with the options of `fetch`. */
export async function askWith(path, options) {
  let response;
  try {
    response = await fetch(path, options);
  } catch (failure) {
    if (failure.name === 'AbortError') throw failure;
    throw new Error('The server can’t be reached');
  }
  const answer = await response.json().catch(() => ({}));
  if (!response.ok) {
    const error = new Error(answer.error || `The server answered with ${response.status}`);
    error.status = response.status;
    error.answer = answer;
    throw error;
  }
  return answer;
}

/** Tells what went wrong, but for what nobody waits for any longer. */
export function complain(error) {
  if (error.name !== 'AbortError') toast(error.message, 'bad');
}

/** Runs a command; the button is busy meanwhile, and what goes wrong is told. False when it did. */
export async function run(button, work) {
  const had = button && document.activeElement === button;
  button?.setAttribute('aria-busy', 'true');
  if (button) button.disabled = true;
  try {
    await work();
    return true;
  } catch (error) {
    complain(error);
    return false;
  } finally {
    button?.removeAttribute('aria-busy');
    if (button) button.disabled = false;
    // A button that is switched off loses the focus.
    if (had && button.isConnected && document.activeElement === document.body) button.focus({preventScroll: true});
  }
}
