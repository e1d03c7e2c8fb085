#include "check/checker.h"

#include "cli/atoption.h"
#include "data/suiteexport.h"
#include "model/documentjson.h"
#include "model/documentparser.h"
#include "model/event.h"
#include "model/globalsequence.h"
#include "model/scheduleday.h"
#include "model/section.h"
#include "model/sequenceitem.h"
#include "model/sequencetime.h"
#include "version.h"

#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer::checker {

namespace {

constexpr int exitValid = 0;
constexpr int exitSectionsSkipped = 1;
// Also the status of a wrong command line: either way nothing was checked.
constexpr int exitUnreadable = 2;

constexpr const char *usage = "Usage: eventtimer-check [--json | --export] [--at DATETIME] FILE\n";

constexpr const char *help =
    "\n"
    "Shows what the timetable holds today for the event document FILE: every section with its\n"
    "events and occurrences, and every section record that is left out, with the reason.\n"
    "\n"
    "Options:\n"
    "  --json         write the same as indented JSON\n"
    "  --export       write only what the timetable of that day shares with companion\n"
    "                 programs, as its suite file holds it (not with --json); skipped records\n"
    "                 go to standard error\n"
    "  --at DATETIME  check the day of DATETIME instead of today: ISO 8601, such as\n"
    "                 2026-11-22T12:00:00 (local time) or 2026-11-22T10:00:00Z\n"
    "  -h, --help     show this help\n"
    "  --version      show the version\n"
    "\n"
    "Exit status: 0 every section is valid, 1 a section was skipped, 2 FILE could not be read\n"
    "as an array of sections or the command line is wrong.\n";

struct Options
{
    bool help = false;
    bool version = false;
    bool json = false;
    bool exportArrays = false;
    QDateTime now;
    QString file;
};

Result<Options> parseArguments(const QStringList &arguments, const QDateTime &now,
                               const QTimeZone &zone)
{
    const QCommandLineOption helpOption(QStringList{u"h"_s, u"help"_s});
    const QCommandLineOption versionOption(u"version"_s);
    const QCommandLineOption jsonOption(u"json"_s);
    const QCommandLineOption exportOption(u"export"_s);
    const QCommandLineOption atOption(u"at"_s, QString(), u"DATETIME"_s);
    QCommandLineParser parser;
    parser.addOptions({helpOption, versionOption, jsonOption, exportOption, atOption});
    // The parser skips the first argument as the program's name.
    if (!parser.parse(QStringList{u"eventtimer-check"_s} + arguments))
        return Error{parser.errorText()};

    Options options;
    options.help = parser.isSet(helpOption);
    options.version = parser.isSet(versionOption);
    if (options.help || options.version)
        return options;
    options.json = parser.isSet(jsonOption);
    options.exportArrays = parser.isSet(exportOption);
    // Two different documents: neither would be what the option asked for.
    if (options.json && options.exportArrays)
        return Error{u"--export and --json cannot be combined"_s};
    options.now = now;
    if (parser.isSet(atOption)) {
        const Result<QDateTime> moment =
            cli::parseAtOption(parser.value(atOption), zone, u"2026-11-22T12:00:00");
        if (!moment)
            return Error{moment.error()};
        options.now = moment.value();
    }
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1)
        return Error{files.isEmpty()
                         ? u"no FILE given"_s
                         : u"one FILE expected, found "_s + QString::number(files.size()) +
                               u": "_s + files.join(u' ')};
    options.file = files.first();
    return options;
}

Result<QJsonArray> readDocument(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error{u"cannot read \""_s + path + u"\": "_s + file.errorString()};
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return Error{u"cannot read \""_s + path + u"\": "_s + file.errorString()};

    const DecodedDocument document = decodeDocument(bytes);
    if (document.error && document.error->kind == DocumentJsonError::Kind::NotJson)
        return Error{u'"' + path + u"\" is not JSON: "_s + document.error->jsonError +
                     u" at offset "_s + QString::number(document.error->offset)};
    // JSON that Qt decodes holds an object or an array; the timetable takes an array only.
    if (document.error)
        return Error{u'"' + path +
                     u"\" is not an event document: its top-level value is an object, not an "
                     u"array of sections"_s};
    return document.sections;
}

