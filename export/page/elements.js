// Elements of the page. Texts of the scene only ever become the text of an element.
const byId = (id) => document.getElementById(id);

function element(name, text, attributes) {
  const made = document.createElement(name);
  if (text !== undefined) made.textContent = text;
  Object.assign(made, attributes);
  return made;
}

/** Says on the page what went wrong; what still works stays there. */
function showTrouble(text) {
  const trouble = byId('trouble');
  trouble.textContent = trouble.hidden ? text : trouble.textContent + '\n' + text;
  trouble.hidden = false;
  byId('loading').hidden = true;
}

/** Appends what `make` gives for each of the items, a few hundred at a time. */
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

/** The scene is not shown, and the page says why. */
function fail(error) {
  document.documentElement.dataset.state = 'failed';
  showTrouble('The scene cannot be shown: ' + (error && error.message ? error.message : error));
}

window.addEventListener('error', (event) => fail(event.error || event.message));
window.addEventListener('unhandledrejection', (event) => fail(event.reason));
