#include "ui/viewmessages.h"

using namespace Qt::StringLiterals;

namespace eventtimer {

ViewMessages::ViewMessages(QWidget *view, QVBoxLayout *layout)
    : QObject(view)
{
    const auto plainLabel = [view](const QString &text) {
        auto *label = new QLabel(text, view);
        label->setTextFormat(Qt::PlainText);
        label->hide();
        return label;
    };
    m_emptyMessage = plainLabel(u"No events could be loaded."_s);
    m_emptyMessage->setAlignment(Qt::AlignHCenter | Qt::AlignBottom);
    layout->addWidget(m_emptyMessage, 1);
    m_statusMessage = plainLabel(QString());
    m_statusMessage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_statusMessage->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(m_statusMessage, 1);
}

void ViewMessages::showLoading()
{
    m_statusMessage->setAlignment(Qt::AlignCenter);
    m_statusMessage->setText(u"Loading the events\u2026"_s);
    m_statusMessage->show();
}

void ViewMessages::showProgress(const QString &text)
{
    if (!m_loaded)
        m_statusMessage->setText(text);
}

void ViewMessages::setProblem(const QString &problem)
{
    m_loaded = true;
    // Only a problem's words are long enough to wrap: measuring a wrapped text for the loading
    // line costs a start more than the line itself.
    m_statusMessage->setWordWrap(true);
    m_statusMessage->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    m_statusMessage->setText(problem);
}

void ViewMessages::setEmptyText(const QString &text)
{
    m_emptyMessage->setText(text);
}

void ViewMessages::showEmpty(bool empty)
{
    m_emptyMessage->setVisible(empty);
    m_statusMessage->setVisible(empty && !m_statusMessage->text().isEmpty());
}

} // namespace eventtimer
