const ambientShare = 0.15;
const mostLights = 16; // All graphics cards support this number.

/** The lights of the scene, and a headlight that moves with the camera. */
class Lighting {
  constructor(scene, model, select, changed) {
    this.sceneLights = [];
    model.traverse((object) => { if (object.isLight) this.sceneLights.push(object); });
    this.headlight = new THREE.DirectionalLight(0xffffff, 1 - ambientShare);
    this.headlight.position.set(0, 0, 1);
    scene.add(new THREE.AmbientLight(0xffffff, ambientShare));
    if (this.sceneLights.length > 0) select.append(element('option', this.sceneLights.length === 1 ? "the scene's light" : "the scene's lights", {value: 'scene'}));
    select.append(element('option', 'headlight', {value: 'head'}));
    if (this.sceneLights.length > 0) select.append(element('option', 'both', {value: 'both'}));
    select.onchange = () => { this.choose(select.value); changed(); };
    this.choose(select.value);
  }

  choose(which) {
    this.headlight.visible = which !== 'scene';
    this.sceneLights.forEach((light, number) => { light.visible = which !== 'head' && number < mostLights; });
  }

  carry(camera) {
    camera.add(this.headlight, this.headlight.target);
  }
}
