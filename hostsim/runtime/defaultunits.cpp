// SPDX-License-Identifier: GPL-3.0-or-later
//
// The catalogue that serves where a cell has none of its own. Factors are those
// by which the units are defined, not rounded ones. Order matters within the
// lists that users see, and a keyword that begins another stands before it in
// the order temperature, pressure, time, other, since a keyword is looked up by
// its beginning.
#include "hostsim/runtime/unitcatalogue.h"

namespace hostsim
{

const char *default_unit_catalogue_text()
{
    return R"(# Units of the cell: keyword, code, dimension, definition.

DEG_F      1  temperature   degF
DEG_C      2  temperature   degC
DEG_K      3  temperature   K
DEG_R      4  temperature   K/1.8
F          5  temperature   degF
C          6  temperature   degC
K          7  temperature   K
R          8  temperature   K/1.8
DELTA_F   11  difference    K/1.8
DELTA_C   12  difference    K

kPa      100  pressure      1000 Pa
PSI      101  pressure      6894.757293168361 Pa
IN_HG    102  pressure      3386.388640341 Pa
MM_HG    103  pressure      133.322387415 Pa
CM_HG    104  pressure      1333.22387415 Pa
IN_H2O   105  pressure      249.08891 Pa
MM_H2O   106  pressure      9.80665 Pa
CM_H2O   107  pressure      98.0665 Pa
Pa       108  pressure      Pa
hPa      109  pressure      100 Pa
MPa      110  pressure      1000000 Pa
BAR      111  pressure      100000 Pa
MBAR     112  pressure      100 Pa
TORR     113  pressure      101325 Pa/760
ATM      114  pressure      101325 Pa
TECH_ATM 115  pressure      98066.5 Pa
PSF      116  pressure      47.88025898033584 Pa
KSI      117  pressure      6894757.293168361 Pa
DYN/CM2  118  pressure      0.1 Pa

SEC      700  time          s
MSEC     701  time          0.001 s
USEC     702  time          0.000001 s
MIN      703  time          60 s
HR       704  time          3600 s
DAY      705  time          86400 s
WEEK     706  time          604800 s

none     200  none          1
PCT      201  fraction      0.01
%        202  fraction      0.01
FRAC     203  fraction      1
PPM      204  fraction      0.000001
PPB      205  fraction      0.000000001

LB       210  mass          0.45359237 kg
OZ       211  mass          0.028349523125 kg
GRAIN    212  mass          0.00006479891 kg
SLUG     213  mass          14.593902937206365 kg
SHORT_TON 214 mass          907.18474 kg
kg       215  mass          kg
GRAM     216  mass          0.001 kg
MG       217  mass          0.000001 kg
TONNE    218  mass          1000 kg

LBF      220  force         4.4482216152605 N
OZF      221  force         0.27801385095378125 N
N        222  force         N
kN       223  force         1000 N
KGF      224  force         9.80665 N
DYNE     225  force         0.00001 N

LB-FT    230  torque        1.3558179483314004 N.m
LB-IN    231  torque        0.1129848290276167 N.m
OZ-IN    232  torque        0.007061551814226044 N.m
N-M      233  torque        N.m
KGF-M    234  torque        9.80665 N.m

m        240  length        m
mm       241  length        0.001 m
cm       242  length        0.01 m
km       243  length        1000 m
MICRON   244  length        0.000001 m
INCH     245  length        0.0254 m
FT       246  length        0.3048 m
YD       247  length        0.9144 m
MILE     248  length        1609.344 m
THOU     249  length        0.0000254 m

IN2      250  area          0.00064516 m2
FT2      251  area          0.09290304 m2
CM2      252  area          0.0001 m2
M2       253  area          m2

LITER    260  volume        0.001 m3
CC       261  volume        0.000001 m3
M3       262  volume        m3
IN3      263  volume        0.000016387064 m3
FT3      264  volume        0.028316846592 m3
GAL      265  volume        0.003785411784 m3
QT       266  volume        0.000946352946 m3

RPM      270  rotation      rpm
RAD/S    271  rotation      rad/s
DEG/S    272  rotation      arc_degree/s
REV/S    273  rotation      60 rpm
HZ       276  frequency     s-1
KHZ      277  frequency     1000 s-1
RADIAN   280  angle         rad
ARC_DEG  281  angle         arc_degree

M/S      290  speed         m/s
KM/H     291  speed         m/s/3.6
MPH      292  speed         0.44704 m/s
FT/S     293  speed         0.3048 m/s
FT/MIN   294  speed         0.00508 m/s
M/S2     297  acceleration  m/s2
GEE      298  acceleration  9.80665 m/s2

CFM      300  volume-flow   0.028316846592 m3/(60 s)
GPM      301  volume-flow   0.003785411784 m3/(60 s)
LPM      302  volume-flow   0.001 m3/(60 s)
L/S      303  volume-flow   0.001 m3/s
CC/MIN   304  volume-flow   0.000001 m3/(60 s)
M3/HR    305  volume-flow   m3/(3600 s)
LB/HR    310  mass-flow     0.45359237 kg/(3600 s)
LB/MIN   311  mass-flow     0.45359237 kg/(60 s)
KG/HR    312  mass-flow     kg/(3600 s)
KG/S     313  mass-flow     kg/s
G/S      314  mass-flow     0.001 kg/s

WATT     320  power         W
kW       321  power         1000 W
HP       322  power         745.6998715822702 W
BTU      330  energy        1055.05585262 J
JOULE    331  energy        J
kJ       332  energy        1000 J
KWH      333  energy        3600000 J
CAL      334  energy        4.1868 J

VOLT     340  voltage       V
mV       341  voltage       0.001 V
AMP      344  current       A
mA       345  current       0.001 A
OHM      348  resistance    ohm
KOHM     349  resistance    1000 ohm

KG/M3    360  density       kg/m3
G/CC     361  density       1000 kg/m3
LB/FT3   362  density       0.45359237 kg/(0.028316846592 m3)
)";
}

} // namespace hostsim
