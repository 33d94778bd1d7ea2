// The page for those whom the server doesn't know yet.
import {html, ref, render} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {passwordField} from './account.js';

export const signInView = {name: 'sign-in', title: 'Sign in', mount};

function mount(place, {house}) {
  const enter = (control, body) => run(control, async () => {
    await ask('/api/login', body);
    location.reload();
  });
  const asGuest = (password) => html`<button type="button"
    @click=${(event) => enter(event.currentTarget, {name: 'guest', password: password()})}>Look around as a guest</button>`;
  const byKey = house.state.way === 'key';
  render(byKey ? keyNeeded(asGuest(() => '')) : passwordForm(enter, asGuest), place);
  if (!byKey) place.querySelector('[name=password]').focus();
}

/** Without a password the owner is known by the key in the address that the server prints. */
const keyNeeded = (guest) => html`<section class="panel">
  <h1>Who are you?</h1>
  <p>Open the address that the house printed when it was started: it carries a key, and this browser is then known.</p>
  <p class="quiet"><code>vantorix-standin --address</code> prints it again.</p>
  <div class="row">${guest}</div></section>`;

function passwordForm(enter, asGuest) {
  const field = (form, name) => form.elements[name].value;
  let form;
  return html`<form class="panel" ${ref((node) => { form = node; })} @submit=${(event) => {
    event.preventDefault();
    enter(form.querySelector('.primary'), {name: field(form, 'name'), password: field(form, 'password')});
  }}>
    <h1>Sign in</h1>
    <label class="field">Name<input name="name" value="owner" autocomplete="username"></label>
    ${passwordField('Password', 'password', 'current-password')}
    <div class="row"><button class="primary" type="submit">Sign in</button>${asGuest(() => field(form, 'password'))}</div></form>`;
}
