#include "next/next.h"

#include "model/oneline.h"
#include "model/shownstart.h"
#include "model/soontext.h"

#include "cli/atoption.h"
#include "version.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace eventtimer::next {

namespace {

constexpr qint64 soonSeconds = 10 * 60;

enum class Format
{
    Plain,
    Waybar,
    Argos
};

struct Options
{
    Format format = Format::Plain;
    int count = 5;
    std::optional<QDateTime> at;
    bool strict = false;
    bool watch = false;
    bool help = false;
    bool version = false;
};

constexpr const char *usage =
    "Usage: eventtimer-next [--format plain|waybar|argos] [--count N] [--at DATETIME]\n"
    "                       [--strict] [--watch]\n";

constexpr const char *help =
    "\n"
    "Prints the next chat-link events of today's timetable, as Event Timer shares it, for a\n"
    "desktop panel. Times are local and agree with the timetable's boxes.\n"
    "\n"
    "Options:\n"
    "  --format plain   one line: the next event, its start and how soon (default; for\n"
    "                   polybar and i3blocks)\n"
    "  --format waybar  one JSON line with text, tooltip and class (soon, running, later)\n"
    "  --format argos   Argos/BitBar: the next event, then a menu whose items copy the chat\n"
    "                   link\n"
    "  --count N        events in the tooltip or the menu (default 5)\n"
    "  --at DATETIME    the moment to look from instead of now, ISO 8601\n"
    "  --strict         with --format plain, exit with status 1 when there is no timetable\n"
    "  --watch          keep running, and print again when the minute changes or the\n"
    "                   timetable is written anew\n"
    "  -h, --help       show this help\n"
    "  --version        show the version\n";

Result<Options> parseOptions(const QStringList &arguments, const QTimeZone &zone)
{
    const QCommandLineOption helpOption(QStringList{u"h"_s, u"help"_s});
    const QCommandLineOption versionOption(u"version"_s);
    const QCommandLineOption formatOption(u"format"_s, QString(), u"FORMAT"_s, u"plain"_s);
    const QCommandLineOption countOption(u"count"_s, QString(), u"N"_s, u"5"_s);
    const QCommandLineOption atOption(u"at"_s, QString(), u"DATETIME"_s);
    const QCommandLineOption strictOption(u"strict"_s);
    const QCommandLineOption watchOption(u"watch"_s);
    QCommandLineParser parser;
    parser.addOptions({helpOption, versionOption, formatOption, countOption, atOption, strictOption,
                       watchOption});
    if (!parser.parse(QStringList{u"eventtimer-next"_s} + arguments))
        return Error{parser.errorText()};
    Options options;
    options.help = parser.isSet(helpOption);
    options.version = parser.isSet(versionOption);
    if (!parser.positionalArguments().isEmpty())
        return Error{u"unexpected argument "_s + parser.positionalArguments().first()};
    const QString format = parser.value(formatOption);
    if (format == u"plain"_s)
        options.format = Format::Plain;
    else if (format == u"waybar"_s)
        options.format = Format::Waybar;
    else if (format == u"argos"_s)
        options.format = Format::Argos;
    else
        return Error{u"--format takes plain, waybar or argos, not \""_s + format + u'"'};
    bool countOk = false;
    options.count = parser.value(countOption).toInt(&countOk);
    if (!countOk || options.count < 1)
        return Error{u"--count takes a number from 1 up"_s};
    if (parser.isSet(atOption)) {
        const Result<QDateTime> at =
            cli::parseAtOption(parser.value(atOption), zone, u"2026-11-22T21:08:00");
        if (!at)
            return Error{at.error()};
        options.at = at.value();
    }
    options.strict = parser.isSet(strictOption);
    options.watch = parser.isSet(watchOption);
    if (options.watch && options.at)
        return Error{u"--watch looks from the present; it cannot be combined with --at"_s};
    return options;
}

// Names and links come from the network: for a panel they stay on one line, and are inert
// where a panel reads markup: Pango for waybar, polybar's "%{" tags.
QString markupEscaped(const QString &text)
{
    QString escaped = oneLine(text).toHtmlEscaped();
    escaped.replace(u'\'', u"&#39;"_s);
    return escaped;
}

QString polybarInert(QString text)
{
    return oneLine(text).replace(u"%{"_s, u"%\u2060{"_s);
}

// Argos and BitBar split a line at its first "|", and a line of dashes starts a submenu.
QString argosInert(QString text)
{
    text = oneLine(text).replace(u'|', u'\u00A6');
    if (text.startsWith(u'-'))
        text[0] = u'\u2010';
    return text;
}

QString headline(const Upcoming &next, const QDateTime &now)
{
    return next.name + u' ' + next.start + u" ("_s + soonText(now.secsTo(next.due)) + u')';
}

QString detail(const Upcoming &event)
{
    return event.start + u"  "_s + event.name + u" \u2014 "_s + event.section + u"  "_s +
           event.chatLink;
}

void writeWaybar(QTextStream &out, const QString &text, const QString &tooltip,
                 const QString &className)
{
    const QJsonObject line{{u"text"_s, text}, {u"tooltip"_s, tooltip}, {u"class"_s, className}};
    out << QString::fromUtf8(QJsonDocument(line).toJson(QJsonDocument::Compact)) << '\n';
}

// A menu item whose click puts the link on the clipboard. The link travels as base64, whose
// letters mean nothing to a shell, inside a command of our own.
QString argosCopyItem(const Upcoming &event)
{
    const QString base64 = QString::fromLatin1(event.chatLink.toUtf8().toBase64());
    return argosInert(detail(event)) + u" | bash='printf %s "_s + base64 +
           u" | base64 -d | (wl-copy 2>/dev/null || xclip -selection clipboard)' "
           u"terminal=false useMarkup=false unescape=false emojize=false"_s;
}

int writeFeed(const Options &options, QTextStream &out, const QDateTime &now, const QTimeZone &zone,
              const QString &suitePath)
{
    QString problem;
    QList<Upcoming> events;
    const Result<SuiteFile> suite = readSuite(suitePath);
    if (!suite) {
        problem = suite.error();
    } else if (suite.value().writtenAt.toTimeZone(zone).date() != now.toTimeZone(zone).date()) {
        problem = u"no timetable for today"_s;
    } else {
        events = upcoming(suite.value(), now, zone);
        if (events.isEmpty())
            problem = u"no more events today"_s;
    }
    if (!problem.isEmpty()) {
        const QString line = u"eventtimer: "_s + problem;
        if (options.format == Format::Waybar)
            writeWaybar(out, line, line, u"none"_s);
        else
            out << line << '\n';
        return options.format == Format::Plain && options.strict ? 1 : 0;
    }

    const Upcoming next = events.first();
    const qint64 untilDue = now.secsTo(next.due);
    events = events.mid(0, options.count);
    switch (options.format) {
    case Format::Plain:
        out << polybarInert(headline(next, now)) << '\n';
        break;
    case Format::Waybar: {
        QStringList tooltip;
        for (const Upcoming &event : std::as_const(events))
            tooltip.append(markupEscaped(detail(event)));
        writeWaybar(out, markupEscaped(headline(next, now)), tooltip.join(u'\n'),
                    untilDue <= 0             ? u"running"_s
                    : untilDue <= soonSeconds ? u"soon"_s
                                              : u"later"_s);
        break;
    }
    case Format::Argos:
        out << argosInert(headline(next, now))
            << " | useMarkup=false unescape=false emojize=false\n"
            << "---\n";
        for (const Upcoming &event : std::as_const(events))
            out << argosCopyItem(event) << '\n';
        break;
    }
    return 0;
}

} // namespace

