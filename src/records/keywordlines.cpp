// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/keywordlines.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <QTextCodec>

#include "host/operations.h"

namespace
{

// Leaves the reason in errno when it gives false.
bool write_all(const QByteArray &path, const QByteArray &text)
{
    std::FILE *file = std::fopen(path.constData(), "we");
    if (file == nullptr)
        return false;
    const auto size = static_cast<std::size_t>(text.size());
    errno = 0;
    const bool written = std::fwrite(text.constData(), 1, size, file) == size;
    const int reason = errno;
    if (std::fclose(file) != 0)
        return false;
    errno = reason;
    return written;
}

} // namespace

QByteArray text_line(const QString &text)
{
    QByteArray line = text.toUtf8();
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    return line + '\n';
}

QByteArray keyword_lines(const char *keyword, const QString &value)
{
    return QByteArray(keyword) + '\n' + text_line(value);
}

// QString::fromUtf8 would drop a byte order mark that the text begins with.
QString text_of_line(const char *line)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return QTextCodec::codecForName("UTF-8")->toUnicode(line, static_cast<int>(std::strlen(line)),
                                                        &state);
}

void write_keyword_file(const QByteArray &path, const QByteArray &text)
{
    if (!write_all(path, text))
        log_error(__FILE__, __LINE__, 1, errno, "Unable to write <%s>: %s", path.constData(),
                  std::strerror(errno));
}
