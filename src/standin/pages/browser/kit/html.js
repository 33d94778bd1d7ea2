// What the pages use of lit-html, in one place. A text in a template is never read as markup.
export {html, nothing, render} from '../lib/lit-html/lit-html.js';
export {keyed} from '../lib/lit-html/directives/keyed.js';
export {live} from '../lib/lit-html/directives/live.js';
export {ref} from '../lib/lit-html/directives/ref.js';
export {repeat} from '../lib/lit-html/directives/repeat.js';
