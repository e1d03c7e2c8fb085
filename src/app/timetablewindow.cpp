#include "app/timetablewindow.h"

#include "app/windowplacement.h"
#include "data/settingsstore.h"
#include "ui/plaintooltip.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace eventtimer {

TimetableWindow::TimetableWindow(SettingsStore &settings, QWidget *parent)
    : QMainWindow(parent)
    , m_settings(settings)
{
    setWindowTitle(u"Event Timer"_s);
    setMinimumSize(640, 360);
    m_stack = new QStackedWidget(this);
    setCentralWidget(m_stack);
    statusBar()->setSizeGripEnabled(false);
    for (QLabel **label : {&m_status, &m_settingsStatus}) {
        *label = new QLabel(this);
        (*label)->setTextFormat(Qt::PlainText);
        (*label)->hide();
        statusBar()->addWidget(*label, 1);
    }
    statusBar()->hide();
    restorePlace();
    addKeys();
}

void TimetableWindow::open()
{
    if (m_settings.value(settingskeys::windowMaximized).toBool())
        showMaximized();
    else
        show();
}

void TimetableWindow::bringToFront()
{
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}

QWidget *TimetableWindow::showTimetable(QWidget *view)
{
    QWidget *shown = m_stack->currentWidget();
    m_stack->addWidget(view);
    m_stack->setCurrentWidget(view);
    if (shown)
        m_stack->removeWidget(shown);
    return shown;
}

void TimetableWindow::showStatus(const QString &text, Topic topic)
{
    QLabel *label = statusLine(topic);
    label->setText(text);
    label->setToolTip(text.isEmpty() ? QString() : plainToolTip(text));
    label->setVisible(!text.isEmpty());
    statusBar()->setVisible(!m_status->text().isEmpty() || !m_settingsStatus->text().isEmpty());
}

void TimetableWindow::addKeys()
{
    const auto add = [this](const QString &text, const QList<QKeySequence> &keys, auto slot) {
        auto *action = new QAction(text, this);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, slot);
        addAction(action);
        return action;
    };
    add(u"Reload"_s, {QKeySequence::Refresh}, [this] { Q_EMIT reloadRequested(); });
    add(u"Quit"_s, {QKeySequence::Quit}, [] { QCoreApplication::quit(); });
    add(u"Close"_s, {QKeySequence::Close}, [this] { close(); });
    // Ctrl+, on every desktop: Qt binds the standard Preferences key on some platforms only.
    QList<QKeySequence> preferences = QKeySequence::keyBindings(QKeySequence::Preferences);
    if (!preferences.contains(QKeySequence(Qt::CTRL | Qt::Key_Comma)))
        preferences.append(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    add(u"Preferences"_s, preferences, [this] { Q_EMIT preferencesRequested(); });
    add(u"Full screen"_s, {QKeySequence(Qt::Key_F11)},
        [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    // Reading ahead: the minute need not bring the axis back to the present.
    m_follow = add(u"Follow the present"_s, {QKeySequence(Qt::Key_F)},
                   [this](bool follows) { Q_EMIT followPresentToggled(follows); });
    m_follow->setCheckable(true);
    m_follow->setChecked(true);
    m_present = add(u"Go to the present"_s, {QKeySequence(Qt::Key_P)},
                    [this] { Q_EMIT presentRequested(); });
    // Views of the day: what comes next as a list, and only the marked events.
    m_nextUp = add(u"Next up"_s, {QKeySequence(Qt::Key_N)},
                   [this](bool shown) { Q_EMIT nextUpToggled(shown); });
    m_markedOnly = add(u"Only marked events"_s, {QKeySequence(Qt::Key_M)},
                       [this](bool only) { Q_EMIT markedOnlyToggled(only); });
    for (QAction *toggle : {m_nextUp, m_markedOnly})
        toggle->setCheckable(true);
}

void TimetableWindow::restorePlace()
{
    QList<QRect> screens;
    if (const QScreen *own = screen())
        screens.append(own->availableGeometry());
    for (const QScreen *other : QGuiApplication::screens())
        screens.append(other->availableGeometry());
    // Without a remembered place: most of the screen, for hours of the day at a glance. Where
    // the compositor places windows (Wayland), only the size is taken.
    const QSize firstSize = (screens.value(0).size() * 0.8).expandedTo(minimumSize());
    const WindowPlacement placement =
        placeWindow(m_settings.value(settingskeys::windowGeometry).toRect(), screens, minimumSize(),
                    firstSize, !QGuiApplication::platformName().startsWith(u"wayland"_s));
    if (placement.placed)
        setGeometry(placement.geometry);
    else
        resize(placement.geometry.size());
}

void TimetableWindow::savePlace()
{
    if (m_settings.isDamaged())
        return; // said once when it was read, and left as it is
    // A place that cannot be kept is said by the store.
    m_settings.write({{settingskeys::windowGeometry, normalGeometry()},
                      {settingskeys::windowMaximized, isMaximized()}});
}

void TimetableWindow::closeEvent(QCloseEvent *event)
{
    savePlace();
    if (m_hideOnClose && m_hideOnClose()) {
        event->ignore();
        hide();
        Q_EMIT hiddenOnClose();
        return;
    }
    // With a tray the program does not end with its last window on its own.
    if (!QApplication::quitOnLastWindowClosed())
        QCoreApplication::quit();
    QMainWindow::closeEvent(event);
}

} // namespace eventtimer
