#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the golden files of the linearity verification from cases.json.

    golden.py          writes NAME.dump and NAME.html beside this script, and
                       straight_lines.json from the NIST data
    golden.py --check  compares instead; status 1 when one differs

Nothing here comes from the program. The figures are computed from the formulas
in IEEE doubles, each operation rounded correctly and in the order that the
formulas give; numbers become text from their exact values. The cases hold the
points as text, in the order reference, mean, deviation, minimum, maximum; the
cases named in "before" ran first and left their record behind.
"""

import json
import math
import sys
from datetime import datetime, timezone
from decimal import ROUND_HALF_UP, Context, Decimal
from fractions import Fraction
from pathlib import Path

HERE = Path(__file__).resolve().parent
NONE = -999.9
WIDE = Context(prec=2000)


# ---- Arithmetic ----

def over(a, b):
    """a / b as IEEE has it."""
    a, b = float(a), float(b)
    if b != 0.0:
        return a / b
    if a == 0.0 or math.isnan(a):
        return math.nan
    return math.copysign(math.inf, a) * math.copysign(1.0, b)


def near(a, b):
    return 1e-6 >= abs(a - b)


def whole(v):
    """Nearest whole number, halves away from zero."""
    if not math.isfinite(v):
        return v
    return float(int(Decimal(v).to_integral_value(ROUND_HALF_UP, WIDE)))


# ---- Numbers as text ----

def not_finite(v):
    return "nan" if math.isnan(v) else "inf" if v > 0 else "-inf"


def fixed(v, decimals):
    """Fixed notation of the exact value, halves away from zero; no sign on zero."""
    if not math.isfinite(v):
        return not_finite(v)
    step = Decimal(1).scaleb(-decimals)
    exact = Decimal(v) if v != 0 else Decimal(0)
    return format(exact.quantize(step, ROUND_HALF_UP, WIDE), "f")


def plain(v):
    """Six significant digits, the shorter of fixed and scientific notation."""
    if not math.isfinite(v):
        return not_finite(v)
    if v == 0:
        return "0"
    digits = Context(prec=6, rounding=ROUND_HALF_UP).create_decimal(Decimal(v))
    exponent = digits.adjusted()
    if -4 <= exponent < 6:
        text = format(digits, "f")
        return text.rstrip("0").rstrip(".") if "." in text else text
    mantissa = format(digits.scaleb(-exponent), "f")
    if "." in mantissa:
        mantissa = mantissa.rstrip("0").rstrip(".")
    return "%se%s%02d" % (mantissa, "-" if exponent < 0 else "+", abs(exponent))


# ---- The figures ----

class Record:
    """What stays from one verification to the next."""

    def __init__(self):
        self.x_raw = [0.0] * 64
        self.x = [0.0] * 64
        self.y = [[0.0] * 64 for _ in range(4)]
        self.y_raw = [[0.0] * 64 for _ in range(4)]
        self.see_sum = 0.0
        self.max_abs_error = 0.0
        self.work = 0.0


def verify(case, r):
    points = [[float(v) for v in point] for point in case["points"]]
    r.n = n = case.get("count", len(points))
    rows = range(len(points))
    r.columns = {name: [0.0] * 64 for name in
                 ("s_calc", "cdd", "cdn", "a1n", "a1d", "error", "abs_error", "abs_rel")}
    c = r.columns

    r.upper = case["units"].upper()
    r.offset = {"DEG_F": 459.69, "DEG_C": 273.15}.get(r.upper, 0.0)
    r.abs_units = {"DEG_F": "deg R", "DEG_C": "Kelvin"}.get(r.upper, r.upper)
    r.x_max = r.offset + float(case["max_expected_val"])

    sum_x = sum_y = 0.0
    r.min_abs_x, big_abs, big_rel = 9999.9, -9999.9, -999.9
    for i in rows:
        r.x_raw[i] = points[i][0]
        r.x[i] = points[i][0] + r.offset
        for k in range(4):
            r.y_raw[k][i] = points[i][k + 1]
            r.y[k][i] = points[i][k + 1] + r.offset
        x, y = r.x[i], r.y[0][i]
        if r.min_abs_x > abs(x):
            r.min_abs_x = abs(x)
        c["error"][i] = y - x
        sum_x += x
        sum_y += float(fixed(y, 8))
        c["abs_error"][i] = abs(c["error"][i])
        if c["abs_error"][i] > big_abs:
            big_abs = c["abs_error"][i]
        r.max_abs_error = big_abs
        if abs(x) >= abs(0.2 * r.x_max):
            c["abs_rel"][i] = abs(over(c["abs_error"][i], x)) * 100
            if c["abs_rel"][i] > big_rel:
                big_rel = c["abs_rel"][i]
            r.work = big_rel
        else:
            c["abs_rel"][i] = NONE

    r.i_min = next((i for i in rows if abs(r.x[i]) == r.min_abs_x), 0)
    r.i_abs = next((i for i in rows if c["abs_error"][i] == big_abs), 0)
    r.i_rel = 0
    for i in rows:
        if not near(c["abs_rel"][i], NONE) and near(c["abs_rel"][i], r.work):
            r.i_rel = i
            r.work = c["error"][i]
            break
    r.max_abs_error_x = r.x[r.i_abs]
    r.max_rel_error_x = r.x[r.i_rel]
    r.max_rel_error = over(c["error"][r.i_rel], abs(r.x[r.i_rel]))
    r.x_min = r.x[r.i_min]

    r.avg_x = over(sum_x, n)
    r.avg_y = over(sum_y, n)
    r.h = r.i = 0.0
    for i in rows:
        d = r.x[i] - r.avg_x
        c["a1n"][i] = d * d
        c["a1d"][i] = (r.y[0][i] - r.avg_y) * d
        r.h += c["a1n"][i]
        r.i += c["a1d"][i]
    r.a1 = over(r.i, r.h)
    r.a0 = r.avg_y - r.avg_x * r.a1
    r.m = r.nn = 0.0
    for i in rows:
        residual = (r.y[0][i] - r.a0) - r.a1 * r.x[i]
        distance = r.y[0][i] - r.avg_y
        c["s_calc"][i] = residual * residual
        c["cdd"][i] = distance * distance
        c["cdn"][i] = residual * residual
        r.see_sum += c["s_calc"][i]
        r.m += c["cdd"][i]
        r.nn += c["cdn"][i]
    r.see = math.sqrt(over(r.see_sum, n - 2)) if n > 2 else NONE
    r.r2 = 1 - over(r.nn, r.m)
    r.check = abs((r.a1 - 1) * r.x_min + r.a0)
    r.check_frac = over(r.check, r.x_max)
    r.see_frac = NONE if near(r.see, NONE) else over(r.see, r.x_max)


# ---- The dump ----

def dump(r):
    c = r.columns
    f = "%f"
    lines = [
        "Spreadsheet Values\n\n",
        "D4  - Entered Points = %d\n" % r.n,
        "D5  - xmin = %f\n" % r.x_min,
        "D6  - xmax = %f\n" % r.x_max,
        "D7  - Avg X = %f\n" % r.avg_x,
        "D8  - Avg Y = %f\n" % r.avg_y,
        "D9  - A0 = %f\n" % r.a0,
        "D10 - A1 = %f\n" % r.a1,
        "D11 - SEE = %f\n" % r.see,
        "D12 - r2 = %f\n" % r.r2,
        "D13 - Max Abs Error = %f\t\tF13 - Ref Val: = %f\n" % (r.max_abs_error, r.x[0]),
        "D14 - Max Rel Error = %f\t\tF14 - Ref Val: = %f\n" % (100 * r.max_rel_error, r.x[0]),
        "D16 - %f\n" % r.check,
        "D17 - %f\n" % (100 * r.check_frac),
        "D18 - %f\n" % r.a1,
        "D19 - %f\n" % (100 * r.see_frac),
        "D20 - %f\n\n" % r.r2,
        "Row24 - H24 = %f\tI24 = %f\tK24 = %f\tM24 = %f\tN24 = %f\n\n "
        % (r.h, r.i, r.see_sum, r.m, r.nn),
        "P24 = %f\tS24 = ????\tU24 = %f\n\n\n" % (r.x_min, 100 * r.max_rel_error),
        "Point Values\n",
        "\t".join("Pt XReference YAverage YStdDev YMin YMax a1n a1d sCalc cdd cdn Abs(x) RegLine "
                  "Error Abs(Error) AbsRelError".split()) + "\n",
    ]
    for i in range(max(0, r.n)):
        cells = [str(i)]
        cells += ["%.8f" % v for v in (r.x[i], *(r.y[k][i] for k in range(4)))]
        cells += [f % c[name][i] for name in ("a1n", "a1d", "s_calc", "cdd", "cdn")]
        cells += [f % abs(r.x[i]), "????"]
        cells += [f % c[name][i] for name in ("error", "abs_error", "abs_rel")]
        lines.append("".join(cell + "\t" for cell in cells) + "\n")
    lines += [
        "\n\n",
        "P131 = %f\n" % r.min_abs_x,
        "T131 = %f\n" % r.max_abs_error,
        "U131 = %f\n" % r.work,
        "P134 = %d\n" % r.i_min,
        "T134 = %d\n" % r.i_abs,
        "U134 = %d\n" % r.i_rel,
    ]
    return "".join(lines)


# ---- The document ----

STYLES = [
    "p.title_row1 { font-family: arial; font-size: 11pt; text-align: center }",
    "table { border: 0; padding: 0cm; font-weight:bold; font-family: arial; font-size: 11pt;"
    " border-collapse: collapse; border-style: solid; border-width: 0pt }",
] + [
    "td.all_on_%s {font-size: 9.0pt; font-family: arial; text-align: %s; font-weight: bold;"
    " border-width: 1; border-style: solid solid solid solid}" % (side, side)
    for side in ("center", "left", "right")
] + [
    "td.title_row {font-family: arial; font-size: 11pt; text-align: left; border-width: 1;"
    " border-style: solid solid solid solid; background-color: #00c4ff }",
    "td.sub_title_row {font-family: arial; font-size: 11pt; text-align: center; border-width: 1;"
    " border-style: solid solid solid solid; font-weight: bold }",
    "td.sub_title_row_no_borders {font-family: arial; font-size: 10pt; text-align: center;"
    " font-weight: bold }",
] + [
    "td.sub_title_row_%s_borders {font-family: arial; font-size: 10pt; text-align: center;"
    " font-weight: bold; border-style: %s; border-width: 1 }" % pair
    for pair in (("left", "none none none solid"), ("rl", "none solid none solid"))
] + [
    "td.sub_title_row_right_borders {font-family: arial; font-size: 10pt; text-align: center;"
    " font-weight: bold; border-style: none solid none none; border-width: 1 }",
]

GAP = "<td>&nbsp;</td>"
CENTRE_BLANK = "<td class='all_on_center'>&nbsp;</td>"
R2_BLANK = "<td class='all_on_right' colspan='2'>&nbsp;</td>"
FILL3 = "<td colspan='3' class='all_on_center'>&nbsp;</td>"
FILL4 = "<td colspan='4' class='all_on_center'>&nbsp;</td>"


def T6(label):
    return "<td class='title_row'  colspan='6'>%s</td>" % label


def R(label):
    return "<td class='all_on_right'>" + label + "</td>"


def L(value):
    return "<td class='all_on_left'>" + value + "</td>"


def C(value):
    return "<td class='all_on_center'>" + value + "</td>"


def C2(value):
    return "<td colspan='2' class='all_on_center'>" + value + "</td>"


def cell(kind, text, more=""):
    return "<td class='sub_title_row%s'%s>%s</td>" % (kind, more, text)


def row(*cells):
    return "<tr>" + "".join(cells) + "</tr>"


SPACER = row("<td class='all_on_center' colspan='6'>&nbsp;</td>")


def environment(reading):
    return C(plain(float(reading[0]))) + C(reading[1]) if reading else C("NA") + C("NA")


def verified_at(text):
    try:
        at = datetime.strptime(text, "%m/%d/%Y %H:%M:%S")
    except ValueError:
        return "", ""
    return at.strftime("%m/%d/%Y"), at.strftime("%H:%M:%S")


def table_one(r, d, units, max_expected):
    day, time = verified_at(d["adjust_calibration_time"])
    last = datetime.fromtimestamp(d["last_cal_time"], timezone.utc).strftime("%m/%d/%Y")

    def num(key):
        return C(plain(float(d[key]))) + C(units)

    return "".join([
        row(T6("General:")),
        row(R("Test Cell:"), L(d["test_cell_name"]), GAP, R("Verification Date:"), C2(day)),
        row(R2_BLANK, GAP, R("Time:"), C2(time)),
        row(R("Verified by (Name):"), L(d["verified_by"]), GAP, R("Test Cell Temperature:"),
            environment(d["temperature"])),
        row(R2_BLANK, GAP, R("Barometer:"), environment(d["barometer"])),
        row(R("Last Verification Date:"), L(last), GAP, R("Humidity:"),
            environment(d["humidity"])),
        SPACER,
        row(T6("Measurement System Under Test:")),
        row(R("Description:"), L(d["description"]), GAP, R("QIE:"), C2(d["qie"])),
        row(R("Hostname:"), L(d["host_name"]), GAP, R("Engineering Units:"), C2(units)),
        row(R("Channel No:"), L(str(d["channel"])), GAP, R("Unit Zero Offset:"),
            C(plain(r.offset)), C(r.abs_units)),
        row(R("VorNax Label:"), L(d["channel_label"]), GAP, R("Sensor Range Min:"),
            num("sensor_range_min")),
        row(R("Cal Table Name:"), L(d["cal_table_name"]), GAP, R("Sersor Range Max:"),
            num("sensor_range_max")),
        row(R("Sample Rate:"), L(str(d["sample_rate"])), GAP,
            R("Validation Nominal Range Min:"), num("validation_nominal_range_min")),
        row(R("Filter Coefficient:"), L(plain(float(d["filter_coeff"]))), GAP,
            R("Validation Nominal Range Max:"), num("validation_nominal_range_max")),
        row(R("Sensor Model:"), L(d["sensor_model"]), GAP, R("Min Expected Val:"),
            num("min_expected_val")),
        row(R("Sensor Serial No:"), L(d["sensor_serial_no"]), GAP, R("Max Expected Val:"),
            C(plain(max_expected)), C(units)),
        SPACER,
        row(T6("Working Standard:")),
        row(R("QIE Number:"), L(d["ws_qie_number"]), GAP, R("Cal Date:"), C2(d["ws_cal_date"])),
        row(R("Make:"), L(d["ws_make"]), GAP, R("Serial No:"), C2(d["ws_serial_no"])),
        row(R("Model:"), L(d["ws_model"]), GAP, R("Range:"), C(d["ws_range"]), C(units)),
        SPACER,
    ])


def table_two(r, units):
    a = C(r.abs_units)
    return "".join([
        row(T6("Linear Regression Results (Measured vs. Reference Values)")),
        row(cell("", "Parameter"), cell("", "Value"), cell("", "Units"), FILL3),
        row(R("Number of Points:"), "<td align='center'>", str(r.n), "</td>", FILL4),
        row(R("X<sub>min</sub>:"), C(plain(r.x_min)), a, FILL3),
        row(R("X<sub>max</sub>:"), C(plain(r.x_max)), a, FILL3),
        row(R("A<sub>0</sub>(intercept):"), C(plain(r.a0)), a, FILL3),
        row(R("A<sub>1</sub>(Slope):"), C(plain(r.a1)), FILL4),
        row(R("SEE:"), CENTRE_BLANK if near(r.see, NONE) else C(plain(r.see)), a, FILL3),
        row(R("R<sup>2</sup>:"), C(plain(r.r2)), CENTRE_BLANK, cell("", "At Ref Val"),
            cell("", "At Units")),
        "<tr>", R("Max Abs Error*:"), C(plain(r.max_abs_error)), a,
        C(plain(r.max_abs_error_x - r.offset)), C(units),
        C("* Abs. Error is the true absolute error determined from the difference from measured "
          "and reference values."),
        "<tr>",
        row(R("Max Rel Error**:"), C(plain(100 * r.max_rel_error)), C("%"),
            C(plain(r.max_rel_error_x - r.offset)), C(units),
            C("** Rel. Error over the range outside +/- 0.2 * X<sub>max</sub> or of non-zero "
              "reference points")),
        SPACER,
    ])


def passed(test):
    return C("PASS" if test else "FAIL")


def table_three(r):
    slope, r2 = whole(r.a1), whole(r.r2)
    if near(r.see_frac, NONE):
        see = [CENTRE_BLANK, C("N/A"), C("N/A"), C("1%"), C("&nbps;")]
    else:
        see = [C(fixed(r.see_frac * 100, 4) + "%"), C("N/A"), C("N/A"), C("1%"),
               passed(0.01 > r.see_frac)]
    return "".join([
        row(T6("Linearity Verification Results")),
        row(*(cell("", text) for text in ("Parameter", "High Precision Value", "Rounded Value",
                                          "Min", "Max", "Pass / Fail"))),
        row(R("| x<sub>min</sub>(a<sub>1</sub>-1) + a<sub>0</sub> | / x<sub>max</sub>"),
            C(fixed(r.check_frac * 100, 4) + "%"), C("N/A"), C("N/A"), C("1%"),
            passed(0.01 >= r.check_frac)),
        row(R("a<sub>1</sub>"), C(plain(r.a1)), C(fixed(slope, 2)), C("0.99"), C("1.01"),
            passed(slope >= 0.99 and 1.01 >= slope)),
        row(R("SEE / x <sub>max</sub>"), *see),
        row(R("r<sup>2</sup>"), C(plain(r.r2)), C(fixed(r2, 3)), C("0.998"), C("N/A"),
            passed(r2 >= 0.998)),
        SPACER,
    ])


def table_four(r):
    y = [cell("_no_borders", "Y")] * 3
    parts = [
        row("<td class='title_row'  colspan='8'>Validation Data:</td>"),
        row(cell("_left_borders", "Entered Pts:"), "<td align='center'>", str(r.n), "</td>",
            cell("_rl_borders", "In Specified Engineering Units", " colspan='5'")),
        row(cell("_left_borders", "&nbsp;", " colspan='2'"), cell("_left_borders", "X"), *y,
            cell("_right_borders", "Y")),
        row(cell("_left_borders", "Point"), cell("_no_borders", "%FS"),
            cell("_left_borders", "Reference"),
            *(cell("_no_borders", text) for text in ("Average", "Std Dev", "Min")),
            cell("_right_borders", "Max")),
    ]
    for i in range(max(0, r.n)):
        values = (r.x_raw[i], *(r.y_raw[k][i] for k in range(4)))
        parts.append(row(C(str(i + 1)), C(fixed(over(100 * r.x_raw[i], r.x_max), 1) + "%"),
                         *(C(fixed(v, 8)) for v in values)))
    return "".join(parts)


def document(case, r, texts):
    units = case["units"]
    between = "</table><br/><table width='100%'>"
    return "".join([
        "<html><head><style type='text/css'>", *STYLES, "</style></head>",
        "<p class='title_row1'><b>Linearity Verification per 1065.307</b><br /><br />",
        "<table width='100%'>",
        table_one(r, texts, units, float(case["max_expected_val"])), between,
        table_two(r, units), between, table_three(r), between, table_four(r),
    ])


# ---- Straight lines through the NIST data, in exact rationals ----

def exact_text(value, root=False):
    """30 significant digits of a fraction, or of its square root."""
    digits = Context(prec=60)
    number = digits.divide(Decimal(value.numerator), Decimal(value.denominator))
    return str(Context(prec=30).plus(digits.sqrt(number) if root else number))


def straight_line(name):
    """The line through the doubles nearest to the data, which is what a program gets."""
    data = json.loads((HERE.parent / "nist" / (name + ".json")).read_text(encoding="utf-8"))
    x = [Fraction(float(text)) for text in data["x"]]
    y = [Fraction(float(text)) for text in data["y"]]
    n = len(x)
    mean_x, mean_y = sum(x) / n, sum(y) / n
    slope = (sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y))
             / sum((a - mean_x) ** 2 for a in x))
    intercept = mean_y - slope * mean_x
    residuals = sum((b - intercept - slope * a) ** 2 for a, b in zip(x, y))
    return {
        "slope": exact_text(slope),
        "intercept": exact_text(intercept),
        "r_squared": exact_text(1 - residuals / sum((b - mean_y) ** 2 for b in y)),
        "standard_error": exact_text(residuals / (n - 2), root=True),
    }


# ---- Files ----

def golden_files():
    lines = {name: straight_line(name) for name in ("Norris", "Pontius")}
    yield "straight_lines.json", json.dumps(lines, indent=1) + "\n"
    data = json.loads((HERE / "cases.json").read_text(encoding="utf-8"))
    cases = {case["name"]: case for case in data["cases"]}
    for case in data["cases"]:
        record = Record()
        for name in case.get("before", []):
            verify(cases[name], record)
        verify(case, record)
        texts = {**data["document"], **case.get("document", {})}
        yield case["name"] + ".dump", dump(record)
        yield case["name"] + ".html", document(case, record, texts)


def main():
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        sys.exit("usage: golden.py [--check]")
    different = 0
    names = set()
    for name, text in golden_files():
        names.add(name)
        path = HERE / name
        if not check:
            path.write_bytes(text.encode())
        elif not path.exists() or path.read_bytes() != text.encode():
            print("differs:", name)
            different += 1
    for path in sorted(HERE.glob("*.dump")) + sorted(HERE.glob("*.html")):
        if path.name not in names:
            print("belongs to no case:", path.name)
            different += 1
    sys.exit(1 if different else 0)


if __name__ == "__main__":
    main()
