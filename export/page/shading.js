// Makes three.js shade like the pictures of vrmlexport: Phong materials, computed in linear light and
// encoded as exact sRGB.

/** Replaces text in a shader of three.js. Fails if the text is missing, as the shading would differ. */
function replaceInShader(chunk, before, after) {
  const shader = THREE.ShaderChunk[chunk];
  if (shader.indexOf(before) < 0) throw new Error('this page does not support the shaders of three.js ' + THREE.REVISION);
  THREE.ShaderChunk[chunk] = shader.replace(before, after);
}

replaceInShader('encodings_pars_fragment', 'return vec4( pow( value.rgb, vec3( 1.0 / gammaFactor ) ), value.a );', 'return LinearTosRGB( clamp( value, 0.0, 1.0 ) );');
replaceInShader('encodings_pars_fragment', 'vec4 LinearToGamma(', 'vec4 LinearTosRGB( in vec4 value );\nvec4 LinearToGamma(');
replaceInShader('bsdfs', 'return ( 1.0 - specularColor ) * fresnel + specularColor;', 'return specularColor;');

/** Applies the alpha of vertices, which three.js ignores. */
function useVertexAlpha(shader) {
  shader.vertexShader = 'attribute float vertexAlpha;\nvarying float shownAlpha;\n' + shader.vertexShader.replace('void main() {', 'void main() {\nshownAlpha = vertexAlpha;');
  shader.fragmentShader = 'varying float shownAlpha;\n' + shader.fragmentShader.replace('#include <color_fragment>', '#include <color_fragment>\ndiffuseColor.a *= shownAlpha;');
}

function addVertexAlpha(geometry) {
  const colors = geometry.getAttribute('color');
  if (!colors || colors.itemSize !== 4) return false;
  if (!geometry.getAttribute('vertexAlpha')) {
    const alpha = new Float32Array(colors.count);
    for (let i = 0; i < alpha.length; ++i) alpha[i] = colors.getW(i);
    geometry.setAttribute('vertexAlpha', new THREE.BufferAttribute(alpha, 1));
  }
  return true;
}

/** Converts a material of GLTFLoader to a Phong material. */
function phongMaterial(material) {
  if (!material.isMeshStandardMaterial) return material;
  const specular = (material.userData.gltfExtensions || {}).KHR_materials_specular || {};
  const hasHighlight = specular.specularFactor !== 0;
  return new THREE.MeshPhongMaterial({
    color: material.color, opacity: material.opacity, transparent: material.transparent, side: material.side,
    map: material.map, emissive: material.emissive, vertexColors: material.vertexColors, flatShading: material.flatShading,
    specular: new THREE.Color().fromArray(hasHighlight ? specular.specularColorFactor || [1, 1, 1] : [0, 0, 0]),
    shininess: 2 / Math.pow(material.roughness, 4) - 2,
  });
}

/** Converts the materials of all objects under `root`. */
function usePhongMaterials(root) {
  const made = new Map();
  root.traverse((object) => {
    if (!object.material) return;
    const hasAlpha = addVertexAlpha(object.geometry);
    const key = object.material.uuid + (hasAlpha ? 'alpha' : '');
    if (!made.has(key)) {
      const material = hasAlpha && !object.material.isMeshStandardMaterial ? object.material.clone() : phongMaterial(object.material);
      material.depthWrite = !material.transparent;
      if (hasAlpha) material.onBeforeCompile = useVertexAlpha;
      if (object.isPoints) material.size = 3;
      made.set(key, material);
    }
    object.material = made.get(key);
  });
}
