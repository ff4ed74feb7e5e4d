// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtTest>

#include <cerrno>
#include <cstring>
#include <memory>
#include <vector>

#include "host/operations.h"
#include "logreader.h"
#include "support/testmain.h"

using hostsim::LogEntry;

class Services : public QObject
{
    Q_OBJECT

private slots:
    void init() { clear_log(); }
    void copyn_copies_whole_characters_data();
    void copyn_copies_whole_characters();
    void copyn_reads_no_more_than_size_bytes();
    void copyn_takes_overlapping_texts();
    void copyn_without_room_writes_nothing();
    void copyn_logs_the_callers_place();
    void string_blank_knows_blanks_data();
    void string_blank_knows_blanks();
    void splitpath_takes_a_path_apart_data();
    void splitpath_takes_a_path_apart();
    void splitpath_skips_null_buffers();
    void strupr_upper_cases_letters();
};

void Services::copyn_copies_whole_characters_data()
{
    const auto row =
        test_columns<QByteArray, int, QByteArray, bool>("text", "size", "copy", "overflow");
    row("shorter than the room", QByteArray("abc"), 8, QByteArray("abc"), false);
    row("fills the room", QByteArray("abc"), 4, QByteArray("abc"), false);
    row("one byte too long", QByteArray("abcd"), 4, QByteArray("abc"), true);
    row("empty", QByteArray(""), 4, QByteArray(""), false);
    row("room for the terminator only", QByteArray("a"), 1, QByteArray(""), true);
    row("empty into one byte", QByteArray(""), 1, QByteArray(""), false);
    row("two bytes, cut within", QByteArray("a°b"), 3, QByteArray("a"), true);
    row("two bytes, cut behind", QByteArray("a°b"), 4, QByteArray("a°"), true);
    row("two bytes, end with the room", QByteArray("a°"), 4, QByteArray("a°"), false);
    row("three bytes, cut after one", QByteArray("a€"), 3, QByteArray("a"), true);
    row("three bytes, cut after two", QByteArray("a€"), 4, QByteArray("a"), true);
    row("four bytes, cut after one", QByteArray("a\xF0\x9F\x98\x80"), 3, QByteArray("a"), true);
    row("four bytes, cut after three", QByteArray("a\xF0\x9F\x98\x80"), 5, QByteArray("a"), true);
    row("bytes that are no UTF-8 are kept", QByteArray("\xff\x80\xfe"), 8,
        QByteArray("\xff\x80\xfe"), false);
    row("cut among continuation bytes without a lead", QByteArray("ab\x80\x80\x80\x80\x80"), 6,
        QByteArray("ab\x80\x80\x80"), true);
    row("a lead byte without its continuation is a byte", QByteArray("a\xC3x"), 3,
        QByteArray("a\xC3"), true);
    row("nothing but one character that does not fit", QByteArray("€"), 3, QByteArray(""), true);
}

void Services::copyn_copies_whole_characters()
{
    QFETCH(QByteArray, text);
    QFETCH(int, size);
    QFETCH(QByteArray, copy);
    QFETCH(bool, overflow);
    std::vector<char> destination(16, '#');
    copyn(__FILE__, __LINE__, destination.data(), text.constData(), static_cast<std::size_t>(size));
    QCOMPARE(QByteArray(destination.data()), copy);
    for (std::size_t i = static_cast<std::size_t>(copy.size()) + 1; i < destination.size(); ++i)
        QCOMPARE(destination[i], '#');
    QCOMPARE(log_entries().size(), overflow ? 1 : 0);
}

void Services::copyn_reads_no_more_than_size_bytes()
{
    // An array of its own on the heap: the address sanitizer sees a byte more.
    const std::unique_ptr<char[]> field(new char[4]);
    memcpy(field.get(), "abcd", 4);
    char destination[8];
    copyn(__FILE__, __LINE__, destination, field.get(), 4);
    QCOMPARE(destination, "abc");
}

void Services::copyn_takes_overlapping_texts()
{
    char forward[] = "0123456789";
    copyn(__FILE__, __LINE__, forward, forward + 2, 11);
    QCOMPARE(forward, "23456789");
    char backward[16] = "0123456789";
    copyn(__FILE__, __LINE__, backward + 2, backward, 14);
    QCOMPARE(backward, "010123456789");
    char same[] = "same";
    copyn(__FILE__, __LINE__, same, same, sizeof same);
    QCOMPARE(same, "same");
}

