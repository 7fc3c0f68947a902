// Elements of the page. Text from the scene is inserted only as text, never as HTML.
const byId = (id) => document.getElementById(id);

function element(name, text, attributes) {
  const made = document.createElement(name);
  if (text !== undefined) made.textContent = text;
  Object.assign(made, attributes);
  return made;
}

/** Shows an error message on the page. The rest of the page stays usable. */
function showTrouble(text) {
  const trouble = byId('trouble');
  trouble.textContent = trouble.hidden ? text : trouble.textContent + '\n' + text;
  trouble.hidden = false;
  byId('loading').hidden = true;
}

/** Appends the elements that `make` returns for the items, 200 at a time, with a button for more. */
function appendInPortions(list, items, make) {
  const portion = 200;
  let next = 0;
  const more = element('button', '', {type: 'button'});
  const holder = element('li');
  holder.append(more);
  more.onclick = () => {
    const first = next;
    for (; next < Math.min(first + portion, items.length); ++next) list.insertBefore(make(items[next]), holder);
    if (next === items.length) holder.remove();
    more.textContent = 'Show more (' + (items.length - next).toLocaleString('en') + ' left)';
  };
  list.append(holder);
  more.click();
}

function fillTerms(list, terms) {
  list.replaceChildren();
  for (const [term, description] of terms) {
    list.append(element('dt', term));
    const cell = element('dd');
    cell.append(description);
    list.append(cell);
  }
}

/** Shows why the scene cannot be shown. */
function fail(error) {
  document.documentElement.dataset.state = 'failed';
  showTrouble('The scene cannot be shown: ' + (error && error.message ? error.message : error));
}

window.addEventListener('error', (event) => fail(event.error || event.message));
window.addEventListener('unhandledrejection', (event) => fail(event.reason));
