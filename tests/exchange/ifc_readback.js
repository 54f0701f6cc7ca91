// bxq export --ifc read back by an independent reader (web-ifc): a project with one member of
// every profile family, outlines written as arbitrary profiles (arcs and holes) and a member with
// two cuts off its middle is exported in millimetres and in metres; web-ifc must find every
// member with its profile entity and its clippings, and the meshes must have the volume of the
// library's solid within 0.1 %, its bounding box (web-ifc is Y-up: IFC = (x, -z, y)) and no open
// edges.
// usage: node ifc_readback.js BXQ WORKDIR MODULES   (BXQ_DATA_DIR names the shipped databases;
// MODULES is the folder holding node_modules/web-ifc). Exit 0 all well, 1 a failure.
'use strict';
const fs = require('fs');
const path = require('path');
const { execFileSync } = require('child_process');

const [bxq, workdir, modules] = process.argv.slice(2);
const WebIFC = require(path.join(modules, 'node_modules', 'web-ifc', 'web-ifc-api-node.js'));

// section, from, to, roll: beams along x and y, columns, braces, rolled by various angles.
const MEMBERS = [
  ['I20a', [0, 0, 3000], [6000, 0, 3000], 0],
  ['[20a', [0, 2000, 3000], [0, 8000, 3000], 0],
  ['L100*10', [2000, 2000, 0], [2000, 2000, 3000], 0],
  ['L100*80*10', [4000, 2000, 0], [4000, 2000, 3000], 30],
  ['D89*4', [0, 4000, 0], [3000, 5000, 2500], 0],
  ['D20', [0, 6000, 0], [2500, 6000, 0], 0],
  ['HN400*200*8*13', [0, 9000, 4000], [7000, 9000, 4000], 90],
  ['C200*70*20*3', [6000, 0, 0], [6000, 4000, 0], 0],
  ['TN200*200*8*13', [8000, 0, 0], [8000, 0, 3500], 45],
  ['H400*200*8*13', [10000, 0, 0], [10000, 6000, 0], 0],
  ['B400*300*12*12', [12000, 0, 0], [12000, 0, 3000], 0],
  ['HD325*10', [14000, 0, 0], [16000, 0, 2000], 0],
  ['T200*200*8*13', [18000, 0, 0], [18000, 5000, 0], 180],
  ['\u25a1150*100*6', [20000, 0, 0], [20000, 0, 3000], 15],
  // written as their outlines: lips and arcs, unequal flanges, two walls, a crossed H, an oval tube
  ['Z250*75*25*3', [22000, 0, 0], [22000, 5000, 0], 0],
  ['H400*200/150*8*13', [24000, 0, 0], [28000, 0, 0], 0],
  ['B400*300*10*12', [24000, 3000, 0], [24000, 3000, 3000], 0],
  ['H400*200*8*13+H300*150*6*10', [26000, 3000, 0], [26000, 3000, 3000], 0],
  ['TY600*400*400*300*10', [28000, 3000, 0], [32000, 3000, 0], 0],
];
// The member with two cuts: an oblique head cut 700 mm in and a tail cut 400 mm in, so keeping
// the wrong side of either changes the volume.
const CUT_MEMBER = ['H400*200*8*13', [0, -3000, 0], [6000, -3000, 0], 0];
const CUTS = [
  ['--head', '0,0,700', '0.3,0.2,1'],
  ['--tail', '0,0,-400', '0,-0.4,-1'],
];

function run(args) {
  return execFileSync(bxq, args, { encoding: 'utf8', stdio: ['ignore', 'pipe', 'pipe'] });
}

const failures = [];
function check(ok, what) {
  if (!ok) failures.push(what);
}
function near(a, b, relative, absolute) {
  return Math.abs(a - b) <= Math.max(relative * Math.abs(b), absolute);
}

// The mesh of a product in IFC axes (metres): volume, bounding box and open edges.
function meshFigures(api, model, expressID) {
  const flat = api.GetFlatMesh(model, expressID);
  let volume = 0;
  const min = [Infinity, Infinity, Infinity], max = [-Infinity, -Infinity, -Infinity];
  const edges = new Map();
  const key = (p) => p.map((v) => Math.round(v * 1e6)).join(',');
  for (let g = 0; g < flat.geometries.size(); ++g) {
    const placed = flat.geometries.get(g);
    const geometry = api.GetGeometry(model, placed.geometryExpressID);
    const vertices = api.GetVertexArray(geometry.GetVertexData(), geometry.GetVertexDataSize());
    const indices = api.GetIndexArray(geometry.GetIndexData(), geometry.GetIndexDataSize());
    const m = placed.flatTransformation;
    const point = (i) => {
      const x = vertices[6 * i], y = vertices[6 * i + 1], z = vertices[6 * i + 2];
      const wx = m[0] * x + m[4] * y + m[8] * z + m[12];
      const wy = m[1] * x + m[5] * y + m[9] * z + m[13];
      const wz = m[2] * x + m[6] * y + m[10] * z + m[14];
      return [wx, -wz, wy];  // web-ifc's Y-up back to IFC's Z-up
    };
    for (let t = 0; t + 2 < indices.length; t += 3) {
      const p = [point(indices[t]), point(indices[t + 1]), point(indices[t + 2])];
      volume += (p[0][0] * (p[1][1] * p[2][2] - p[1][2] * p[2][1]) -
                 p[0][1] * (p[1][0] * p[2][2] - p[1][2] * p[2][0]) +
                 p[0][2] * (p[1][0] * p[2][1] - p[1][1] * p[2][0])) / 6;
      for (const q of p) for (let k = 0; k < 3; ++k) { min[k] = Math.min(min[k], q[k]); max[k] = Math.max(max[k], q[k]); }
      for (let e = 0; e < 3; ++e) {
        const a = key(p[e]), b = key(p[(e + 1) % 3]);
        if (a === b) continue;
        const forward = a + '>' + b, backward = b + '>' + a;
        if ((edges.get(backward) || 0) > 0) edges.set(backward, edges.get(backward) - 1);
        else edges.set(forward, (edges.get(forward) || 0) + 1);
      }
    }
    geometry.delete();
  }
  let open = 0;
  for (const count of edges.values()) open += count;
  return { volume: Math.abs(volume), min, max, open };
}

