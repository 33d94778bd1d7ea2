// The page for those whom the server doesn't know yet.
import {html, render} from '../kit/html.js';
import {ask, run} from '../kit/server.js';
import {passwordField} from './account.js';

export const signInView = {name: 'sign-in', title: 'Sign in', mount};

function mount(place) {
  const enter = (control, body) => run(control, async () => {
    await ask('/api/login', body);
    location.reload();
  });
  const form = () => place.querySelector('form');
  const field = (name) => form().elements[name].value;
  render(html`<form class="panel" @submit=${(event) => {
    event.preventDefault();
    enter(form().querySelector('.primary'), {name: field('name'), password: field('password')});
  }}>
    <h1>Sign in</h1>
    <label class="field">Name<input name="name" value="owner" autocomplete="username"></label>
    ${passwordField('Password', 'password', 'current-password')}
    <div class="row"><button class="primary" type="submit">Sign in</button>
      <button type="button" @click=${(event) => enter(event.currentTarget, {name: 'guest', password: field('password')})}>Look
        around as a guest</button></div></form>`, place);
  form().elements.password.focus();
}
