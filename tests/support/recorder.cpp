// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/recorder.h"

#include "frame/functions.h"

namespace
{

struct Record {
    QStringList informations;
    QStringList warning_titles;
    QStringList warning_texts;
};

Record &record()
{
    static Record the_record;
    return the_record;
}

} // namespace

void show_information(const char *text)
{
    record().informations.append(QString::fromUtf8(text));
}

void show_warning(const char *title, const char *text)
{
    record().warning_titles.append(QString::fromUtf8(title));
    record().warning_texts.append(QString::fromUtf8(text));
}

QStringList information_texts()
{
    return record().informations;
}

QStringList warning_titles()
{
    return record().warning_titles;
}

QStringList warning_texts()
{
    return record().warning_texts;
}

void clear_recorded()
{
    record() = Record();
}
