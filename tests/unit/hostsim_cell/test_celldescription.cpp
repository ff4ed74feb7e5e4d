// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text that describes a cell: what it may say, and what is told of faults.
#include <QtTest>

#include <cmath>
#include <sstream>

#include "hostsim/cell/celldescription.h"
#include "hostsim/cell/descriptionline.h"
#include "support/testmain.h"

using namespace cell;

class CellDescriptionTest : public QObject
{
    Q_OBJECT

private slots:
    void line_data();
    void line();
    void number_data();
    void number();
    void of_the_cell();
    void of_a_channel();
    void defaults_of_a_channel();
    void interp_record();
    void poly_record();
    void poly_range_record();
    void scaled_record();
    void archive_differs();
    void fill();
    void largest_cell();
    void fault_data();
    void fault();
    void every_fault_is_told();
    void file_that_is_not_there();
};

namespace
{

bool parse(const std::string &text, CellDescription *description, QStringList *faults = nullptr)
{
    std::istringstream stream(text);
    std::vector<std::string> errors;
    const bool ok = parse_description(stream, "cell.txt", description, &errors);
    for (const std::string &error : errors)
        if (faults != nullptr)
            faults->append(QString::fromStdString(error));
        else
            qWarning("%s", error.c_str());
    return ok;
}

const char *const SENSOR = "channel 0\nunits kPa\ntable t\ninput kPa 0 100\nresponse linear 50\n";

} // namespace

void CellDescriptionTest::line_data()
{
    const auto row = test_columns<QString, QStringList, QString>("text", "words", "error");
    const QStringList none;
    row("empty", "", none, "");
    row("blanks and tabs", " \t a\t b  ", QStringList{"a", "b"}, "");
    row("comment", "a # b c", QStringList{"a"}, "");
    row("a # within a word is none", "a#b", QStringList{"a#b"}, "");
    row("quoted", "a \"b c\" d", QStringList{"a", "b c", "d"}, "");
    row("empty text", "a \"\"", QStringList{"a", ""}, "");
    row("quote and backslash", R"("a\"b\\c\d")", QStringList{R"(a"b\c\d)"}, "");
    row("carriage return", "a b\r", QStringList{"a", "b"}, "");
    row("open quote", "a \"b", none, "a quote is not closed");
    row("text runs on", "\"a\"b", none, "a blank is missing behind a closing quote");
}

void CellDescriptionTest::line()
{
    QFETCH(QString, text);
    QFETCH(QString, error);
    std::vector<std::string> found;
    std::string what;
    QCOMPARE(split_line(text.toStdString(), &found, &what), error.isEmpty());
    QCOMPARE(QString::fromStdString(what), error);
    if (!error.isEmpty())
        return;
    QStringList list;
    for (const std::string &word : found)
        list.append(QString::fromStdString(word));
    QTEST(list, "words");
}

void CellDescriptionTest::number_data()
{
    const auto row = test_columns<QString, bool, bool>("text", "is_number", "is_whole");
    row("whole", "12", true, true);
    row("negative", "-1", true, false);
    row("beyond the limit", "101", true, false);
    row("on the limit", "100", true, true);
    row("fraction", "1.5e3", true, false);
    row("not a number", "nan", true, false);
    row("empty", "", false, false);
    row("tail", "1x", false, false);
    row("blank before", " 1", false, false);
    row("too long for any integer", "99999999999999999999", true, false);
}

void CellDescriptionTest::number()
{
    QFETCH(QString, text);
    double value = 0.0;
    long whole = 0;
    QTEST(parse_number(text.toStdString(), &value), "is_number");
    QTEST(parse_integer(text.toStdString(), 0, 100, &whole), "is_whole");
}

