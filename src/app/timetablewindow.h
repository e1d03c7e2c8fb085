#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QPointer>
#include <QStackedWidget>

#include <functional>

namespace eventtimer {

class SettingsStore;

// The program's one window: the timetable shown (a view that a new one takes the place of), a
// thin status line under it, the window's keys, and its place on the screen, which it takes
// from the settings file and keeps there when it is closed.
class TimetableWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit TimetableWindow(SettingsStore &settings, QWidget *parent = nullptr);

    // The window as it was last closed: maximized, or in its normal place.
    void open();
    // Shows the window in front of the others (a second start or the tray asked for it).
    void bringToFront();

    // The view to show; it takes the place of the one shown, which is given back.
    QWidget *showTimetable(QWidget *view);
    QWidget *timetable() const { return m_stack->currentWidget(); }

    // What the status line under the timetable says of a topic: of the day, why it was not
    // updated or what is loading; of the settings, why changes are not kept. Empty says nothing;
    // the line shows while a topic has something to say.
    enum class Topic
    {
        Day,
        Settings
    };
    void showStatus(const QString &text, Topic topic = Topic::Day);
    QLabel *statusLine(Topic topic = Topic::Day) const
    {
        return topic == Topic::Day ? m_status : m_settingsStatus;
    }

    // The window's actions for the whole view (follow the present, go to the present, Next up,
    // only marked events), for the menus that offer them too.
    QList<QAction *> viewActions() const { return {m_follow, m_present, m_nextUp, m_markedOnly}; }
    QAction *nextUpAction() const { return m_nextUp; }
    QAction *markedOnlyAction() const { return m_markedOnly; }
    // The toggles as the settings have them.
    void showViewChoices(bool follows, bool nextUp, bool markedOnly)
    {
        m_follow->setChecked(follows);
        m_nextUp->setChecked(nextUp);
        m_markedOnly->setChecked(markedOnly);
    }

    // Asked when the window is closed: true keeps the program running with the window hidden.
    void setHideOnClose(std::function<bool()> hideOnClose)
    {
        m_hideOnClose = std::move(hideOnClose);
    }

Q_SIGNALS:
    void reloadRequested();
    void preferencesRequested();
    // F: every minute brings the axis back to the present, or not; P: back to it now.
    void followPresentToggled(bool follows);
    void presentRequested();
    // N: the Next up list beside the axis, or not; M: only what is marked, or everything.
    void nextUpToggled(bool shown);
    void markedOnlyToggled(bool markedOnly);
    // Closed, and hidden instead of ending the program.
    void hiddenOnClose();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void addKeys();
    void restorePlace();
    void savePlace();

    SettingsStore &m_settings;
    QStackedWidget *m_stack = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_settingsStatus = nullptr;
    QAction *m_follow = nullptr;
    QAction *m_present = nullptr;
    QAction *m_nextUp = nullptr;
    QAction *m_markedOnly = nullptr;
    std::function<bool()> m_hideOnClose;
};

} // namespace eventtimer
