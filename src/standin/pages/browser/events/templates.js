// Events to begin with. Each is filled into a draft from a few choices, and is an event like any other from then on.
import {actionOf, statusOf, triggerOf} from './stored.js';

/**
 * `asks` are the choices: [name, kind, label, what it is at first]. `make(choices, player)` answers a rule, or two of
 * which the second is saved with the first, and where it names event 0, means the first; `player` is the plug-in's name.
 */
export const kTemplates = [
  {id: 'wake', title: 'Wake up with music',
    says: 'Plays a playlist at a set time, quietly at first. If it can’t be heard, the next choice plays, and at last a tone.',
    asks: [['music', 'music', 'Wake with', {category: 'PlayList', name: ''}], ['other', 'music', 'If that can’t be heard', {category: 'Album', name: ''}],
      ['at', 'time', 'At', '07:00'], ['days', 'days', 'Days', [1, 2, 3, 4, 5]], ['volume', 'percent', 'Up to volume, %', 50],
      ['minutes', 'minutes', 'Rising for, minutes', 3], ['words', 'text', 'Said when no music is heard', 'Good morning, it is time to get up']],
    make: ({music, other, at, days, volume, minutes, words}, player) => [{
      name: 'Wake up', group: 'Morning', triggers: [{kind: 'time', at, days}], conditions: [],
      actions: [{kind: 'wake', choices: [music, other].filter(({name}) => name).map((each) => actionOf(player, '', each)), words, volume,
        seconds: minutes * 60}],
      again: 'leave'}]},
  {id: 'sleep', title: 'Sleep timer',
    says: 'Lets the music play on for a while, fades it out, and gives the volume back for the next day.',
    asks: [['after', 'minutes', 'Stop after, minutes', 30], ['fade', 'minutes', 'Of these fading, minutes', 10],
      ['device', 'device', 'Started when this goes on', 0]],
    make: ({after, fade, device}, player) => {
      const fading = Math.max(1, Math.min(fade, after, 120));
      return [{
        name: 'Sleep timer', group: 'Evening', triggers: device ? [goes(device, '2')] : [],
        conditions: [{kind: 'plugin', stored: statusOf(player, 'Playing', true), shown: `${player} Playing: Yes`, not: false}],
        actions: [...(after > fading ? [{kind: 'wait', seconds: (after - fading) * 60}] : []),
          {kind: 'fade', to: 0, seconds: fading * 60, then: 'stop'}],
        again: 'restart'}];
    }},
  {id: 'announce', title: 'Announce something',
    says: 'Says a text over the music: the music waits or is muted while the house speaks, and goes on after.',
    asks: [['text', 'text', 'Say', 'Dinner is ready'], ['at', 'time', 'At', '18:30'], ['days', 'days', 'Days', []]],
    make: ({text, at, days}) => [{
      name: 'Announcement', group: '', triggers: [{kind: 'time', at, days}, {kind: 'script'}], conditions: [],
      actions: [{kind: 'speak', text}], again: 'queue'}]},
  {id: 'pause', title: 'Pause for something else',
    says: 'Pauses the music when a device goes on, a television or a telephone, and resumes it when it goes off. Music that you had paused yourself stays paused.',
    asks: [['device', 'device', 'Pause while this is on', 0]],
    make: ({device}, player, deviceName) => [{
      name: `Pause for ${deviceName}`, group: 'Pauses', triggers: [goes(device, '2')],
      conditions: [{kind: 'plugin', stored: statusOf(player, 'Playing', true), shown: `${player} Playing: Yes`, not: false}],
      actions: [{kind: 'plugin', stored: actionOf(player, 'Pause'), shown: 'Pause'}], again: 'leave'}, {
      name: `Resume after ${deviceName}`, group: 'Pauses', triggers: [goes(device, '3')],
      conditions: [{kind: 'event', id: 0, not: false},
        {kind: 'plugin', stored: statusOf(player, 'Paused', true), shown: `${player} Paused: Yes`, not: false}],
      actions: [{kind: 'plugin', stored: actionOf(player, 'Resume'), shown: 'Resume'}], again: 'leave'}]},
  {id: 'night', title: 'Good night',
    says: 'When the music ends late in the evening and the player isn’t muted, the lamp goes off and the house says good night.',
    asks: [['from', 'time', 'After', '22:00'], ['to', 'time', 'Until', '06:00'], ['device', 'device', 'Lamp', 0],
      ['text', 'text', 'Say', 'Good night']],
    make: ({from, to, device, text}, player) => [{
      name: 'Good night', group: 'Evening',
      triggers: [{kind: 'plugin', stored: triggerOf(player, 'Playback Ended'), shown: `${player} Playback Ended`}],
      conditions: [{kind: 'window', from, to, not: false},
        {kind: 'plugin', stored: statusOf(player, 'Muted', false), shown: `${player} Muted: No`, not: false}],
      actions: [...(device ? [{kind: 'device', ref: device, command: 'off', value: 0, caption: ''}] : []), {kind: 'speak', text}],
      again: 'leave'}]},
];

const goes = (ref, value) => ({kind: 'device', ref, field: 'status', is: 'equals', value});