// The element of the top-level array with the given number: a kept section or the reason
// it was left out.
struct Entry
{
    qsizetype number = 0;
    const Section *section = nullptr;
    const SkippedSection *skipped = nullptr;
};

// The parser keeps sections and skipped records apart; every element is one or the other,
// so the skipped numbers place both back in document order.
QList<Entry> inDocumentOrder(const ParsedDocument &parsed)
{
    QList<Entry> entries;
    const qsizetype count = parsed.sections.size() + parsed.skipped.size();
    entries.reserve(count);
    qsizetype kept = 0;
    qsizetype skipped = 0;
    for (qsizetype number = 1; number <= count; ++number) {
        if (skipped < parsed.skipped.size() && parsed.skipped.at(skipped).number == number)
            entries.append({number, nullptr, &parsed.skipped.at(skipped++)});
        else
            entries.append({number, parsed.sections.at(kept++).get(), nullptr});
    }
    return entries;
}

// Everything the output shows besides the sections: the checked day and the present moment,
// which the start texts depend on.
struct Day
{
    QDateTime midnight;
    QTimeZone zone;
    QDateTime now;
};

QString colorText(const EventColor &color)
{
    return color.isDefault() ? u"default"_s : color.toHexText();
}

QString plural(qsizetype count, const QString &noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? QString() : u"s"_s);
}

enum class Align
{
    Left,
    Right
};

// Columns two spaces apart, each as wide as its widest cell; the first row holds the titles.
// A left-aligned last column is not padded, so lines carry no trailing blanks.
void writeTable(QTextStream &out, const QList<QStringList> &rows, const QList<Align> &alignment)
{
    QList<qsizetype> widths(alignment.size(), 0);
    for (const QStringList &row : rows) {
        for (qsizetype column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths.at(column), row.at(column).size());
    }
    for (const QStringList &row : rows) {
        QString line = u"    "_s;
        for (qsizetype column = 0; column < row.size(); ++column) {
            if (column > 0)
                line += u"  "_s;
            if (alignment.at(column) == Align::Right)
                line += row.at(column).rightJustified(widths.at(column));
            else if (column + 1 < row.size())
                line += row.at(column).leftJustified(widths.at(column));
            else
                line += row.at(column);
        }
        out << line << '\n';
    }
}

void writeEvents(QTextStream &out, const Section &section)
{
    if (section.events.isEmpty()) {
        out << "  Events: none\n";
        return;
    }
    QList<QStringList> rows{{u"Name"_s, u"Colour"_s, u"Chat link"_s, u"Wiki"_s}};
    for (const auto &event : section.events)
        rows.append({event->name, colorText(event->backgroundColor),
                     event->chatLink.value_or(QString()), event->wiki});
    out << "  Events\n";
    writeTable(out, rows, {Align::Left, Align::Left, Align::Left, Align::Left});
}

void writeOccurrences(QTextStream &out, const Section &section, const Day &day)
{
    if (section.sequence.isEmpty()) {
        out << "  Occurrences: none\n";
        return;
    }
    QList<QStringList> rows{{u"Start"_s, u"Minute"_s, u"Duration"_s, u"Event"_s}};
    for (const auto &item : section.sequence)
        rows.append({startTimeText(*item, day.zone, day.now),
                     QString::number(minutesFromDayStart(*item, day.zone)),
                     QString::number(item->duration) + u" min"_s, item->event->name});
    out << "  Occurrences\n";
    writeTable(out, rows, {Align::Left, Align::Right, Align::Right, Align::Left});
}

void writeText(QTextStream &out, const QList<Entry> &entries, const Day &day)
{
    out << "Day " << day.midnight.date().toString(Qt::ISODate) << " in zone "
        << QString::fromUtf8(day.zone.id()) << ", from local midnight "
        << day.midnight.toString(Qt::ISODate) << '\n';

    qsizetype kept = 0;
    qsizetype skipped = 0;
    qsizetype occurrences = 0;
    for (const Entry &entry : entries) {
        out << '\n';
        if (entry.skipped) {
            out << entry.skipped->line() << '\n';
            ++skipped;
            continue;
        }
        const Section &section = *entry.section;
        out << "Section " << entry.number << ": " << section.name << '\n'
            << "  Category  " << section.category << '\n'
            << "  Wiki      " << section.wiki << '\n';
        writeEvents(out, section);
        writeOccurrences(out, section, day);
        ++kept;
        occurrences += section.sequence.size();
    }
    out << '\n'
        << plural(kept, u"section"_s) << " kept, " << plural(skipped, u"section"_s) << " skipped, "
        << plural(occurrences, u"occurrence"_s) << '\n';
}

