// Where the controls of a plug-in's dialog stand, as far as a page can follow: widths, and what stands beside what.
const kTwips = 15;     // to the pixel
const kBeside = 400;   // twips by which the tops of one line may differ
const kLeast = 120;    // pixels that a field needs at least
const kMost = 900;

const hasPlace = (field) => [field.top, field.left, field.width].every(Number.isFinite);

/** The fields in rows: a button stands in the row of the field that it has been put to the right of. */
export function rowsOf(fields) {
  const rows = fields.filter(({kind}) => kind !== 'button').map((field) => [field]);
  for (const button of fields.filter(({kind}) => kind === 'button')) {
    const row = hasPlace(button) && rows.find(([field]) => hasPlace(field) && Math.abs(field.top - button.top) < kBeside
      && button.left >= field.left + field.width);
    if (row) row.push(button);
    else rows.push([button]);
  }
  return rows;
}

/** A field's own width, which a narrow window may cut. */
export function sized(field) {
  if (!Number.isFinite(field.width) || field.width <= 0) return '';
  return `width: ${Math.max(kLeast, Math.min(kMost, Math.round(field.width / kTwips)))}px`;
}
