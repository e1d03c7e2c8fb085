#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>

namespace eventtimer {

class Autostart;
class ReminderChoices;

// The preferences: how many minutes ahead reminders come, the marked events, which can be
// removed here, the sections and categories hidden from the timetable, which can be shown again
// here, and whether the program starts at login. Every change takes effect at once.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    PreferencesDialog(ReminderChoices &choices, const Autostart &autostart,
                      QWidget *parent = nullptr);

    QSpinBox *leadMinutes() const { return m_lead; }
    QListWidget *markedEvents() const { return m_marked; }
    QPushButton *removeButton() const { return m_remove; }
    QCheckBox *startAtLogin() const { return m_startAtLogin; }
    QListWidget *hiddenList() const { return m_hidden; }
    QPushButton *showAgainButton() const { return m_showAgain; }

    // What the timetable hides now.
    void setHidden(const QStringList &sections, const QStringList &categories);

Q_SIGNALS:
    void startAtLoginRequested(bool start);
    void showAgainRequested(bool category, const QString &name);

protected:
    // The autostart file may have been changed by hand since the dialog was last open.
    void showEvent(QShowEvent *event) override;

private:
    void showChoices();

    ReminderChoices &m_choices;
    const Autostart &m_autostart;
    QSpinBox *m_lead = nullptr;
    QListWidget *m_marked = nullptr;
    QPushButton *m_remove = nullptr;
    QCheckBox *m_startAtLogin = nullptr;
    QListWidget *m_hidden = nullptr;
    QPushButton *m_showAgain = nullptr;
};

} // namespace eventtimer
