#pragma once

#include <QLabel>
#include <QObject>
#include <QPointer>
#include <QVBoxLayout>

namespace eventtimer {

// What a timetable's view says instead of rows: "Loading the events…" and what is loading, in
// its middle; and when there is nothing to show, "No events could be loaded." (or why the
// player's choices show nothing) with the reason under it.
class ViewMessages : public QObject
{
    Q_OBJECT

public:
    // The messages take their places in the view's layout, hidden.
    ViewMessages(QWidget *view, QVBoxLayout *layout);

    void showLoading();
    // What is loading now, until the problem is given.
    void showProgress(const QString &text);
    // Why there is nothing, or nothing; it ends the loading.
    void setProblem(const QString &problem);
    // Said instead of "No events could be loaded." when there were events.
    void setEmptyText(const QString &text);
    // Whether the timetable is empty: the messages show, or give way to the rows.
    void showEmpty(bool empty);

    QLabel *emptyMessage() const { return m_emptyMessage; }
    QLabel *statusMessage() const { return m_statusMessage; }

private:
    QPointer<QLabel> m_emptyMessage;
    QPointer<QLabel> m_statusMessage;
    bool m_loaded = false;
};

} // namespace eventtimer
