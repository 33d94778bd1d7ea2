// One stream for all pages where no worker can be shared: one page leads, reads the stream and hands on to the others
// what it hears. Nobody relies on the leader's timers, which a browser slows down in a page that is not seen: a page
// that has heard nothing for a while asks, and takes the lead when no answer comes.
import {Source} from './source.js';

const kLook = 4000;   // milliseconds without a word of the leader's before it is asked for
const kAnswer = 600;  // that an answer may take
const kClaim = 200;   // in which another page may be faster

export function joinLeader(hear) {
  const me = Math.random().toString(36).slice(2) + Date.now().toString(36);
  const channel = new BroadcastChannel('vantorix-live');
  const say = (message) => channel.postMessage({from: me, ...message});
  let source = null;     // of the leader alone
  let claiming = false;
  let openedBy = '';     // the leader whose open stream this page has been told of
  let timer = 0;

  const after = (time, work) => {
    clearTimeout(timer);
    timer = setTimeout(work, time);
  };
  const rest = () => {
    claiming = false;
    after(kLook * (1 + Math.random()), look);
  };
  const lead = () => say({word: 'lead', open: source.state === 'opened'});

  function look() {
    say({word: 'ask'});
    after(kAnswer, claim);
  }

  function claim() {
    claiming = true;
    say({word: 'claim'});
    after(kClaim, () => {
      claiming = false;
      source = new Source((message) => {
        say({word: 'told', message});
        hear(message);
      });
      lead();
    });
  }

  /** Of two leaders the one with the lesser name stays. */
  function otherLeads(from, open) {
    if (source && me < from) {
      lead();
      return;
    }
    source?.close();
    source = null;
    rest();
    if (!open) openedBy = '';
    else if (openedBy !== from) hearAs(from, {type: 'opened'});
  }

  function hearAs(from, message) {
    if (message.type !== 'event') openedBy = message.type === 'opened' ? from : '';
    hear(message);
  }

  function asked() {
    if (!source) return;
    source.open();
    lead();
  }

  channel.onmessage = ({data: {from, word, open, message}}) => {
    if (word === 'ask') asked();
    else if (word === 'lead') otherLeads(from, open);
    else if (word === 'gone') after(Math.random() * kClaim, claim);
    else if (word === 'told' && !source) hearAs(from, message);
    else if (word === 'claim' && source) lead();
    else if (word === 'claim' && claiming && me < from) claim();
    else if (word === 'claim') rest();
  };
  look();

  return {
    open: () => (source ? source.open() : say({word: 'ask'})),
    leave() {
      clearTimeout(timer);
      if (source) say({word: 'gone'});
      source?.close();
      source = null;
      channel.close();
    },
  };
}
