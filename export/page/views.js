// Views of the scene. vrmlexport's pictures use the same formulas.
const fitAngle = Math.PI / 4;
const fitMargin = 1.05;
const stands = {
  fit: {label: 'whole scene', back: new THREE.Vector3(1, 1, 1.5)},
  front: {label: 'front', back: new THREE.Vector3(0, 0, 1)},
  // The up direction is +Y, so the camera must not look exactly straight down.
  top: {label: 'top', back: new THREE.Vector3(0, 1, 1e-5)},
  left: {label: 'left', back: new THREE.Vector3(-1, 0, 0)},
};

function cornersOf(box) {
  const corners = [];
  for (let i = 0; i < 8; ++i) corners.push(new THREE.Vector3(i & 1 ? box.max.x : box.min.x, i & 2 ? box.max.y : box.min.y, i & 4 ? box.max.z : box.min.z));
  return corners;
}

/** The tangents of half the angles seen along x and y, for an angle along the shorter side. */
function tangents(angle, aspectRatio) {
  const tangent = Math.tan(angle / 2);
  return aspectRatio < 1 ? [tangent, tangent / aspectRatio] : [tangent * aspectRatio, tangent];
}

/** A view that shows the whole box: the distance of the camera from its centre, and its depth range. */
function fittedView(name, box, aspectRatio) {
  const middle = box.getCenter(new THREE.Vector3());
  const size = box.min.distanceTo(box.max);
  const back = stands[name].back.clone().normalize();
  const toRight = new THREE.Vector3(0, 1, 0).cross(back).normalize();
  const up = back.clone().cross(toRight);
  const [seenX, seenY] = tangents(fitAngle, aspectRatio).map((tangent) => tangent / fitMargin);
  let left = 0, right = 0, bottom = 0, top = 0, nearest = 0;
  for (const corner of cornersOf(box)) {
    corner.sub(middle);
    const depth = corner.dot(back), x = corner.dot(toRight), y = corner.dot(up);
    left = Math.min(left, x - depth * seenX);
    right = Math.max(right, x + depth * seenX);
    bottom = Math.min(bottom, y - depth * seenY);
    top = Math.max(top, y + depth * seenY);
    nearest = Math.max(nearest, depth);
  }
  const distance = size > 0 ? Math.max((right - left) / 2 / seenX, (top - bottom) / 2 / seenY, nearest + size * 0.01) : 1;
  const target = middle.addScaledVector(toRight, (right + left) / 2).addScaledVector(up, (top + bottom) / 2);
  return {
    position: target.clone().addScaledVector(back, distance), target, up: new THREE.Vector3(0, 1, 0),
    angle: fitAngle, near: (distance - nearest) * 0.9, far: (distance + nearest) * 1.1,
  };
}

/**
 * The view of a camera of the scene. Reads the sizes from the JSON of the GLB, because the loader of this
 * three.js mistakes half the height of an orthographic camera (ymag) for its full height. The view turns
 * around a point at the depth of the scene's centre.
 */
function cameraView(camera, definition, box) {
  camera.updateWorldMatrix(true, false);
  const right = new THREE.Vector3(), up = new THREE.Vector3(), back = new THREE.Vector3();
  camera.matrixWorld.extractBasis(right, up, back);
  const position = new THREE.Vector3().setFromMatrixPosition(camera.matrixWorld);
  const lens = definition.perspective || definition.orthographic;
  const depth = Math.max(position.clone().sub(box.getCenter(new THREE.Vector3())).dot(back), box.min.distanceTo(box.max) * 0.1, lens.znear);
  return {
    position, up, target: position.clone().addScaledVector(back, -depth), near: lens.znear, far: lens.zfar,
    angle: lens.yfov, height: lens.ymag && lens.ymag * 2,
  };
}
