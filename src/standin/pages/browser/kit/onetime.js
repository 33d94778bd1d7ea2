/**
 * Does the work one at a time: while it is done, being asked for again means once more behind that. Answers a function
 * whose promise is kept when nothing more is to be done. For readings whose answer is too old as soon as another has
 * begun, two at a time would make each other too old for ever.
 */
export function oneAtATime(work) {
  let running = null;
  let again = false;
  const all = async () => {
    do {
      again = false;
      await work();
    } while (again);
  };
  return () => {
    if (running) again = true;
    else running = all().finally(() => { running = null; });
    return running;
  };
}
