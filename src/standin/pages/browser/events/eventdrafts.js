// Events that were changed and not saved yet, each {rule, base, form, template}: the rule as it stands in the editor, the
// text of the stored one that it was made from, what is open in a form of the plug-in, and the template's choices.
import {Drafts} from '../kit/drafts.js';

export const drafts = new Drafts('event-drafts');

export const kNew = 'new';

/** The editor's address of a draft's name: an event's number, "new", or "new/" and a template's name. */
export const addressOf = (name) => `#events/${name}`;

export const nameOfDraft = (draft) => draft.rule.name?.trim() || 'New event';

/** A rule without what only the page knows of it. */
export function bare(rule) {
  const part = ({key, shown, ...rest}) => (rest.not === undefined && !('not' in rest) ? rest : {...rest, not: Boolean(rest.not)});
  const {id, version, name, group, on, triggers, any, conditions, actions, again} = rule;
  return {...(id ? {id, version} : {}), name, group, on, triggers: triggers.map(part), any, conditions: conditions.map(part),
    actions: actions.map(part), again};
}

const isNothing = (value) => value === '' || value === 0 || value === false || (Array.isArray(value) && !value.length);

/** Two parts that say the same have the same text, whoever has written them. */
const canonical = (value) => {
  if (Array.isArray(value)) return value.map(canonical);
  if (typeof value !== 'object' || value === null) return value;
  return Object.fromEntries(Object.keys(value).sort().filter((name) => !isNothing(value[name])).map((name) => [name, canonical(value[name])]));
};

/** What counts as a change: all but the version. `names` are some of a rule's properties. */
export function textOf(rule, names = ['name', 'group', 'on', 'triggers', 'any', 'conditions', 'actions', 'again']) {
  const whole = bare(rule);
  return JSON.stringify(names.map((name) => canonical(whole[name])));
}

export const freshRule = () => ({name: '', group: '', on: true, triggers: [], any: false, conditions: [], actions: [],
  again: 'leave'});

/** A rule as a draft has kept it; its parts were drawn by another page. */
export function fromDraft(kept) {
  const parts = (list) => (kept[list] ?? []).map(({key, ...part}) => part);
  return {...freshRule(), ...kept, triggers: parts('triggers'), conditions: parts('conditions'), actions: parts('actions')};
}

/** A stored event as the editor has it: its parts with the server's words. */
export function opened({words, ...rule}) {
  const shown = (part, words) => (part.kind === 'plugin' && part.not ? words.replace(/^Not: /, '') : words);
  const worded = (list) => (rule[list] ?? []).map((part, at) => ({...part, shown: shown(part, words?.[list]?.[at] ?? '')}));
  return {...freshRule(), ...rule, triggers: worded('triggers'), conditions: worded('conditions'), actions: worded('actions')};
}
