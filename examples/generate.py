#!/usr/bin/env python3
"""Generates the bundled example project of orvo from a known ground truth.

The example is a small close-range job on the north facade of a chapel, photographed three
times: once with an analog metric camera whose film was scanned (photo 1), and twice with a
digital camera with a 24 mm lens (photos 2 and 3; photo 3 carries a plane rectification of
the facade). Everything is computed here from one set of true values, so that the demo can
show what it recovers next to what is true:

  cameras.cam          the camera file: the metric camera (no distortion) and the digital
                       camera (radial distortion with A1, A2 and R0)
  metric150.res        the reseau file of the metric camera: a 5 x 5 grid of crosses
  chapel.pro           the project: three photos; photo 3 with the facade's tilt plane
  photo1_reseau.imo    reseau crosses measured on the scan of photo 1 [scan pixels]
  photo1.imo           facade points measured on the scan of photo 1 [scan pixels]
  photo2.imo           facade points measured on photo 2 [pixels]
  photo3.imo           facade points measured on photo 3 [pixels]
  control.coo          the facade points as surveyed in the facade's plane [m]
  truth.txt            the true scan distortion of photo 1 and the true image coordinates

The files are committed: the demo only reads them, and this script (python 3, standard
library only) is needed only to change the example. Run it from anywhere:

    python3 examples/generate.py            # rewrites the files next to this script
    python3 examples/generate.py --out DIR  # writes them into DIR instead

The random noise of the measurements starts from a fixed state, so the output is the same on
every run.
"""

import argparse
import math
import os
import random

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = HERE
rng = random.Random(20240611)

# ---------------------------------------------------------------------------------------------
# The true world

# Facade points in the facade's own plane [m]: X along the facade, Y up, Z out of it (0 on the
# plane). Corners of the facade, of two windows and of the door.
FACADE = [
    (101, 0.000, 0.000), (102, 12.000, 0.000), (103, 12.000, 7.500), (104, 0.000, 7.500),
    (105, 2.000, 3.000), (106, 3.200, 3.000), (107, 3.200, 5.200), (108, 2.000, 5.200),
    (109, 8.800, 3.000), (110, 10.000, 3.000), (111, 10.000, 5.200), (112, 8.800, 5.200),
    (113, 5.400, 0.000), (114, 6.600, 0.000), (115, 6.600, 2.600), (116, 5.400, 2.600),
]

# The facade's place in the site grid: easting, northing, height of its origin, its azimuth.
SITE_ORIGIN = (2480.000, 1315.000, 103.250)
SITE_ANGLE = math.radians(23.5)

# Cameras: id, C, Xh, Yh, A1, A2, R0, info.
METRIC = (1, 152.047, 0.012, -0.008, 0.0, 0.0, 0.0, "Metric 150/23, reseau")
DIGITAL = (2, 24.312, 0.0127, -0.0339, -6.1e-05, 4.2e-08, 12.0, "Wide 24 mm, body 2")

# The scan of photo 1: 18400 x 18400 pixels of 12.5 um. The true distortion of the scan maps
# scan pixels (column, row; rows grow downwards) to image coordinates [mm]: a small rotation,
# two slightly different scales, a little shear and the offset of the picture on the scanner.
SCAN_SIZE = 18400
SCAN_PIXEL = 0.0125
SCAN_ROTATION = 0.0061          # rad
SCAN_SCALE = (1.00031, 0.99978)
SCAN_SHEAR = 0.00017
SCAN_CENTRE = (9213.7, 9178.6)  # the pixel on which the image origin lies

# The digital pictures: 6000 x 4000 pixels of 6 um; the image origin at the picture centre.
PIXELS = (6000, 4000)
PIXEL = 0.006

# Measuring precision [pixels].
CROSS_NOISE = 0.20
POINT_NOISE = 0.30

RESEAU_STEP = 50.0  # mm between the crosses of the 5 x 5 grid


# ---------------------------------------------------------------------------------------------
# Small linear algebra


def solve(a, b):
    """Solves a x = b (a square) by Gaussian elimination with partial pivoting."""
    n = len(b)
    m = [row[:] + [b[i]] for i, row in enumerate(a)]
    for k in range(n):
        p = max(range(k, n), key=lambda i: abs(m[i][k]))
        m[k], m[p] = m[p], m[k]
        for i in range(k + 1, n):
            f = m[i][k] / m[k][k]
            for j in range(k, n + 1):
                m[i][j] -= f * m[k][j]
    x = [0.0] * n
    for i in reversed(range(n)):
        x[i] = (m[i][n] - sum(m[i][j] * x[j] for j in range(i + 1, n))) / m[i][i]
    return x


