// A talk with the house: what is typed and spoken, and what it answers.
import {html, nothing} from '../kit/html.js';
import {complain, run} from '../kit/server.js';
import {answers} from './answers.js';
import {kLongest, say} from './listening.js';
import {noMicrophone} from './microphone.js';
import {soundOf} from './recorded.js';
import {TalkButton} from './talkbutton.js';

const kRemembered = 6;

export class Talk {
  said;  // {understanding's own, note}, the newest first
  #signal;
  #house;
  #draw;
  #small;
  #button;
  #barred = noMicrophone();

  /** `draw` is called whenever it looks different; `small` where it is a guest of another page. */
  constructor({signal, house, draw, said = [], small = false}) {
    this.#signal = signal;
    this.#house = house;
    this.#draw = draw;
    this.#small = small;
    this.said = said;
    this.#button = new TalkButton(signal, {small, answer: (told, note) => this.add(told, note),
      trouble: (words) => this.add({kind: 'failed', says: words})});
  }

  /** Guests may not speak: anybody near an open window could. */
  get #mayListen() {
    return this.#house.state.user && !this.#house.state.user.guest;
  }

  /** What was said, and the house's answer; `note` tells what else there is to it. */
  add(told, note = '') {
    this.said = [{...told, note}, ...this.said].slice(0, kRemembered);
    this.#draw();
  }

  async #say(text) {
    const told = await say(text, this.#signal);
    // The words on a button are the house's own; what was typed is worth reading again.
    this.add({...told, heard: told.heard || text});
  }

  async #typed(event) {
    event.preventDefault();
    const {say: input} = event.currentTarget.elements;
    const text = input.value.trim();
    if (!text) return;
    if (await run(event.currentTarget.querySelector('[type=submit]'), () => this.#say(text))) input.value = '';
    input.focus();
  }

  #recorded(event) {
    const [file] = event.target.files;
    event.target.value = '';  // the same one may be chosen again
    if (file) this.#button.send(() => soundOf(file));
  }

  box() {
    const speaks = this.#small && this.#mayListen && !this.#barred;
    return html`<form class="voice" @submit=${(event) => this.#typed(event)}>
      <span class="voice-mark" aria-hidden="true"></span>
      <input type="text" id="say" name="say" maxlength="500" autocomplete="off"
        placeholder="Say something, like “volume up”" aria-label="Say something">
      <button class="primary" type="submit">Say</button>${speaks ? this.#button.node : nothing}
    </form>`;
  }

  /** The way to speak. It stays where nobody listens yet: the house tries again for who speaks. */
  microphone() {
    if (!this.#mayListen) return nothing;
    return html`<div class="talk-ways">
      ${this.#barred ? html`<div class="talk-barred"><h2>No microphone at this address</h2>
        <p>${this.#barred.why}</p><p>${this.#barred.what.join(' ')}</p></div>` : this.#button.node}
      <label class="talk-file">${this.#barred ? 'Send a recording' : 'or send a recording'}
        <input type="file" class="sr" accept="audio/*" capture aria-describedby="talk-file-most" @change=${(event) => this.#recorded(event)}></label>
        <span class="sr" id="talk-file-most">Up to ${kLongest} seconds</span></div>`;
  }

  answers() {
    const choose = async (command, button) => {
      const place = button.closest('.answer-now');
      try {
        await this.#say(command);
        place.focus({preventScroll: true});  // the button is gone
      } catch (error) {
        complain(error);
      }
    };
    return answers(this.#small ? this.said.slice(0, 1) : this.said, choose);
  }
}
