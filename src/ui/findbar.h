#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QWidget>

namespace eventtimer {

// The find field above the time axis: what to find, how many boxes match and which of them is
// shown ("3 of 12"), and a button that closes it. Enter goes on to the next match, Shift+Enter
// back, Escape closes.
class FindBar : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(QWidget *parent = nullptr);

    QLineEdit *field() const { return m_field; }
    QLabel *count() const { return m_count; }

    // "3 of 12", "No match", or nothing without a query, and what hidden sections hold ("3 of
    // 12, 2 hidden", "No match shown, 2 hidden"); screen readers are told.
    void showCount(qsizetype current, qsizetype total, qsizetype hidden = 0);

Q_SIGNALS:
    void queryChanged(const QString &query);
    void stepRequested(bool forward);
    void closeRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QLineEdit *m_field = nullptr;
    QLabel *m_count = nullptr;
    QToolButton *m_close = nullptr;
};

} // namespace eventtimer
