#include "smalltimetable.h"
#include "timelinewidget.h"
#include "viewcontroller.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>

using namespace eventtimer;
using namespace Qt::StringLiterals;

namespace {

// Something else the user copied before: rich text and a private format.
void fillClipboard()
{
    auto *data = new QMimeData;
    data->setText(u"earlier text"_s);
    data->setHtml(u"<i>earlier</i>"_s);
    data->setData(u"application/x-earlier"_s, "bytes");
    QGuiApplication::clipboard()->setMimeData(data);
}

// Clicks a box's copy button the way a user does: scrolled into view, pressed and released.
void clickCopyButton(SmallTimetable &window, qsizetype box)
{
    TimelineWidget &timeline = window.timeline();
    const QPoint button = timeline.copyButtonRect(box).center().toPoint();
    window.controller().horizontalScroll()->ensureVisible(button.x(), button.y());
    QTest::mouseClick(&timeline, Qt::LeftButton, Qt::NoModifier, button);
}

} // namespace

class TestClipboardMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copyButtonPutsOnlyTheLink_data();
    void copyButtonPutsOnlyTheLink();
    void boxWithoutLinkCopiesNothing();
    void earliestPendingHideEndsTheMessage();
};

void TestClipboardMessage::copyButtonPutsOnlyTheLink_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("link");

    QTest::newRow("plain link") << u"Tide 09:00"_s << QString::fromUtf16(SmallTimetable::tideLink);
    QTest::newRow("empty link") << u"Storm 10:30"_s << QString();
    QTest::newRow("markup stays text")
        << u"Night 10:00"_s << QString::fromUtf16(SmallTimetable::nightLink);
}

void TestClipboardMessage::copyButtonPutsOnlyTheLink()
{
    QFETCH(QString, box);
    QFETCH(QString, link);
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    fillClipboard();
    QVERIFY(window.controller().clipboardMessage()->isHidden());

    clickCopyButton(window, window.box(box));

    // Exactly one plain-text item, character for character; nothing of what was there before.
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    QVERIFY(data);
    QCOMPARE(data->formats(), QStringList{u"text/plain"_s});
    QCOMPARE(data->text(), link);
    QVERIFY(window.controller().clipboardMessage()->isVisible());
    QCOMPARE(window.controller().clipboardMessage()->findChild<QLabel *>()->text(),
             u"Chat link copied to the clipboard"_s);
}

void TestClipboardMessage::boxWithoutLinkCopiesNothing()
{
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    fillClipboard();
    const qsizetype market = window.box(u"Market 10:00"_s);

    // Where other boxes have their button, this one has only its face.
    QTest::mouseClick(&window.timeline(), Qt::LeftButton, Qt::NoModifier,
                      window.timeline().copyButtonRect(market).center().toPoint());
    window.controller().copyToClipboardWithSender(market);

    QCOMPARE(QGuiApplication::clipboard()->text(), u"earlier text"_s);
    QVERIFY(QGuiApplication::clipboard()->mimeData()->hasHtml());
    QVERIFY(window.controller().clipboardMessage()->isHidden());
}

void TestClipboardMessage::earliestPendingHideEndsTheMessage()
{
    // Real time: the three seconds are what the user sees. Copies at 0 s, 2 s and just after
    // the first hide; each hide is the one scheduled by the earliest copy still pending.
    SmallTimetable window;
    QVERIFY(QTest::qWaitForWindowExposed(window.controller().view()));
    ViewController &controller = window.controller();
    const QFrame *message = controller.clipboardMessage();
    const qsizetype tide = window.box(u"Tide 09:00"_s);
    const qsizetype hunt = window.box(u"Hunt 08:00"_s);
    const qsizetype siege = window.box(u"Siege 12:00"_s);

    QElapsedTimer clock;
    clock.start();
    controller.copyToClipboardWithSender(tide);
    QVERIFY(message->isVisible());
    QTest::qWait(2000);
    QVERIFY2(message->isVisible(), "hidden before three seconds");

    const qint64 second = clock.elapsed();
    controller.copyToClipboardWithSender(hunt);
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf16(SmallTimetable::huntLink));
    QVERIFY(message->isVisible());
    // The first copy's hide ends the showing, one second after the second copy.
    QTRY_VERIFY_WITH_TIMEOUT(message->isHidden(), 4000);
    const qint64 firstHide = clock.elapsed();
    QVERIFY2(firstHide >= 3000, qPrintable(u"hidden at %1 ms"_s.arg(firstHide)));
    QVERIFY2(firstHide - second < 2500, "the second copy postponed the first hide");

    // A copy now shows it again, and the second copy's hide, still pending, ends it early.
    const qint64 third = clock.elapsed();
    controller.copyToClipboardWithSender(siege);
    QVERIFY(message->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(message->isHidden(), 4000);
    const qint64 secondHide = clock.elapsed();
    QVERIFY2(secondHide - second >= 3000, qPrintable(u"hidden at %1 ms"_s.arg(secondHide)));
    QVERIFY2(secondHide - third < 2500, "the third copy postponed the second hide");
    QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf16(SmallTimetable::siegeLink));
}

QTEST_MAIN(TestClipboardMessage)
#include "tst_clipboardmessage.moc"
