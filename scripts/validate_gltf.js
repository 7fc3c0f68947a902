// Validates every .glb and .gltf file of a folder: see validate_gltf.sh.
"use strict";
const fs = require("fs");
const path = require("path");
const validator = require("gltf-validator");

async function validate(folder, name) {
  const file = path.join(folder, name);
  const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
    uri: name,
    maxIssues: 20,
    externalResourceFunction: (uri) =>
      fs.promises.readFile(path.join(folder, decodeURIComponent(uri))).then((data) => new Uint8Array(data)),
  });
  const bad = report.issues.messages.filter((message) => message.severity < 2);
  for (const message of bad) {
    console.log(`${name}: ${message.code} ${message.pointer || ""}: ${message.message}`);
  }
  return bad.length === 0;
}

async function main() {
  const folder = process.argv[2];
  const names = fs.readdirSync(folder).filter((name) => /\.(glb|gltf)$/.test(name)).sort();
  let failures = 0;
  for (const name of names) {
    failures += (await validate(folder, name)) ? 0 : 1;
  }
  console.log(`${names.length} files, ${failures} with errors or warnings`);
  process.exit(failures === 0 && names.length > 0 ? 0 : 1);
}

main();
