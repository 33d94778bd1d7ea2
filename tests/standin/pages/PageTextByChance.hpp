// Texts of pages as chance makes them of others, within the browser.
#pragma once

namespace support {

/// `byChance(seeds, number)` gives a function that makes one text after the other of the seeds: cut, joined,
/// repeated and spelled in another way. The same ones for the same number.
inline constexpr const char* kByChance = R"(
    const byChance = (seeds, number) => {
      let state = number;
      const chance = () => {  // mulberry32
        state = state + 0x6D2B79F5 | 0;
        let t = Math.imul(state ^ state >>> 15, 1 | state);
        t = t + Math.imul(t ^ t >>> 7, 61 | t) ^ t;
        return (t ^ t >>> 14) >>> 0;
      };
      const below = (count) => count > 0 ? chance() % count : 0;
      const one = (list) => list[below(list.length)];
      const kLongest = 4096;
      const kTags = ['b', 'h3', 'p', 'br', 'hr', 'span', 'input', 'select', 'option', 'form', 'div', 'a', 'img', 'svg', 'math',
        'style', 'script', 'template', 'textarea', 'title', 'table', 'td', 'iframe', 'noscript', 'plaintext', 'xmp', 'button',
        'mtext', 'mglyph', 'foreignObject', 'desc', 'annotation-xml', 'body', 'html', 'frameset', 'optgroup', 'x-y'];
      const kAttributes = ['style="position:fixed;inset:0"', 'style=color:red', 'class=toast', 'class=tablecellcustom', 'id=nav',
        'onclick=evil=1', 'onerror=evil=1 src=x', 'onchange="form.submit();"', 'onchange=evil=1', 'name=button', 'name=__proto__',
        'name=attributes', 'name=PlayList', 'type=hidden', 'type=image src=/gone', 'type=file', 'type=password', 'type=submit',
        'type=TEXT', 'value=x', 'value="a-->b"', 'form=f', 'formaction=//gone', 'href=javascript:evil=1', 'size=9999', 'size=5',
        'checked', 'disabled', 'selected', 'is=x-y', 'slot=x', 'popover', 'tabindex=0', 'autofocus', 'hidden', 'dirname=button',
        'data-sends', 'aria-label=x', 'xlink:href=//gone', 'xmlns=http://www.w3.org/2000/svg', 'nonce=x', 'part=x'];
      const kOdd = ['\0', '\t', '\n', '\f', '\r', '\v', '\x1b', '\x7f', '\u00a0', '\u2028', '\ufeff', '\u202e', '\ud800', '\ufffe',
        '\u{1f600}', '<', '</', '>', '/>', '<!--', '-->', '--!>', '<!', '<?', '<![CDATA[', ']]>', '&', '&lt;', '&#0;', '&#x3c', '\\', '/'];
      const range = (text) => {
        const from = below(text.length + 1);
        return [from, from + below(Math.min(text.length - from, 200) + 1)];
      };
      const put = (text, what) => { const at = below(text.length + 1); return text.slice(0, at) + what + text.slice(at); };
      const inRange = (text, change) => {
        const [from, to] = range(text);
        return text.slice(0, from) + change(text.slice(from, to)) + text.slice(to);
      };
      const atOne = (text, what, change) => {
        const places = [...text.matchAll(what)];
        if (!places.length) return text;
        const found = one(places);
        return text.slice(0, found.index) + change(found[0]) + text.slice(found.index + found[0].length);
      };
      const entity = (c) => {
        const code = c.codePointAt(0);
        return one([`&#${code};`, `&#${code}`, `&#x${code.toString(16)};`, `&#X0${code.toString(16)}`, '&lt;', '&amp;' + c]);
      };
      const moves = [
        (text) => text.slice(0, below(text.length + 1)),
        (text) => text.slice(below(text.length + 1)),
        (text) => inRange(text, () => ''),
        (text) => text + one(seeds),
        (text) => one(seeds) + text,
        (text) => put(text, one(seeds)),
        (text) => put(text, inRange(one(seeds), () => '')),
        (text) => inRange(text, (part) => part.repeat(2 + below(20))),
        (text) => inRange(text, (part) => [...part].reverse().join('')),
        (text) => { const [from, to] = range(text); return put(text.slice(0, from) + text.slice(to), text.slice(from, to)); },
        (text) => inRange(text, (part) => part && String.fromCharCode(part.charCodeAt(0) ^ 1 << below(8)) + part.slice(1)),
        (text) => atOne(text, /(?<=<\/?)[a-z][a-z0-9-]*/gi, () => one(kTags)),
        (text) => atOne(text, /["'`= ]/g, () => one(['"', "'", '`', '=', ' ', '', '/', '\n', '\0'])),
        (text) => atOne(text, /[\s\S]/gu, entity),
        (text) => inRange(text, (part) => below(2) ? part.toUpperCase() : part.toLowerCase()),
        (text) => atOne(text, /[a-z]/gi, (c) => one(['\u017f', '\u212a', '\u0130', c.toUpperCase(), c + '\0'])),
        (text) => put(text, one(kOdd)),
        (text) => atOne(text, /(?<=<[a-z][^<>]*)(?=>)/gi, () => ` ${one(kAttributes)}`),
        (text) => atOne(text, /(?<=<[a-z][a-z0-9-]*)[\s/]/gi, () => one([' ', '/', '\n', '\f', '\t', '\0', '//']) + one(kAttributes) + ' '),
        (text) => put(text, `<${one(kTags)} ${one(kAttributes)}>`),
        (text) => `<${one(kTags)}>${text}</${one(kTags)}>`,
      ];
      return () => {
        let text = one(seeds);
        for (let left = 1 + below(8); left > 0; --left) text = one(moves)(text).slice(0, kLongest);
        return text;
      };
    };)";

}  // namespace support
