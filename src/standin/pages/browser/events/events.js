// The page "Events": the list, one event, the templates, and the history.
import {editorView} from './editor.js';
import {listView} from './eventlist.js';
import {historyView} from './history.js';
import {templatesView} from './templatecards.js';

export const eventsView = {name: 'events', title: 'Events', mount};

function mount(place, context) {
  const [first = '', second = ''] = context.path;
  const owner = !context.house.state.user.guest;
  if (first === 'history') return historyView(place, context, 0);
  if (Number(first) && second === 'history') return historyView(place, context, Number(first));
  if (Number(first)) return editorView(place, context, first);
  if (first === 'new' && owner) return editorView(place, context, second ? `new/${second}` : 'new');
  if (first === 'templates' && owner) return templatesView(place, context);
  return listView(place, context);
}
