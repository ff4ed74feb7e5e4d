// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/testmain.h"

#include <cstdio>
#include <vector>

namespace
{

std::vector<TestClass> &classes()
{
    static std::vector<TestClass> all;
    return all;
}

// test_undo.cpp holds the class "undo".
QByteArray name_of(const TestClass &test)
{
    QByteArray name(test.file);
    name = name.mid(name.lastIndexOf('/') + 1);
    name.chop(static_cast<int>(qstrlen(".cpp")));
    return name.startsWith("test_") ? name.mid(static_cast<int>(qstrlen("test_"))) : name;
}

} // namespace

bool note_test_class(const TestClass &test)
{
    classes().push_back(test);
    return true;
}

// The name is taken out before the class sees its arguments. A program of one
// class needs no name.
int main(int argc, char **argv)
{
    const bool alone = classes().size() == 1;
    for (const TestClass &test : classes()) {
        const bool named = argc > 1 && name_of(test) == argv[1];
        if (!named && !alone)
            continue;
        if (named) {
            for (int i = 1; i < argc; ++i)
                argv[i] = argv[i + 1];
            --argc;
        }
        return test.run(argc, argv);
    }
    std::fprintf(stderr, "%s: name one of these classes:\n", argv[0]);
    for (const TestClass &test : classes())
        std::fprintf(stderr, "    %s\n", name_of(test).constData());
    return 2;
}
