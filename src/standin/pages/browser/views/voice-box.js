// Says a phrase to the house.
import {html} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

export const voiceBox = () => html`
  <form class="voice" @submit=${say}>
    <span class="voice-mark" aria-hidden="true"></span>
    <input type="text" id="say" name="say" maxlength="500" autocomplete="off"
      placeholder="Say something, like “volume up”" aria-label="Say something">
    <button class="primary" type="submit">Say</button>
  </form>`;

async function say(event) {
  event.preventDefault();
  const {say: input} = event.currentTarget.elements;
  const text = input.value.trim();
  if (!text) return;
  const button = event.currentTarget.querySelector('button');
  if (await run(button, async () => toast(`Done: ${(await ask('/api/voice', {text})).done ?? text}`))) input.value = '';
  input.focus();
}
