// Short lines along the normals of visible surfaces.
const mostNormals = 500000;

/** Lines for the normals of all visible surfaces, up to a limit, and the number without the limit. */
function normalLines(objects, length) {
  let count = 0;
  const places = [];
  for (const part of objects.filter((object) => object.visible).flatMap(partsOf)) {
    const positions = part.geometry.getAttribute('position'), normals = part.geometry.getAttribute('normal');
    if (!part.isMesh || !normals) continue;
    const turned = new THREE.Matrix3().getNormalMatrix(part.matrixWorld);
    const at = new THREE.Vector3(), along = new THREE.Vector3();
    count += normals.count;
    for (let i = 0; i < normals.count && places.length < mostNormals * 6; ++i) {
      at.fromBufferAttribute(positions, i).applyMatrix4(part.matrixWorld);
      along.fromBufferAttribute(normals, i).applyMatrix3(turned).normalize().multiplyScalar(length).add(at);
      places.push(at.x, at.y, at.z, along.x, along.y, along.z);
    }
  }
  const geometry = new THREE.BufferGeometry();
  geometry.setAttribute('position', new THREE.BufferAttribute(new Float32Array(places), 3));
  return {count, lines: new THREE.LineSegments(geometry, new THREE.LineBasicMaterial({color: 0x00a050}))};
}
