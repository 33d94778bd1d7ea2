// The page for those whom the server doesn't know yet.
import {html, ref, render} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {passwordField} from './account.js';

export const signInView = {name: 'sign-in', title: 'Sign in', mount};

function mount(place, {house}) {
  const {way, why} = house.state;
  // Without a password the owner is known by the key in the address that the server prints.
  if (way === 'key') {
    render(html`<section class="panel"><h1>Who are you?</h1><p>${why}</p></section>`, place);
    return;
  }
  const enter = (control, body) => run(control, async () => {
    await ask('/api/login', body);
    location.reload();
  });
  render(passwordForm(enter), place);
  place.querySelector('[name=password]').focus();
}

function passwordForm(enter) {
  const field = (form, name) => form.elements[name].value;
  let form;
  return html`<form class="panel" ${ref((node) => { form = node; })} @submit=${(event) => {
    event.preventDefault();
    enter(form.querySelector('.primary'), {name: field(form, 'name'), password: field(form, 'password')});
  }}>
    <h1>Sign in</h1>
    <label class="field">Name<input name="name" value="owner" autocomplete="username"></label>
    ${passwordField('Password', 'password', 'current-password')}
    <div class="row"><button class="primary" type="submit">Sign in</button>
      <button type="button" @click=${(event) => enter(event.currentTarget, {name: 'guest', password: field(form, 'password')})}>Look around as a guest</button></div></form>`;
}