void Services::copyn_without_room_writes_nothing()
{
    char destination[] = "kept";
    copyn(__FILE__, __LINE__, destination, "text", 0);
    QCOMPARE(destination, "kept");
    copyn(__FILE__, __LINE__, nullptr, "text", 5);
    copyn(__FILE__, __LINE__, destination, nullptr, sizeof destination);
    QCOMPARE(destination, "");
    QVERIFY(log_lines().isEmpty());
}

void Services::copyn_logs_the_callers_place()
{
    char destination[4];
    errno = ENOENT;
    copyn("sensor/configdialog2.cpp", 321, destination, "too long", sizeof destination);
    QCOMPARE(errno, ENOENT);
    const QList<LogEntry> entries = log_entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].source, std::string("configdialog2.cpp"));
    QCOMPARE(entries[0].line, 321);
    QCOMPARE(entries[0].code, static_cast<int>(hostsim::LogCode::TextCut));
    QVERIFY(entries[0].text.find("<too>") != std::string::npos);
}

void Services::string_blank_knows_blanks_data()
{
    const auto row = test_columns<QByteArray, bool>("text", "blank");
    row("empty", QByteArray(""), true);
    row("a space", QByteArray(" "), true);
    row("tabs and line ends", QByteArray("\t\r\n \v\f"), true);
    row("a letter", QByteArray("a"), false);
    row("a letter behind spaces", QByteArray("   a"), false);
    row("a control character", QByteArray("\x01"), false);
    row("beyond ASCII", QByteArray("°"), false);
}

void Services::string_blank_knows_blanks()
{
    QFETCH(QByteArray, text);
    QTEST(string_blank(text.constData()) != 0, "blank");
    QVERIFY(string_blank(nullptr) != 0);
}

void Services::splitpath_takes_a_path_apart_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray, QByteArray>(
        "path", "directory", "name", "extension");
    row("table file", "/cell/tables/oil_temp.tbl", "/cell/tables/", "oil_temp", ".tbl");
    row("the last dot counts", "/cell/tables/a.b.save", "/cell/tables/", "a.b", ".save");
    row("no extension", "/cell/tables/name", "/cell/tables/", "name", "");
    row("a dot in the folder only", "/cell.d/name", "/cell.d/", "name", "");
    row("no folder", "name.tbl", "", "name", ".tbl");
    row("empty table name", "/cell/tables/.tbl", "/cell/tables/", "", ".tbl");
    row("folder only", "/cell/tables/", "/cell/tables/", "", "");
    row("root", "/", "/", "", "");
    row("empty", "", "", "", "");
    row("dot at the end", "/a/name.", "/a/", "name", ".");
    row("this folder", "/a/.", "/a/", ".", "");
    row("the folder above", "/a/..", "/a/", "..", "");
    row("spaces and UTF-8", "/a b/Öl 1.tbl", "/a b/", "Öl 1", ".tbl");
}

void Services::splitpath_takes_a_path_apart()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, directory);
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, extension);
    char parts[4][64];
    memset(parts, '#', sizeof parts);
    _splitpath(path.constData(), parts[0], parts[1], parts[2], parts[3]);
    QCOMPARE(QByteArray(parts[0]), QByteArray(""));
    QCOMPARE(QByteArray(parts[1]), directory);
    QCOMPARE(QByteArray(parts[2]), name);
    QCOMPARE(QByteArray(parts[3]), extension);
    QCOMPARE(directory + name + extension, path);
}

void Services::splitpath_skips_null_buffers()
{
    char name[64] = "";
    _splitpath("/cell/tables/x.tbl", nullptr, nullptr, name, nullptr);
    QCOMPARE(name, "x");
    _splitpath("/cell/tables/x.tbl", nullptr, nullptr, nullptr, nullptr);
    _splitpath(nullptr, nullptr, nullptr, name, nullptr);
    QCOMPARE(name, "");
}

void Services::strupr_upper_cases_letters()
{
    char text[] = "deg_F az{}`@[ 0.5 °ü";
    QCOMPARE(static_cast<void *>(strupr(text)), static_cast<void *>(text));
    QCOMPARE(text, "DEG_F AZ{}`@[ 0.5 °ü");
    QVERIFY(strupr(nullptr) == nullptr);
}

PLAIN_TEST(Services);
#include "test_services.moc"
