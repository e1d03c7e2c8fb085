// Fuzzes the event document's path through the core: bytes, JSON decoding, parseDocument with
// the schedule expansion, the event records (colour from "bg", the icon lookups), the derived
// times of every occurrence and the day's chat-link occurrences. Aborts, saying which promise
// broke, when the result is not a model the views and the export can rely on.
//
// The first byte picks the day the document is parsed for. JSON allows leading whitespace, so
// every input stays a plain document and any corpus file can choose:
//   ' '   UTC-05:00, at 22:00 local time (the UTC date is already the next day)
//   '\t'  Europe/Berlin on 2026-03-29, when the clocks go forward (a 23-hour local day)
//   '\n'  Europe/Berlin on 2026-10-25, when the clocks go back (a 25-hour local day)
//   '\r'  UTC+14:00, exactly at local midnight
//   else  UTC at noon
//
// Icons never touch the network: FuzzIcons below answers every lookup from the URL alone and
// notes what the parser asked for, which must be exactly the icons of the events it kept.

#include "model/documentjson.h"
#include "model/documentparser.h"
#include "model/event.h"
#include "model/eventcolor.h"
#include "model/globalsequence.h"
#include "model/iconlookup.h"
#include "model/scheduleday.h"
#include "model/section.h"
#include "model/sequenceitem.h"
#include "model/sequencetime.h"

#include <QBuffer>
#include <QImage>
#include <QSet>
#include <QStringList>
#include <QTimeZone>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

struct DayChoice
{
    QTimeZone zone;
    QDateTime now;
};

// Built once: zones read their rules from disk, and the icon bytes need encoding only once.
struct Fixture
{
    DayChoice utcNoon;
    DayChoice minusFive;
    DayChoice berlinSpring;
    DayChoice berlinAutumn;
    DayChoice plusFourteen;
    QByteArray png;
};

const Fixture *fixture = nullptr;

const DayChoice &dayFor(const uint8_t *data, size_t size)
{
    if (size == 0)
        return fixture->utcNoon;
    switch (data[0]) {
    case ' ':
        return fixture->minusFive;
    case '\t':
        return fixture->berlinSpring;
    case '\n':
        return fixture->berlinAutumn;
    case '\r':
        return fixture->plusFourteen;
    default:
        return fixture->utcNoon;
    }
}

// Aborts with the promise that broke; detail is only built when it did.
template <typename Detail> void require(bool holds, const char *promise, Detail detail)
{
    if (holds)
        return;
    const QString text = detail();
    std::fprintf(stderr, "\nBROKEN: %s\n  %s\n", promise, qUtf8Printable(text));
    std::abort();
}

void require(bool holds, const char *promise)
{
    require(holds, promise, [] { return QString(); });
}

// FNV-1a over the UTF-16 units: stable across runs and machines, unlike qHash.
quint32 stableHash(const QString &text)
{
    quint32 hash = 2166136261u;
    for (const QChar unit : text) {
        hash ^= unit.unicode();
        hash *= 16777619u;
    }
    return hash;
}

// Answers from the URL alone, so that every input replays the same. A URL with a fragment
// gets the image its percent-decoded bytes make, so any bytes at all can reach the image
// decoders; any other URL gets, by a hash of it, no icon, the fixture's PNG or a PNG cut short.
class FuzzIcons final : public IconLookup
{
public:
    std::optional<Icon> icon(const QString &url) override
    {
        asked.append(url);
        QByteArray bytes;
        const QUrl parsed(url);
        if (parsed.hasFragment()) {
            bytes = QByteArray::fromPercentEncoding(parsed.fragment(QUrl::FullyEncoded).toLatin1());
        } else {
            const quint32 hash = stableHash(url);
            if (hash % 3 == 0)
                return std::nullopt;
            bytes = hash % 3 == 1 ? fixture->png : fixture->png.left(hash % fixture->png.size());
        }
        return Icon::fromBytes(bytes);
    }

    QStringList asked;
};

// The icon texts of the events of the kept sections, in the order the parser builds them: the
// lookups it makes, no more (no skipped record, no unprobed key, no empty name).
QStringList expectedLookups(const QJsonArray &document, const ParsedDocument &parsed)
{
    QStringList texts;
    qsizetype skipped = 0;
    for (qsizetype i = 0; i < document.size(); ++i) {
        if (skipped < parsed.skipped.size() && parsed.skipped.at(skipped).number == i + 1) {
            ++skipped;
            continue;
        }
        const QJsonObject segments = document.at(i).toObject().value(u"segments").toObject();
        for (qsizetype key = 0; key <= segments.size(); ++key) {
            const QJsonObject segment = segments.value(QString::number(key)).toObject();
            const QJsonValue icon = segment.value(u"icon");
            if (!segment.value(u"name").toString().isEmpty() && icon.isString())
                texts.append(icon.toString());
        }
    }
    return texts;
}

