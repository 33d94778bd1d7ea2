// What a test asks of a plug-in's page from within the browser: parts of its scripts.
#pragma once

namespace support {

/// What stands in the text's place and is none of a page's own elements and attributes.
inline constexpr const char* kStrange = R"(
    const strange = () => {
      const own = {FORM: 'method', P: '', H3: 'aria-level', HR: 'noshade', BR: 'clear', B: '', LABEL: 'class for',
        SPAN: 'class id role', OPTION: 'value selected label',
        INPUT: 'type name value checked disabled size class id aria-label placeholder',
        SELECT: 'name size class disabled data-sends id aria-label aria-describedby'};
      own.SPAN += ' aria-label aria-labelledby';
      // A form's fields say by their names what it says of itself.
      const told = (type, name) => {
        const {get} = Object.getOwnPropertyDescriptor(type.prototype, name);
        return (each) => get.call(each);
      };
      const nameOf = told(Node, 'nodeName'), attributesOf = told(Element, 'attributes');
      return [...document.querySelectorAll('.plugin-page *')].flatMap((each) => nameOf(each) in own
        ? [...attributesOf(each)].filter((one) => !own[nameOf(each)].split(' ').includes(one.name)
            || one.name === 'id' && !/^field-\d+$/.test(one.value)).map((one) => `${nameOf(each)} ${one.name}`)
        : [nameOf(each)]);
    };)";
/// What a press of a button, or a choice in a list, would post beyond what can be seen.
inline constexpr const char* kUnseen = R"(
    const unseen = () => {
      const forms = [...document.querySelectorAll('.plugin-page form')];
      const by = (button) => [...new FormData(forms[0], button)];
      if (!forms.length) return [];
      const wrong = by(null).filter(([name]) => name.toLowerCase() === 'button');
      const fields = (selector) => document.querySelectorAll(`.plugin-page form ${selector}`);
      for (const button of fields('[type=submit]:not(:disabled)')) {
        const named = by(button).filter(([name]) => name.toLowerCase() === 'button');
        // The browser writes on a button without a value what it posts.
        if (named.length !== 1 || button.hasAttribute('value') && named[0][1] !== button.value) wrong.push(named);
      }
      const shown = [...fields('[type=text]:disabled')].map((one) => one.value);
      for (const one of fields('[type=hidden]'))
        if (!['ref_page', 'wmp_page'].includes(one.name) && !shown.includes(one.value)) wrong.push(one.name);
      for (const one of fields('option'))
        if (one.value !== one.text && one.value.replace(/[ \t\n\f\r]+/g, ' ').trim() !== one.text) wrong.push(one.outerHTML);
      return wrong.concat(forms.slice(1).map(String));
    };)";
/// `imported(end)` gives one of the modules that the page has loaded, by the end of its address.
inline constexpr const char* kImported = R"(
    const imported = async (end) => {
      const address = performance.getEntriesByType('resource').map((each) => each.name).find((each) => each.endsWith(end));
      // Only a script that the page vouches for may load another.
      const known = document.createElement('script');
      known.type = 'module';
      known.nonce = document.querySelector('script[nonce]').nonce;
      known.textContent = `import * as page from '${address}'; dispatchEvent(new CustomEvent('known', {detail: page}));`;
      const module = await new Promise((resolve) => {
        addEventListener('known', ({detail}) => resolve(detail), {once: true});
        document.head.append(known);
      });
      known.remove();
      return module;
    };)";

}  // namespace support
