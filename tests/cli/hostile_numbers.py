#!/usr/bin/env python3
"""Every command of orvane-cli given hostile numbers: NaN, infinities, the
largest doubles and negative values in each of its numeric options, one at
a time, on top of an otherwise valid command line. Each run must end within
the time limit with a normal exit status (0, 1 or 2) — never a signal, a
sanitizer report or a hang — because no loop may run on a number it has not
first checked.

    hostile_numbers.py ORVANE_CLI WORK_DIR TLE_FILE
"""
import os
import subprocess
import sys

VALUES = ["nan", "inf", "-inf", "1e308", "-1e308", "-1", "1e9"]
TIME_LIMIT_S = 120


def cases(work, tle):
    png = os.path.join(work, "hostile.png")
    ovm = os.path.join(work, "hostile.ovm")
    site = ["--lat", "--lon", "--height", "--zone", "--jd"]
    return [
        (["time"], ["--jd", "--longitude", "--zone"]),
        (["precess", "--ra", "5", "--dec", "10", "--apparent"], ["--ra", "--dec", "--from", "--to"] + site),
        (["planet", "Mars"], site),
        (["planet", "Moon", "--topocentric"], site),
        (["find", "Sirius"], site),
        (["stars", "--ra", "5", "--dec", "0"], ["--ra", "--dec", "--radius", "--limit", "--jd"]),
        (["dsos", "--ra", "12.5", "--dec", "12"], ["--ra", "--dec", "--radius", "--limit", "--mag", "--min-size"]),
        (["constellation", "--ra", "5", "--dec", "0"], ["--ra", "--dec"]),
        (["satellite", "--tle", tle, "--sat", "25544"], site),
        (["groundtrack", "--tle", tle, "--sat", "25544", "--yes"], ["--length", "--step", "--jd", "--height"]),
        (["passes", "--tle", tle, "--sat", "25544", "--days", "1", "--yes"],
         ["--days", "--min-alt", "--interval", "--lat", "--lon", "--height"]),
        (["render", "--out", png, "--width", "160", "--height", "90"],
         ["--width", "--height", "--dpi", "--rotate", "--field", "--level", "--ra", "--dec", "--alt", "--az",
          "--quality", "--jd", "--lat"]),
        (["map", "new", "--out", ovm], ["--ra", "--dec", "--alt", "--az", "--field", "--level", "--jd", "--lat"]),
        (["ephemeris", "Mars", "--from", "2025-01-01", "--to", "2025-01-10"], ["--step", "--lat", "--lon", "--zone"]),
        (["minor", "Ceres"], site),
        (["minor", "chart", "Ceres", "--out", png, "--width", "160", "--height", "90"],
         ["--days", "--step", "--label-every", "--width", "--height"]),
        (["eclipses", "--from", "2024", "--to", "2026", "--visible"], ["--from", "--to", "--lat", "--lon", "--height"]),
        (["eclipse", "2024-04-08"], ["--lat", "--lon", "--height"]),
        (["phenomena", "--kind", "conjunction", "--body", "Moon", "--body", "Mars", "--from", "2025-01-01",
          "--days", "30"], ["--days", "--step"]),
        (["phenomena", "--kind", "moon-phases", "--from", "2025-01-01", "--days", "30", "--step", "6"],
         ["--days", "--step"]),
        (["phenomena", "--kind", "appulse", "--body", "Moon", "--body", "planets", "--from", "2025-01-01",
          "--days", "30"], ["--days", "--step", "--lat", "--lon", "--height"]),
        (["phenomena", "--kind", "stationary", "--body", "Mars,Jupiter", "--from", "2025-01-01", "--days", "30"],
         ["--days", "--step"]),
        (["almanac", "2025"], ["--lat", "--zone"]),
        (["eclipse", "2024-04-08", "--map", os.path.join(work, "eclipse.png")], ["--width", "--height-px"]),
    ]


# Spans and counts that the command bounds to what the matching dialog
# allows: the value just past the dialog's limit (and numbers that are no
# number at all) are refused as a usage error that names the option, and the
# value at the limit is still taken.
def bounded(work, tle):
    passes = ["passes", "--tle", tle, "--sat", "25544", "--yes"]
    track = ["groundtrack", "--tle", tle, "--sat", "25544", "--yes"]
    return [
        (passes, "--days", ["366", "1000000", "0.5", "nan"], "365"),
        (passes, "--interval", ["3601", "nan"], "3600"),
        (passes, "--min-alt", ["91", "-1", "nan"], "90"),
        (track, "--length", ["20161", "1000000", "nan"], "20160"),
        (track, "--step", ["1441", "inf"], "1440"),
        (["dsos", "--ra", "12.5", "--dec", "12"], "--mag", ["31", "nan"], "30"),
        (["dsos", "--ra", "12.5", "--dec", "12"], "--min-size", ["547", "-inf"], "546"),
        (["eclipse", "2024-04-08", "--map", os.path.join(work, "bounded.png")], "--width", ["nan", "20001"], None),
        (["render", "--out", os.path.join(work, "bounded.png"), "--width", "64", "--height", "48"], "--level",
         ["nan", "11"], "10"),
    ]


def with_value(base, option, value):
    args = list(base)
    if option in args:
        args[args.index(option) + 1] = value
    else:
        args += [option, value]
    return args


def main():
    cli, work, tle = sys.argv[1], sys.argv[2], sys.argv[3]
    os.makedirs(work, exist_ok=True)
    settings = ["--settings", os.path.join(work, "hostile.ini")]
    failures = []
    runs = 0
    for base, options in cases(work, tle):
        for option in options:
            for value in VALUES:
                args = [cli] + with_value(base, option, value) + settings
                runs += 1
                try:
                    done = subprocess.run(args, capture_output=True, text=True, timeout=TIME_LIMIT_S,
                                          env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
                except subprocess.TimeoutExpired:
                    failures.append("%s: no answer within %d s" % (" ".join(args[1:]), TIME_LIMIT_S))
                    continue
                report = done.stderr
                if done.returncode not in (0, 1, 2) or "runtime error" in report or "Sanitizer" in report:
                    failures.append("%s: exit %d\n%s" % (" ".join(args[1:]), done.returncode, report[-2000:]))
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    for base, option, refused, limit in bounded(work, tle):
        for value in refused:
            args = [cli] + with_value(base, option, value) + settings
            runs += 1
            done = subprocess.run(args, capture_output=True, text=True, timeout=TIME_LIMIT_S, env=env)
            if done.returncode != 2 or option not in done.stderr:
                failures.append("%s: wanted a usage error naming %s, got exit %d\n%s" %
                                (" ".join(args[1:]), option, done.returncode, done.stderr[-2000:]))
        if limit is not None:
            args = [cli] + with_value(base, option, limit) + settings
            runs += 1
            done = subprocess.run(args, capture_output=True, text=True, timeout=TIME_LIMIT_S, env=env)
            if done.returncode == 2:
                failures.append("%s: the dialog's limit was refused\n%s" % (" ".join(args[1:]), done.stderr[-2000:]))
    print("%d runs, %d failures" % (runs, len(failures)))
    for f in failures:
        print("FAIL " + f)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