def least_squares(rows, values):
    """The least-squares solution of rows x = values."""
    n = len(rows[0])
    ata = [[sum(r[i] * r[j] for r in rows) for j in range(n)] for i in range(n)]
    atl = [sum(r[i] * v for r, v in zip(rows, values)) for i in range(n)]
    return solve(ata, atl)


def sub(a, b):
    return [a[i] - b[i] for i in range(3)]


def dot(a, b):
    return sum(a[i] * b[i] for i in range(3))


def cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]]


def unit(a):
    n = math.sqrt(dot(a, a))
    return [v / n for v in a]


# ---------------------------------------------------------------------------------------------
# Cameras and pictures


def pinhole(position, target, c, point):
    """Image coordinates [mm] of a facade point, relative to the principal point, x right and
    y up, for a camera at `position` looking at `target` (both in the facade frame)."""
    forward = unit(sub(target, position))
    right = unit(cross(forward, [0.0, 1.0, 0.0]))
    up = cross(right, forward)
    d = sub([point[0], point[1], 0.0], position)
    depth = dot(d, forward)
    return c * dot(d, right) / depth, c * dot(d, up) / depth


def relative_distortion(camera, x, y):
    """The camera's relative radial correction at (x, y) from the principal point (Calcdr)."""
    _, _, _, _, a1, a2, r0, _ = camera
    r = math.hypot(x, y)
    if r == 0.0:
        return 0.0
    return (r ** 4 - r0 ** 4) * a2 + (r * r - r0 * r0) * a1


def adjust(camera, x, y):
    """The library's correction: principal point off, radial distortion out."""
    x -= camera[2]
    y -= camera[3]
    k = relative_distortion(camera, x, y)
    return x - k * x, y - k * y


def distort(camera, u, v):
    """The image coordinates that `adjust` turns into (u, v): where the lens puts the point."""
    x, y = u, v
    for _ in range(50):  # Newton would be faster; the fixed point converges in a few passes
        k = relative_distortion(camera, x, y)
        x, y = u / (1.0 - k), v / (1.0 - k)
    return x + camera[2], y + camera[3]


def scan_trafo():
    """The true measured -> image affine transformation of the scan, as the parameters p0..p5
    of an Affin: x = p0 + p1 col + p2 row, y = p3 + p4 col + p5 row."""
    cos_t, sin_t = math.cos(SCAN_ROTATION), math.sin(SCAN_ROTATION)
    sx, sy = SCAN_PIXEL * SCAN_SCALE[0], SCAN_PIXEL * SCAN_SCALE[1]
    # (u, v) = (col, -row) rotated, sheared and scaled.
    a = [[sx * (cos_t + SCAN_SHEAR * sin_t), sx * (-sin_t + SCAN_SHEAR * cos_t)],
         [sy * sin_t, sy * cos_t]]
    p1, p2 = a[0][0], -a[0][1]
    p4, p5 = a[1][0], -a[1][1]
    p0 = -(p1 * SCAN_CENTRE[0] + p2 * SCAN_CENTRE[1])
    p3 = -(p4 * SCAN_CENTRE[0] + p5 * SCAN_CENTRE[1])
    return [p0, p1, p2, p3, p4, p5]


def image_to_scan(trafo, x, y):
    p0, p1, p2, p3, p4, p5 = trafo
    col, row = solve([[p1, p2], [p4, p5]], [x - p0, y - p3])
    return col, row


def image_to_pixel(x, y):
    return x / PIXEL + PIXELS[0] / 2.0, PIXELS[1] / 2.0 - y / PIXEL


# The digital pictures' reseau transformation: pixels -> image coordinates, an Affin.
PIXEL_TRAFO = [-PIXELS[0] / 2.0 * PIXEL, PIXEL, 0.0, PIXELS[1] / 2.0 * PIXEL, 0.0, -PIXEL]


def pixel_to_image(col, row):
    p0, p1, p2, p3, p4, p5 = PIXEL_TRAFO
    return p0 + p1 * col + p2 * row, p3 + p4 * col + p5 * row


