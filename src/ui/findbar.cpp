#include "ui/findbar.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace eventtimer {

FindBar::FindBar(QWidget *parent)
    : QWidget(parent)
    , m_field(new QLineEdit(this))
    , m_count(new QLabel(this))
    , m_close(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 4);
    auto *label = new QLabel(u"&Find:"_s, this);
    label->setBuddy(m_field);
    m_field->setPlaceholderText(u"Event or section"_s);
    m_field->setClearButtonEnabled(true);
    m_field->setMaximumWidth(320);
    m_field->installEventFilter(this);
    m_count->setTextFormat(Qt::PlainText);
    m_close->setText(u"\u2715"_s);
    m_close->setAutoRaise(true);
    m_close->setToolTip(u"Close (Escape)"_s);
    m_close->setAccessibleName(u"Close find"_s);
    layout->addWidget(label);
    layout->addWidget(m_field);
    layout->addWidget(m_count);
    layout->addStretch(1);
    layout->addWidget(m_close);

    connect(m_field, &QLineEdit::textChanged, this, &FindBar::queryChanged);
    connect(m_field, &QLineEdit::returnPressed, this, [this] { Q_EMIT stepRequested(true); });
    connect(m_close, &QToolButton::clicked, this, &FindBar::closeRequested);
}

void FindBar::showCount(qsizetype current, qsizetype total, qsizetype hidden)
{
    QString text;
    if (total > 0)
        text = QString::number(current + 1) + u" of "_s + QString::number(total);
    else if (!m_field->text().isEmpty())
        text = u"No match"_s;
    // Find searches what is shown, and says what it passed over.
    if (hidden > 0)
        text += (total > 0 ? u", "_s : u" shown, "_s) + QString::number(hidden) + u" hidden"_s;
    if (text == m_count->text())
        return;
    m_count->setText(text);
    // What a screen reader says of the field while it is being typed in.
    m_field->setAccessibleDescription(text);
    QAccessibleEvent changed(m_field, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

bool FindBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_field && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Escape) {
            Q_EMIT closeRequested();
            return true;
        }
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
            key->modifiers().testFlag(Qt::ShiftModifier)) {
            Q_EMIT stepRequested(false);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace eventtimer
