// Signing out, the owner's password, and what guests need.
import {dropAllDrafts} from '../kit/drafts.js';
import {html, nothing, render} from '../kit/html.js';
import {whileShown} from '../kit/lasting.js';
import {ask, run} from '../kit/server.js';
import {toast} from '../kit/toasts.js';

export const accountView = {name: 'account', title: 'Account', mount};

export const passwordField = (label, name, autocomplete, hidden = false) => html`
  <label class="field" ?hidden=${hidden}>${label}<input type="password" name=${name} autocomplete=${autocomplete} maxlength="1024"></label>`;

function mount(place, {signal, house}) {
  let guests = null;  // as chosen and not saved yet
  let asked = false;
  let services = null;  // whether covers are asked for in the network; not known yet
  const draw = whileShown(signal, () => {
    if (!house.state.user) return;
    if (!asked && !house.state.user.guest) loadServices();
    const covers = services === null ? nothing : coverForm(services);
    render(page(house, guests ?? house.state.user.guests, chooseGuests, covers), place);
  });
  const chooseGuests = (rule) => {
    guests = rule;
    draw();
  };
  house.on('state', draw, signal);
  draw();

  async function loadServices() {
    asked = true;
    const told = await ask('/api/covers/services', undefined, signal).catch(() => null);
    if (told === null) return;
    services = told.on;
    draw();
  }
}

/** Nobody outside is asked for anything until the owner has said so. */
function coverForm(on) {
  return html`<form @submit=${setServices}><h2>Covers of discs</h2>
    <p class="quiet">With this the house asks MusicBrainz and the Cover Art Archive for the cover of a disc that is played, and tells them its table of contents. The player asks the house if its player.ini names it.</p>
    <label class="row"><input type="checkbox" name="on" .checked=${on}> Ask for covers in the network</label>
    <button class="primary" type="submit">Save</button></form>`;
}

async function setServices(event) {
  event.preventDefault();
  const form = event.currentTarget;
  if (!await run(form.querySelector('button'), () => ask('/api/covers/services', {on: form.elements.on.checked}))) return;
  toast('Covers of discs: saved');
}

function page(house, guests, chooseGuests, covers) {
  const {user} = house.state;
  const button = (words, work) => html`<button type="button" @click=${(event) => run(event.currentTarget, async () => {
    await work();
    location.reload();
  })}>${words}</button>`;
  const leave = async () => {
    await ask('/api/logout', {});
    dropAllDrafts();
  };
  return html`<section class="panel"><h1>Account</h1>
    <p>${user.guest ? 'You look around as a guest: devices work, settings don’t.' : `You are signed in as ${user.name}.`}</p>
    ${user.guest ? nothing : [passwordForm(house), guestForm(house, guests, chooseGuests), covers]}
    <div class="row">
      ${user.guest || user.ownerHasPassword ? button(user.guest ? 'Leave guest mode' : 'Sign out', leave) : nothing}
      ${user.guest ? nothing : button('Try as a guest', () => ask('/api/login', {name: 'guest'}))}
    </div></section>`;
}

function passwordForm(house) {
  const {user} = house.state;
  const why = user.ownerHasPassword ? (user.local ? 'Leave the new password empty to do without one on this machine.' : '')
    : 'Without a password the address that the server prints lets you in; other machines are let in only with a password. It has 8 characters at least.';
  return html`<form @submit=${(event) => setPassword(event, house)}><h2>Password</h2><p class="quiet">${why}</p>
    <input type="text" name="name" .value=${user.name} autocomplete="username" hidden>
    ${user.ownerHasPassword ? passwordField('Old password', 'old', 'current-password') : nothing}
    ${passwordField('New password', 'password', 'new-password')}
    ${passwordField('New password again', 'again', 'new-password')}
    <button class="primary" type="submit">${user.ownerHasPassword ? 'Change password' : 'Set password'}</button></form>`;
}

async function setPassword(event, house) {
  event.preventDefault();
  const form = event.currentTarget;
  const {old, password, again} = form.elements;
  if (password.value !== again.value) {
    toast('The two new passwords differ', 'bad');
    return;
  }
  const body = {password: password.value, old: old ? old.value : ''};
  if (!await run(form.querySelector('button'), () => ask('/api/password', body))) return;
  toast(body.password ? 'The password is set' : 'The password is removed');
  form.reset();
  await house.load();
}

/** Whether guests are let in: they may look and use devices, but change nothing. */
function guestForm(house, guests, choose) {
  const rules = [['off', 'Let no guests in'], ['open', 'Let everybody in as a guest'], ['password', 'Let guests in with a password']];
  return html`<form @submit=${(event) => setGuests(event, house)}><h2>Guests</h2>
    <label class="field">Guests<select name="guests" @change=${(event) => choose(event.target.value)}>
      ${rules.map(([rule, words]) => html`<option value=${rule} .selected=${rule === guests}>${words}</option>`)}</select></label>
    ${passwordField('Password for guests', 'guestPassword', 'off', guests !== 'password')}
    <button class="primary" type="submit">Save</button></form>`;
}

async function setGuests(event, house) {
  event.preventDefault();
  const form = event.currentTarget;
  const body = {guests: form.elements.guests.value, password: form.elements.guestPassword.value};
  if (!await run(form.querySelector('button'), () => ask('/api/guests', body))) return;
  toast('Guests: saved');
  await house.load();
}
