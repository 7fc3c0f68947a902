// The named objects of the scene, as a tree, and the one that is selected.

/** A node of the tree: a name, the objects with this name, and the names below it. */
class TreeNode {
  constructor(name, parent) {
    this.name = name;
    this.parent = parent;
    this.children = new Map();
    this.objects = [];
  }

  child(name) {
    if (!this.children.has(name)) this.children.set(name, new TreeNode(name, this));
    return this.children.get(name);
  }

  *all() {
    yield* this.objects;
    for (const child of this.children.values()) yield* child.all();
  }
}

/** The tree of all objects of a loaded scene. Slashes separate the parts of a name. */
function treeOf(model) {
  const root = new TreeNode('', null);
  for (const object of model.children) {
    if (object.isLight || object.isCamera || !(object.isMesh || object.isLine || object.isPoints || object.children.some((child) => child.isMesh || child.isLine || child.isPoints))) continue;
    const name = object.userData.name || '';
    const node = name === '' ? root : name.split('/').reduce((at, part) => at.child(part), root);
    node.objects.push(object);
  }
  return root;
}

/** The drawable parts of an object: itself, or the parts of a mesh with several materials. */
function partsOf(object) {
  const parts = [];
  object.traverse((part) => { if (part.isMesh || part.isLine || part.isPoints) parts.push(part); });
  return parts;
}

class Objects {
  constructor(viewer, model) {
    this.viewer = viewer;
    this.root = treeOf(model);
    this.nodes = new Map(); // From objects to their nodes in the tree.
    this.collect(this.root);
    this.helper = null;
    const list = element('ul');
    const top = [...this.root.children.values()];
    if (this.root.objects.length > 0) top.push(...this.rowsOf(this.root));
    appendInPortions(list, top, (row) => this.item(row));
    byId('tree').replaceChildren(top.length > 0 ? list : element('p', 'The scene has no objects.'));
    byId('deselect').onclick = () => this.select([], '');
  }

  collect(node) {
    for (const object of node.objects) this.nodes.set(object, node);
    for (const child of node.children.values()) this.collect(child);
  }

  /** Rows for the objects of a node, if it has several objects or names below it. */
  rowsOf(node) {
    return node.objects.map((object, number) => ({name: (node.name === '' ? 'object ' : 'part ') + (number + 1), children: new Map(), objects: [object], all: () => [object], path: this.pathOf(node)}));
  }

  pathOf(node) {
    const names = [];
    for (let at = node; at && at.parent; at = at.parent) names.unshift(at.name);
    return names.join('/');
  }

  item(node) {
    const item = element('li');
    const isGroup = node.children.size > 0 || node.objects.length > 1;
    const open = element('button', isGroup ? '\u25b8' : '', {type: 'button', className: 'open', disabled: !isGroup, ariaLabel: 'Parts of ' + node.name, ariaExpanded: 'false'});
    const shown = element('input', undefined, {type: 'checkbox', ariaLabel: 'Show ' + node.name});
    shown.checked = [...node.all()].some((object) => object.visible);
    const name = element('button', node.name || '(no name)', {type: 'button', className: 'name', ariaPressed: 'false'});
    item.append(open, shown, name);
    shown.onchange = () => {
      for (const object of node.all()) object.visible = shown.checked;
      for (const box of item.querySelectorAll('input')) box.checked = shown.checked;
      this.viewer.draw();
    };
    name.onclick = () => this.select([...node.all()], node.path !== undefined ? node.path : this.pathOf(node), name);
    open.onclick = () => {
      const isOpen = open.ariaExpanded === 'true';
      open.ariaExpanded = String(!isOpen);
      open.textContent = isOpen ? '\u25b8' : '\u25be';
      if (isOpen) return item.lastElementChild.remove();
      const list = element('ul');
      appendInPortions(list, [...node.children.values(), ...this.rowsOf(node)], (row) => this.item(row));
      return item.append(list);
    };
    return item;
  }

  /** Selects the object at a point of the canvas, in coordinates from -1 to 1. */
  pick(x, y) {
    const ray = new THREE.Raycaster();
    const reach = this.viewer.box.min.distanceTo(this.viewer.box.max) * 0.005;
    ray.params.Points.threshold = reach;
    ray.linePrecision = reach;
    ray.setFromCamera(new THREE.Vector2(x, y), this.viewer.camera);
    const shown = [...this.nodes.keys()].filter((object) => object.visible);
    const [hit] = ray.intersectObjects(shown, true);
    if (!hit) return this.select([], '');
    let object = hit.object;
    while (!this.nodes.has(object)) object = object.parent;
    return this.select([object], this.pathOf(this.nodes.get(object)), undefined, hit.object);
  }

  /** Shows details of objects, or of one part if that was clicked. */
  select(objects, path, button, clicked) {
    for (const pressed of byId('tree').querySelectorAll('[aria-pressed=true]')) pressed.ariaPressed = 'false';
    if (button) button.ariaPressed = 'true';
    if (this.helper) this.viewer.scene.remove(this.helper);
    this.helper = null;
    byId('selectedNone').hidden = objects.length > 0;
    byId('deselect').hidden = objects.length === 0;
    fillTerms(byId('selected'), objects.length > 0 ? this.facts(objects, path, clicked) : []);
    if (objects.length > 0) {
      byId('selection').open = true;
      const box = new THREE.Box3();
      for (const object of objects) box.expandByObject(object);
      this.helper = new THREE.Box3Helper(box, 0xff8800);
      this.viewer.scene.add(this.helper);
    }
    this.viewer.draw();
  }

  facts(objects, path, clicked) {
    const count = {vertices: 0, triangles: 0, lines: 0, points: 0};
    const materials = new Set();
    for (const part of objects.flatMap(partsOf)) {
      const indices = part.geometry.index ? part.geometry.index.count : part.geometry.getAttribute('position').count;
      count.vertices += part.geometry.getAttribute('position').count;
      if (part.isMesh) count.triangles += indices / 3;
      else if (part.isPoints) count.points += indices;
      else count.lines += indices / 2;
      materials.add(part.material);
    }
    const facts = [['Name', path || '(no name)']];
    if (objects.length > 1) facts.push(['Objects', objects.length.toLocaleString('en')]);
    const [material] = clicked ? [clicked.material] : materials;
    if (clicked || materials.size === 1) facts.push(...this.materialFacts(material));
    else facts.push(['Materials', materials.size.toLocaleString('en')]);
    for (const [what, number] of Object.entries(count)) {
      if (number > 0) facts.push([what[0].toUpperCase() + what.slice(1), number.toLocaleString('en')]);
    }
    return facts;
  }

  materialFacts(material) {
    const screen = material.color.clone().convertLinearToSRGB().toArray();
    const color = '#' + screen.map((share) => Math.round(share * 255).toString(16).padStart(2, '0')).join('');
    const shown = element('span', color);
    const swatch = element('span', undefined, {className: 'swatch'});
    swatch.style.background = color;
    shown.prepend(swatch);
    const facts = [['Colour', material.vertexColors ? 'by vertex' : shown]];
    facts.push(['Texture', material.map ? 'yes' : 'no']);
    if (material.transparent) facts.push(['Transparency', material.opacity < 1 ? Math.round((1 - material.opacity) * 100) + ' %' : 'yes']);
    return facts;
  }
}
