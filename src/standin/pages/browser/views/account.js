// Signing in and out, the owner's password, and what guests need.
import {ask, el, run, toast} from '../kit/dom.js';

const field = (label, name, autocomplete) => el('label', {class: 'field'}, label,
  el('input', {type: 'password', name, autocomplete, maxlength: 1024}));

/** The page for those whom the server doesn't know yet. */
export function signInPage(page) {
  const button = el('button', {class: 'primary', type: 'submit'}, 'Sign in');
  const guest = el('button', {type: 'button'}, 'Look around as a guest');
  const enter = (control, body) => run(control, async () => { await ask('/api/login', body); location.reload(); });
  const form = el('form', {class: 'panel', onsubmit: (event) => {
    event.preventDefault();
    enter(button, {name: form.elements.name.value, password: form.elements.password.value});
  }}, el('h1', {}, 'Sign in'),
  el('label', {class: 'field'}, 'Name', el('input', {name: 'name', value: 'owner', autocomplete: 'username'})),
  field('Password', 'password', 'current-password'), el('div', {class: 'row'}, button, guest));
  guest.addEventListener('click', () => enter(guest, {name: 'guest', password: form.elements.password.value}));
  page.replaceChildren(form);
  form.elements.password.focus();
}

/** `changed` loads the state anew and shows the page again. */
export function accountPage(page, user, changed) {
  const parts = [el('h1', {}, 'Account')];
  parts.push(el('p', {}, user.guest
    ? 'You look around as a guest: devices work, settings don’t.' : `You are signed in as ${user.name}.`));
  if (!user.guest) parts.push(passwordForm(user, changed), guestForm(user, changed));
  const out = el('button', {type: 'button'}, user.guest ? 'Leave guest mode' : 'Sign out');
  out.addEventListener('click', () => run(out, async () => { await ask('/api/logout', {}); location.reload(); }));
  const guest = el('button', {type: 'button', hidden: user.guests !== 'open'}, 'Try as a guest');
  guest.addEventListener('click', () => run(guest, async () => {
    await ask('/api/login', {name: 'guest'});
    location.reload();
  }));
  parts.push(el('div', {class: 'row'}, user.guest || user.ownerHasPassword ? out : null, user.guest ? null : guest));
  page.replaceChildren(el('section', {class: 'panel'}, ...parts));
}

function passwordForm(user, changed) {
  const button = el('button', {class: 'primary', type: 'submit'},
    user.ownerHasPassword ? 'Change password' : 'Set password');
  const form = el('form', {onsubmit: async (event) => {
    event.preventDefault();
    const {old, password, again} = form.elements;
    if (password.value !== again.value) {
      toast('The two new passwords differ', 'bad');
      return;
    }
    const body = {password: password.value, old: old ? old.value : ''};
    if (await run(button, () => ask('/api/password', body))) {
      toast(password.value ? 'The password is set' : 'The password is removed');
      form.reset();
      await changed();
    }
  }}, el('h2', {}, 'Password'),
  el('p', {class: 'quiet'}, user.ownerHasPassword
    ? (user.local ? 'Leave the new password empty to do without one on this machine.' : '')
    : 'Without a password everyone at this machine is the owner. Other machines are let in only with one.'),
  el('input', {type: 'text', name: 'name', value: user.name, autocomplete: 'username', hidden: true}),
  user.ownerHasPassword ? field('Old password', 'old', 'current-password') : null,
  field('New password', 'password', 'new-password'), field('New password again', 'again', 'new-password'), button);
  return form;
}

/** Whether guests are let in: they may look and use devices, but change nothing. */
function guestForm(user, changed) {
  const button = el('button', {class: 'primary', type: 'submit'}, 'Save');
  const choice = el('select', {name: 'guests'}, el('option', {value: 'off'}, 'Let no guests in'),
    el('option', {value: 'open'}, 'Let everybody in as a guest'),
    el('option', {value: 'password'}, 'Let guests in with a password'));
  choice.value = user.guests;
  const password = field('Password for guests', 'guestPassword', 'off');
  const show = () => { password.hidden = choice.value !== 'password'; };
  choice.addEventListener('change', show);
  show();
  const form = el('form', {onsubmit: async (event) => {
    event.preventDefault();
    const body = {guests: choice.value, password: form.elements.guestPassword.value};
    if (await run(button, () => ask('/api/guests', body))) {
      toast('Saved');
      await changed();
    }
  }}, el('h2', {}, 'Guests'), el('label', {class: 'field'}, 'Guests', choice), password, button);
  return form;
}