void CellDescriptionTest::of_the_cell()
{
    CellDescription d;
    QVERIFY(parse("cell \"Cell 5\"\nhost h5\njoin 5000\nseed 9\ncatalogue /a/b\nchannels 7\n"
                  "variable T 72.5 DEG_F\nvariable P 1e2 kPa\n",
                  &d));
    QCOMPARE(d.cell_name, std::string("Cell 5"));
    QCOMPARE(d.host_name, std::string("h5"));
    QCOMPARE(d.join_answer, 5000);
    QCOMPARE(d.seed, 9u);
    QCOMPARE(d.catalogue, std::string("/a/b"));
    QCOMPARE(d.channel_count, 7);
    QCOMPARE(d.variables.size(), std::size_t(2));
    QCOMPARE(d.variables[0].name, std::string("T"));
    QCOMPARE(d.variables[1].value, 100.0);
    QCOMPARE(d.variables[1].units, std::string("kPa"));
}

void CellDescriptionTest::of_a_channel()
{
    CellDescription d;
    QVERIFY(parse("channel 3\nlabel \"Oil\"\nunits kPa\ntable oil\nactive 2\nsample_rate 50\n"
                  "filter 0.25\ninput PSI -5 50\nresponse points -5:-1 0:0\nresponse points 50:9\n"
                  "offset 1\ngain 2\ndrift 3\nlag 4\nnoise 5\nsaturate -6 7\napplied 8\n"
                  "condition dead\n",
                  &d));
    QCOMPARE(d.channel_count, 4);
    const ChannelDescription &c = d.channels.at(3);
    QCOMPARE(c.label, std::string("Oil"));
    QCOMPARE(c.units, std::string("kPa"));
    QCOMPARE(c.table_name, std::string("oil"));
    QCOMPARE(c.active, std::uint16_t(2));
    QCOMPARE(c.sample_rate, 50);
    QCOMPARE(c.filter_coefficient, 0.25);
    QVERIFY(c.has_transducer);
    QCOMPARE(c.transducer.units, std::string("PSI"));
    QCOMPARE(c.transducer.from, -5.0);
    QCOMPARE(c.transducer.to, 50.0);
    QCOMPARE(c.transducer.response.units, (std::vector<double>{-5.0, 0.0, 50.0}));
    QCOMPARE(c.transducer.response.mv, (std::vector<double>{-1.0, 0.0, 9.0}));
    QCOMPARE(c.transducer.offset_mv, 1.0);
    QCOMPARE(c.transducer.gain, 2.0);
    QCOMPARE(c.transducer.drift_mv_per_hour, 3.0);
    QCOMPARE(c.transducer.lag_seconds, 4.0);
    QCOMPARE(c.transducer.noise_mv, 5.0);
    QCOMPARE(c.transducer.low_mv, -6.0);
    QCOMPARE(c.transducer.high_mv, 7.0);
    QCOMPARE(c.applied, 8.0);
    QCOMPARE(c.condition, Condition::Dead);
    QVERIFY(!c.table);
}

void CellDescriptionTest::defaults_of_a_channel()
{
    CellDescription d;
    QVERIFY(parse("channel 0\ninput kPa 20 30\nresponse linear 2 1\nchannel 1\n", &d));
    QCOMPARE(d.channels.at(0).active, std::uint16_t(1));
    QCOMPARE(d.channels.at(0).applied, 20.0);
    QCOMPARE(response_mv(d.channels.at(0).transducer.response, 20.0), 41.0);
    QVERIFY(!d.channels.at(1).has_transducer);
}

