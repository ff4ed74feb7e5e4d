// SPDX-License-Identifier: GPL-3.0-or-later
#include "walk/tablefiles.h"

#include <cstddef>
#include <cstring>

#include <QDir>
#include <QFile>

#include <sys/stat.h>

#include "host/operations.h"
#include "support/cellfiles.h"

namespace walk
{

namespace
{

const QString FOLDER = QStringLiteral("/cell/tables/");
const QString SCRATCH = QStringLiteral("/ram/one_record.tbl");

QString path_of(const std::string &stem, const char *extension)
{
    return FOLDER + QString::fromStdString(stem) + QLatin1String(extension);
}

bool read_record(const QString &path, TABLE_RECORD *record)
{
    return (read_table(path.toUtf8().constData(), record) & 0xffff) == 0;
}

struct FieldName {
    std::size_t offset;
    const char *name;
};

// Where the fields that a step may change begin.
constexpr FieldName FIELDS[] = {
    {0, "poly"},
    {offsetof(TABLE_RECORD, reserved_9472), "reserved"},
    {offsetof(TABLE_RECORD, y_min), "y_min"},
    {offsetof(TABLE_RECORD, y_max), "y_max"},
    {offsetof(TABLE_RECORD, last_cal_time), "last_cal_time"},
    {offsetof(TABLE_RECORD, poly_range_index), "poly_range_index"},
    {offsetof(TABLE_RECORD, table_type), "table_type"},
    {offsetof(TABLE_RECORD, description), "description"},
    {offsetof(TABLE_RECORD, qie), "qie"},
    {offsetof(TABLE_RECORD, verified_by), "verified_by"},
    {offsetof(TABLE_RECORD, cal_comment), "cal_comment"},
    {offsetof(TABLE_RECORD, sensor_model), "sensor_model and what follows"},
    {offsetof(TABLE_RECORD, ooa_bias), "tolerances"},
    {offsetof(TABLE_RECORD, last_save_type), "last_save_type"},
    {offsetof(TABLE_RECORD, worst_status), "worst_status"},
    {offsetof(TABLE_RECORD, point_state), "point_state"},
};

QString field_at(std::size_t offset)
{
    const FieldName *found = FIELDS;
    for (const FieldName &field : FIELDS) {
        if (field.offset <= offset)
            found = &field;
    }
    if (found->offset == 0) {
        const std::size_t within = offset % sizeof(POLY_RANGE_RECORD);
        return QStringLiteral("poly %1 at %2").arg(offset / sizeof(POLY_RANGE_RECORD)).arg(within);
    }
    return QStringLiteral("%1 at %2").arg(QLatin1String(found->name)).arg(offset - found->offset);
}

} // namespace

QString record_difference(const TABLE_RECORD &modelled, const TABLE_RECORD &real)
{
    const auto *const a = reinterpret_cast<const unsigned char *>(&modelled);
    const auto *const b = reinterpret_cast<const unsigned char *>(&real);
    if (std::memcmp(a, b, sizeof modelled) == 0)
        return {};
    std::size_t at = 0;
    while (a[at] == b[at])
        ++at;
    const std::size_t from = at / 8 * 8;
    const auto bytes = [from](const unsigned char *record) {
        double number = 0.0;
        std::memcpy(&number, record + from, sizeof number);
        return QString::fromLatin1(
                   QByteArray(reinterpret_cast<const char *>(record) + from, 8).toHex(' ')) +
               QStringLiteral(" (%1)").arg(number, 0, 'g', 17);
    };
    return field_at(at) + QStringLiteral(": ") + bytes(a) + QStringLiteral(", but is ") + bytes(b);
}

TableFiles::Mark TableFiles::mark(const std::string &stem, const char *extension)
{
    struct stat status = {};
    if (stat(path_of(stem, extension).toUtf8().constData(), &status) != 0)
        return {};
    return {true, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * qint64(1000000000) + status.st_mtim.tv_nsec};
}

void TableFiles::know(const std::string &stem)
{
    m_known[stem] = {mark(stem, ".tbl"), mark(stem, ".save"), mark(stem, ".old"),
                     read_file(path_of(stem, ".tbl"))};
}

std::map<std::string, Files> TableFiles::begin(const QStringList &stems)
{
    m_stems = stems;
    const QDir folder(FOLDER);
    for (const QString &name : folder.entryList(QDir::Files))
        m_first.insert(name, read_file(FOLDER + name));
    return restore();
}

std::map<std::string, Files> TableFiles::restore()
{
    const QDir folder(FOLDER);
    for (const QString &name : folder.entryList(QDir::Files)) {
        if (!m_first.contains(name))
            QFile::remove(FOLDER + name);
    }
    for (auto file = m_first.cbegin(); file != m_first.cend(); ++file)
        write_file(FOLDER + file.key(), file.value());
    std::map<std::string, Files> beginning;
    for (const QString &name : qAsConst(m_stems)) {
        const std::string stem = name.toStdString();
        Files files;
        TABLE_RECORD record;
        if (mark(stem, ".tbl").there && read_record(path_of(stem, ".tbl"), &record))
            files.tbl = std::make_shared<TABLE_RECORD>(record);
        files.archive = mark(stem, ".save").there;
        TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
        void *aux[ARCHIVE_POINTERS] = {};
        const QByteArray save = path_of(stem, ".save").toUtf8();
        if (files.archive && read_archive_file_poly(1, save.constData(), records, aux) > 0)
            files.in_force = std::make_shared<TABLE_RECORD>(*records[0]);
        beginning[stem] = files;
        know(stem);
    }
    return beginning;
}

void TableFiles::differ(const std::string &stem, const char *extension, const QString &what)
{
    m_told.append(path_of(stem, extension) + QStringLiteral(": ") + what);
}

QStringList TableFiles::compare(std::map<std::string, Files> *modelled, qint64 from, qint64 to)
{
    m_told.clear();
    for (auto &[stem, files] : *modelled) {
        compare_history(stem, files);
        compare_archive(stem, files);
        compare_table(stem, &files, from, to);
    }
    return m_told;
}

void TableFiles::compare_table(const std::string &stem, Files *files, qint64 from, qint64 to)
{
    Known &known = m_known[stem];
    const Mark now = mark(stem, ".tbl");
    if (!files->tbl_written) {
        if (!(now == known.tbl))
            differ(stem, ".tbl", QStringLiteral("changed"));
        return;
    }
    if (now == known.tbl)
        differ(stem, ".tbl", QStringLiteral("not written"));
    known.tbl = now;
    known.tbl_bytes = read_file(path_of(stem, ".tbl"));
    TABLE_RECORD real;
    if (!read_record(path_of(stem, ".tbl"), &real)) {
        differ(stem, ".tbl", QStringLiteral("cannot be read"));
        return;
    }
    TABLE_RECORD expected = *files->tbl;
    if (expected.last_cal_time == TIME_OF_STEP) {
        if (real.last_cal_time < from || real.last_cal_time > to)
            differ(stem, ".tbl", QStringLiteral("not of this moment"));
        expected.last_cal_time = real.last_cal_time;
        files->tbl = std::make_shared<TABLE_RECORD>(expected);
    }
    const QString what = record_difference(expected, real);
    if (!what.isEmpty())
        differ(stem, ".tbl", what);
}

void TableFiles::compare_archive(const std::string &stem, const Files &files)
{
    Known &known = m_known[stem];
    const Mark former = known.save;
    known.save = mark(stem, ".save");
    if (known.save.there != files.archive)
        differ(stem, ".save", QStringLiteral("there or not"));
    if (files.added.empty()) {
        if (!(known.save == former))
            differ(stem, ".save", QStringLiteral("changed"));
        return;
    }
    QFile file(path_of(stem, ".save"));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(former.size)) {
        differ(stem, ".save", QStringLiteral("cannot be read"));
        return;
    }
    const QByteArray added = file.readAll();
    // One record a step.
    write_file(SCRATCH, added);
    TABLE_RECORD real;
    if (added.count("VORNAX-TABLE ") != 1 || files.added.size() != 1 ||
        !read_record(SCRATCH, &real)) {
        differ(stem, ".save", QStringLiteral("%1 records").arg(added.count("VORNAX-TABLE ")));
        return;
    }
    const QString what = record_difference(*files.added.front(), real);
    if (!what.isEmpty())
        differ(stem, ".save", what);
}

void TableFiles::compare_history(const std::string &stem, const Files &files)
{
    Known &known = m_known[stem];
    const Mark former = known.old;
    known.old = mark(stem, ".old");
    if (known.old.there != files.history)
        differ(stem, ".old", QStringLiteral("there or not"));
    if (files.tables_gone == 0) {
        if (known.old.size != former.size)
            differ(stem, ".old", QStringLiteral("changed"));
        return;
    }
    QFile file(path_of(stem, ".old"));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(former.size) ||
        file.readAll() != known.tbl_bytes)
        differ(stem, ".old", QStringLiteral("what was added is not the former table"));
}

} // namespace walk
