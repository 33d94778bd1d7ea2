// The frame of every page: navigation, the plug-in's state, live changes.
import './plugin/ownnames.js';  // first of all
import {accountPage, signInPage} from './views/account.js';
import {deviceChanged, deviceRemoved, devicesPage} from './views/devices.js';
import {ask, el, run, toast, toasts} from './kit/dom.js';
import {leaveLibrary, libraryChanged, libraryPage} from './library/library.js';
import {leaveScripts, scriptChanged, scriptsPage} from './views/scripts.js';
import {leaveLog, logLine, logPage, reloadLog} from './views/log.js';
import {preparePluginPage} from './plugin/pluginpage.js';

const page = document.getElementById('page');
const splash = el('p', {class: 'quiet'});
const ownText = document.body.dataset.view;  // set on pages that the server has filled: plug-in pages, messages
const state = {user: null, plugin: null, menu: [], links: [], devices: new Map()};
let shown = '';
let menuUsed = 0;  // when this page last chose from the menu

const pluginWords = {
  ready: ['Player ready', 'pill-good'], starting: ['Player starting…', 'pill-wait'],
  failed: ['Player failed', 'pill-bad'], lost: ['Player lost', 'pill-bad'], stopped: ['Player stopped', ''],
};

async function loadState() {
  try {
    const answer = await ask('/api/state');
    Object.assign(state, answer, {devices: new Map(answer.devices.map((device) => [device.ref, device]))});
  } catch (error) {
    if (error.status === 401) {
      state.user = null;
      document.getElementById('nav').replaceChildren();
      signInPage(page);
      shown = 'sign-in';
    } else {
      toast(error.message, 'bad');
    }
    return false;
  }
  showFrame();
  return true;
}

function showFrame() {
  const [words, style] = pluginWords[state.plugin.state] || [state.plugin.state, ''];
  const pill = document.getElementById('plugin-state');
  pill.textContent = words;
  pill.className = `pill ${style}`;

  const banner = document.getElementById('banner');
  splash.textContent = state.plugin.splash;
  const trouble = state.plugin.state === 'failed' || state.plugin.state === 'lost' || state.plugin.stuck;
  banner.hidden = !trouble;
  if (trouble) {
    const again = el('button', {type: 'button'}, 'Start again');
    again.addEventListener('click', () => run(again, () => ask('/api/plugin', {})));
    banner.replaceChildren(
      el('div', {}, el('strong', {}, troubleText()), el('p', {}, state.plugin.reason)),
      state.user.guest ? '' : again);
  }
  showNav();
}

function troubleText() {
  if (state.plugin.state === 'failed') return 'The player did not start';
  return state.plugin.state === 'lost' ? 'The player is being started again' : 'The player takes long to answer';
}

function showNav() {
  const here = ownText || currentView();
  const link = (href, text, name) => el('a', {href, 'aria-current': here === name ? 'page' : undefined}, text);
  const links = [link('/#devices', 'Devices', 'devices')];
  links.push(link('/#library', 'Library', 'library'));
  if (!state.user.guest) links.push(link('/#scripts', 'Scripts', 'scripts'));
  if (state.menu.length && !state.user.guest) links.push(link('/#menu', 'Menu', 'menu'));
  for (const each of state.links) links.push(link('/' + encodeURIComponent(each.link), each.text, each.link));
  links.push(link('/#log', 'Log', 'log'));
  links.push(link('/#account', state.user.guest ? 'Guest' : 'Account', 'account'));
  const nav = document.getElementById('nav');
  nav.replaceChildren(...links);
  const current = nav.querySelector('[aria-current]');
  if (current) nav.scrollLeft = current.offsetLeft - (nav.clientWidth - current.offsetWidth) / 2;
}

function currentView() {
  const view = location.hash.slice(1).split('/')[0];
  if (view === 'scripts' && state.user?.guest) return 'devices';
  return ['devices', 'library', 'scripts', 'menu', 'log', 'account'].includes(view) ? view : 'devices';
}

function menuPage() {
  const sections = new Map();
  for (const {section, item} of state.menu) sections.set(section, [...(sections.get(section) || []), item]);
  const groups = [...sections].map(([section, items]) => el('section', {class: 'panel'}, el('h2', {}, section),
    el('div', {class: 'menu-items'}, ...items.map((item) => {
      const button = el('button', {type: 'button', class: 'menu-item'}, item);
      button.addEventListener('click', () => {
        menuUsed = Date.now();
        run(button, () => ask('/api/menu', {item}));
      });
      return button;
    }))));
  return el('div', {}, el('h1', {}, 'Menu'), ...groups,
    groups.length ? null : el('p', {class: 'empty'}, 'The menu fills when the player is ready.'));
}

