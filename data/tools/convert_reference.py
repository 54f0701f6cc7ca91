#!/usr/bin/env python3
"""Builds the shipped section catalogue sources (data/catalogue/*.csv) from the published
reference tables, and checks every row against the dimensions it carries.

Usage:
    python3 data/tools/convert_reference.py REFERENCE_DIR [--out DIR] [--check-only]

REFERENCE_DIR holds the reference tables (gb706_I.csv, gb11263_H.csv, ...). The catalogue is
written to data/catalogue/ beside this script unless --out names another folder. Nothing is
written when a check fails that is not listed in KNOWN_DEVIATIONS, or when a listed typo fix
no longer finds the value it corrects. Python 3 standard library only.
"""

import argparse
import csv
import math
import os
import sys
from collections import OrderedDict

STEEL_DENSITY = 7850.0          # kg/m3
KG_PER_M_PER_MM2 = STEEL_DENSITY / 1e6   # 0.00785 kg/m for 1 mm2 of section
PIPE_FACTOR = 0.0246615         # kg/m per mm2 of (D - t) t, i.e. pi x 0.00785
BAR_FACTOR = 0.006165           # kg/m per mm2 of d^2, i.e. pi / 4 x 0.00785
PLATE_FACTOR = 7.85             # kg/m2 per mm of thickness

HEADER = ["PolyID", "SubClassID", "StandardName", "WeightMeter", "AreaVal",
          "WeightSource", "AreaSource"]


class ConversionError(Exception):
    pass


# ---------------------------------------------------------------------------------------------
# Typo fixes. Each entry: reference file, catalogue name of the row, column, the value printed
# in the reference table, the corrected value, and the two figures that prove it.
# The converter refuses to run if the printed value is not found (the table changed).
# ---------------------------------------------------------------------------------------------
FIXES = [
    ("gb706_channel.csv", "[25a", "surface", "0.722", "0.772",
     "the outline perimeter of [25a is 0.7723 m2/m; [24a (same flange, 10 mm less depth) "
     "publishes 0.752, and 10 mm more depth adds 0.020 m2/m"),
    ("gb706_angle.csv", "L140*14", "area", "37.37", "37.57",
     "area formula gives 37.567 cm2; the published weight 29.5 kg/m / 0.785 = 37.58 cm2"),
    ("gb706_angle.csv", "L125*80*12", "area", "2.33", "23.35",
     "area formula gives 23.351 cm2; the published weight 18.3 kg/m / 0.785 = 23.31 cm2"),
    ("gb706_angle.csv", "L150*90*10", "area", "22.26", "23.26",
     "area formula gives 23.261 cm2; the published weight 18.3 kg/m / 0.785 = 23.31 cm2"),
    ("gb706_angle.csv", "L150*90*15", "weight", "25.7", "26.7",
     "published area 33.95 cm2 x 0.785 = 26.65 kg/m; area formula gives 33.952 cm2 -> 26.65 kg/m"),
    ("coldformed_C.csv", "C180*70*20*2.5", "area", "9.48", "8.48",
     "published weight 6.66 kg/m / 0.785 = 8.48 cm2; the bend formula with inner radius 2t "
     "gives 8.48 cm2, and C200*70*20*2.5 (20 mm deeper web) publishes 8.98 = 8.48 + 0.50 (20 mm x 2.5 mm)"),
    ("gb6728_hollow_rect.csv", "\u25a1200*100*6", "weight", "26.101", "26.402",
     "\u25a1150*150*6 has the same perimeter and publishes 26.402; the hollow-section formula "
     "with R = 2t gives 26.402"),
    ("gb6728_hollow_rect.csv", "\u25a1100*50*3", "weight", "6.69", "6.6",
     "\u25a190*60*3 has the same perimeter and publishes 6.6; the hollow-section formula with "
     "R = 2t gives 6.600"),
]

# D108 seamless pipes: the wall thickness column is shifted by one row. For each row the three
# published properties Ix, Wx and ix all match the tube formulas for the NEXT thickness.
for _old, _new in [("3.5", "4"), ("4", "4.5"), ("4.5", "5"), ("5", "5.5"), ("5.5", "6"),
                   ("6", "6.5"), ("6.5", "7"), ("7", "7.5")]:
    FIXES.append(("pipe_seamless_sizes.csv", "108|" + _old, "t", _old, _new,
                  "published Ix, Wx and ix of this row all match the tube formulas for "
                  "D108 x " + _new + ", not x " + _old + " (thickness column shifted by one row)"))


