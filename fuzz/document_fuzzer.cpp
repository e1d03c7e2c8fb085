// Fuzzes the event document path end to end: bytes, JSON decoding, parseDocument with the
// schedule expansion, the event records (colour from "bg", icon through iconCacheKey, the icon
// cache and its TIFF codec) and the derived times of every occurrence. Aborts, saying which
// promise broke, when the result is not a model the views can rely on.
//
// The first byte picks the day the document is parsed for. JSON allows leading whitespace, so
// every input stays a plain document and any corpus file can choose:
//   ' '   UTC-05:00, at 22:00 local time (the UTC date is already the next day)
//   '\t'  Europe/Berlin on 2026-03-29, when the clocks go forward (a 23-hour local day)
//   '\n'  Europe/Berlin on 2026-10-25, when the clocks go back (a 25-hour local day)
//   '\r'  UTC+14:00, exactly at local midnight
//   else  UTC at noon
//
// Icons never touch the network. The store starts with one entry of each kind the cache can
// meet: "cached_png" (a PNG), "cached_junk" (bytes that are no image), "cached_number" (not
// bytes at all) and "cached_empty", so that URLs ending in /cached/png.png and so on hit them.
// An icon text containing "#stored:" puts what follows it (percent-decoded) in the store under
// the text's key before parsing, which is how arbitrary bytes reach the TIFF decoder. Every
// other URL is "downloaded" by FuzzFetcher below.

#include "documentparser.h"
#include "event.h"
#include "eventcolor.h"
#include "iconcache.h"
#include "imagefetcher.h"
#include "keyvaluestore.h"
#include "memorystore.h"
#include "scheduleday.h"
#include "section.h"
#include "sequenceitem.h"
#include "sequencetime.h"
#include "tiffcodec.h"

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <QJsonDocument>
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

// A MemoryStore that remembers the last key looked up. The icon cache looks an icon's key up
// right before it downloads, so the fetcher can tell which key a download is for.
class RecordingStore final : public KeyValueStore
{
public:
    QVariant value(const QString &key) const override
    {
        m_lastKey = key;
        return m_store.value(key);
    }
    void setValue(const QString &key, const QVariant &value) override
    {
        m_store.setValue(key, value);
    }
    void remove(const QString &key) override { m_store.remove(key); }

    const QString &lastKey() const { return m_lastKey; }
    // Looks without being recorded.
    QVariant peek(const QString &key) const { return m_store.value(key); }

private:
    MemoryStore m_store;
    mutable QString m_lastKey;
};

// Answers from the URL alone, so that every input replays the same. A URL with a fragment
// gets the fragment's percent-decoded bytes, so any bytes at all can reach the image decoders;
// any other URL gets, by a hash of it, a failure, a good PNG or a PNG cut short.
class FuzzFetcher final : public ImageFetcher
{
public:
    explicit FuzzFetcher(const RecordingStore &store)
        : m_store(store)
    {}

    Result<QByteArray> fetch(const QUrl &url) override
    {
        const QString key = m_store.lastKey();
        require(!m_store.peek(key).isValid(),
                "an icon is downloaded only when nothing is stored under its key",
                [&] { return key + u" for "_s + url.toString(); });
        require(!m_decodedKeys.contains(key),
                "an icon that downloaded and decoded is stored, not downloaded again",
                [&] { return key + u" for "_s + url.toString(); });

        if (url.hasFragment())
            return QByteArray::fromPercentEncoding(url.fragment(QUrl::FullyEncoded).toLatin1());
        const quint32 hash = stableHash(url.toString(QUrl::FullyEncoded));
        switch (hash % 3) {
        case 0:
            return Error{u"connection refused"_s};
        case 1:
            m_decodedKeys.insert(key);
            return fixture->png;
        default:
            return fixture->png.left(hash % fixture->png.size());
        }
    }

    // Keys whose download was the good PNG: the cache must have stored it.
    const QSet<QString> &decodedKeys() const { return m_decodedKeys; }

private:
    const RecordingStore &m_store;
    QSet<QString> m_decodedKeys;
};

// Whether two images have the same size and the same RGBA8888 pixels.
bool samePixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return false;
    const QImage left = a.convertToFormat(QImage::Format_RGBA8888);
    const QImage right = b.convertToFormat(QImage::Format_RGBA8888);
    const auto rowBytes = static_cast<size_t>(left.width()) * 4;
    for (int y = 0; y < left.height(); ++y) {
        if (std::memcmp(left.constScanLine(y), right.constScanLine(y), rowBytes) != 0)
            return false;
    }
    return true;
}