const typeName = (api, line) => String(api.GetNameFromTypeCode(line.type)).toUpperCase();

// The solid of a product's body: its profile entity and the clippings above it.
function bodyOf(api, model, expressID) {
  const get = (ref) => api.GetLine(model, ref.value);
  const product = api.GetLine(model, expressID);
  let item = get(get(get(product.Representation).Representations[0]).Items[0]);
  let clippings = 0;
  while (item.type === WebIFC.IFCBOOLEANCLIPPINGRESULT) {
    ++clippings;
    check(get(item.SecondOperand).type === WebIFC.IFCHALFSPACESOLID, `#${expressID}: a clipping by something else`);
    item = get(item.FirstOperand);
  }
  const profile = item.type === WebIFC.IFCEXTRUDEDAREASOLID ? typeName(api, get(item.SweptArea)) : 'none';
  return { clippings, profile };
}

// The profile of each section's material profile, by section name.
function sectionProfiles(api, model) {
  const profiles = new Map();
  const ids = api.GetLineIDsWithType(model, WebIFC.IFCMATERIALPROFILE);
  for (let i = 0; i < ids.size(); ++i) {
    const line = api.GetLine(model, ids.get(i));
    profiles.set(line.Name.value, typeName(api, api.GetLine(model, line.Profile.value)));
  }
  return profiles;
}

async function main() {
  fs.mkdirSync(workdir, { recursive: true });
  const project = path.join(workdir, 'exchange.KDB');
  fs.rmSync(project, { force: true });
  for (const [section, from, to, roll] of [...MEMBERS, CUT_MEMBER]) {
    run(['member', 'add', '--project', project, '--section', section, '--from', from.join(','), '--to', to.join(','),
         '--roll', String(roll)]);
  }
  const cutId = String(MEMBERS.length + 1);
  for (const [end, origin, normal] of CUTS) {
    run(['cut-plane', 'add', '--project', project, '--id', cutId, end, '--origin', origin, '--normal', normal]);
  }

  const api = new WebIFC.IfcAPI();
  await api.Init();
  for (const unit of ['mm', 'm']) {
    const file = path.join(workdir, `exchange-${unit}.ifc`);
    const report = JSON.parse(run(['export', '--project', project, '--ifc', file, '--unit', unit, '--json']));
    check(report.members.length === MEMBERS.length + 1, `${unit}: ${report.members.length} members reported`);
    const model = api.OpenModel(new Uint8Array(fs.readFileSync(file)), { COORDINATE_TO_ORIGIN: false, CIRCLE_SEGMENTS: 720 });
    const products = new Map();
    for (const type of [WebIFC.IFCBEAM, WebIFC.IFCCOLUMN, WebIFC.IFCMEMBER]) {
      const ids = api.GetLineIDsWithType(model, type);
      for (let i = 0; i < ids.size(); ++i) {
        const line = api.GetLine(model, ids.get(i));
        products.set(Number(line.Tag.value), { expressID: ids.get(i), type: String(api.GetNameFromTypeCode(type)).toUpperCase() });
      }
    }
    check(products.size === report.members.length, `${unit}: web-ifc finds ${products.size} of ${report.members.length} members`);
    const sections = sectionProfiles(api, model);
    for (const member of report.members) {
      const section = (MEMBERS[member.id - 1] || CUT_MEMBER)[0];
      const where = `${unit}, member ${member.id} (${section})`;
      check(sections.get(section) === member.sectionProfile,
            `${where}: material profile ${sections.get(section)}, reported ${member.sectionProfile}`);
      const product = products.get(member.id);
      if (!product) { failures.push(`${where}: not found`); continue; }
      check(product.type === member.entity, `${where}: ${product.type}, reported ${member.entity}`);
      const body = bodyOf(api, model, product.expressID);
      check(body.profile === member.profile, `${where}: profile ${body.profile}, reported ${member.profile}`);
      check(body.clippings === member.clippings, `${where}: ${body.clippings} clippings, reported ${member.clippings}`);
      const mesh = meshFigures(api, model, product.expressID);
      const volume = member.volume * 1e-9;  // mm3 -> m3
      check(near(mesh.volume, volume, 1e-3, 0), `${where}: mesh volume ${mesh.volume} m3, solid ${volume} m3`);
      for (let k = 0; k < 3; ++k) {
        check(near(mesh.min[k], member.bbox[0][k] * 1e-3, 0, 1e-3) && near(mesh.max[k], member.bbox[1][k] * 1e-3, 0, 1e-3),
              `${where}: box axis ${k} [${mesh.min[k]}, ${mesh.max[k]}] m, solid [${member.bbox[0][k] * 1e-3}, ${member.bbox[1][k] * 1e-3}] m`);
      }
      check(mesh.open === 0, `${where}: ${mesh.open} open edges`);
    }
    api.CloseModel(model);
    console.log(`${unit}: ${report.members.length} members read back`);
  }
  for (const f of failures) console.log('FAIL ' + f);
  process.exit(failures.length ? 1 : 0);
}

main().catch((e) => { console.log('FAIL ' + (e.stack || e)); process.exit(1); });
