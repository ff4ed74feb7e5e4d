// SPDX-License-Identifier: GPL-3.0-or-later
//
// A made-up machine for ./zerl: a tree of its own, and a search path that holds
// the ordinary tools and recorders in place of apt, sudo, CMake and the rest.
#ifndef TESTS_SYSTEM_DOOR_MACHINE_H
#define TESTS_SYSTEM_DOOR_MACHINE_H

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

struct Outcome {
    int status; // exit status; -1: did not end
    QString output;
    QString errors;
};

class Machine
{
public:
    // Everything is installed, the user is root, CI is set.
    Machine();

    QString tree() const;
    QString path(const QString &name) const; // within the tree

    // A command of that name on the search path, as a shell script's body. Each
    // call is recorded as one line "NAME ARGUMENTS".
    void command(const QString &name, const QString &body);
    void without(const QString &name);
    void not_installed(const QStringList &packages);
    void ordinary_user();
    void environment(const QString &name, const QString &value);

    void write(const QString &name, const QString &text) const; // within the tree
    bool exists(const QString &name) const;

    Outcome zerl(const QStringList &arguments, const QString &input = {});
    Outcome zerl_by_link(const QStringList &arguments); // a link outside the tree

    // Recorded calls that begin with that text.
    QStringList calls(const QString &beginning) const;

private:
    Outcome start(const QString &script, const QStringList &arguments, const QString &input);
    void copy_from_project(const QString &name) const;

    QTemporaryDir m_folder;
    QStringList m_environment;
};

#endif
