#pragma once

#include <QDialog>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>

namespace eventtimer {

class ReminderChoices;

// The reminder preferences: how many minutes ahead, and the marked events, which can be
// removed here. Every change takes effect at once.
class PreferencesDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PreferencesDialog(ReminderChoices &choices, QWidget *parent = nullptr);

    QSpinBox *leadMinutes() const { return m_lead; }
    QListWidget *markedEvents() const { return m_marked; }
    QPushButton *removeButton() const { return m_remove; }

private:
    void showChoices();

    ReminderChoices &m_choices;
    QSpinBox *m_lead = nullptr;
    QListWidget *m_marked = nullptr;
    QPushButton *m_remove = nullptr;
};

} // namespace eventtimer
