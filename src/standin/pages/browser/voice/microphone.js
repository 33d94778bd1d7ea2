// The microphone of the machine that the page is looked at on.
import {kLongest, kRate} from './listening.js';

const kLastWord = 1000;  // milliseconds for what was heard last to come: 50 are usual

/** Why there is no microphone here, whatever anybody allows: {why, what} in words; null where there may be one. */
export function noMicrophone() {
  if (!isSecureContext) {
    return {why: `Browsers give the microphone to pages of this machine itself and to https addresses alone. This page is at ${location.origin}: the address is the reason, not your browser.`,
      what: [`Open the house on the machine that it runs on, at http://127.0.0.1${location.port ? `:${location.port}` : ''}/#voice,`,
        'or reach the server by an https address: start it with --tls-cert, or with a web server in front of it that has a certificate.']};
  }
  if (!navigator.mediaDevices?.getUserMedia || !self.AudioWorkletNode) {
    return {why: 'This browser gives no page a microphone.', what: ['Another browser may.']};
  }
  return null;
}

const refusals = {
  NotAllowedError: 'The browser doesn’t give this page the microphone. Allow it with the sign beside the address, then hold the button again.',
  NotFoundError: 'No microphone was found. Plug one in, then hold the button again.',
  NotReadableError: 'The microphone doesn’t answer: another program may be using it.',
};
refusals.SecurityError = refusals.NotAllowedError;
refusals.OverconstrainedError = refusals.NotFoundError;

const wanted = {audio: {echoCancellation: true, noiseSuppression: true, autoGainControl: true, channelCount: 1}};

/**
 * Begins to listen. `heard(piece, level, seconds)` comes again and again, the last one while it is taken; `full()` when no more may be heard, `gone()` when
 * the microphone is. Throws an Error in words when there is no microphone to be had.
 */
export async function openMicrophone(told) {
  let stream;
  try {
    stream = await navigator.mediaDevices.getUserMedia(wanted);
  } catch (error) {
    throw new Error(refusals[error.name] ?? `The microphone can’t be used: ${error.message || error.name}`);
  }
  const recording = new Recording(stream, told);
  try {
    await recording.begin();
  } catch (error) {
    recording.drop();
    throw new Error(`This browser can’t listen: ${error.message || error.name}`);
  }
  return recording;
}

class Recording {
  #stream;
  #told;
  #context = null;
  #node = null;
  #pieces = [];
  #count = 0;
  #over = false;
  #last = () => {};

  constructor(stream, told) {
    this.#stream = stream;
    this.#told = told;
    for (const track of stream.getTracks()) track.onended = () => { if (!this.#over) told.gone(); };
  }

  async begin() {
    this.#context = new AudioContext({latencyHint: 'interactive'});
    await this.#context.audioWorklet.addModule(new URL('./earworklet.js', import.meta.url));
    this.#node = new AudioWorkletNode(this.#context, 'house-ear', {numberOfOutputs: 0, processorOptions: {rate: kRate}});
    this.#node.port.onmessage = ({data}) => this.#take(data);
    this.#context.createMediaStreamSource(this.#stream).connect(this.#node);
    // Some browsers hold it back until the page has been touched: then it begins at the next hold.
    this.#context.resume().catch(() => {});
  }

  #take({sound, level, last}) {
    const room = kLongest * kRate - this.#count;
    const piece = sound.subarray(0, Math.max(0, room));
    this.#pieces.push(piece);
    this.#count += piece.length;
    if (piece.length && (last || !this.#over)) this.#told.heard(piece, level, this.#count / kRate);
    if (last) this.#last();
    if (!last && !this.#over && sound.length >= room) this.#told.full();
  }

  /** Ends it; answers what was heard. */
  async take() {
    this.#over = true;
    const last = new Promise((resolve) => {
      this.#last = resolve;
      setTimeout(resolve, kLastWord);
    });
    this.#node.port.postMessage('end');
    await last;
    this.drop();
    const all = new Int16Array(this.#count);
    let at = 0;
    for (const piece of this.#pieces) {
      all.set(piece, at);
      at += piece.length;
    }
    return all;
  }

  /** Ends it; what was heard is forgotten. */
  drop() {
    this.#over = true;
    for (const track of this.#stream.getTracks()) track.stop();
    this.#context?.close().catch(() => {});
  }
}
