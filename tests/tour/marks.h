// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef TOUR_MARKS_H
#define TOUR_MARKS_H

#include <QString>

namespace tour
{

// The mark of the question with that title and text as docs/manual.md lists
// them; "-" for a box without a mark.
QString mark_of(const QString &title, const QString &text);

} // namespace tour

#endif