void CellDescriptionTest::interp_record()
{
    CellDescription d;
    QVERIFY(parse(std::string(SENSOR) +
                      "record INTERP\npoints 0:5 10:-3\npoints 20:7\nsensor kPa 0 100 M S\n"
                      "description D\nmua U\nverified_by V\nstandard Q\ncomment C\n"
                      "calibrated 1970-01-02\n",
                  &d));
    const TABLE_RECORD &record = *d.channels.at(0).table;
    QCOMPARE(int(record.table_type), int(TABLE_INTERP));
    QCOMPARE(int(record.poly[0].num_points), 3);
    QCOMPARE(record.poly[0].x[2], 20.0);
    QCOMPARE(record.poly[0].y[1], -3.0);
    QCOMPARE(record.y_min, -3.0);
    QCOMPARE(record.y_max, 7.0);
    QCOMPARE(record.last_cal_time, std::int64_t(36 * 3600));
    QCOMPARE(int(record.last_save_type), int(SAVE_ADJUSTED));
    QCOMPARE(record.point_state[2], 2);
    QCOMPARE(record.point_state[3], 0);
    QCOMPARE(record.sensor_range_max, 100.0);
    const char *const texts[][2] = {{record.table_name, "t"},
                                    {record.eng_units, "kPa"},
                                    {record.sensor_units, "kPa"},
                                    {record.sensor_model, "M"},
                                    {record.sensor_serial_no, "S"},
                                    {record.description, "D"},
                                    {record.mua_instance_name, "U"},
                                    {record.verified_by, "V"},
                                    {record.qie, "Q"},
                                    {record.cal_comment, "C"}};
    for (const auto &pair : texts)
        QCOMPARE(pair[0], pair[1]);
    QVERIFY(!d.channels.at(0).archive);
}

void CellDescriptionTest::poly_record()
{
    CellDescription d;
    QVERIFY(parse(std::string(SENSOR) + "record POLY\nsample 5\nfit 1\nchannel 1\ntable u\n"
                                        "record POLY\ncoeffs 1 2 3\n",
                  &d));
    const POLY_RANGE_RECORD &fitted = d.channels.at(0).table->poly[0];
    QCOMPARE(int(fitted.num_points), 5);
    QCOMPARE(fitted.x[4], 5000.0);
    QCOMPARE(fitted.y[4], 100.0);
    QCOMPARE(int(fitted.num_coeffs), 2);
    QVERIFY(std::fabs(fitted.coeffs[0]) < 1e-12);
    QCOMPARE(fitted.coeffs[1], 0.02);
    const POLY_RANGE_RECORD &given = d.channels.at(1).table->poly[0];
    QCOMPARE(int(given.num_coeffs), 3);
    QCOMPARE(given.coeffs[2], 3.0);
}

void CellDescriptionTest::poly_range_record()
{
    CellDescription d;
    QVERIFY(parse(std::string(SENSOR) + "record POLY_RANGE\nrange 5\nsample 3 50 100\nfit 1\n"
                                        "range 2\nsample 2 0 50\nfit 1\n",
                  &d));
    const TABLE_RECORD &record = *d.channels.at(0).table;
    QCOMPARE(int(record.poly_range_index), 2);
    QCOMPARE(int(record.poly[2].num_points), 2);
    QCOMPARE(int(record.poly[5].num_points), 3);
    QCOMPARE(int(record.poly[0].num_points), 0);
    QCOMPARE(record.y_min, 0.0);
    QCOMPARE(record.y_max, 100.0);
}

void CellDescriptionTest::scaled_record()
{
    CellDescription d;
    QVERIFY(parse("channel 0\ntable t\nrecord SCALED\nfactor 2.5\n", &d));
    QCOMPARE(int(d.channels.at(0).table->table_type), int(TABLE_SCALED));
    QCOMPARE(d.channels.at(0).table->poly[0].x[0], 2.5);
    QCOMPARE(int(d.channels.at(0).table->poly[0].num_points), 0);
}

void CellDescriptionTest::archive_differs()
{
    CellDescription d;
    QVERIFY(parse(std::string(SENSOR) + "record INTERP\npoints 0:0 1:1 2:2\nsensor kPa 0 9 M S\n"
                                        "description D\narchive POLY\npoints 0:0 1:4\nfit 1\n",
                  &d));
    const TABLE_RECORD &archive = *d.channels.at(0).archive;
    QCOMPARE(int(archive.table_type), int(TABLE_POLY));
    QCOMPARE(int(archive.poly[0].num_points), 2);
    QCOMPARE(archive.point_state[2], 0);
    QCOMPARE(archive.y_max, 4.0);
    QCOMPARE(archive.sensor_range_max, 9.0);
    QCOMPARE(static_cast<const char *>(archive.description), "D");
    QCOMPARE(int(d.channels.at(0).table->poly[0].num_points), 3);
}