# ---------------------------------------------------------------------------------------------
# Rows whose published figures disagree with the check and are shipped as published anyway,
# each with the reason. A row listed here that no longer deviates is reported as stale.
# Key: (catalogue name, check name).
# ---------------------------------------------------------------------------------------------
R2T_NOTE = ("published weight matches the hollow-section formula with R = 2t, while the other "
            "t = 8 sizes of the table use R = 2.5t; no second figure shows which is meant")
KNOWN_DEVIATIONS = {
    ("\u25a1120*120*8", "weight~formula"): R2T_NOTE,
    ("\u25a1140*140*8", "weight~formula"): R2T_NOTE,
    ("\u25a1160*160*8", "weight~formula"): R2T_NOTE,
    ("\u25a1150*100*8", "weight~formula"): R2T_NOTE,
    ("\u25a1160*80*8", "weight~formula"): R2T_NOTE,
    ("\u25a1180*100*8", "weight~formula"): R2T_NOTE,
    ("\u25a1200*100*8", "weight~formula"): R2T_NOTE,
    ("\u25a1160*80*4", "weight~formula"):
        "published 14.216 is 0.030 below \u25a1120*120*4 (same perimeter, 14.246 = formula); "
        "\u25a1160*80*5 and *8 sit 0.030 below their same-perimeter squares too, so this is "
        "how the source computed the 160*80 sizes, not an isolated typo",
}

# Cold-formed C and Z rows of t >= 4 whose published weight is the published area x 0.780,
# i.e. a density of 7800 kg/m3. Their weight is recomputed as area x 0.785 (checked first).
DENSITY_7800_NOTE = "published weight = published area x 0.780 (7800 kg/m3); recomputed with 7850"

# ---------------------------------------------------------------------------------------------
# Tolerances per family. "rel" is relative; every comparison of a published figure also allows
# half a unit of the figure's last printed digit (rounding of the table).
# ---------------------------------------------------------------------------------------------
TOL = {
    "I":       {"area": 0.0015, "weight": 0.0015, "surface": 0.005},
    "channel": {"area": 0.0015, "weight": 0.0015, "surface": 0.005},
    "angle":   {"area": 0.001,  "weight": 0.001,  "surface": 0.005},
    "H":       {"area": 0.001,  "weight": 0.001,  "surface": 0.005},
    "T":       {"area": 0.001,  "weight": 0.001,  "surface": 0.005},
    "CZ":      {"weight": 0.001},
    "box":     {"weight": 0.002},
    "pipe":    {"weight": 0.002, "props": 0.002},
}
# Cold-formed C/Z: the published area must be reachable with an inner bend radius in this
# range (as a multiple of t); the table's own radii lie between 1.5t and 2.5t.
CZ_BEND_RANGE = (1.4, 2.6)


# ---------------------------------------------------------------------------------------------
# Number helpers
# ---------------------------------------------------------------------------------------------
def num(text):
    """Shortest decimal text of a number: 20 not 20.0, 3.2 not 3.20."""
    if isinstance(text, str):
        value = float(text)
    else:
        value = text
    out = "%.10g" % value
    if "e" in out or "E" in out:
        raise ConversionError("number out of the plain range: %r" % (text,))
    if "." in out:
        out = out.rstrip("0").rstrip(".")
    if out == "-0":
        out = "0"
    return out


def half_unit(text):
    """Half a unit of the last printed digit of a published figure."""
    text = text.strip()
    if "." in text:
        return 0.5 * 10.0 ** -(len(text.split(".", 1)[1]))
    return 0.5

def check_published(checker, family, name, tol, area, weight, surface, area_formula, perimeter):
    """Checks a row's published area, weight and surface (each a (text, value) pair) against
    the area formula, against each other and against the outline perimeter."""
    area_text, area_cm2 = area
    weight_text, weight_value = weight
    surface_text, surface_value = surface
    checker.compare(family, name, "area~formula", area_text, area_cm2, area_formula / 100, tol["area"])
    checker.compare(family, name, "weight~formula", weight_text, weight_value,
                    area_formula * KG_PER_M_PER_MM2, tol["weight"])
    checker.compare(family, name, "weight~area", weight_text, weight_value,
                    area_cm2 * 100 * KG_PER_M_PER_MM2, 0.0005,
                    half_unit(area_text) * 100 * KG_PER_M_PER_MM2)
    checker.compare(family, name, "surface~perimeter", surface_text, surface_value,
                    perimeter / 1000, tol["surface"])



