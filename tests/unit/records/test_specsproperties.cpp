// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reader and writer of the specs file held against each other over arbitrary
// contents.
#include <algorithm>
#include <memory>

#include <QtTest>

#include "records/specsfile.h"
#include "support/anytext.h"
#include "support/cellfiles.h"
#include "support/testmain.h"

namespace
{

const QString PATH = QString::fromLatin1(SPECS_PATH);

// An address that the writer keeps and the reader does not take for the end of
// the list.
rc::Gen<std::string> any_email()
{
    return rc::gen::suchThat(any_line(REPORT_EMAIL_SIZE - 1), [](const std::string &text) {
        return !text.empty() && text.front() != '@';
    });
}

rc::Gen<std::string> any_keyword()
{
    return rc::gen::element<std::string>("@ROOM_TEMP_KEYWORD", "@BAROMETER_KEYWORD",
                                         "@HUMIDITY_KEYWORD", "@REPORT_EMAIL_LIST_KEYWORD",
                                         "@OTHER_KEYWORD");
}

// A line that a name and an address hold whole, or a keyword in an odd place.
rc::Gen<std::string> any_whole_line()
{
    return rc::gen::weightedOneOf<std::string>({{1, any_line(79)}, {1, any_keyword()}});
}

// A line of a file that nobody has written so.
rc::Gen<std::string> any_file_line()
{
    return rc::gen::weightedOneOf<std::string>({{3, any_line(2 * REPORT_EMAIL_SIZE)},
                                                {1, rc::gen::string<std::string>()},
                                                {1, rc::gen::just(std::string())},
                                                {5, any_keyword()}});
}

std::vector<std::string> emails_of(const SPECS_BLOCK &specs)
{
    std::vector<std::string> emails;
    for (int i = 0; i < specs.report_email_count; ++i)
        emails.emplace_back(specs.report_email[i]);
    return emails;
}

SpecsLines lines_of(const std::string &temperature, const std::string &barometer,
                    const std::string &humidity, const std::vector<std::string> &emails)
{
    SpecsLines lines{QByteArray::fromStdString(temperature),
                     QByteArray::fromStdString(barometer),
                     QByteArray::fromStdString(humidity),
                     {}};
    for (const std::string &email : emails)
        lines.emails.append(QByteArray::fromStdString(email));
    return lines;
}

template <std::size_t Size> bool is_terminated(const char (&text)[Size])
{
    return qstrnlen(text, Size) < Size;
}

} // namespace

class SpecsProperties : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init() { clear_cell(); }
    void what_is_written_is_read_back();
    void what_is_read_is_written_back();
    void what_any_file_gave_outlives_a_write();
    void any_file_leaves_a_whole_record();
};

void SpecsProperties::what_is_written_is_read_back()
{
    QVERIFY(rc::check("any three names, any list of 0 to 25 addresses", [] {
        const std::string temperature = *any_line(79);
        const std::string barometer = *any_line(79);
        const std::string humidity = *any_line(79);
        const std::vector<std::string> emails = *any_list(0, REPORT_EMAILS, any_email());
        write_specs(lines_of(temperature, barometer, humidity, emails));
        const auto specs = std::make_unique<SPECS_BLOCK>();
        RC_ASSERT(read_specs(specs.get()));
        RC_ASSERT(specs->temperature_var_name == temperature);
        RC_ASSERT(specs->barometer_var_name == barometer);
        RC_ASSERT(specs->humidity_var_name == humidity);
        RC_ASSERT(emails_of(*specs) == emails);
    }));
}

void SpecsProperties::what_is_read_is_written_back()
{
    QVERIFY(rc::check("a file that was written, read and written is the same", [] {
        write_specs(lines_of(*any_line(79), *any_line(79), *any_line(79),
                             *any_list(0, REPORT_EMAILS, any_email())));
        const QByteArray before = read_file(PATH);
        const auto specs = std::make_unique<SPECS_BLOCK>();
        RC_ASSERT(read_specs(specs.get()));
        write_specs(specs_lines(*specs));
        RC_ASSERT(read_file(PATH) == before);
    }));
}

// Of lines that no slot cuts; blank addresses are left out.
void SpecsProperties::what_any_file_gave_outlives_a_write()
{
    QVERIFY(rc::check("lines and keywords in any order", [] {
        QByteArray content;
        for (const std::string &line : *any_list(0, 60, any_whole_line()))
            content += QByteArray::fromStdString(line + '\n');
        write_file(PATH, content);
        const auto first = std::make_unique<SPECS_BLOCK>();
        RC_ASSERT(read_specs(first.get()));
        write_specs(specs_lines(*first));
        const auto second = std::make_unique<SPECS_BLOCK>();
        RC_ASSERT(read_specs(second.get()));
        RC_ASSERT(std::string(second->temperature_var_name) == first->temperature_var_name);
        RC_ASSERT(std::string(second->barometer_var_name) == first->barometer_var_name);
        RC_ASSERT(std::string(second->humidity_var_name) == first->humidity_var_name);
        std::vector<std::string> emails = emails_of(*first);
        emails.erase(std::remove(emails.begin(), emails.end(), std::string()), emails.end());
        RC_ASSERT(emails_of(*second) == emails);
    }));
}

void SpecsProperties::any_file_leaves_a_whole_record()
{
    QVERIFY(rc::check("any lines in any order", [] {
        const std::vector<std::string> lines = *any_list(0, 60, any_file_line());
        const std::string end = *rc::gen::element<std::string>("\n", "\r\n");
        QByteArray content;
        for (const std::string &line : lines)
            content += QByteArray::fromStdString(line + end);
        if (*rc::gen::arbitrary<bool>())
            content.chop(static_cast<int>(end.size()));
        write_file(PATH, content);
        const auto specs = std::make_unique<SPECS_BLOCK>();
        RC_ASSERT(read_specs(specs.get()));
        RC_ASSERT(specs->report_email_count >= 0 && specs->report_email_count <= REPORT_EMAILS);
        RC_ASSERT(is_terminated(specs->temperature_var_name));
        RC_ASSERT(is_terminated(specs->barometer_var_name));
        RC_ASSERT(is_terminated(specs->humidity_var_name));
        for (int i = 0; i < REPORT_EMAILS; ++i) {
            RC_ASSERT(is_terminated(specs->report_email[i]));
            if (i > 0)
                RC_ASSERT(specs->report_email[i][0] != '@');
            if (i >= specs->report_email_count)
                RC_ASSERT(specs->report_email[i][0] == '\0');
        }
    }));
}

PLAIN_TEST(SpecsProperties);
#include "test_specsproperties.moc"
