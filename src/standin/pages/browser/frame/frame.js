// What stands round every page: navigation, the plug-in's state, what has gone wrong.
import {html, nothing, render} from '../kit/html.js';
import {ask, run} from '../kit/server.js';

const pluginWords = {
  ready: ['Player ready', 'pill-good'], starting: ['Player starting…', 'pill-wait'],
  failed: ['Player failed', 'pill-bad'], lost: ['Player lost', 'pill-bad'], stopped: ['Player stopped', ''],
};

/** `views()` answers those of the navigation, `current()` the name of the page that is shown. */
export class Frame {
  #parts;
  #house;
  #views;
  #current;

  constructor({nav, pill, live, banner, splash}, house, views, current) {
    this.#parts = {nav, pill, live, banner, splash};
    this.#house = house;
    this.#views = views;
    this.#current = current;
    house.on('state', () => this.draw());
    house.on('signed-out', () => this.draw());
  }

  draw() {
    this.#drawState();
    this.#drawTrouble();
    this.drawNav();
  }

  #drawState() {
    const {user, plugin} = this.#house.state;
    const {pill, live, splash} = this.#parts;
    live.hidden = this.#house.live || !user;
    // What is no longer heard of is not shown as if it were.
    const [words, style] = !user || !this.#house.connected ? ['', ''] : wordsFor(plugin);
    pill.textContent = words;
    pill.className = `pill ${style}`;
    splash.textContent = plugin?.splash ?? '';
  }

  #drawTrouble() {
    const {user, plugin} = this.#house.state;
    const {banner} = this.#parts;
    const trouble = user && this.#house.connected ? troubleOf(plugin) : '';
    banner.hidden = !trouble;
    render(trouble ? html`
      <div><strong>${trouble}</strong><p>${plugin.reason}</p></div>
      ${user.guest ? nothing : html`
        <button type="button" @click=${(event) => run(event.currentTarget, () => ask('/api/plugin', {}))}>Start again</button>`}
    ` : nothing, banner);
  }

  drawNav() {
    const {user, links} = this.#house.state;
    const {nav} = this.#parts;
    const here = this.#current();
    const link = (href, text, name) => html`<a href=${href} aria-current=${here === name ? 'page' : nothing}>${text}</a>`;
    render(user ? html`
      ${this.#views().map((view) => link(`/#${view.name}`, view.title, view.name))}
      ${links.length ? html`<span class="nav-group" role="group" aria-labelledby="nav-plugin">
        <span class="nav-words" id="nav-plugin">Plug-in</span>
        ${links.map((each) => link('/' + encodeURIComponent(each.link), each.text, each.link))}</span>` : nothing}
    ` : nothing, nav);
    const current = nav.querySelector('[aria-current]');
    if (current) nav.scrollLeft = current.offsetLeft - (nav.clientWidth - current.offsetWidth) / 2;
  }
}

function wordsFor(plugin) {
  if (plugin.stuck) return ['Player takes long', 'pill-wait'];
  return pluginWords[plugin.state] || [plugin.state, ''];
}

function troubleOf(plugin) {
  if (plugin.state === 'failed') return 'The player did not start';
  if (plugin.state === 'lost') return 'The player is being started again';
  return plugin.stuck ? 'The player takes long to answer' : '';
}
