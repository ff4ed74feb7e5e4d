// SPDX-License-Identifier: GPL-3.0-or-later
//
// Small helpers of the whole program.
#ifndef FRAME_FUNCTIONS_H
#define FRAME_FUNCTIONS_H

#include <cstddef>
#include <cstdint>

#include <QByteArray>
#include <QLocale>
#include <QString>

// The one float comparison: true when 1e-6 >= |a - b|, so false for NaN.
bool nearly_equal(double a, double b);

// Removes trailing spaces and line feeds, then leading spaces, in place.
void trim_text(char *text);

// The host's failure value is -1 as a 16-bit number; only 16 bits count.
constexpr bool is_failure(int32_t result)
{
    return (result & 0xffff) == 0xffff;
}

// Shows a modal box titled "Information" with one OK button. The windows define
// it; computation only calls it.
void show_information(const char *text);

// The same with a title of its own, for warnings raised by computation.
void show_warning(const char *title, const char *text);

// "%8.4f", the form of every value and millivolt field.
QString value_text(double value);

// How the fields' numbers are read: a decimal point, nothing between thousands,
// wherever the cell stands.
QLocale number_locale();

// A record's text, at most size bytes, decoded from UTF-8.
QString record_text(const char *text, std::size_t size);
template <std::size_t Size> QString record_text(const char (&text)[Size])
{
    return record_text(text, Size);
}

// True when a shell takes the path as it stands.
bool plain_for_shell(const char *path);

// The path for a shell's command line: as it stands or in single quotes, which
// protect everything except themselves.
QByteArray for_shell(const char *path);

// A record's text without what stands behind its end.
template <std::size_t Size> QByteArray record_bytes(const char (&text)[Size])
{
    return QByteArray(text, static_cast<int>(qstrnlen(text, Size)));
}

// Copies a text in UTF-8 into a record's field through the host's copyn, which
// logs a text that is too long with the caller's place.
void copy_text(char *field, std::size_t size, const QString &text, const char *file, int line);
template <std::size_t Size>
void copy_text(char (&field)[Size], const QString &text, const char *file = __builtin_FILE(),
               int line = __builtin_LINE())
{
    copy_text(field, Size, text, file, line);
}

// The bytes behind what a widget shows: own, while it shows record_text of them,
// otherwise the text in UTF-8. A text that is not valid UTF-8 would not come
// back from its decoding.
QByteArray shown_bytes(const QString &shown, const QByteArray &own);

#endif
