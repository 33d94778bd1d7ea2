// The templates to choose from.
import {html, render} from '../kit/html.js';
import {kTemplates} from './templates.js';

export const templateCards = () => html`<ul class="cards template-cards">${kTemplates.map(({id, title, says}) => html`<li class="card">
  <h3><a href=${`#events/new/${id}`}>${title}</a></h3><p>${says}</p></li>`)}</ul>`;

export function templatesView(place, {title}) {
  title('Templates · Events');
  render(html`<div class="page-head"><div class="head-words"><a class="back" href="#events" aria-label="Back to the events">‹</a>
    <h1>Templates</h1></div></div>
    <p>A template fills in a new event. You see what it does, and change what you like, before you save it.</p>${templateCards()}`, place);
}