QList<Upcoming> upcoming(const SuiteFile &suite, const QDateTime &now, const QTimeZone &zone)
{
    // The suite's day, and the moment its timetable was built: the offset its boxes' times took.
    const QDate day = suite.writtenAt.toTimeZone(zone).date();
    const double midnight = static_cast<double>(day.startOfDay(zone).toSecsSinceEpoch());
    const int builtOffset = zone.offsetFromUtc(suite.writtenAt);
    QList<Upcoming> events;
    for (qsizetype i = 0; i < suite.times.size(); ++i) {
        const QTime start =
            shownStart(midnight + static_cast<double>(suite.times.at(i)), zone, builtOffset);
        const QDateTime due(day, start, zone);
        if (due.secsTo(now) < 60)
            events.append({suite.sequence.at(i), suite.sections.at(i), suite.chatLinks.at(i), due,
                           start.toString(u"HH:mm")});
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const Upcoming &a, const Upcoming &b) { return a.due < b.due; });
    return events;
}

int run(const QStringList &arguments, QTextStream &out, QTextStream &err, const QDateTime &now,
        const QTimeZone &zone, const QString &suitePath)
{
    const Result<Options> options = parseOptions(arguments, zone);
    if (!options) {
        err << "eventtimer-next: " << options.error() << '\n'
            << usage << "Run eventtimer-next --help for more.\n";
        err.flush();
        return 2;
    }
    if (options.value().help || options.value().version) {
        if (options.value().help)
            out << usage << help;
        else
            out << "eventtimer-next " << EVENTTIMER_VERSION << '\n';
        out.flush();
        return 0;
    }
    const int status =
        writeFeed(options.value(), out, options.value().at.value_or(now), zone, suitePath);
    out.flush();
    return options.value().watch ? -1 : status;
}

} // namespace eventtimer::next