def to_float(text, where):
    try:
        return float(text)
    except ValueError:
        raise ConversionError("%s: not a number: %r" % (where, text))


def corner_cut(radius, turn=math.pi / 2):
    """Length an arc of `radius` saves against the sharp corner it rounds (turn in radians)."""
    return 2.0 * radius * math.tan(turn / 2.0) - radius * turn


# ---------------------------------------------------------------------------------------------
# Reading
# ---------------------------------------------------------------------------------------------
def read_table(ref_dir, name, header_start):
    """Rows of a reference CSV as lists of strings, after its '#' lines and its header."""
    path = os.path.join(ref_dir, name)
    if not os.path.isfile(path):
        raise ConversionError("reference table missing: %s" % path)
    with open(path, encoding="utf-8", newline="") as handle:
        lines = [line for line in handle if not line.startswith("#") and line.strip()]
    rows = list(csv.reader(lines))
    if not rows or not rows[0] or rows[0][0] != header_start:
        raise ConversionError("%s: expected a header row starting with %r" % (name, header_start))
    return rows[1:]


class Fixer:
    def __init__(self):
        self.pending = {(f[0], f[1], f[2]): f for f in FIXES}
        self.applied = []

    def value(self, table, key, column, text):
        fix = self.pending.pop((table, key, column), None)
        if fix is None:
            return text
        if text.strip() != fix[3]:
            raise ConversionError("%s %s %s: typo fix expects %s but the table has %s"
                                  % (table, key, column, fix[3], text))
        self.applied.append(fix)
        return fix[4]

    def finish(self):
        if self.pending:
            missing = ", ".join("%s %s %s" % k for k in sorted(self.pending))
            raise ConversionError("typo fixes that found no row: " + missing)


# ---------------------------------------------------------------------------------------------
# Checking
# ---------------------------------------------------------------------------------------------
class Checker:
    def __init__(self):
        self.worst = OrderedDict()     # (family, check) -> (deviation %, name)
        self.beyond = {}               # (family, check) -> (deviation beyond rounding %, name)
        self.failures = []             # (family, name, check, text)
        self.known_hits = []
        self.seen_known = set()

    def compare(self, family, name, check, published_text, published, expected, rel, slack=0.0):
        """Fails when published and expected differ by more than rel x expected, plus half a
        unit of the published figure's last digit, plus `slack` (rounding of other inputs)."""
        rounding = half_unit(published_text) + slack
        allowed = rel * abs(expected) + rounding
        deviation = (published - expected) / expected * 100.0 if expected else 0.0
        beyond = max(0.0, abs(published - expected) - rounding) / abs(expected) * 100.0
        key = (family, check)
        if (name, check) not in KNOWN_DEVIATIONS:
            if key not in self.worst or abs(deviation) > abs(self.worst[key][0]):
                self.worst[key] = (deviation, name)
            if key not in self.beyond or beyond > self.beyond[key][0]:
                self.beyond[key] = (beyond, name)
        if abs(published - expected) > allowed:
            text = "published %s, expected %.4f (%+.2f %%, allowed %.4f)" % (
                published_text, expected, deviation, allowed)
            self.fail(family, name, check, text)

    def fail(self, family, name, check, text):
        if (name, check) in KNOWN_DEVIATIONS:
            self.seen_known.add((name, check))
            self.known_hits.append((family, name, check, text, KNOWN_DEVIATIONS[(name, check)]))
        else:
            self.failures.append((family, name, check, text))

    def stale(self):
        return sorted(set(KNOWN_DEVIATIONS) - self.seen_known)


# ---------------------------------------------------------------------------------------------
# Families
# ---------------------------------------------------------------------------------------------
class Family:
    def __init__(self, key, file_name, standard, source, columns_note, params, tol_key):
        self.key = key
        self.file_name = file_name
        self.standard = standard
        self.source = source
        self.columns_note = columns_note
        self.params = params
        self.tol_key = tol_key
        self.rows = []

    def add(self, poly, sub, name, weight, weight_src, area, area_src, values):
        if len(values) != len(self.params):
            raise ConversionError("%s: %d parameters for %d columns" % (name, len(values),
                                                                        len(self.params)))
        self.rows.append([str(poly), str(sub), name, num(weight), num(area), weight_src,
                          area_src] + [num(v) for v in values])


def hot_rolled_columns(tail):
    return ("WeightMeter kg/m; AreaVal surface m2/m; WeightSource/AreaSource published or "
            "computed; " + tail)