// An icon's header promised a size; its pixels, once decoded, are that size or none at all.
void checkIcon(const Icon &icon, const QString &eventName)
{
    require(icon.size().isValid() && !icon.size().isEmpty(), "an icon that is present has a size",
            [&] { return eventName; });
    const QImage &image = icon.image();
    require(image.isNull() || image.size() == icon.size(),
            "an icon decodes to the size its header gives", [&] { return eventName; });
}

void checkColor(const EventColor &color, const QString &eventName)
{
    const QString hex = color.toHexText();
    require(hex.size() == 9 && hex.startsWith(u'#'), "a colour reads #rrggbbaa",
            [&] { return eventName + u": "_s + hex; });
    if (color.isDefault()) {
        require(color == EventColor(), "a default colour is the default colour");
        return;
    }
    require(std::isfinite(color.red()) && std::isfinite(color.green()) &&
                std::isfinite(color.blue()) && color.alpha() == 0.8,
            "a record's colour has finite components and alpha 0.8", [&] { return eventName; });
}

// Whether any schedule entry of the record has a negative "d": only then may an occurrence
// start before the previous one ends.
bool hasNegativeDuration(const QJsonObject &record)
{
    const QJsonObject sequences = record.value(u"sequences").toObject();
    for (const QStringView list : {u"partial", u"pattern"}) {
        const QJsonArray entries = sequences.value(list).toArray();
        for (const QJsonValue &entry : entries) {
            const QJsonValue minutes = entry.toObject().value(u"d");
            if (minutes.isDouble() && minutes.toDouble() < 0)
                return true;
        }
    }
    return false;
}

bool isClockText(const QString &text)
{
    if (text.size() != 5 || text.at(2) != u':')
        return false;
    for (const qsizetype i : {0, 1, 3, 4}) {
        if (!text.at(i).isDigit())
            return false;
    }
    const int hours = QStringView(text).left(2).toInt();
    const int minutes = QStringView(text).mid(3).toInt();
    return hours < 24 && minutes < 60;
}

// The derived times cost a microsecond or two in a release build but some fifty times more
// under ASan, where Qt's zone code allocates on every call, and a section may hold 100000
// occurrences. Long sequences are therefore checked at both ends (midnight, the end of the
// day) and at a spread of points between (which includes a daylight-saving change).
bool derivedTimesChecked(qsizetype index, qsizetype count)
{
    constexpr qsizetype edge = 256;
    constexpr qsizetype between = 512;
    return index < edge || index >= count - edge ||
           index % std::max(count / between, qsizetype{1}) == 0;
}

void checkSection(const Section &section, const QJsonObject &record, const ScheduleDay &day,
                  const DayChoice &choice)
{
    QSet<const Event *> events;
    for (const std::shared_ptr<Event> &event : section.events) {
        require(event != nullptr, "a section holds no null event");
        require(!event->name.isEmpty(), "every event has a name", [&] { return section.name; });
        require(event->section == section.name, "every event names its own section",
                [&] { return event->section.value_or(u"(none)"_s) + u" in "_s + section.name; });
        checkColor(event->backgroundColor, event->name);
        if (event->icon)
            checkIcon(*event->icon, event->name);
        events.insert(event.get());
    }

    const bool forwardOnly = !hasNegativeDuration(record);
    const bool utc = choice.zone.offsetFromUtc(choice.now) == 0 &&
                     choice.zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(0)) == 0;
    const SequenceItem *previous = nullptr;
    qsizetype index = 0;
    for (const std::shared_ptr<SequenceItem> &item : section.sequence) {
        require(item != nullptr && item->event != nullptr, "an occurrence has an event");
        require(events.contains(item->event.get()),
                "every occurrence's event is one of its own section's events",
                [&] { return item->event->name + u" in "_s + section.name; });
        require(item->time >= day.start() && item->time < day.end(),
                "every occurrence starts within the day", [&] {
                    return section.name + u": "_s + QString::number(item->time, 'f', 3) +
                           u" outside ["_s + QString::number(day.start(), 'f', 0) + u", "_s +
                           QString::number(day.end(), 'f', 0) + u")"_s;
                });
        if (forwardOnly && previous)
            require(item->time >= previous->time + static_cast<double>(previous->duration) * 60,
                    "without negative durations no occurrence starts before the previous one ends",
                    [&] { return section.name; });

        previous = item.get();
        if (!derivedTimesChecked(index++, section.sequence.size()))
            continue;

        const qint64 minutes = minutesFromDayStart(*item, choice.zone);
        require(minutes >= 0 && minutes < 25 * 60,
                "an occurrence lies within the hours of its own local day",
                [&] { return section.name + u": minute "_s + QString::number(minutes); });
        const QString text = startTimeText(*item, choice.zone, choice.now);
        require(isClockText(text), "a start time reads HH:mm",
                [&] { return section.name + u": "_s + text; });
        // In UTC the start text carries no offset shift and must agree with the minutes.
        if (utc)
            require(text == QTime(0, 0).addSecs(minutes * 60).toString(u"HH:mm"),
                    "in UTC the start time and the minutes of the day agree",
                    [&] { return text + u" vs minute "_s + QString::number(minutes); });
    }
}

