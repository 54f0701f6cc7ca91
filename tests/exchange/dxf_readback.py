#!/usr/bin/python3
"""bxq outline --dxf read back by an independent reader (ezdxf): for one section of every family,
a custom polygon with arcs and holes, the drawing passes ezdxf's audit untouched, holds one closed
LWPOLYLINE per loop on the section's layer in millimetres, and its area and perimeter, taken from
the true arcs of the bulges, are the outline's own.

usage: dxf_readback.py BXQ WORKDIR   (BXQ_DATA_DIR names the shipped databases)"""
import json
import math
import os
import subprocess
import sys

import ezdxf

# (arguments of bxq outline, expected layer)
CASES = [
    (["--section", "I20a"], "I20a"),
    (["--section", "[20a"], "[20a"),
    (["--section", "L100*10"], "L100x10"),
    (["--section", "L100*80*10"], "L100x80x10"),
    (["--section", "D89*4"], "D89x4"),
    (["--section", "D20"], "D20"),
    (["--section", "HN400*200*8*13"], "HN400x200x8x13"),
    (["--section", "C200*70*20*3"], "C200x70x20x3"),
    (["--section", "Z250*75*25*3"], "Z250x75x25x3"),
    (["--section", "TN200*200*8*13"], "TN200x200x8x13"),
    (["--section", "H400*200*8*13"], "H400x200x8x13"),
    (["--section", "H400*200/150*8*13"], "H400x200_150x8x13"),
    (["--section", "B400*300*10*12"], "B400x300x10x12"),
    (["--section", "HD325*10"], "HD325x10"),
    (["--section", "T200*200*8*13"], "T200x200x8x13"),
    (["--section", "\u25a1150*150*6"], "\u25a1150x150x6"),
    (["--section", "H400*200*8*13+H300*150*6*10"], "H400x200x8x13+H300x150x6x10"),
    # custom polygons: arcs of every kind, a full-circle hole and a rounded hole
    (["0,0,0,0;100,0,50,1;100,100,0,0;0,100,50,1"], "OUTLINE"),
    (["0,0,0,0;300,0,0,0;300,200,0,0;0,200,0,0|||60,100,30,50|||160,60,0,0;220,60,40,1;220,140,0,0;160,140,40,1"],
     "OUTLINE"),
]


def loop_figures(points):
    """Signed area and length of a closed polyline whose segments are lines or bulged arcs."""
    area = 0.0
    length = 0.0
    for i, (x0, y0, _, _, bulge) in enumerate(points):
        x1, y1 = points[(i + 1) % len(points)][:2]
        area += (x0 * y1 - x1 * y0) / 2.0
        chord = math.hypot(x1 - x0, y1 - y0)
        if bulge == 0.0:
            length += chord
            continue
        theta = 4.0 * math.atan(bulge)
        radius = chord / (2.0 * abs(math.sin(theta / 2.0)))
        area += radius * radius * (theta - math.sin(theta)) / 2.0
        length += radius * abs(theta)
    return area, length


def close(a, b):
    return abs(a - b) <= 1e-9 * max(1.0, abs(b))


def check(bxq, workdir, arguments, layer):
    path = os.path.join(workdir, "outline.dxf")
    if os.path.exists(path):
        os.remove(path)
    run = subprocess.run([bxq, "outline", "--json", "--dxf", path] + arguments, capture_output=True, text=True)
    if run.returncode != 0:
        return ["bxq failed: " + run.stderr.strip()]
    outline = json.loads(run.stdout)
    loops = [part for part in outline["outline"].split("|||") if part]
    faults = []
    doc = ezdxf.readfile(path)
    auditor = doc.audit()
    faults += ["audit: " + e.message for e in auditor.errors + auditor.fixes]
    if doc.header.get("$INSUNITS") != 4:
        faults.append("units are not millimetres")
    if layer not in doc.layers:
        faults.append("no layer " + layer)
    entities = list(doc.modelspace())
    if len(entities) != len(loops):
        faults.append("%d entities for %d loops" % (len(entities), len(loops)))
    figures = []
    for e in entities:
        if e.dxftype() != "LWPOLYLINE" or not e.closed or e.dxf.layer != layer:
            faults.append("%s closed=%s on layer %s" % (e.dxftype(), getattr(e, "closed", None), e.dxf.layer))
            continue
        figures.append(loop_figures(list(e.get_points("xyseb"))))
    if figures:
        outer = abs(figures[0][0])
        area = outer - sum(abs(a) for a, _ in figures[1:])
        perimeter = sum(l for _, l in figures)
        if any((a > 0) == (figures[0][0] > 0) for a, _ in figures[1:]):
            faults.append("a hole turns the same way as the outer loop")
        if not close(area, outline["area"]):
            faults.append("area %.12g, the outline's %.12g" % (area, outline["area"]))
        if not close(perimeter, outline["perimeter"]) or not close(figures[0][1], outline["outerPerimeter"]):
            faults.append("perimeter %.12g (outer %.12g), the outline's %.12g (outer %.12g)"
                          % (perimeter, figures[0][1], outline["perimeter"], outline["outerPerimeter"]))
    return faults


def main():
    bxq, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    failed = 0
    for arguments, layer in CASES:
        faults = check(bxq, workdir, arguments, layer)
        print(("FAIL " if faults else "ok   ") + " ".join(arguments))
        for fault in faults:
            print("     " + fault)
        failed += bool(faults)
    print("%d of %d outlines failed" % (failed, len(CASES)))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