def build_i_and_channel(ref, fixer, checker, fam, table, prefix, poly, slope, fillet_k, kind):
    """GB/T 706 I-beams (flange slope 1:6) and channels (1:10)."""
    turn = math.pi / 2 - math.atan(slope)
    for row in read_table(ref, table, "类别"):
        if len(row) < 11:
            raise ConversionError("%s: short row %r" % (table, row))
        designation = num(row[1]) if row[1].replace(".", "").isdigit() else row[1]
        name = prefix + designation
        h, b, d, t, r, r1 = (to_float(x, name) for x in row[2:8])
        area_text = fixer.value(table, name, "area", row[8])
        weight_text = fixer.value(table, name, "weight", row[9])
        surface_text = fixer.value(table, name, "surface", row[10])
        area_cm2 = to_float(area_text, name)
        weight = to_float(weight_text, name)
        surface = to_float(surface_text, name)

        area_formula = h * d + 2 * t * (b - d) + fillet_k * (r * r - r1 * r1)   # mm2
        if kind == "I":
            outstand = (b - d) / 2          # t is measured at outstand / 2 from the tip
            t_tip, t_root = t - slope * outstand / 2, t + slope * outstand / 2
            perimeter = (2 * b + 4 * outstand * math.hypot(1, slope) + 4 * t_tip
                         + 2 * (h - 2 * t_root) - 4 * corner_cut(r, turn)
                         - 4 * corner_cut(r1, turn))
        else:
            outstand = b - d                # t is measured at outstand / 2 from the tip
            t_tip, t_root = t - slope * outstand / 2, t + slope * outstand / 2
            perimeter = (h + 2 * b + 2 * t_tip + 2 * outstand * math.hypot(1, slope)
                         + (h - 2 * t_root) - 2 * corner_cut(r, turn)
                         - 2 * corner_cut(r1, turn))
        tol = TOL[fam.tol_key]
        check_published(checker, fam.key, name, tol, (area_text, area_cm2), (weight_text, weight),
                        (surface_text, surface), area_formula, perimeter)
        fam.add(poly, 1, name, weight, "published", surface, "published", [h, b, d, t, r, r1])


def build_angles(ref, fixer, checker, equal, unequal):
    table = "gb706_angle.csv"
    for row in read_table(ref, table, "类别"):
        B, b, d, r = (to_float(x, table) for x in row[2:6])
        if B == b:
            fam, name, values = equal, "L%s*%s" % (num(b), num(d)), [b, d, r]
        else:
            fam, name, values = unequal, "L%s*%s*%s" % (num(B), num(b), num(d)), [B, b, d, r]
        area_text = fixer.value(table, name, "area", row[6])
        weight_text = fixer.value(table, name, "weight", row[7])
        surface_text = fixer.value(table, name, "surface", row[8])
        area_cm2, weight, surface = (to_float(x, name) for x in (area_text, weight_text,
                                                                 surface_text))
        r1 = d / 3
        area_formula = d * (B + b - d) + 0.215 * (r * r - 2 * r1 * r1)
        perimeter = 2 * (B + b) - corner_cut(r) - 2 * corner_cut(r1)
        tol = TOL["angle"]
        check_published(checker, fam.key, name, tol, (area_text, area_cm2), (weight_text, weight),
                        (surface_text, surface), area_formula, perimeter)
        fam.add(3 if fam is equal else 4, 1, name, weight, "published", surface, "published",
                values)


H_SUBCLASS = {"HW": 1, "HM": 2, "HN": 3, "HT": 4}
T_SUBCLASS = {"TW": 1, "TM": 2, "TN": 3}


def build_h_and_t(ref, fixer, checker, fam, table, subclasses, is_t):
    poly = 10 if is_t else 7
    for row in read_table(ref, table, "类别"):
        series = row[0].strip()
        if series not in subclasses:
            raise ConversionError("%s: unknown series %r" % (table, series))
        h, b, tw, tf, r = (to_float(x, table) for x in row[2:7])
        name = series + "*".join(num(x) for x in (h, b, tw, tf))
        area_text = fixer.value(table, name, "area", row[7])
        weight_text = fixer.value(table, name, "weight", row[8])
        surface_text = fixer.value(table, name, "surface", row[9])
        area_cm2, weight, surface = (to_float(x, name) for x in (area_text, weight_text,
                                                                 surface_text))
        if is_t:
            area_formula = tw * (h - tf) + b * tf + 0.429 * r * r
            perimeter = 2 * h + 2 * b - 2 * corner_cut(r)
        else:
            area_formula = tw * (h - 2 * tf) + 2 * b * tf + 0.858 * r * r
            perimeter = 2 * h + 4 * b - 2 * tw - 4 * corner_cut(r)
        tol = TOL["T" if is_t else "H"]
        check_published(checker, fam.key, name, tol, (area_text, area_cm2), (weight_text, weight),
                        (surface_text, surface), area_formula, perimeter)
        fam.add(poly, subclasses[series], name, weight, "published", surface, "published",
                [h, b, tw, tf, r])


