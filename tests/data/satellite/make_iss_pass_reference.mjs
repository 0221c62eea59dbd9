// Writes iss_pass_satellitejs.txt: rise, culmination and set of the ISS passes
// over a site, computed with satellite.js (an independent SGP4 implementation,
// npm package "satellite.js", which follows Vallado's revised code).
//
// Usage: npm install --prefix DIR satellite.js@7.1.0
//        NODE_PATH=DIR/node_modules node make_iss_pass_reference.mjs > iss_pass_satellitejs.txt
//
// The horizon is the refracted one: Saemundsson's refraction added to the
// geometric elevation (R = 1.02 / tan(h + 10.3 / (h + 5.11)) arcmin), the rule
// the program applies. Crossings are found by a one-second scan and refined
// by bisection to 1 ms.
import { createRequire } from 'module';
const require = createRequire(import.meta.url);
const sat = await import(require.resolve('satellite.js'));

const line1 = '1 25544U 98067A   19156.50900463  .00003075  00000-0  59442-4 0  9992';
const line2 = '2 25544  51.6433  59.2583 0008217  16.4489 347.6017 15.51174618173442';
const site = { latitude: 40 * Math.PI / 180, longitude: -75 * Math.PI / 180, height: 0 };
const satrec = sat.twoline2satrec(line1, line2);

const jdStart = 2458640.0 + 4 / 24;   // 2019 June 5, 16h UT (midday EDT)
const days = 1.0;

function refracted(jd) {
  const date = new Date((jd - 2440587.5) * 86400000);
  const pv = sat.propagate(satrec, date);
  const gmst = sat.gstime(date);
  const ecf = sat.eciToEcf(pv.position, gmst);
  const look = sat.ecfToLookAngles(site, ecf);
  const h = look.elevation * 180 / Math.PI;
  let r = 0;
  if (h > -2) r = 1.02 / Math.tan((h + 10.3 / (h + 5.11)) * Math.PI / 180) / 60;
  const e = h + r >= 0 ? h + r : h;
  return { e, az: look.azimuth * 180 / Math.PI };
}

function bisect(a, b, rising) {
  for (let i = 0; i < 40; i++) {
    const m = 0.5 * (a + b);
    const above = refracted(m).e >= 0;
    if (above === rising) b = m; else a = m;
  }
  return 0.5 * (a + b);
}

console.log('# ISS passes over 40N 75W, 0 m; satellite.js 7.1.0');
console.log('# riseJdUT culminationJdUT maxElevationDeg setJdUT');
const step = 1 / 86400;
let prev = refracted(jdStart).e;
let rise = null, maxE = -90, maxJd = 0;
for (let jd = jdStart + step; jd <= jdStart + days; jd += step) {
  const e = refracted(jd).e;
  if (prev < 0 && e >= 0) { rise = bisect(jd - step, jd, true); maxE = -90; }
  if (rise !== null && e > maxE) { maxE = e; maxJd = jd; }
  if (rise !== null && prev >= 0 && e < 0) {
    const set = bisect(jd - step, jd, false);
    console.log(rise.toFixed(8), maxJd.toFixed(8), maxE.toFixed(4), set.toFixed(8));
    rise = null;
  }
  prev = e;
}
