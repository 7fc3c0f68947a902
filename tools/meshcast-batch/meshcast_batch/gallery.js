'use strict';
(() => {
  const byId = (id) => document.getElementById(id);
  const {kinds, rows} = JSON.parse(byId('data').textContent);
  const columns = ['name', 'status', 'objects', 'vertices', 'polygons', 'repairs', 'message', 'link'];
  const scenes = rows.map((row) => Object.fromEntries(row.map((value, i) => [columns[i], value])));
  const number = (value) => value.toLocaleString('en');
  const counted = (value, one, many) => number(value) + ' ' + (value === 1 ? one : many);

  function element(name, text, attributes) {
    const made = document.createElement(name);
    if (text !== undefined) made.textContent = text;
    return Object.assign(made, attributes);
  }

  /** The picture of a scene, or a placeholder. */
  function thumbnail(scene) {
    const best = kinds.includes('html') ? 'html' : 'png';
    if (!scene.link || (!kinds.includes('png') && best !== 'html')) return element('span', '\u2014', {className: 'empty', ariaHidden: 'true'});
    const link = element('a', undefined, {href: scene.link + '.' + best, ariaLabel: scene.name});
    if (kinds.includes('png')) link.append(element('img', undefined, {loading: 'lazy', decoding: 'async', alt: '', width: 320, height: 240, src: scene.link + '.png'}));
    else Object.assign(link, {className: 'empty', textContent: '\u25b6'});
    return link;
  }

  function card(scene) {
    const made = element('article');
    const text = element('div');
    text.append(element('h2', scene.name));
    if (scene.link) {
      text.append(element('p', [counted(scene.objects, 'object', 'objects'), counted(scene.vertices, 'vertex', 'vertices'), counted(scene.polygons, 'polygon', 'polygons')].join(', ')));
    } else {
      text.append(element('p', scene.status + (scene.message ? ': ' + scene.message : ''), {className: 'failed'}));
    }
    if (scene.status === 'empty') text.append(element('p', 'empty: it shows nothing'));
    if (scene.repairs > 0) text.append(element('p', counted(scene.repairs, 'repair', 'repairs')));
    if (scene.link && scene.message) text.append(element('p', scene.message));
    if (scene.link) {
      const files = element('p');
      for (const kind of kinds) files.append(element('a', kind, {href: scene.link + '.' + kind}), ' ');
      text.append(files);
    }
    made.append(thumbnail(scene), text);
    return made;
  }

  const orders = {
    name: () => 0, // The order of the table.
    status: (a, b) => a.status < b.status ? -1 : a.status > b.status ? 1 : 0,
    objects: (a, b) => b.objects - a.objects, vertices: (a, b) => b.vertices - a.vertices,
    polygons: (a, b) => b.polygons - a.polygons, repairs: (a, b) => b.repairs - a.repairs,
  };
  for (const name of Object.keys(orders)) byId('order').append(element('option', name, {value: name}));
  for (const state of new Set(scenes.map((scene) => scene.status))) byId('state').append(element('option', state, {value: state}));
  for (const scene of scenes) {
    scene.searched = (scene.name + ' ' + scene.message).toLowerCase();
    scene.card = card(scene);
  }

  function filter() {
    const words = byId('search').value.toLowerCase().split(/\s+/);
    const state = byId('state').value;
    let count = 0;
    for (const scene of scenes) {
      const isShown = (!state || scene.status === state) && words.every((word) => scene.searched.includes(word));
      scene.card.hidden = !isShown;
      count += isShown ? 1 : 0;
    }
    byId('count').textContent = number(count) + ' of ' + number(scenes.length) + ' scenes';
  }

  function sort() {
    byId('cards').append(...[...scenes].sort(orders[byId('order').value]).map((scene) => scene.card));
  }

  byId('search').oninput = filter;
  byId('state').onchange = filter;
  byId('order').onchange = sort;
  sort();
  filter();
})();