void checkDocument(const QJsonArray &document, const ParsedDocument &parsed, const ScheduleDay &day,
                   const DayChoice &choice)
{
    require(parsed.sections.size() + parsed.skipped.size() == document.size(),
            "every record is either kept or skipped", [&] {
                return QString::number(parsed.sections.size()) + u" kept + "_s +
                       QString::number(parsed.skipped.size()) + u" skipped of "_s +
                       QString::number(document.size());
            });
    qsizetype kept = 0;
    qsizetype skipped = 0;
    for (qsizetype i = 0; i < document.size(); ++i) {
        if (skipped < parsed.skipped.size() && parsed.skipped.at(skipped).number == i + 1) {
            const SkippedSection &entry = parsed.skipped.at(skipped++);
            require(!entry.reason.isEmpty() &&
                        entry.line().startsWith(u"[ERROR] Skipped section "_s),
                    "a skipped section says why", [&] { return entry.line(); });
            continue;
        }
        require(kept < parsed.sections.size(), "skipped sections are numbered in document order");
        require(document.at(i).isObject(), "only objects become sections");
        const QJsonObject record = document.at(i).toObject();
        const Section &section = *parsed.sections.at(kept++);
        require(section.name == record.value(u"name").toString() &&
                    section.category == record.value(u"category").toString(),
                "kept sections are the records in document order",
                [&] { return section.name + u" at record "_s + QString::number(i + 1); });
        checkSection(section, record, day, choice);
    }
    require(skipped == parsed.skipped.size(), "skipped sections are numbered in document order");
}

// The day's chat-link occurrences: one entry per chat-link occurrence of the kept sections,
// less at most one per section, each under a key at or after its own start.
void checkGlobalSequence(const ParsedDocument &parsed, const DayChoice &choice)
{
    const GlobalSequence sequence = globalSequence(parsed.sections, choice.zone);
    qsizetype registrations = 0;
    for (const auto &section : parsed.sections)
        for (const auto &item : section->sequence)
            registrations += item->event->chatLink ? 1 : 0;
    require(static_cast<qsizetype>(sequence.size()) <= registrations &&
                static_cast<qsizetype>(sequence.size()) >= registrations - parsed.sections.size(),
            "every chat-link occurrence is registered, less at most one per section", [&] {
                return QString::number(sequence.size()) + u" of "_s +
                       QString::number(registrations);
            });
    for (const auto &entry : sequence) {
        require(entry.second && entry.second->chatLink.has_value(),
                "only events with a chat link are published");
        require(entry.first >= 0, "keys count from the start of the day",
                [&] { return QString::number(entry.first); });
    }
}

QByteArray encodedPng()
{
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(qRgba(200, 120, 40, 255));
    image.setPixel(1, 1, qRgba(10, 20, 30, 128));
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return data;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    // Decoders complain about every broken image on stderr; that noise only slows the run.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});

    const QTimeZone berlin("Europe/Berlin");
    if (!berlin.isValid()) {
        std::fprintf(stderr, "document_fuzzer: the time zone Europe/Berlin is unknown; "
                             "install tzdata\n");
        std::abort();
    }
    const QTimeZone utc = QTimeZone::utc();
    auto *made = new Fixture{
        {utc, QDateTime(QDate(2026, 11, 22), QTime(12, 0), utc)},
        {QTimeZone(-5 * 3600), QDateTime(QDate(2026, 11, 22), QTime(3, 0), utc)},
        {berlin, QDateTime(QDate(2026, 3, 29), QTime(12, 0), utc)},
        {berlin, QDateTime(QDate(2026, 10, 25), QTime(12, 0), utc)},
        {QTimeZone(14 * 3600), QDateTime(QDate(2026, 11, 22), QTime(10, 0), utc)},
        encodedPng(),
    };

    // Without a PNG decoder every icon would silently be absent and the lookups untested.
    if (QImage::fromData(made->png).isNull()) {
        std::fprintf(stderr, "document_fuzzer: the PNG fixture does not decode\n");
        std::abort();
    }
    fixture = made;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const DayChoice &choice = dayFor(data, size);
    const DecodedDocument document = decodeDocument(QByteArray::fromRawData(
        reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (document.error)
        return -1; // not an event document: keep it out of the corpus

    const QJsonArray &array = document.sections;
    FuzzIcons icons;
    const ScheduleDay day = ScheduleDay::containing(choice.now, choice.zone);

    const ParsedDocument parsed = parseDocument(array, ParseContext{day, &icons});

    checkDocument(array, parsed, day, choice);
    const QStringList expected = expectedLookups(array, parsed);
    require(icons.asked == expected, "icons are looked up for the kept events only, in order", [&] {
        return QString::number(icons.asked.size()) + u" asked, "_s +
               QString::number(expected.size()) + u" expected"_s;
    });
    checkGlobalSequence(parsed, choice);
    return 0;
}