def cz_centreline(h, b, c, t, bend):
    """Centre-line length of a lipped C or Z with four 90-degree bends of inner radius `bend`."""
    return (h - t) + 2 * (b - t) + 2 * (c - t / 2) - 4 * corner_cut(bend + t / 2)


def build_cold_formed(ref, fixer, checker, fam, table, letter, poly, density_rows):
    for row in read_table(ref, table, "类别"):
        h, b, c, t = (to_float(x, table) for x in row[2:6])
        name = letter + "*".join(num(x) for x in (h, b, c, t))
        weight_text = fixer.value(table, name, "weight", row[6])
        area_text = fixer.value(table, name, "area", row[7])
        weight, area_cm2 = to_float(weight_text, name), to_float(area_text, name)
        area = area_cm2 * 100

        # Inner bend radius implied by the published area; it must lie in the usual range.
        sharp = (h - t) + 2 * (b - t) + 2 * (c - t / 2)
        bend = (sharp - area / t) / (4 * corner_cut(1.0)) - t / 2
        low, high = (cz_centreline(h, b, c, t, k * t) * t for k in
                     (CZ_BEND_RANGE[1], CZ_BEND_RANGE[0]))
        slack = half_unit(area_text) * 100
        if not (low - slack <= area <= high + slack):
            checker.fail(fam.key, name, "area~bend",
                         "published area %s cm2 needs an inner bend radius of %.2f t"
                         % (area_text, bend / t))
        key = (fam.key, "bend radius / t")
        prev = checker.worst.get(key)
        checker.worst[key] = (min(prev[0], bend / t) if prev else bend / t,
                              max(prev[1], bend / t) if prev else bend / t)

        weight_src = "published"
        if abs(weight - area * 0.00780) <= half_unit(weight_text) + 1e-9 and \
                abs(weight - area * KG_PER_M_PER_MM2) > half_unit(weight_text):
            density_rows.append((name, weight_text, area_text))
            weight = round(area * KG_PER_M_PER_MM2, 3)
            weight_src = "computed"
        else:
            checker.compare(fam.key, name, "weight~area", weight_text, weight,
                            area * KG_PER_M_PER_MM2, TOL["CZ"]["weight"])
        surface = (2 * cz_centreline(h, b, c, t, bend) + 2 * t) / 1000
        fam.add(poly, 1, name, weight, weight_src, round(surface, 4), "computed", [h, b, c, t])


def box_radius(t):
    """Outer corner radius the GB/T 6728 table's theoretical weights were computed with."""
    if t <= 6:
        return 2.0 * t
    if t <= 10:
        return 2.5 * t
    return 3.0 * t


def build_boxes(ref, fixer, checker, fam):
    table = "gb6728_hollow_rect.csv"
    names = set()
    for row in read_table(ref, table, "dataset"):
        h, b, t = (to_float(x, table) for x in row[2:5])
        name = "\u25a1%s*%s*%s" % (num(h), num(b), num(t))
        if name in names:
            raise ConversionError("%s: %s listed twice" % (table, name))
        names.add(name)
        weight_text = fixer.value(table, name, "weight", row[6])
        weight = to_float(weight_text, name)
        radius = box_radius(t)
        inner = radius - t
        area = 2 * t * (h + b) - 4 * t * t - (4 - math.pi) * (radius ** 2 - inner ** 2)
        checker.compare(fam.key, name, "weight~formula", weight_text, weight,
                        area * KG_PER_M_PER_MM2, TOL["box"]["weight"])
        perimeter = 2 * (h + b) - 4 * corner_cut(radius)
        fam.add(1011, 1 if h == b else 2, name, weight, "published", round(perimeter / 1000, 4),
                "computed", [h, b, t])


