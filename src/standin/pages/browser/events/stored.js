// The plug-in's strings as events keep them: the values of a dialog's rows behind two fields of the house.
const kBetween = '\u0002';
const kIllegal = /[\u0001-\u0003\t\r>&"<^~]/g;  // what no name in the plug-in's lists holds

/** A name as the plug-in's dialog lists it. */
const listed = (name) => name.replace(kIllegal, ' ').replace(/ +/g, ' ');

/** Its fields, when nobody has worded it yet. */
export const bareWords = (stored) => stored.split(kBetween).slice(2).filter((field) => field && field !== 'No Action').join(', ')
  || 'Nothing chosen';

/** Which of the plug-in's two conditions it is. */
export const conditionNumber = (stored) => (stored.split(kBetween)[1] === 'Media Mode' ? 2 : 1);

const kPrompts = ['To enable a Media Player action:', 'You can avoid this message'];

/** The player has asked to be asked again: only then it fills its lists. */
export const isPrompt = (stored) => kPrompts.some((prompt) => stored.split(kBetween)[2]?.startsWith(prompt));

const kGroups = ['PlayList', 'Album', 'Artist', 'Genre'];

/** An action of the plug-in `player`: a word of the transport, or a group that is played whole. */
export function actionOf(player, word, {category = '', name = '', mode = 'No Action'} = {}) {
  const groups = kGroups.map((each) => (each === category ? listed(name) : ''));
  return [player, 'Media Player Actions', category ? `Play: ${category}` : word, ...groups, category ? '(Play entire list)' : '',
    '', mode, ''].join(kBetween);
}

export const triggerOf = (player, word) => [player, 'Media Player Triggers', word].join(kBetween);

export const statusOf = (player, what, yes) => [player, 'Media Player Status', what, yes ? 'Yes' : 'No'].join(kBetween);
