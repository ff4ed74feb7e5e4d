// SPDX-License-Identifier: GPL-3.0-or-later
#include "discstate.h"

#include <sys/stat.h>

#include <QDir>
#include <QFile>

#include "support/cellfiles.h"

namespace
{

QStringList files_in(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

QByteArray inode_of(const QString &path)
{
    struct stat status = {};
    if (stat(qPrintable(path), &status) != 0)
        qFatal("%s is gone", qPrintable(path));
    return QByteArray::number(static_cast<qulonglong>(status.st_ino));
}

// The inode of each name at the folder's last fsync.
QMap<QString, QByteArray> safe_names(const QString &shadow)
{
    QMap<QString, QByteArray> names;
    for (const QByteArray &line : read_file(shadow + "/names").split('\n')) {
        const int blank = line.indexOf(' ');
        if (blank > 0)
            names[QString::fromUtf8(line.mid(blank + 1))] = line.left(blank);
    }
    return names;
}

} // namespace

FolderContents read_folder(const QString &folder)
{
    FolderContents contents;
    for (const QString &name : files_in(folder))
        contents[name] = read_file(folder + "/" + name);
    return contents;
}

void restore_folder(const QString &folder, const FolderContents &contents)
{
    for (const QString &name : files_in(folder))
        QFile::remove(folder + "/" + name);
    for (auto file = contents.begin(); file != contents.end(); ++file)
        write_file(folder + "/" + file.key(), file.value());
}

void begin_shadow(const QString &folder, const QString &shadow)
{
    QDir(shadow).removeRecursively();
    QByteArray names;
    for (const QString &name : files_in(folder)) {
        const QString path = folder + "/" + name;
        const QByteArray inode = inode_of(path);
        write_file(shadow + "/" + inode, read_file(path));
        names += inode + " " + name.toUtf8() + "\n";
    }
    write_file(shadow + "/names", names);
}

FolderContents kept_names_and_contents(const QString &shadow)
{
    FolderContents contents;
    const QMap<QString, QByteArray> names = safe_names(shadow);
    for (auto name = names.begin(); name != names.end(); ++name)
        contents[name.key()] = read_file(shadow + "/" + name.value());
    return contents;
}

FolderContents kept_contents(const QString &folder, const QString &shadow)
{
    FolderContents contents;
    for (const QString &name : files_in(folder))
        contents[name] = read_file(shadow + "/" + inode_of(folder + "/" + name));
    return contents;
}

QMap<QString, FolderContents> lost_new_names(const QString &folder, const QString &shadow)
{
    QMap<QString, FolderContents> outcomes;
    const FolderContents all = kept_contents(folder, shadow);
    const QMap<QString, QByteArray> safe = safe_names(shadow);
    // A name that was safe and now stands for another file was renamed to.
    for (const QString &name : all.keys()) {
        if (safe.contains(name))
            continue;
        FolderContents contents = all;
        contents.remove(name);
        outcomes[name] = contents;
    }
    return outcomes;
}