def build_pipes(ref, fixer, checker, fam, notes):
    kept = OrderedDict()
    table = "gb6728_hollow_round.csv"
    for row in read_table(ref, table, "dataset"):
        d, t = to_float(row[2], table), to_float(row[3], table)
        name = "D%s*%s" % (num(d), num(t))
        weight_text = fixer.value(table, name, "weight", row[6])
        weight = to_float(weight_text, name)
        checker.compare(fam.key, name, "weight~formula", weight_text, weight,
                        PIPE_FACTOR * (d - t) * t, TOL["pipe"]["weight"])
        if name in kept:
            raise ConversionError("%s: %s listed twice" % (table, name))
        kept[name] = (1, name, weight, "published", d, t)

    table = "pipe_seamless_sizes.csv"
    duplicates = []
    for row in read_table(ref, table, "dad"):
        d = to_float(row[0], table)
        key = "%s|%s" % (num(d), num(row[1]))
        t = to_float(fixer.value(table, key, "t", num(row[1])), table)
        name = "D%s*%s" % (num(d), num(t))
        # The size is confirmed when its published section properties agree with the tube
        # formulas (Ix cm4, Wx cm3, ix cm); a single disagreeing property is a typo in that
        # property, which is not shipped.
        inner = d - 2 * t
        ix_formula = math.pi / 64 * (d ** 4 - inner ** 4) / 1e4
        props = [("Ix", row[2], ix_formula), ("Wx", row[3], ix_formula / (d / 20)),
                 ("ix", row[4], math.sqrt((d * d + inner * inner) / 16) / 10)]
        bad = []
        for label, text, expected in props:
            value = to_float(text, name)
            if abs(value - expected) > TOL["pipe"]["props"] * expected + half_unit(text):
                bad.append("%s %s (tube formula %.2f)" % (label, text, expected))
        if len(bad) >= 2:
            checker.fail(fam.key, name, "size~properties", "; ".join(bad))
        elif bad:
            notes.append("%s (%s): %s disagrees; the other two properties confirm the size"
                         % (name, table, bad[0]))
        if name in kept:
            if kept[name][0] == 2:
                raise ConversionError("%s: %s listed twice" % (table, name))
            duplicates.append(name)
            continue
        kept[name] = (2, name, round(PIPE_FACTOR * (d - t) * t, 3), "computed", d, t)

    for sub, name, weight, src, d, t in kept.values():
        fam.add(5, sub, name, weight, src, round(math.pi * d / 1000, 4), "computed", [d, t])
    return duplicates


def build_bars(ref, fam):
    table = "round_bar_sizes.csv"
    for row in read_table(ref, table, "dad"):
        d = to_float(row[0], table)
        fam.add(6, 1, "D%s" % num(d), round(BAR_FACTOR * d * d, 3), "computed",
                round(math.pi * d / 1000, 4), "computed", [d])


def read_thicknesses(ref, table):
    values = [to_float(row[0], table) for row in read_table(ref, table, "tic")]
    if len(values) != len(set(values)):
        raise ConversionError("%s: repeated thickness" % table)
    return values


# ---------------------------------------------------------------------------------------------
# Writing
# ---------------------------------------------------------------------------------------------
def write_family(out_dir, fam):
    path = os.path.join(out_dir, fam.file_name)
    with open(path, "w", encoding="utf-8", newline="") as handle:
        handle.write("# standard: %s\n" % fam.standard)
        handle.write("# source: %s\n" % fam.source)
        handle.write("# columns: %s\n" % fam.columns_note)
        writer = csv.writer(handle, lineterminator="\n")
        writer.writerow(HEADER + fam.params)
        writer.writerows(fam.rows)
    return path


