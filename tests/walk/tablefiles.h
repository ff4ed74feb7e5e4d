// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table files that the program leaves, held against the model's.
#ifndef WALK_TABLEFILES_H
#define WALK_TABLEFILES_H

#include <map>
#include <string>

#include <QByteArray>
#include <QMap>
#include <QStringList>

#include "walk/files.h"

namespace walk
{

class TableFiles
{
public:
    // The files as they stand are the first ones; the model's beginning.
    std::map<std::string, Files> begin(const QStringList &stems);
    // Puts the first files back; the model's beginning again.
    std::map<std::string, Files> restore();

    // What does not agree; moments lie within the two, seconds since the epoch.
    // The moment of a table just written is learnt.
    QStringList compare(std::map<std::string, Files> *modelled, qint64 from, qint64 to);

private:
    // What tells a change of a file without reading it.
    struct Mark {
        bool there = false;
        quint64 inode = 0;
        qint64 size = 0;
        qint64 changed = 0; // nanoseconds
        bool operator==(const Mark &other) const
        {
            return there == other.there && inode == other.inode && size == other.size &&
                   changed == other.changed;
        }
    };
    struct Known {
        Mark tbl;
        Mark save;
        Mark old;
        QByteArray tbl_bytes;
    };

    static Mark mark(const std::string &stem, const char *extension);
    void know(const std::string &stem);
    void compare_table(const std::string &stem, Files *files, qint64 from, qint64 to);
    void compare_archive(const std::string &stem, const Files &files);
    void compare_history(const std::string &stem, const Files &files);
    void differ(const std::string &stem, const char *extension, const QString &what);

    QStringList m_stems;
    QMap<QString, QByteArray> m_first;
    std::map<std::string, Known> m_known;
    QStringList m_told;
};

// "offset: modelled, but is real" for the first bytes that differ; empty when
// none do.
QString record_difference(const TABLE_RECORD &modelled, const TABLE_RECORD &real);

} // namespace walk

#endif