# ---------------------------------------------------------------------------------------------
# Writing in the library's formats


def g(value, digits):
    """A number as a C++ stream writes it with this precision (the %g form)."""
    text = "%.*g" % (digits, value)
    return "0" if text == "-0" else text


def point_line(values):
    """One point record: the id in a field of 10, then each coordinate in a field of 21."""
    return " %10d" % values[0] + "".join(" %21s" % g(v, 16) for v in values[1:])


def write(name, text):
    with open(os.path.join(OUT, name), "w", newline="\n") as f:
        f.write(text)


def camera_record(camera):
    cid, c, xh, yh, a1, a2, r0, info = camera
    return " %4d" % cid + "".join(" %18s" % g(v, 8) for v in (c, xh, yh, a1, a2, r0)) + \
        ' "%s"' % info


def region_record(x1, y1, x2, y2):
    return "".join(" %21s" % g(v, 16) for v in (x1, y1, x2, y2))


def trafo_block(indent, type_code, params):
    lines = [indent + "    %d" % type_code]
    for i in range(0, len(params), 4):
        lines.append(indent + "    " + "".join(" %24s" % g(v, 16) for v in params[i:i + 4]))
    if len(params) % 4 == 0:
        lines.append(indent + "    ")
    return "\n".join(lines) + "\n"


def matrix_block(indent, rows):
    text = indent + "    " + " %4d %4d" % (len(rows), len(rows[0])) + "\n"
    for row in rows:
        text += indent + "    " + "".join(" %24s" % g(v, 17) for v in row) + "\n"
    return text


# ---------------------------------------------------------------------------------------------
# The example


