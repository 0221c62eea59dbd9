#!/usr/bin/env python3
"""Writes the fuzz targets' seed corpora (tests/fuzz/<target>/) from a built
data folder and the cached public sources: small, consistent excerpts of
real files, so that the fuzzers start from inputs the readers accept.

    tools/make-fuzz-seeds.py build/data data-sources
"""
import os
import struct
import subprocess
import sys

SEP = b"\n----\n"


def write(target, name, data):
    folder = os.path.join(os.path.dirname(__file__), "..", "tests", "fuzz", target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as f:
        f.write(data)


def read(path, limit=None):
    with open(path, "rb") as f:
        return f.read() if limit is None else f.read(limit)


def first_lines(path, n):
    with open(path, "rb") as f:
        return b"".join(f.readline() for _ in range(n))


def main():
    data, sources = sys.argv[1], sys.argv[2]
    top = os.path.join(os.path.dirname(__file__), "..")

    # Constellations: the four files whole (they are small).
    write("fuzz_constellations", "built", SEP.join(read(os.path.join(data, p)) for p in (
        "star/Tycho2/ConstFig.dat", "data/conname.dat", "data/constnam.dat", "data/conbound.dat")))

    # Stars: the first 400 records, the region table clamped to them, the
    # real bounds, the first identifier entries and the name table.
    n = 400
    starts = read(os.path.join(data, "star/Tycho2/t2region.idx"))
    clamped = bytearray()
    for i in range(0, len(starts), 6):
        start, brightest = struct.unpack_from("<Ih", starts, i)
        clamped += struct.pack("<Ih", min(start, n), brightest)
    write("fuzz_starfiles", "first-records", SEP.join([
        read(os.path.join(data, "star/Tycho2/Tycho2.dat"), 38 * n), bytes(clamped),
        read(os.path.join(data, "data/rgnbound.dat")), read(os.path.join(data, "star/Tycho2/T2Id.idx"), 10 * n),
        read(os.path.join(data, "star/Tycho2/StarLabl.dat"))]))

    # Deep sky: the first 40 NGC/IC and LEDA records, filed in region 0.
    def catalogue(records, size, bounds):
        recs = read(os.path.join(data, records), size * 40)
        b = bytearray(read(os.path.join(data, bounds)))
        for i in range(0, len(b), 28):
            struct.pack_into("<II", b, i + 20, 0, 40 if i == 0 else 0)
        return recs, bytes(b)
    ngc, ngcb = catalogue("deepsky/ngcic/ngcic.dat", 226, "deepsky/ngcic/ngcicbnd.dat")
    leda, ledab = catalogue("deepsky/LEDA/LEDA.dat", 32, "deepsky/LEDA/LEDAbnd.dat")
    write("fuzz_deepsky", "first-records", SEP.join([
        ngc, read(os.path.join(data, "deepsky/ngcic/ngcicnam.idx"), 18 * 40), ngcb,
        leda, read(os.path.join(data, "deepsky/LEDA/LEDAName.idx"), 22 * 40), ledab,
        first_lines(os.path.join(data, "deepsky/LEDA/LEDAName.dat"), 6)]))

    # VSOP87: every series cut to its first two terms.
    idx = read(os.path.join(data, "Data/VSOP87.idx"))
    terms = read(os.path.join(data, "Data/VSOP87.dat"))
    new_idx, new_terms = bytearray(), bytearray()
    for body in range(8):
        first = struct.unpack_from("<h", idx, body * 72)[0]
        at = first
        for s in range(18):
            count = struct.unpack_from("<h", idx, body * 72 + s * 4 + 2)[0]
            keep = min(count, 2)
            new_idx += struct.pack("<hh", len(new_terms) // 24 if s == 0 else 0, keep)
            new_terms += terms[at * 24:(at + keep) * 24]
            at += count
    write("fuzz_vsop87", "two-terms", SEP.join([bytes(new_idx), bytes(new_terms)]))

    # Map files: one of each kind the command line writes.
    cli = os.path.join(top, "build", "bin", "orvane-cli")
    for name, args in (("radec", ["--ra", "5.6", "--dec", "-2", "--level", "5"]), ("altaz", ["--alt", "40", "--az", "180"])):
        out = os.path.join("/tmp", "seed-" + name + ".ovm")
        subprocess.run([cli, "map", "new", "--out", out] + args, check=True, stdout=subprocess.DEVNULL)
        write("fuzz_mapfile", name + ".ovm", read(out))

    write("fuzz_elements", "iss", read(os.path.join(top, "tests/data/satellite/iss_2019-06-05.tle")))
    for i, text in enumerate(["5:35:17.3", "83.8d", "-05 23 28", "-5d23m28s", "2025-11-19", "-0043-03-15",
                              "21:30:05.5", "1e308", "12h30m"]):
        write("fuzz_textfields", "seed%d" % i, text.encode())

    # Builder sources: a few real lines of each.
    st = os.path.join(sources, "stellarium-data/usr/share/stellarium")
    ks = os.path.join(sources, "kstars-data/usr/share/kstars")
    for name, path, n in (("tycho2-main", "tycho2/tyc2.dat.00", 3), ("tycho2-suppl", "tycho2/suppl_1.dat", 3),
                          ("tycho2-index", "tycho2/index.dat", 3), ("cbounds", ks + "/cbounds.dat", 4),
                          ("dso-names", st + "/nebulae/default/names.dat", 40)):
        full = path if path.startswith("/") or path.startswith(sources) else os.path.join(sources, path)
        if os.path.exists(full):
            write("fuzz_databuild", name, first_lines(full, n))
    dso = os.path.join(st, "nebulae/default/catalog.dat")
    if os.path.exists(dso):
        import zlib
        raw = read(dso)
        try:
            raw = zlib.decompress(raw[4:])
        except zlib.error:
            pass
        write("fuzz_databuild", "dso-stream", raw[:4000])


def more_seeds(data):
    """Seeds of the readers added later: minor bodies, overlays and
    horizons, the compact ephemeris and the eclipse tables."""
    top = os.path.join(os.path.dirname(__file__), "..")
    write("fuzz_minor", "mpcorb", read(os.path.join(top, "tests/data/minor/MPCORB.excerpt.DAT")))
    write("fuzz_minor", "cometels", read(os.path.join(top, "tests/data/minor/CometEls.txt")))
    write("fuzz_minor", "catalogues", first_lines(os.path.join(data, "asteroid.cat"), 8) +
          first_lines(os.path.join(data, "comet.cat"), 8))
    write("fuzz_overlay", "galactic", SEP.join([
        first_lines(os.path.join(data, "overlays/galactic.ovl"), 60),
        b"# azimuth altitude\n0 5\n90 12.5\n180 3\n270 20\n", bytes(range(0, 90)) * 4]))
    write("fuzz_ephemfiles", "eclipses", SEP.join([
        read(os.path.join(data, "Data/Ephem96.dat"), 4096), read(os.path.join(data, "data/solar1.dat"), 400)]))


if __name__ == "__main__" and len(sys.argv) > 3 and sys.argv[3] == "--more":
    more_seeds(sys.argv[1])
    sys.exit(0)

if __name__ == "__main__":
    main()
