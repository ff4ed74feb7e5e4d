// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/keywordlines.h"

#include <algorithm>
#include <cstring>

#include <QTextCodec>

QByteArray text_line(QByteArray text)
{
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    return text + '\n';
}

QByteArray keyword_lines(const char *keyword, const QByteArray &value)
{
    return text_line(keyword) + text_line(value);
}

// QString::fromUtf8 would drop a byte order mark that the text begins with.
QString text_of_line(const char *line)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return QTextCodec::codecForName("UTF-8")->toUnicode(line, static_cast<int>(std::strlen(line)),
                                                        &state);
}
