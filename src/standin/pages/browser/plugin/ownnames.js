// Imported before all others. A form, a picture or a field may take the place of what the document or its form can
// do, by its name alone: behind <img name=getElementById> a script finds the picture. No page needs such names, so
// they go before any other script asks for anything. Until then nothing is asked of an object that can be taken over.
const find = Document.prototype.querySelectorAll;
const drop = Element.prototype.removeAttribute;
const read = Element.prototype.getAttribute;

for (const each of find.call(document, 'form, img, embed, object, iframe')) {
  drop.call(each, 'name');
  drop.call(each, 'id');
}
for (const each of find.call(document, 'button, fieldset, input, output, select, textarea')) {
  for (const attribute of ['name', 'id']) {
    const value = read.call(each, attribute);
    if (value !== null && value in HTMLFormElement.prototype) drop.call(each, attribute);
  }
}
