#include "smalltimetable.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>

using namespace eventtimer;
using namespace eventtimer::testing;
using namespace Qt::StringLiterals;

class TestClipboardMessage : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void copyButtonPutsOnlyTheLink_data()
    {
        QTest::addColumn<QString>("box");
        QTest::addColumn<std::optional<QString>>("link");

        QTest::newRow("plain link")
            << u"Tide 09:00"_s << std::optional(QString::fromUtf16(SmallDay::tideLink));
        QTest::newRow("empty link") << u"Storm 10:30"_s << std::optional(QString());
        QTest::newRow("markup stays text")
            << u"Night 10:00"_s << std::optional(QString::fromUtf16(SmallDay::nightLink));
        QTest::newRow("no link, no button") << u"Market 10:00"_s << std::optional<QString>();
    }

    void copyButtonPutsOnlyTheLink()
    {
        QFETCH(QString, box);
        QFETCH(std::optional<QString>, link);
        SmallTimetable window;
        QVERIFY(window.exposed());
        // Something else the user copied before: rich text and a private format.
        auto *earlier = new QMimeData;
        earlier->setText(u"earlier"_s);
        earlier->setHtml(u"<i>earlier</i>"_s);
        earlier->setData(u"application/x-earlier"_s, "bytes");
        QGuiApplication::clipboard()->setMimeData(earlier);

        // Clicked as a user does: scrolled into view, pressed and released.
        TimelineWidget &timeline = window.timeline();
        const QPoint button = timeline.copyButtonRect(window.box(box)).center().toPoint();
        window.controller().horizontalScroll()->ensureVisible(button.x(), button.y());
        QTest::mouseClick(&timeline, Qt::LeftButton, Qt::NoModifier, button);

        // Exactly one plain-text item, character for character; nothing of what was there before.
        const QMimeData *data = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(data->formats(), link ? QStringList{u"text/plain"_s} : earlier->formats());
        QCOMPARE(data->text(), link.value_or(u"earlier"_s));
        QCOMPARE(window.controller().clipboardMessage()->isVisible(), link.has_value());
        QCOMPARE(window.controller().clipboardMessage()->findChild<QLabel *>()->text(),
                 u"Chat link copied to the clipboard"_s);
    }

    void earliestPendingHideEndsTheMessage()
    {
        // Copies at 0 s, 2 s and 3 s: each hide is the one of the earliest copy still pending.
        SmallTimetable window;
        QVERIFY(window.exposed());
        ViewController &controller = window.controller();
        const QFrame *message = controller.clipboardMessage();
        const auto wait = [&](int ms) {
            window.clock().advance(std::chrono::milliseconds(ms));
        };

        controller.copyToClipboardWithSender(window.box(u"Tide 09:00"_s));
        QVERIFY(message->isVisible());
        wait(2000);
        controller.copyToClipboardWithSender(window.box(u"Hunt 08:00"_s));
        QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf16(SmallDay::huntLink));
        wait(999);
        QVERIFY(message->isVisible());
        wait(1);
        QVERIFY2(message->isHidden(), "the second copy postponed the first one's hide");

        controller.copyToClipboardWithSender(window.box(u"Siege 12:00"_s));
        QVERIFY(message->isVisible());
        wait(1999);
        QVERIFY(message->isVisible());
        wait(1);
        QVERIFY2(message->isHidden(), "the third copy postponed the second one's hide");
        QCOMPARE(QGuiApplication::clipboard()->text(), QString::fromUtf16(SmallDay::siegeLink));
    }
};

QTEST_MAIN(TestClipboardMessage)
#include "tst_clipboardmessage.moc"
