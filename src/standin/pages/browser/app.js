// The page: its frame, and in it the view that the address names, or the page that the server has put there.
import {eventsView} from './events/events.js';
import {Frame} from './frame/frame.js';
import {House} from './frame/house.js';
import {launched} from './frame/launched.js';
import {Router} from './frame/router.js';
import {el} from './kit/dom.js';
import {toasts} from './kit/toasts.js';
import {libraryView} from './library/library.js';
import {Bar} from './player/bar.js';
import {install} from './player/install.js';
import {nowPlayingView} from './player/nowpage.js';
import {Player} from './player/now.js';
import {Session} from './player/session.js';
import {preparePluginPage} from './plugin/pluginpage.js';
import {accountView} from './views/account.js';
import {devicesView} from './views/devices.js';
import {logView} from './views/log.js';
import {menuView} from './views/menu.js';
import {scriptsView} from './views/scripts.js';
import {signInView} from './views/signin.js';
import {voiceView} from './voice/voice.js';

const part = (id) => document.getElementById(id);
const given = document.body.dataset.view;  // set on pages that the server has filled: plug-in pages, messages
const house = new House();
const player = new Player(house);
const router = new Router({page: part('page'), main: part('main'), house,
  views: [devicesView, nowPlayingView(player), libraryView, eventsView, voiceView, scriptsView, menuView, logView, accountView]});
const splash = el('p', {class: 'quiet'});
const frame = new Frame({nav: part('nav'), pill: part('plugin-state'), live: part('live-state'), banner: part('banner'),
  splash}, house, () => router.views.filter((view) => !view.shown || view.shown(house.state)), () => given || router.current.name);

/** Another user sees other pages; what is shown already draws itself anew. */
function userChanged(before) {
  const {user} = house.state;
  const same = before.user && before.user.name === user.name && before.user.guest === user.guest;
  if (!given && (!same || !router.shown)) router.show();
}

house.on('state', (before) => { if (house.connected) userChanged(before); });
house.on('signed-out', () => { if (router.shown !== signInView) router.show({view: signInView}); });
house.on('launch', launched);
const bar = new Bar(player, () => given || router.current.name);
document.body.append(el('footer', {}, splash), bar.node, toasts);
new Session(player);
if (given) {
  await preparePluginPage(document.querySelector('.plugin-page'));
} else {
  router.start();
  addEventListener('hashchange', () => {
    frame.drawNav();
    bar.draw();
  });
}
part('skip').addEventListener('click', (event) => {
  event.preventDefault();  // an address of its own would be another view
  part('main').focus();
});
await house.load();
await player.read();
house.listen();
install();