def main():
    scan = scan_trafo()
    control = {pid: (x, y) for pid, x, y in FACADE}
    truth_image = {}

    # Photo 1: the metric camera straight in front of the facade; its film scanned.
    pose1 = ([6.0, 3.0, 17.0], [6.0, 3.75, 0.0])
    truth_image[1] = {}
    photo1 = []
    for pid, x, y in FACADE:
        u, v = pinhole(pose1[0], pose1[1], METRIC[1], (x, y))
        bx, by = u + METRIC[2], v + METRIC[3]  # no distortion: only the principal point
        truth_image[1][pid] = (bx, by)
        col, row = image_to_scan(scan, bx, by)
        photo1.append((pid, col + rng.gauss(0, POINT_NOISE), row + rng.gauss(0, POINT_NOISE)))

    crosses = []
    crosses_measured = []
    for r in range(5):
        for c in range(5):
            cid = 1 + 5 * r + c
            x, y = -2 * RESEAU_STEP + c * RESEAU_STEP, 2 * RESEAU_STEP - r * RESEAU_STEP
            code = 1 if cid == 13 else 0  # a big cross in the middle
            crosses.append((cid, x, y, code))
            col, row = image_to_scan(scan, x, y)
            crosses_measured.append((cid, col + rng.gauss(0, CROSS_NOISE),
                                     row + rng.gauss(0, CROSS_NOISE)))

    # Photos 2 and 3: the digital camera, from the right and obliquely from the left.
    poses = {2: ([9.0, 1.7, 13.0], [6.5, 3.8, 0.0]), 3: ([1.5, 1.6, 11.0], [7.0, 3.8, 0.0])}
    digital_points = {}
    for photo, pose in poses.items():
        truth_image[photo] = {}
        digital_points[photo] = []
        for pid, x, y in FACADE:
            u, v = pinhole(pose[0], pose[1], DIGITAL[1], (x, y))
            bx, by = distort(DIGITAL, u, v)
            truth_image[photo][pid] = (bx, by)
            col, row = image_to_pixel(bx, by)
            assert 0 < col < PIXELS[0] and 0 < row < PIXELS[1], (photo, pid, col, row)
            digital_points[photo].append((pid, col + rng.gauss(0, POINT_NOISE),
                                          row + rng.gauss(0, POINT_NOISE)))

    # The tilt plane of photo 3, as a user sets it up: six definition points measured in the
    # picture and their facade coordinates; the tilt matrix maps corrected image coordinates
    # into the facade plane (a least-squares projective fit, normalised so that m33 = 1).
    definition = [101, 102, 103, 104, 105, 111]
    measured3 = {pid: pixel_to_image(col, row) for pid, col, row in digital_points[3]}
    rows, values = [], []
    for pid in definition:
        x, y = adjust(DIGITAL, *measured3[pid])
        X, Y = control[pid]
        rows.append([x, y, 1, 0, 0, 0, -x * X, -y * X])
        values.append(X)
        rows.append([0, 0, 0, x, y, 1, -x * Y, -y * Y])
        values.append(Y)
    h = least_squares(rows, values)
    tilt = [[h[0], h[1], h[2]], [h[3], h[4], h[5]], [h[6], h[7], 1.0]]
    ca, sa = math.cos(SITE_ANGLE), math.sin(SITE_ANGLE)
    placement = [[ca, 0.0, -sa, SITE_ORIGIN[0]], [sa, 0.0, ca, SITE_ORIGIN[1]],
                 [0.0, 1.0, 0.0, SITE_ORIGIN[2]], [0.0, 0.0, 0.0, 1.0]]
    # The valid region: the facade with a margin of 0.3 m, as the lens shows it.
    region = []
    for x, y in ((-0.3, -0.3), (12.3, -0.3), (12.3, 7.8), (-0.3, 7.8)):
        u, v = pinhole(poses[3][0], poses[3][1], DIGITAL[1], (x, y))
        region.append(distort(DIGITAL, u, v))

    # -- files --------------------------------------------------------------------------------

    write("cameras.cam",
          "; \n; ORVOMETRIC 10 Version 6.715 Camera File\n; \n"
          '; File Format: { Id  C  Xh  Yh  A1  A2  R0 "Infotext"}\n; \n\n' +
          "".join("{" + camera_record(cam) + "}\n" for cam in (METRIC, DIGITAL)))

    header = ["", "ORVOMETRIC 10 Version 6.715 Reseau File", "", "File Format:",
              '"Infotext"         ... Commenttext displayed in a graphical view',
              "{ x1, y1, x2, y2 } ... Size of Photo in Bikos [mm]",
              "{ x1, y1, x2, y2 } ... Pos. and size of Commenttext",
              "{ Id, x, y, Code } ... List of Reseaucrosses",
              "            Code  Description",
              " " * 13 + "0 .. Small Reseaucross",
              " " * 13 + "1 .. Big Reseaucross",
              " " * 13 + "2 .. Not really a cross, a Corner of the Picture", ""]
    text = "".join("; " + line + "\n" for line in header) + "\n"
    text += '"Metric 150/23 reseau, 5 x 5 crosses"\n'
    text += "{" + region_record(-115, -115, 115, 115) + "}\n"
    text += "{" + region_record(-110, 106, -40, 113) + "}\n\n"
    for cid, x, y, code in crosses:
        text += "{" + " %10d" % cid + " %21s %21s" % (g(x, 16), g(y, 16)) + " %4d" % code + "}\n"
    write("metric150.res", text)

    def points_file(points, decimals):
        return "".join(" %10d" % p[0] + "".join(" %21s" % ("%.*f" % (decimals, v))
                                                for v in p[1:]) + "\n" for p in points)

    write("photo1_reseau.imo", points_file(crosses_measured, 2))
    write("photo1.imo", points_file(photo1, 2))
    write("photo2.imo", points_file(digital_points[2], 2))
    write("photo3.imo", points_file(digital_points[3], 2))
    write("control.coo", points_file([(pid, x, y, 0.0) for pid, x, y in FACADE], 3))

    def photo(pid, name, comment, digital, camera, scale, digiregion, reseau, main, extra=""):
        text = "PHOTO\n{\n"
        text += "    %-12s" % "PHOTOID" + " %4s" % "{" + " %4d" % pid + ' "%s"}\n' % name
        text += "    %-12s" % "COMMENT" + ' %4s' % '"' + comment + '"\n'
        for key, value in (("DIGITALPAGE", 0), ("DIGITALROT", 0), ("DIGITAL", digital),
                           ("DIGITIZERID", 1), ("CHECKACTIVE", 0), ("STATE", 0),
                           ("ROTATION", 0)):
            text += "    %-12s" % key + " %4d" % value + "\n"
        text += "    %-12s" % "SCALE" + " %8s" % g(scale, 6) + "\n"
        text += "    %-12s" % "DIGIREGION" + " %4s" % "{" + region_record(*digiregion) + "}\n"
        text += "    %-12s" % "CAMERA" + " %4s" % "{" + camera_record(camera) + "}\n"
        text += "    %-12s" % "RESEAUFILE" + ' %4s' % '"' + reseau + '"\n'
        text += "    %-12s" % "RESEAUSUBID" + " %4d" % 0 + "\n"
        text += "    %-12s" % "PRERESTRAFO" + "\n    {\n" + trafo_block("    ", 0, []) + "    }\n"
        text += "    %-12s" % "MAINRESTRAFO" + "\n    {\n" + trafo_block("    ", *main) + "    }\n"
        if digital:
            position = "".join(" %21s" % g(v, 16) for v in (0, 0))
            text += "    %-12s" % "SCREENPOS" + " %4s" % "{" + position + "}\n"
            text += "    %-12s" % "SCREENSIZE" + " %4d" % 0 + "\n"
        return text + extra + "    \n}\n\n"

    tilt_text = "    %-12s" % "TILTPLANE" + "\n    {\n"
    i = "        "
    tilt_text += i + "%-12s" % "TILTID" + " %4s" % "{" + " %4d" % 1 + ' "north facade"}\n'
    for key in ("ACTIV", "KAMERA", "REGIONACTIV"):
        tilt_text += i + "%-12s" % key + " %4d" % 1 + "\n"
    tilt_text += i + "%-12s" % "TILTTRAFO" + "\n" + i + "{\n" + matrix_block(i, tilt) + i + "}\n"
    tilt_text += i + "%-12s" % "TRAFO3D" + "\n" + i + "{\n" + matrix_block(i, placement) + i + "}\n"
    tilt_text += i + "%-12s" % "DEFPOINTS" + "\n" + i + "{\n"
    tilt_text += "\n".join(i + "    " + point_line((pid,) + control[pid] + (0.0,))
                           for pid in definition) + "\n" + i + "}\n"
    tilt_text += i + "%-12s" % "DISTORTION" + "\n" + i + "{\n" + i + "    " + \
        camera_record(DIGITAL) + "\n" + i + "}\n"
    tilt_text += i + "%-12s" % "MEASPOINTS" + "\n" + i + "{\n"
    tilt_text += "\n".join(i + "    " + point_line((pid,) + measured3[pid]) for pid in definition)
    tilt_text += "\n" + i + "}\n"
    tilt_text += i + "%-12s" % "VALIDREGION" + "\n" + i + "{\n"
    tilt_text += "\n".join(i + "    " + "".join(" %21s" % g(v, 16) for v in corner)
                           for corner in region) + "\n" + i + "}\n"
    tilt_text += i + "\n    }\n"

    text = "; \n; ORVOMETRIC 10 Version 6.715 Project File\n; \n\n"
    text += photo(1, "chapel_plate_1987_07.tif", "north facade, metric camera, scanned plate",
                  0, METRIC, 0.0089, (0, 0, SCAN_SIZE, SCAN_SIZE), "metric150.res", (0, []))
    text += photo(2, "IMG_4711.JPG", "north facade from the right", 1, DIGITAL, 0.0019,
                  (0, 0, PIXELS[0], PIXELS[1]), "", (2, PIXEL_TRAFO))
    text += photo(3, "IMG_4718.JPG", "north facade, oblique from the left", 1, DIGITAL, 0.0022,
                  (0, 0, PIXELS[0], PIXELS[1]), "", (2, PIXEL_TRAFO), tilt_text)
    write("chapel.pro", text)

    # -- the truth ------------------------------------------------------------------------------
    text = "; The true values behind the example project, written by generate.py.\n"
    text += "; SCANTRAFO: the true distortion of the scan (measured -> image, an Affin).\n"
    text += "; IMAGEPOINTS: the true image coordinates of the measured points (id x y).\n\n"
    for pid in (1, 2, 3):
        text += "PHOTO\n{\n    ID %d\n" % pid
        if pid == 1:
            text += "    SCANTRAFO\n    {\n" + trafo_block("    ", 2, scan) + "    }\n"
        text += "    IMAGEPOINTS\n    {\n"
        text += "".join("        " + point_line((k,) + v) + "\n"
                        for k, v in sorted(truth_image[pid].items()))
        text += "    }\n}\n\n"
    write("truth.txt", text)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description="Generate the orvo example project.")
    parser.add_argument("--out", default=HERE, help="directory to write into (default: here)")
    OUT = parser.parse_args().out
    os.makedirs(OUT, exist_ok=True)
    main()