void CellDescriptionTest::fill()
{
    CellDescription d;
    QVERIFY(parse("channel 2\nlabel mine\nfill 3 5 active \"CH %d of many\"\nfill 0 1 inactive x\n",
                  &d));
    QCOMPARE(d.channel_count, 6);
    QCOMPARE(d.channels.at(4).label, std::string("CH 4 of many"));
    QCOMPARE(d.channels.at(4).active, std::uint16_t(1));
    QCOMPARE(d.channels.at(1).label, std::string("x"));
    QCOMPARE(d.channels.at(1).active, std::uint16_t(0));
    QCOMPARE(d.channels.at(2).label, std::string("mine"));
}

void CellDescriptionTest::largest_cell()
{
    CellDescription d;
    QVERIFY(parse("fill 0 32766 active \"CH %d\"\n", &d));
    QCOMPARE(d.channel_count, 32767);
    QCOMPARE(d.channels.at(32766).label, std::string("CH 32766"));
}

void CellDescriptionTest::fault_data()
{
    const auto row = test_columns<QString, QString>("text", "fault");
    const QString sensor = SENSOR; // five lines
    row("unknown keyword", "cell A\n\nnonsense 1\n", "cell.txt:3: unknown keyword: nonsense");
    row("open quote", "cell \"A\n", "cell.txt:1: a quote is not closed");
    row("too few values", "variable A 1\n", "cell.txt:1: variable has 2 values");
    row("too many values", "host a b\n", "cell.txt:1: host has 2 values");
    row("value of a channel outside one", "label A\n",
        "cell.txt:1: label belongs behind a channel");
    row("line of a record outside one", "channel 0\npoints 1:1\n",
        "cell.txt:2: points belongs behind record or archive");
    row("number of a channel", "channel 32767\n",
        "cell.txt:1: not a whole number from 0 to 32766: 32767");
    row("a channel twice", "channel 1\nchannel 1\n", "cell.txt:2: channel 1 is described twice");
    row("filled over a channel", "channel 1\nfill 0 3 active x\n",
        "cell.txt:2: channel 1 is described twice");
    row("fewer channels than described", "channels 2\nchannel 2\n",
        "cell.txt:2: channel 2 is beyond the number of channels");
    row("a number that is none", "channel 0\nlag fast\n", "cell.txt:2: not a number: fast");
    row("below 0", "channel 0\nnoise -1\n", "cell.txt:2: below 0: -1");
    row("units too long", "channel 0\nunits 1234567890123456\n",
        "cell.txt:2: \"1234567890123456\" is longer than 15 bytes");
    row("state", "channel 0\nactive 65536\n",
        "cell.txt:2: not a whole number from 0 to 65535: 65536");
    row("input upside down", "channel 0\ninput kPa 5 5\nresponse linear 1\n",
        "cell.txt:2: the input's limits are not in ascending order");
    row("saturation upside down", "channel 0\nsaturate 5 1\n",
        "cell.txt:2: the limits are not in ascending order");
    row("response of no kind", "channel 0\nresponse cubic 1\n",
        "cell.txt:2: not a response: linear, poly or points, and numbers");
    row("second response", sensor + "response poly 1\n",
        "cell.txt:6: a second response for one channel");
    row("response points fall", "channel 0\nresponse points 1:1 1:2\ninput kPa 0 1\n",
        "cell.txt:2: the points of a response must ascend: 1:2");
    row("response point", "channel 0\nresponse points 1,1\ninput kPa 0 1\n",
        "cell.txt:2: not a point (value:millivolts): 1,1");
    row("condition", "channel 0\ncondition broken\n",
        "cell.txt:2: not a condition of a sensor: broken");
    row("input without response", "channel 0\ninput kPa 0 1\nchannel 1\n",
        "cell.txt:3: the channel above has an input and no response");
    row("response without input", "channel 0\nresponse linear 1\n",
        "cell.txt:2: the channel above has a response and no input");
    row("record without a name", "channel 0\nrecord POLY\n",
        "cell.txt:2: the channel above has a record and no table");
    row("record with a path for a name", "channel 0\ntable a/b\nrecord POLY\n",
        "cell.txt:3: the channel above has a record and a table in a folder of its own");
    row("type of table", "channel 0\nrecord SPLINE\n", "cell.txt:2: not a type of table: SPLINE");
    row("second record", sensor + "record POLY\nrecord POLY\n",
        "cell.txt:7: a second record for one channel");
    row("archive alone", sensor + "archive POLY\n", "cell.txt:6: archive needs a record before it");
    row("archive of a scale factor", sensor + "record SCALED\narchive SCALED\n",
        "cell.txt:7: an archive holds no SCALED record");
    row("point", sensor + "record INTERP\npoints 1:1 2\n",
        "cell.txt:7: not a point (millivolts:value): 2");
    row("65 points", sensor + "record INTERP\nsample 64\npoints 1:1\n",
        "cell.txt:8: more than 64 points");
    row("sample of none", "channel 0\ntable t\nrecord INTERP\nsample 5\n",
        "cell.txt:4: sample needs a response before it");
    row("sample of one", sensor + "record INTERP\nsample 1\n",
        "cell.txt:7: not a number of points from 2 to 64: 1");
    row("sample with one limit", sensor + "record INTERP\nsample 5 1\n",
        "cell.txt:7: sample takes a number and, perhaps, two limits");
    row("19 coefficients", sensor + "record POLY\ncoeffs 1 2 3 4 5 6 7 8 9 0 1 2 3 4 5 6 7 8 9\n",
        "cell.txt:7: more than 18 coefficients");
    row("degree", sensor + "record POLY\nfit 8\n", "cell.txt:7: not a degree from 1 to 7: 8");
    row("fit of too few points", sensor + "record POLY\nsample 2\nfit 2\n",
        "cell.txt:8: a fit of that degree needs more points before it");
    row("range of another type", sensor + "record POLY\nrange 1\n",
        "cell.txt:7: range belongs to a POLY_RANGE record");
    row("range", sensor + "record POLY_RANGE\nrange 8\n", "cell.txt:7: not a range from 0 to 7: 8");
    row("factor of another type", sensor + "record POLY\nfactor 1\n",
        "cell.txt:7: factor belongs to a SCALED record");
    row("sensor", sensor + "record POLY\nsensor kPa low high\n",
        "cell.txt:7: sensor takes units, two limits, model and serial number");
    row("day", sensor + "record POLY\ncalibrated 5.3.2024\n",
        "cell.txt:7: not a day as 2024-03-05: 5.3.2024");
    row("description too long",
        sensor + "record POLY\ndescription 12345678901234567890123456789012\n",
        "cell.txt:7: \"12345678901234567890123456789012\" is longer than 31 bytes");
}

void CellDescriptionTest::fault()
{
    QFETCH(QString, text);
    QFETCH(QString, fault);
    CellDescription description;
    QStringList faults;
    QVERIFY(!parse(text.toStdString(), &description, &faults));
    QCOMPARE(faults, QStringList{fault});
}

void CellDescriptionTest::every_fault_is_told()
{
    CellDescription description;
    QStringList faults;
    QVERIFY(!parse("join x\nseed\nhost h\nbad\n", &description, &faults));
    QCOMPARE(faults.size(), 3);
    QVERIFY(faults[2].startsWith("cell.txt:4: "));
}

void CellDescriptionTest::file_that_is_not_there()
{
    CellDescription description;
    std::vector<std::string> errors;
    QVERIFY(!load_description("/nowhere/cell.txt", &description, &errors));
    QCOMPARE(errors, std::vector<std::string>{"/nowhere/cell.txt: No such file or directory"});
}

PLAIN_TEST(CellDescriptionTest);
#include "test_celldescription.moc"