function showPage() {
  if (!state.user || ownText) return;
  const view = currentView();
  showNav();
  if (view !== 'log') leaveLog();
  if (view !== 'scripts') leaveScripts();
  if (view !== 'library') leaveLibrary();
  if (view === 'devices') page.replaceChildren(devicesPage(state.devices));
  else if (view === 'library') libraryPage(page, shown === 'library', state.user);
  else if (view === 'scripts') scriptsPage(page, shown === 'scripts');
  else if (view === 'menu') page.replaceChildren(menuPage());
  else if (view === 'account') accountPage(page, state.user, async () => { if (await loadState()) showPage(); });
  else if (shown !== 'log') logPage(page);
  shown = view;
}

/** The frame has changed: menu, links, the plug-in's state. Several changes in a row are one reload. */
let reloadTimer = 0;
function reloadSoon() {
  clearTimeout(reloadTimer);
  reloadTimer = setTimeout(async () => {
    const menu = JSON.stringify(state.menu);
    if (await loadState() && shown === 'menu' && menu !== JSON.stringify(state.menu)) showPage();
  }, 120);
}

/** The player opens a page. One of this server's own is opened here at once if this page has asked for it. */
function launched(text) {
  let url;
  try {
    url = new URL(text);
  } catch {
    return;
  }
  if (!['http:', 'https:'].includes(url.protocol)) return;
  const own = ['127.0.0.1', 'localhost', location.hostname].includes(url.hostname);
  // With the origin in front: a path of two slashes would name another server.
  const target = own ? location.origin + url.pathname + url.search : url.href;
  if (own && Date.now() - menuUsed < 5000) {
    location.assign(target);
    return;
  }
  toast(['The player opens a page: ', el('a', {href: target, rel: 'noreferrer'}, target)], '', 20000);
}

function updateDevices(before) {
  for (const ref of before.keys()) if (!state.devices.has(ref)) deviceRemoved(ref, state.devices);
  for (const [ref, device] of state.devices) {
    if (JSON.stringify(before.get(ref)) !== JSON.stringify(device)) deviceChanged(device, state.devices);
  }
}

function listen() {
  const source = new EventSource('/api/live');
  const live = document.getElementById('live-state');
  let held = null;
  source.onopen = async () => {
    live.hidden = true;
    // What happened before the stream was open is in the state; what happens while that is on its way waits.
    held = [];
    const before = state.devices;
    const loaded = await loadState();
    if (loaded && shown === 'log') reloadLog();
    // The devices change in place, so that nobody's click or half-written phrase is lost.
    if (loaded && shown === 'devices') updateDevices(before);
    else if (loaded && shown !== 'account') showPage();
    const late = held;
    held = null;
    for (const handle of late) handle();
  };
  source.onerror = () => {
    live.hidden = false;
    if (source.readyState !== EventSource.CLOSED) return;  // the browser itself tries again
    setTimeout(async () => {
      await loadState();
      if (shown !== 'sign-in') listen();
    }, 3000);
  };
  const on = (kind, handle) => source.addEventListener(kind, (event) => {
    const work = () => handle(JSON.parse(event.data));
    if (held) held.push(work);
    else work();
  });
  on('device', (device) => { state.devices.set(device.ref, device); deviceChanged(device, state.devices); });
  on('removed', (ref) => { state.devices.delete(ref); deviceRemoved(ref, state.devices); });
  on('log', logLine);
  on('script', scriptChanged);
  on('playlist', libraryChanged);
  on('frame', reloadSoon);
  on('launch', launched);
  on('reload', async () => { if (await loadState()) showPage(); });
  addEventListener('pagehide', () => source.close(), {once: true});
}

// A page that comes back as it was left hears of changes again.
addEventListener('pageshow', (event) => {
  if (event.persisted && shown !== 'sign-in') listen();
});

addEventListener('hashchange', () => {
  if (ownText) return;
  showPage();
  document.getElementById('main').focus({preventScroll: true});
});

if (ownText) preparePluginPage(document.querySelector('.plugin-page'));
// Made here, behind all that the server has put into the page: its text may leave tags open.
document.body.append(toasts, el('footer', {}, splash));
if (await loadState()) showPage();
if (shown !== 'sign-in') listen();
