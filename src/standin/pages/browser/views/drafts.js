// Scripts that were changed and not saved yet, each {name, text}; '' is the new one.
import {Drafts} from '../kit/drafts.js';

const drafts = new Drafts('script-drafts');

export const draftOf = (script) => drafts.of(script);
export const keepDraft = (script, draft) => drafts.keep(script, draft);
export const dropDraft = (script) => drafts.drop(script);
