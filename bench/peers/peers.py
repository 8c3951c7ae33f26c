#!/usr/bin/python3
"""Core Image beside other image libraries: time and peak memory, row by row.

usage: peers.py ROWS [WORDS]     the table; ROWS is the program that renders Core Image's side,
                                 WORDS choose the rows whose names contain them
       peers.py --one PEER ROW   one figure: milliseconds and MiB

Each row turns a picture of 4000 x 3000 8-bit pixels in memory into 8-bit pixels in memory. A figure is the best of
three turns in a process of its own; the peers take turns, three times, and the best of those counts. Each has two
threads and its own best settings.
"""
import math
import os
import subprocess
import sys
import time

WIDTH, HEIGHT = 4000, 3000
TURNS = 3
CONVOLUTION = [((i * 7) % 11 + 1) / 146 for i in range(25)]
SATURATION = [[1.158, -0.143, -0.014], [-0.043, 1.057, -0.014], [-0.043, -0.143, 1.186]]
SEPIA = [[0.757, 0.308, 0.076], [0.14, 0.874, 0.067], [0.109, 0.214, 0.652]]


def photograph():
    """Pixels that no coder would invent: the noise and the gradients of a picture, R G B A."""
    import numpy
    y, x = numpy.mgrid[0:HEIGHT, 0:WIDTH]
    noise = numpy.random.default_rng(1).integers(0, 40, (HEIGHT, WIDTH), dtype=numpy.uint16)
    planes = [(x // 20 + noise) % 256, (y // 15 + noise) % 256, ((x + y) // 30 + noise) % 256, 255 + 0 * x]
    return numpy.stack([p.astype(numpy.uint8) for p in planes], axis=2)


def opencv(as_float):
    """A function for each row; None where OpenCV has no such operation."""
    import cv2
    import numpy
    cv2.setNumThreads(2)
    picture = photograph()

    def through(work):
        if not as_float:
            return lambda: work(picture)
        return lambda: cv2.convertScaleAbs(work(picture.astype(numpy.float32)))

    def table(of):
        return numpy.clip([of(i / 255) * 255 for i in range(256)], 0, 255).astype(numpy.uint8)

    def with_alpha(m):
        return numpy.array([r + [0] for r in m] + [[0, 0, 0, 1]], dtype=numpy.float32)

    gammas = [table(lambda v: min(v * 1.2, 1)), table(lambda v: v ** 0.9), table(lambda v: 1 - v), table(lambda v: v ** 1.1)]

    def chain(p):
        p = cv2.LUT(p, gammas[0])
        p = cv2.transform(p, with_alpha(SATURATION))
        p = cv2.transform(p, with_alpha(SATURATION))
        p = cv2.LUT(cv2.LUT(p, gammas[1]), gammas[2])
        p = cv2.transform(p, numpy.eye(4, dtype=numpy.float32))
        return cv2.LUT(cv2.transform(p, with_alpha(SEPIA)), gammas[3])

    def unsharp(p):
        return cv2.addWeighted(p, 1.5, cv2.GaussianBlur(p, (0, 0), 2.5), -0.5, 0)

    def layers(p):
        out = p.copy()
        for moved in (100, 200):
            part = out[:-moved, moved:]
            out[:-moved, moved:] = cv2.addWeighted(p[moved:, :-moved], 0.5, part, 0.5, 0)
        return out

    turn = cv2.getRotationMatrix2D((WIDTH / 2, HEIGHT / 2), 17.2, 1.2)
    y, x = numpy.mgrid[0:HEIGHT, 0:WIDTH].astype(numpy.float32)
    dx, dy = x - WIDTH / 2, y - HEIGHT / 2
    angle = numpy.maximum(0, 1 - numpy.hypot(dx, dy) / 1500) * math.pi
    map_x = WIDTH / 2 + dx * numpy.cos(angle) - dy * numpy.sin(angle)
    map_y = HEIGHT / 2 + dx * numpy.sin(angle) + dy * numpy.cos(angle)
    maps = cv2.convertMaps(map_x, map_y, cv2.CV_16SC2)
    kernel = numpy.array(CONVOLUTION, dtype=numpy.float32).reshape(5, 5)
    motion = numpy.full((1, 81), 1 / 81, dtype=numpy.float32)
    return {
        "colour chain of 8": None if as_float else through(chain),
        "Gaussian blur 5": through(lambda p: cv2.GaussianBlur(p, (0, 0), 5)),
        "Gaussian blur 20": through(lambda p: cv2.GaussianBlur(p, (0, 0), 20)),
        "box blur 20": through(lambda p: cv2.blur(p, (41, 41))),
        "median 3 x 3": through(lambda p: cv2.medianBlur(p, 3)),
        "unsharp mask": through(unsharp),
        "rotation with scale": through(lambda p: cv2.warpAffine(p, turn, (WIDTH, HEIGHT))),
        "twirl": through(lambda p: cv2.remap(p, *maps, cv2.INTER_LINEAR)),
        "quarter size, Lanczos": through(lambda p: cv2.resize(p, (WIDTH // 4, HEIGHT // 4), interpolation=cv2.INTER_AREA)),
        "three layers": through(layers),
        "5 x 5 convolution": through(lambda p: cv2.filter2D(p, -1, kernel)),
        "motion blur 40": through(lambda p: cv2.filter2D(p, -1, motion)),
        "pixellate 16": through(lambda p: cv2.resize(
            cv2.resize(p, (WIDTH // 16, HEIGHT // 16), interpolation=cv2.INTER_AREA), (WIDTH, HEIGHT),
            interpolation=cv2.INTER_NEAREST)),
    }


def vips():
    os.environ["VIPS_CONCURRENCY"] = "2"
    import gi
    gi.require_version("Vips", "8.0")
    from gi.repository import GObject, Vips
    Vips.init("peers")
    Vips.cache_set_max(0)
    pixels = photograph().tobytes()
    picture = Vips.Image.new_from_memory_copy(pixels, WIDTH, HEIGHT, 4, Vips.BandFormat.UCHAR)

    def run(name, **values):
        operation = Vips.Operation.new(name)
        for key, value in values.items():
            GObject.Object.set_property(operation, key.replace("_", "-").rstrip("-"), value)
        return GObject.Object.get_property(Vips.cache_operation_build(operation), "out")

    def doubles(*values):
        return Vips.ArrayDouble.new(list(values))

    def matrix(rows):
        return Vips.Image.new_matrix_from_array(len(rows[0]), len(rows), [v for row in rows for v in row])

    def done(make):
        return lambda: run("cast", in_=make(), format=Vips.BandFormat.UCHAR).write_to_memory()

    def with_alpha(m):
        return matrix([r + [0] for r in m] + [[0, 0, 0, 1]])

    def chain():
        p = run("linear", in_=picture, a=doubles(1.2), b=doubles(0))
        p = run("recomb", in_=p, m=with_alpha(SATURATION))
        p = run("recomb", in_=p, m=with_alpha(SATURATION))
        p = run("gamma", in_=p, exponent=1 / 0.9)
        p = run("linear", in_=p, a=doubles(-1), b=doubles(255))
        p = run("recomb", in_=p, m=with_alpha([[1, 0, 0], [0, 1, 0], [0, 0, 1]]))
        p = run("recomb", in_=p, m=with_alpha(SEPIA))
        return run("gamma", in_=p, exponent=1 / 1.1)

    kernel = matrix([CONVOLUTION[i:i + 5] for i in range(0, 25, 5)])
    c, s = 1.2 * math.cos(0.3), 1.2 * math.sin(0.3)
    return {
        "colour chain of 8": done(chain),
        "Gaussian blur 5": done(lambda: run("gaussblur", in_=picture, sigma=5.0)),
        "Gaussian blur 20": done(lambda: run("gaussblur", in_=picture, sigma=20.0)),
        "median 3 x 3": done(lambda: run("rank", in_=picture, width=3, height=3, index=4)),
        "rotation with scale": done(lambda: run(
            "affine", in_=picture, matrix=doubles(c, -s, s, c), oarea=Vips.ArrayInt.new([0, 0, WIDTH, HEIGHT]))),
        "quarter size, Lanczos": done(lambda: run("resize", in_=picture, scale=0.25)),
        "5 x 5 convolution": done(lambda: run("conv", in_=picture, mask=kernel)),
    }


def gegl():
    os.environ["GEGL_THREADS"] = "2"
    os.environ["GEGL_USE_OPENCL"] = "no"
    import gi
    gi.require_version("Gegl", "0.4")
    from gi.repository import Gegl
    Gegl.init(None)
    whole = Gegl.Rectangle.new(0, 0, WIDTH, HEIGHT)
    source = Gegl.Buffer.new("R'G'B'A u8", 0, 0, WIDTH, HEIGHT)
    source.set(whole, "R'G'B'A u8", photograph().tobytes())

    def row(operation, width=WIDTH, height=HEIGHT, **values):
        def work():
            graph = Gegl.Node()
            head = graph.create_child("gegl:buffer-source")
            head.set_property("buffer", source)
            node = graph.create_child(operation)
            for key, value in values.items():
                node.set_property(key.replace("_", "-"), value)
            sink = graph.create_child("gegl:write-buffer")
            out = Gegl.Buffer.new("R'G'B'A u8", 0, 0, width, height)
            sink.set_property("buffer", out)
            crop = graph.create_child("gegl:crop")
            crop.set_property("width", float(width))
            crop.set_property("height", float(height))
            head.link(node)
            node.link(crop)
            crop.link(sink)
            sink.process()
        return work

    return {
        "Gaussian blur 5": row("gegl:gaussian-blur", std_dev_x=5.0, std_dev_y=5.0),
        "Gaussian blur 20": row("gegl:gaussian-blur", std_dev_x=20.0, std_dev_y=20.0),
        "box blur 20": row("gegl:box-blur", radius=20),
        "median 3 x 3": row("gegl:median-blur", radius=1),
        "unsharp mask": row("gegl:unsharp-mask", std_dev=2.5, scale=0.5),
        "5 x 5 convolution": row("gegl:convolution-matrix", **{
            "abcde"[i // 5] + str(i % 5 + 1): CONVOLUTION[i] for i in range(25)}),
        "motion blur 40": row("gegl:motion-blur-linear", length=80.0, angle=0.0),
        "pixellate 16": row("gegl:pixelize", size_x=16, size_y=16),
    }


PEERS = {
    "OpenCV 8 bit": lambda: opencv(False),
    "OpenCV float": lambda: opencv(True),
    "libvips": vips,
    "GEGL": gegl,
}


def one(peer, row):
    work = PEERS[peer]().get(row)
    if not work:
        return print("-")
    with open("/proc/self/clear_refs", "w") as peak:
        peak.write("5")  # what was needed to make the picture does not count
    best = math.inf
    for _ in range(TURNS):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
        if best > 3:  # seconds, which noise does not change much
            break
    with open("/proc/self/status") as status:
        peak = next(int(line.split()[1]) for line in status if line.startswith("VmHWM"))
    print(f"{best * 1e3:.1f} {peak / 1024:.0f}")


def figure(command):
    """(milliseconds, MiB), or None where the peer cannot do it or failed."""
    result = subprocess.run(command, capture_output=True, text=True)
    words = result.stdout.split()
    if result.returncode != 0 or len(words) != 2:
        if result.returncode != 0:
            print(f"{' '.join(command[-2:])} failed: {result.stderr.strip().splitlines()[-1:]}", file=sys.stderr)
        return None
    return float(words[0]), float(words[1])


def table(rows_program, words):
    rows = subprocess.run([rows_program], capture_output=True, text=True, check=True).stdout.splitlines()
    rows = [r for r in rows if not words or any(w.lower() in r.lower() for w in words)]
    if not rows:
        sys.exit(f"peers: no row's name contains {' or '.join(words)}")
    columns = ["ours", *PEERS]
    print("milliseconds (MiB at most); x is ours over theirs, so below 1 ours is quicker\n")
    print(f"{'':24}" + "".join(f"{c:>24}" for c in columns))
    for row in rows:
        best = {}
        for turn in range(3):
            for column in columns:
                if turn and column not in best:
                    continue
                command = [rows_program, row] if column == "ours" else [sys.executable, __file__, "--one", column, row]
                found = figure(command)
                if found:
                    best[column] = min(best.get(column, found), found)
                if sys.stderr.isatty():
                    print(f"\r{row}, turn {turn + 1} of 3: {column:20}", end="\r", file=sys.stderr)
        line = f"{row:24}"
        for column in columns:
            if column not in best:
                line += f"{'-':>24}"
                continue
            ms, mib = best[column]
            ratio = "" if column == "ours" or "ours" not in best else f" x {best['ours'][0] / ms:.2f}"
            line += f"{f'{ms:.0f} ({mib:.0f}){ratio}':>24}"
        print(line, flush=True)


if __name__ == "__main__":
    if len(sys.argv) == 4 and sys.argv[1] == "--one":
        one(sys.argv[2], sys.argv[3])
    elif len(sys.argv) > 1 and not sys.argv[1].startswith("-"):
        table(sys.argv[1], sys.argv[2:])
    else:
        sys.exit(__doc__)
