// SPDX-License-Identifier: GPL-3.0-or-later
//
// The cases of tests/data/linearity, and points for tests that make their own.
#ifndef UNIT_REPORTS_LINEARITYCASES_H
#define UNIT_REPORTS_LINEARITYCASES_H

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <vector>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include "reports/linearityfigures.h"
#include "support/cellfiles.h"

using SessionPoints = std::array<POINT_STATISTICS, MAX_POINTS>;

struct LinearityCase {
    SessionPoints points;
    int count;
    char units[16];
    double max_expected_val;
    QStringList before;
    QJsonObject document;
};

inline double number(const QJsonValue &value)
{
    return value.toString().toDouble();
}

inline QByteArray linearity_file(const QString &name)
{
    return read_file(QStringLiteral(TEST_DATA_DIR "/linearity/") + name);
}

inline QJsonObject read_cases()
{
    return QJsonDocument::fromJson(linearity_file(QStringLiteral("cases.json"))).object();
}

inline LinearityCase parse_case(const QJsonObject &json, const QJsonObject &texts)
{
    LinearityCase parsed = {};
    const QJsonArray rows = json["points"].toArray();
    for (int i = 0; i < rows.size(); ++i) {
        const QJsonArray row = rows[i].toArray();
        POINT_STATISTICS &point = parsed.points[static_cast<std::size_t>(i)];
        point.eu_reference = number(row[0]);
        point.eu_mean = number(row[1]);
        point.eu_std = number(row[2]);
        point.eu_min = number(row[3]);
        point.eu_max = number(row[4]);
    }
    parsed.count = json["count"].toInt(rows.size());
    qstrncpy(parsed.units, json["units"].toString().toUtf8().constData(), sizeof parsed.units);
    parsed.max_expected_val = number(json["max_expected_val"]);
    for (const auto name : json["before"].toArray())
        parsed.before.append(name.toString());
    parsed.document = texts;
    const QJsonObject own = json["document"].toObject();
    for (auto text = own.begin(); text != own.end(); ++text)
        parsed.document[text.key()] = text.value();
    return parsed;
}

// All cases by their names.
inline const std::map<QString, LinearityCase> &linearity_cases()
{
    static const std::map<QString, LinearityCase> cases = [] {
        std::map<QString, LinearityCase> made;
        const QJsonObject json = read_cases();
        for (const auto one : json["cases"].toArray())
            made[one.toObject()["name"].toString()] =
                parse_case(one.toObject(), json["document"].toObject());
        return made;
    }();
    return cases;
}

// The case's figures on the given record; it changes max_expected_val.
inline LinearityFigures figures_of(const LinearityCase &one, LINE_RPT record)
{
    record.max_expected_val = one.max_expected_val;
    return linearity_figures(one.points.data(), one.count, one.units, record);
}

// The same with the cases that ran before it.
inline LinearityFigures figures_of(const LinearityCase &one)
{
    LINE_RPT record = {};
    for (const QString &name : one.before)
        record = figures_of(linearity_cases().at(name), record).record;
    return figures_of(one, record);
}

// Points of reference and mean alone.
struct Pair {
    double reference;
    double mean;
};
inline SessionPoints session_points(const std::vector<Pair> &pairs)
{
    SessionPoints points = {};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        points[i].eu_reference = pairs[i].reference;
        points[i].eu_mean = pairs[i].mean;
    }
    return points;
}

inline LinearityFigures figures_of(const std::vector<Pair> &pairs, double max_expected_val,
                                   const char *units = "kPa", LINE_RPT record = {})
{
    char eng_units[16] = "";
    qstrncpy(eng_units, units, sizeof eng_units);
    record.max_expected_val = max_expected_val;
    return linearity_figures(session_points(pairs).data(), static_cast<int32_t>(pairs.size()),
                             eng_units, record);
}

#endif
