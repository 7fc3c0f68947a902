/** Decodes the scene, which the page contains in base64. */
function embeddedGlb() {
  const pieces = [...document.querySelectorAll('script.glb')].map((script) => {
    const text = atob(script.textContent);
    script.remove();
    const bytes = new Uint8Array(text.length);
    for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
    return bytes;
  });
  return new Blob(pieces, {type: 'model/gltf-binary'});
}

function offerDownload(blob, name) {
  byId('download').onclick = () => {
    const link = element('a', undefined, {href: URL.createObjectURL(blob), download: name + '.glb'});
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60000);
  };
}

/** Shows a white image, and a message, for each image that the browser cannot decode. */
function forgiveImages() {
  const load = THREE.TextureLoader.prototype.load;
  THREE.TextureLoader.prototype.load = function (url, onLoad, onProgress) {
    return load.call(this, url, onLoad, onProgress, () => {
      showTrouble('This browser cannot show one of the images of the scene.');
      onLoad(new THREE.DataTexture(new Uint8Array([255, 255, 255, 255]), 1, 1, THREE.RGBAFormat));
    });
  };
}

function showDimensions(box) {
  const say = (number) => Number(number.toPrecision(6)).toLocaleString('en', {maximumSignificantDigits: 6});
  const size = box.getSize(new THREE.Vector3());
  fillTerms(byId('dimensions'), box.isEmpty() ? [['Size', 'the scene is empty']] : [
    ['Width', say(size.x) + ' m'], ['Height', say(size.y) + ' m'], ['Depth', say(size.z) + ' m'],
    ['From', [box.min.x, box.min.y, box.min.z].map(say).join(', ')], ['To', [box.max.x, box.max.y, box.max.z].map(say).join(', ')],
  ]);
}

function offerViewpoints(viewer, {cameras, parser}) {
  const select = byId('viewpoint');
  for (const [name, stand] of Object.entries(stands)) select.append(element('option', stand.label, {value: name}));
  cameras.forEach((camera, number) => {
    const name = camera.parent.userData.name || camera.userData.name || 'viewpoint ' + (number + 1);
    select.append(element('option', name, {value: String(number)}));
  });
  const look = () => viewer.look(stands[select.value] ? fittedView(select.value, viewer.box, viewer.aspectRatio) : cameraView(cameras[Number(select.value)], parser.json.cameras[Number(select.value)], viewer.box));
  select.onchange = look;
  byId('fit').onclick = () => { select.value = 'fit'; look(); };
  look();
}

function offerBackground(viewer) {
  const select = byId('background');
  const dark = matchMedia('(prefers-color-scheme: dark)');
  const show = () => {
    byId('colorLabel').hidden = select.value !== 'custom';
    const themed = dark.matches ? '#1b1d20' : '#ffffff';
    const color = select.value === 'theme' ? themed : select.value === 'custom' ? byId('color').value : select.value;
    viewer.renderer.setClearColor(color);
    viewer.draw();
  };
  select.onchange = show;
  byId('color').oninput = show;
  dark.addEventListener('change', show);
  show();
}

function offerSurfaces(viewer, model, objects) {
  byId('wireframe').onchange = () => {
    model.traverse((part) => { if (part.isMesh) part.material.wireframe = byId('wireframe').checked; });
    viewer.draw();
  };
  let shown = null;
  byId('normals').onchange = () => {
    if (shown) viewer.scene.remove(shown);
    shown = null;
    const note = byId('normalsNote');
    note.hidden = true;
    if (byId('normals').checked) {
      const {count, lines} = normalLines([...objects.nodes.keys()], viewer.box.min.distanceTo(viewer.box.max) * 0.02);
      shown = lines;
      viewer.scene.add(shown);
      note.hidden = count <= mostNormals;
      note.textContent = 'The first ' + mostNormals.toLocaleString('en') + ' of ' + count.toLocaleString('en') + ' normals are shown.';
    }
    viewer.draw();
  };
}

function offerPicking(viewer, objects) {
  const canvas = viewer.canvas;
  let pressed = null;
  canvas.addEventListener('pointerdown', (event) => { pressed = event.isPrimary && event.button === 0 ? [event.clientX, event.clientY] : null; });
  canvas.addEventListener('pointerup', (event) => {
    const isClick = pressed && event.isPrimary && Math.hypot(event.clientX - pressed[0], event.clientY - pressed[1]) < 5;
    pressed = null;
    if (!isClick) return;
    const place = canvas.getBoundingClientRect();
    objects.pick((event.clientX - place.left) / place.width * 2 - 1, 1 - (event.clientY - place.top) / place.height * 2);
  });
  canvas.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    if (event.key === 'Enter') objects.pick(0, 0);
    else if (event.key === 'Home') byId('fit').click();
    else if (event.key === 'w' || event.key === 'W') byId('wireframe').click();
    else if (event.key === 'n' || event.key === 'N') byId('normals').click();
    else return;
    event.preventDefault();
  });
}

function showScene(viewer, gltf) {
  const model = gltf.scene;
  usePhongMaterials(model);
  viewer.scene.add(model);
  const box = new THREE.Box3().setFromObject(model);
  if (!box.isEmpty()) viewer.box = box;
  viewer.lighting = new Lighting(viewer.scene, model, byId('light'), () => viewer.draw());
  const objects = new Objects(viewer, model);
  offerViewpoints(viewer, gltf);
  offerBackground(viewer);
  offerSurfaces(viewer, model, objects);
  offerPicking(viewer, objects);
  showDimensions(box);
  byId('loading').hidden = true;
  requestAnimationFrame(() => requestAnimationFrame(() => { document.documentElement.dataset.state = 'shown'; }));
}

async function start() {
  const page = JSON.parse(byId('page').textContent);
  byId('title').textContent = page.name;
  showReport(page.report);
  const glb = embeddedGlb();
  offerDownload(glb, page.name);
  forgiveImages();
  const viewer = new Viewer(byId('canvas'));
  const bytes = await glb.arrayBuffer();
  new THREE.GLTFLoader().parse(bytes, '', (gltf) => {
    try {
      showScene(viewer, gltf);
    } catch (error) {
      fail(error);
    }
  }, fail);
}

start();
