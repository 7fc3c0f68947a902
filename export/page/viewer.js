/** The canvas: draws the scene after each change, and moves the camera. */
class Viewer {
  constructor(canvas) {
    this.canvas = canvas;
    const wanted = {antialias: true, alpha: false};
    const context = canvas.getContext('webgl2', wanted) || canvas.getContext('webgl', wanted);
    if (!context) throw new Error('WebGL is not available in this browser. It may be disabled in the settings or by the graphics driver.');
    this.renderer = new THREE.WebGLRenderer({canvas, context, antialias: true});
    this.renderer.gammaOutput = true;
    this.scene = new THREE.Scene();
    this.box = new THREE.Box3(new THREE.Vector3(-1, -1, -1), new THREE.Vector3(1, 1, 1));
    this.lighting = null;
    this.isAsked = false;
    canvas.addEventListener('webglcontextlost', (event) => { event.preventDefault(); showTrouble('The browser has lost its connection to the graphics card. Reload the page to see the scene again.'); });
    canvas.addEventListener('keydown', (event) => this.pressed(event));
    new ResizeObserver(() => this.resize()).observe(canvas.parentElement);
  }

  get aspectRatio() { return Math.max(this.canvas.clientWidth, 1) / Math.max(this.canvas.clientHeight, 1); }

  /** Sets the view. Creates new controls, since each view has its own up direction. */
  look(view) {
    if (this.controls) this.controls.dispose();
    if (this.camera) this.scene.remove(this.camera);
    this.view = view;
    this.camera = view.height === undefined ? new THREE.PerspectiveCamera() : new THREE.OrthographicCamera();
    this.camera.position.copy(view.position);
    this.camera.up.copy(view.up);
    this.scene.add(this.camera);
    if (this.lighting) this.lighting.carry(this.camera);
    this.controls = new THREE.OrbitControls(this.camera, this.canvas);
    this.controls.enableKeys = false; // The canvas has its own key handler; that of the controls would listen to the whole window.
    this.controls.screenSpacePanning = true;
    this.controls.target.copy(view.target);
    this.resize();
    this.controls.update();
    this.controls.addEventListener('change', () => this.moved());
  }

  /** Adapts the near and far planes after the camera has moved. */
  moved() {
    const forward = this.camera.getWorldDirection(new THREE.Vector3());
    let nearest = Infinity, farthest = 0;
    for (const corner of cornersOf(this.box)) {
      const depth = corner.sub(this.camera.position).dot(forward);
      nearest = Math.min(nearest, depth);
      farthest = Math.max(farthest, depth);
    }
    this.view.far = Math.max(farthest * 1.1, this.view.near * 2);
    this.view.near = this.camera.isOrthographicCamera ? nearest - (farthest - nearest) * 0.1 : Math.max(nearest * 0.9, this.view.far * 1e-4);
    this.resize();
  }

  resize() {
    const width = this.canvas.clientWidth, height = this.canvas.clientHeight;
    const ratio = Math.min(window.devicePixelRatio, 2);
    const size = this.renderer.getSize(new THREE.Vector2());
    if (this.renderer.getPixelRatio() !== ratio) this.renderer.setPixelRatio(ratio);
    if (size.x !== width || size.y !== height) this.renderer.setSize(width, height, false);
    if (!this.camera) return;
    const camera = this.camera, view = this.view, aspectRatio = this.aspectRatio;
    camera.near = view.near;
    camera.far = view.far;
    if (camera.isPerspectiveCamera) {
      camera.aspect = aspectRatio;
      camera.fov = Math.atan(tangents(view.angle, aspectRatio)[1]) * 360 / Math.PI;
    } else {
      const half = view.height / 2 / Math.min(aspectRatio, 1);
      Object.assign(camera, {left: -half * aspectRatio, right: half * aspectRatio, top: half, bottom: -half});
    }
    camera.updateProjectionMatrix();
    this.draw();
  }

  draw() {
    if (this.isAsked) return;
    this.isAsked = true;
    requestAnimationFrame(() => {
      this.isAsked = false;
      if (this.camera) this.renderer.render(this.scene, this.camera);
    });
  }

  /** Turns the camera around the target by two angles. */
  turn(sideways, upwards) {
    const toY = new THREE.Quaternion().setFromUnitVectors(this.camera.up.clone().normalize(), new THREE.Vector3(0, 1, 0));
    const offset = this.camera.position.clone().sub(this.controls.target).applyQuaternion(toY);
    const place = new THREE.Spherical().setFromVector3(offset);
    place.theta -= sideways;
    place.phi -= upwards;
    offset.setFromSpherical(place.makeSafe()).applyQuaternion(toY.inverse());
    this.camera.position.copy(this.controls.target).add(offset);
  }

  pan(right, up) {
    const distance = this.camera.position.distanceTo(this.controls.target);
    const axisX = new THREE.Vector3(), axisY = new THREE.Vector3(), axisZ = new THREE.Vector3();
    this.camera.matrixWorld.extractBasis(axisX, axisY, axisZ);
    const step = axisX.multiplyScalar(right * distance).addScaledVector(axisY, up * distance);
    this.camera.position.add(step);
    this.controls.target.add(step);
  }

  zoom(factor) {
    if (this.camera.isOrthographicCamera) this.camera.zoom *= factor;
    else this.camera.position.sub(this.controls.target).divideScalar(factor).add(this.controls.target);
  }

  pressed(event) {
    if (!this.controls || event.ctrlKey || event.altKey || event.metaKey) return;
    const move = event.shiftKey ? (right, up) => this.pan(right * 0.05, up * 0.05) : (right, up) => this.turn(right * 0.1, up * 0.1);
    const actions = {
      ArrowLeft: () => move(-1, 0), ArrowRight: () => move(1, 0), ArrowUp: () => move(0, 1), ArrowDown: () => move(0, -1),
      '+': () => this.zoom(1.1), '=': () => this.zoom(1.1), '-': () => this.zoom(1 / 1.1), _: () => this.zoom(1 / 1.1),
    };
    if (!actions[event.key]) return;
    event.preventDefault();
    actions[event.key]();
    this.controls.update();
    this.moved();
  }
}