QJsonValue optionalText(const std::optional<QString> &text)
{
    return text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
}

QJsonObject sectionJson(qsizetype number, const Section &section, const Day &day)
{
    QJsonArray events;
    for (const auto &event : section.events)
        events.append(QJsonObject{{u"name"_s, event->name},
                                  {u"wiki"_s, event->wiki},
                                  {u"chatLink"_s, optionalText(event->chatLink)},
                                  {u"color"_s, colorText(event->backgroundColor)}});
    QJsonArray occurrences;
    for (const auto &item : section.sequence)
        occurrences.append(QJsonObject{{u"start"_s, startTimeText(*item, day.zone, day.now)},
                                       {u"minute"_s, minutesFromDayStart(*item, day.zone)},
                                       {u"duration"_s, item->duration},
                                       {u"event"_s, item->event->name},
                                       {u"chatLink"_s, optionalText(item->event->chatLink)}});
    return QJsonObject{{u"number"_s, number},     {u"category"_s, section.category},
                       {u"name"_s, section.name}, {u"wiki"_s, section.wiki},
                       {u"events"_s, events},     {u"occurrences"_s, occurrences}};
}

void writeJson(QTextStream &out, const QList<Entry> &entries, const Day &day)
{
    QJsonArray sections;
    QJsonArray skipped;
    for (const Entry &entry : entries) {
        if (entry.skipped)
            skipped.append(
                QJsonObject{{u"number"_s, entry.number}, {u"reason"_s, entry.skipped->reason}});
        else
            sections.append(sectionJson(entry.number, *entry.section, day));
    }
    const QJsonObject report{{u"day"_s, day.midnight.date().toString(Qt::ISODate)},
                             {u"zone"_s, QString::fromUtf8(day.zone.id())},
                             {u"dayStart"_s, day.midnight.toString(Qt::ISODate)},
                             {u"sections"_s, sections},
                             {u"skipped"_s, skipped}};
    out << QString::fromUtf8(QJsonDocument(report).toJson(QJsonDocument::Indented));
}

void writeExport(QTextStream &out, QTextStream &err, const ParsedDocument &parsed, const Day &day)
{
    for (const SkippedSection &skipped : parsed.skipped)
        err << skipped.line() << '\n';
    err.flush();
    // The same road as the window's export: the day's chat-link occurrences of the sections in
    // their list order, written as the suite file holds them.
    out << QString::fromUtf8(
        suiteText(sharedSuite(globalSequence(parsed.sections, day.zone), day.now)));
}

} // namespace

int run(const QStringList &arguments, QTextStream &out, QTextStream &err, const QDateTime &now,
        const QTimeZone &zone)
{
    const Result<Options> options = parseArguments(arguments, now, zone);
    if (!options) {
        err << "eventtimer-check: " << options.error() << '\n'
            << usage << "Run eventtimer-check --help for more.\n";
        err.flush();
        return exitUnreadable;
    }
    const Options &given = options.value();
    if (given.help || given.version) {
        if (given.help)
            out << usage << help;
        else
            out << "eventtimer-check " << EVENTTIMER_VERSION << '\n';
        out.flush();
        return exitValid;
    }

    const Result<QJsonArray> document = readDocument(given.file);
    if (!document) {
        err << "eventtimer-check: " << document.error() << '\n';
        err.flush();
        return exitUnreadable;
    }

    // No icon cache: the checker never touches the network or the user's settings.
    const ScheduleDay scheduleDay = ScheduleDay::containing(given.now, zone);
    const ParsedDocument parsed =
        parseDocument(document.value(), ParseContext{scheduleDay, nullptr});
    const QList<Entry> entries = inDocumentOrder(parsed);
    const Day day{dateTimeFromSeconds(scheduleDay.start(), zone), zone, given.now};
    if (given.exportArrays)
        writeExport(out, err, parsed, day);
    else if (given.json)
        writeJson(out, entries, day);
    else
        writeText(out, entries, day);
    out.flush();
    return parsed.skipped.isEmpty() ? exitValid : exitSectionsSkipped;
}

} // namespace eventtimer::checker
