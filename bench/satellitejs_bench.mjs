// The propagation benchmark of bench_satellite.cpp run with satellite.js
// (npm package "satellite.js", Vallado's revised SGP4 in JavaScript), for a
// comparison on the same machine: the ISS (SGP4) and Molniya 2-14 (SDP4)
// swept 0 … 1440 minutes in one-minute steps.
//
// usage: npm install --prefix DIR satellite.js@7.1.0
//        NODE_PATH=DIR/node_modules node bench/satellitejs_bench.mjs
import { createRequire } from 'module';
const require = createRequire(import.meta.url);
const sat = await import(require.resolve('satellite.js'));

const sets = {
  'SGP4 (ISS)': ['1 25544U 98067A   19156.50900463  .00003075  00000-0  59442-4 0  9992',
                 '2 25544  51.6433  59.2583 0008217  16.4489 347.6017 15.51174618173442'],
  'SDP4 (Molniya 2-14)': ['1 08195U 75081A   06176.33215444  .00000099  00000-0  11873-3 0   813',
                          '2 08195  64.1586 279.0717 6877146 264.7651  20.2257  2.00491383225656'],
};

for (const [name, [l1, l2]] of Object.entries(sets)) {
  const satrec = sat.twoline2satrec(l1, l2);
  let sink = 0;
  // Warm up the JIT, then time about a second.
  for (let i = 0; i < 200000; i++) sink += sat.sgp4(satrec, i % 1441).position.x;
  let n = 0;
  const start = process.hrtime.bigint();
  let elapsed = 0;
  while (elapsed < 1.0) {
    for (let i = 0; i < 100000; i++, n++) sink += sat.sgp4(satrec, n % 1441).position.x;
    elapsed = Number(process.hrtime.bigint() - start) / 1e9;
  }
  console.log(`${name}: ${(n / elapsed / 1e6).toFixed(3)} M propagations/s (${(1e9 * elapsed / n).toFixed(0)} ns each)` +
              (sink === 42 ? '' : ''));
}