// A fetcher that only counts: every download fails, so asking changes nothing in the store.
class CountingFetcher final : public ImageFetcher
{
public:
    Result<QByteArray> fetch(const QUrl &) override
    {
        ++m_count;
        return Error{u"offline"_s};
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
};

// The icon texts of the document's segments, in document order.
QStringList iconTexts(const QJsonArray &document)
{
    QStringList texts;
    for (const QJsonValue &element : document) {
        const QJsonObject segments = element.toObject().value(u"segments").toObject();
        for (const QJsonValue &segment : segments) {
            const QJsonValue icon = segment.toObject().value(u"icon");
            if (icon.isString())
                texts.append(icon.toString());
        }
    }
    return texts;
}

// After parsing, needsFetch(url) must tell exactly whether icon(url) would download.
void checkNeedsFetch(KeyValueStore &store, const QStringList &icons)
{
    CountingFetcher counter;
    IconCache cache(store, counter);
    for (const QString &url : icons) {
        const bool expected = cache.needsFetch(url);
        const int before = counter.count();
        cache.icon(url);
        require(expected == (counter.count() > before), "needsFetch tells whether icon() fetches",
                [&] { return url + (expected ? u" (said yes)"_s : u" (said no)"_s); });
    }
}

// What the store holds before parsing: the fixed entries, then the "#stored:" payloads of the
// document's icon texts. Nothing put there beforehand may change, since a stored value that
// does not decode is kept as it is and a stored value that does is never fetched again.
QHash<QString, QVariant> storeBeforeParsing(const QStringList &icons)
{
    QHash<QString, QVariant> entries{
        {u"cached_png"_s, fixture->png},
        {u"cached_junk"_s, QByteArrayLiteral("not an image")},
        {u"cached_number"_s, 42},
        {u"cached_empty"_s, QByteArray()},
    };
    const QString marker = u"#stored:"_s;
    for (const QString &icon : icons) {
        const qsizetype at = icon.indexOf(marker);
        if (at < 0)
            continue;
        if (const std::optional<QString> key = iconCacheKey(icon))
            entries.insert(*key,
                           QByteArray::fromPercentEncoding(icon.mid(at + marker.size()).toUtf8()));
    }
    return entries;
}

void checkStore(const RecordingStore &store, const QHash<QString, QVariant> &before,
                const FuzzFetcher &fetcher)
{
    for (auto it = before.cbegin(); it != before.cend(); ++it)
        require(store.peek(it.key()) == it.value(), "a value stored before parsing is kept",
                [&] { return it.key(); });

    // A download that decoded is stored in the layout the cache's own codec reads directly.
    const QImage png = QImage::fromData(fixture->png);
    for (const QString &key : fetcher.decodedKeys()) {
        const QVariant stored = store.peek(key);
        const std::optional<QImage> image = TiffCodec::decodeBaseline(
            stored.typeId() == QMetaType::QByteArray ? stored.toByteArray() : QByteArray());
        require(image && samePixels(*image, png),
                "a downloaded icon is stored as TIFF with the downloaded pixels",
                [&] { return key; });
    }
}

// An icon the cache hands out must survive the cache's own TIFF round trip unchanged, or the
// next start would show a different icon.
void checkIcon(const QImage &icon, const QString &eventName)
{
    require(!icon.isNull(), "an icon that is present has pixels", [&] { return eventName; });
    if (qint64{icon.width()} * icon.height() > TiffCodec::maxPixels)
        return;
    const std::optional<QImage> again = TiffCodec::decodeBaseline(TiffCodec::encode(icon));
    require(again && samePixels(*again, icon), "an icon survives the TIFF round trip", [&] {
        return eventName + u": "_s + QString::number(icon.width()) + u'x' +
               QString::number(icon.height());
    });
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

    // Without a PNG decoder every icon would silently be absent and the cache untested.
    const QImage decoded = QImage::fromData(made->png);
    const std::optional<QImage> stored = TiffCodec::decodeBaseline(TiffCodec::encode(decoded));
    if (decoded.isNull() || !stored || !samePixels(*stored, decoded)) {
        std::fprintf(stderr, "document_fuzzer: an icon does not round-trip through PNG and "
                             "the TIFF codec\n");
        std::abort();
    }
    fixture = made;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const DayChoice &choice = dayFor(data, size);
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromRawData(
        reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    if (!document.isArray())
        return -1; // not an event document: keep it out of the corpus

    const QJsonArray array = document.array();
    const QStringList iconUrls = iconTexts(array);
    const QHash<QString, QVariant> before = storeBeforeParsing(iconUrls);
    RecordingStore store;
    for (auto it = before.cbegin(); it != before.cend(); ++it)
        store.setValue(it.key(), it.value());
    FuzzFetcher fetcher(store);
    IconCache icons(store, fetcher);
    const ScheduleDay day = ScheduleDay::containing(choice.now, choice.zone);

    const ParsedDocument parsed = parseDocument(array, ParseContext{day, &icons});

    checkDocument(array, parsed, day, choice);
    checkStore(store, before, fetcher);
    checkNeedsFetch(store, iconUrls);
    return 0;
}