def write_plates(out_dir, thick, thin):
    path = os.path.join(out_dir, "face_steel.csv")
    with open(path, "w", encoding="utf-8", newline="") as handle:
        handle.write("# standard: plate thickness series of the reference tables; weight = "
                     "7.85 kg/m2 per mm of thickness\n")
        handle.write("# source: plate_thick_sizes.csv (Class 1, hot-rolled plate), "
                     "plate_thin_sizes.csv (Class 2, cold-rolled sheet)\n")
        handle.write("# columns: Class (1 = 热轧钢板, 2 = 冷轧钢板); Thickness mm; Weight kg/m2\n")
        writer = csv.writer(handle, lineterminator="\n")
        writer.writerow(["Class", "Thickness", "Weight"])
        for cls, series in ((1, thick), (2, thin)):
            for t in series:
                writer.writerow([cls, num(t), num(round(PLATE_FACTOR * t, 6))])
    return path


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("reference_dir", help="folder of the reference tables")
    parser.add_argument("--out", help="output folder (default: data/catalogue beside this script)")
    parser.add_argument("--check-only", action="store_true", help="check, write nothing")
    args = parser.parse_args(argv)

    ref = args.reference_dir
    if not os.path.isdir(ref):
        raise ConversionError("not a folder: %s" % ref)
    out_dir = args.out or os.path.join(os.path.dirname(os.path.abspath(__file__)), "..",
                                       "catalogue")

    gb706 = "GB/T 706-2016"
    gb11263 = "GB/T 11263-2017"
    fam_i = Family("I", "gb706_i_beams.csv", gb706 + " hot-rolled I-beams",
                   "gb706_I.csv (reference tables)",
                   hot_rolled_columns("h, b, d (web), t (mean flange), r, r1 in mm"),
                   ["h", "b", "d", "t", "r", "r1"], "I")
    fam_c = Family("channel", "gb706_channels.csv", gb706 + " hot-rolled channels",
                   "gb706_channel.csv (reference tables)",
                   hot_rolled_columns("h, b, d (web), t (mean flange), r, r1 in mm"),
                   ["h", "b", "d", "t", "r", "r1"], "channel")
    fam_le = Family("equal angle", "gb706_equal_angles.csv", gb706 + " hot-rolled equal angles",
                    "gb706_angle.csv (reference tables), rows with B = b",
                    hot_rolled_columns("b (leg), d (thickness), r (root radius) in mm"),
                    ["b", "d", "r"], "angle")
    fam_lu = Family("unequal angle", "gb706_unequal_angles.csv",
                    gb706 + " hot-rolled unequal angles",
                    "gb706_angle.csv (reference tables), rows with B > b",
                    hot_rolled_columns("B (long leg), b (short leg), d (thickness), r (root "
                                       "radius) in mm"),
                    ["B", "b", "d", "r"], "angle")
    fam_h = Family("H", "gb11263_h.csv", gb11263 + " hot-rolled H sections HW, HM, HN, HT",
                   "gb11263_H.csv and gb11263_HT.csv (reference tables)",
                   hot_rolled_columns("h, b, tw (web), t (flange), r in mm; SubClassID 1 HW, "
                                      "2 HM, 3 HN, 4 HT"),
                   ["h", "b", "tw", "t", "r"], "H")
    fam_t = Family("T", "gb11263_t.csv", gb11263 + " hot-rolled T sections TW, TM, TN",
                   "gb11263_T.csv (reference tables)",
                   hot_rolled_columns("h, b, tw (web t1), t (flange t2), r in mm; SubClassID "
                                      "1 TW, 2 TM, 3 TN"),
                   ["h", "b", "tw", "t", "r"], "T")
    cf_standard = "cold-formed lipped sections (the source table names no standard)"
    fam_cc = Family("C", "coldformed_c.csv", cf_standard, "coldformed_C.csv (reference tables)",
                    hot_rolled_columns("h, b, c (lip), t in mm; surface computed"),
                    ["h", "b", "c", "t"], "CZ")
    fam_cz = Family("Z", "coldformed_z.csv", cf_standard, "coldformed_Z.csv (reference tables)",
                    hot_rolled_columns("h, b, c (lip), t in mm; surface computed"),
                    ["h", "b", "c", "t"], "CZ")
    fam_box = Family("box", "gb6728_box_tubes.csv",
                     "GB/T 6728 cold-formed square and rectangular hollow sections (the source "
                     "table does not state the edition)",
                     "gb6728_hollow_rect.csv (reference tables)",
                     hot_rolled_columns("h, b, t in mm; SubClassID 1 square, 2 rectangular; "
                                        "surface computed"),
                     ["h", "b", "t"], "box")
    fam_pipe = Family("pipe", "pipes.csv",
                      "GB/T 6728 cold-formed circular hollow sections (SubClassID 1; edition not "
                      "stated by the source) and hot-rolled seamless pipe sizes (SubClassID 2; "
                      "the source names no standard, only the year 2010)",
                      "gb6728_hollow_round.csv and pipe_seamless_sizes.csv (reference tables)",
                      hot_rolled_columns("D (outside diameter), t (wall) in mm; surface "
                                         "computed; seamless weights computed"),
                      ["D", "t"], "pipe")
    fam_bar = Family("bar", "round_bars.csv",
                     "hot-rolled round bar diameters (the source names no standard, only the "
                     "year 2008)",
                     "round_bar_sizes.csv (reference tables)",
                     hot_rolled_columns("d in mm; weight and surface computed"),
                     ["d"], "bar")

    fixer = Fixer()
    checker = Checker()
    density_rows = []
    pipe_notes = []
    build_i_and_channel(ref, fixer, checker, fam_i, "gb706_I.csv", "I", 1, 1 / 6, 0.615, "I")
    build_i_and_channel(ref, fixer, checker, fam_c, "gb706_channel.csv", "[", 2, 1 / 10, 0.349,
                        "channel")
    build_angles(ref, fixer, checker, fam_le, fam_lu)
    build_h_and_t(ref, fixer, checker, fam_h, "gb11263_H.csv", H_SUBCLASS, False)
    build_h_and_t(ref, fixer, checker, fam_h, "gb11263_HT.csv", H_SUBCLASS, False)
    build_h_and_t(ref, fixer, checker, fam_t, "gb11263_T.csv", T_SUBCLASS, True)
    build_cold_formed(ref, fixer, checker, fam_cc, "coldformed_C.csv", "C", 8, density_rows)
    build_cold_formed(ref, fixer, checker, fam_cz, "coldformed_Z.csv", "Z", 9, density_rows)
    build_boxes(ref, fixer, checker, fam_box)
    duplicates = build_pipes(ref, fixer, checker, fam_pipe, pipe_notes)
    build_bars(ref, fam_bar)
    thick = read_thicknesses(ref, "plate_thick_sizes.csv")
    thin = read_thicknesses(ref, "plate_thin_sizes.csv")
    fixer.finish()

    families = [fam_i, fam_c, fam_le, fam_lu, fam_h, fam_t, fam_cc, fam_cz, fam_box, fam_pipe,
                fam_bar]
    seen = {}
    for fam in families:
        for row in fam.rows:
            if row[2] in seen:
                checker.failures.append((fam.key, row[2], "unique name",
                                         "also in " + seen[row[2]]))
            seen[row[2]] = fam.file_name

    print("Rows per family:")
    for fam in families:
        print("  %-16s %-28s %4d" % (fam.key, fam.file_name, len(fam.rows)))
    print("  %-16s %-28s %4d (class 1: %d, class 2: %d)" % ("plates", "face_steel.csv",
                                                            len(thick) + len(thin), len(thick),
                                                            len(thin)))
    print("Largest deviation per check, and largest part of a deviation beyond the rounding "
          "of the published figures (rows listed in KNOWN_DEVIATIONS left out):")
    for (family, check), (a, b) in checker.worst.items():
        if check == "bend radius / t":
            print("  %-14s %-18s %.3f .. %.3f" % (family, check, a, b))
        else:
            over, over_name = checker.beyond[(family, check)]
            print("  %-14s %-18s %+.3f %% %-20s beyond rounding %.3f %% %s"
                  % (family, check, a, b, over, over_name))
    print("Typo fixes applied: %d" % len(fixer.applied))
    for fix in fixer.applied:
        print("  %s %s %s: %s -> %s" % (fix[0], fix[1].replace("|", "*"), fix[2], fix[3], fix[4]))
    print("C/Z weights recomputed with 7850 kg/m3 (%s): %d" % (DENSITY_7800_NOTE,
                                                               len(density_rows)))
    for name, weight_text, area_text in density_rows:
        print("  %s: weight %s, area %s cm2" % (name, weight_text, area_text))
    print("Seamless pipes dropped because GB/T 6728 lists the same name: %d" % len(duplicates))
    print("  " + " ".join(duplicates))
    print("Seamless pipe property typos (not shipped): %d" % len(pipe_notes))
    for note in pipe_notes:
        print("  " + note)
    print("Known deviations shipped as published: %d" % len(checker.known_hits))
    for family, name, check, text, why in checker.known_hits:
        print("  %s %s %s: %s -- %s" % (family, name, check, text, why))

    problems = 0
    for family, name, check, text in checker.failures:
        print("FAIL %s %s %s: %s" % (family, name, check, text), file=sys.stderr)
        problems += 1
    for name, check in checker.stale():
        print("STALE known deviation no longer seen: %s %s" % (name, check), file=sys.stderr)
        problems += 1
    if problems:
        print("%d problem(s); nothing written" % problems, file=sys.stderr)
        return 1
    if args.check_only:
        print("All checks passed (check only, nothing written)")
        return 0
    os.makedirs(out_dir, exist_ok=True)
    for fam in families:
        write_family(out_dir, fam)
    write_plates(out_dir, thick, thin)
    print("All checks passed; catalogue written to %s" % os.path.normpath(out_dir))
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main(sys.argv[1:]))
    except ConversionError as error:
        print("error: %s" % error, file=sys.stderr)
        sys.exit(2)
