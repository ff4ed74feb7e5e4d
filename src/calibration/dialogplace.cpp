// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/dialogplace.h"

QRect recording_dialog_place(int window_top, const QRect &available)
{
    QRect place(QPoint(280, window_top + 250), QPoint(860, window_top + 553));
    place.moveRight(qMin(place.right(), available.right()));
    place.moveBottom(qMin(place.bottom(), available.bottom()));
    place.moveLeft(qMax(place.left(), available.left()));
    place.moveTop(qMax(place.top(), available.top()));
    return place;
}
