#include "ui/findcontroller.h"

#include "timetable/find.h"
#include "ui/timelinewidget.h"

#include <QAction>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

namespace eventtimer {

FindController::FindController(QWidget *view, TimelineWidget *timeline, QScrollArea *sideways,
                               QScrollArea *upright, QObject *parent)
    : QObject(parent)
    , m_view(view)
    , m_timeline(timeline)
    , m_sideways(sideways)
    , m_upright(upright)
{
    const auto addAction = [this](QKeySequence::StandardKey key, auto slot) {
        auto *action = new QAction(m_view);
        action->setShortcuts(QKeySequence::keyBindings(key));
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_view->addAction(action);
    };
    addAction(QKeySequence::Find, [this] { open(); });
    addAction(QKeySequence::FindNext, [this] { step(true); });
    addAction(QKeySequence::FindPrevious, [this] { step(false); });
}

void FindController::open()
{
    if (!m_findBar) {
        // Made when first asked for: a start has no use for it.
        m_findBar = new FindBar(m_view);
        static_cast<QVBoxLayout *>(m_view->layout())->insertWidget(0, m_findBar);
        connect(m_findBar, &FindBar::queryChanged, this, &FindController::queryChanged);
        connect(m_findBar, &FindBar::stepRequested, this, &FindController::step);
        connect(m_findBar, &FindBar::closeRequested, this, &FindController::close);
    }
    if (!m_scrollBeforeFind)
        m_scrollBeforeFind = QPoint(m_sideways->horizontalScrollBar()->value(),
                                    m_upright->verticalScrollBar()->value());
    m_findBar->show();
    m_findBar->field()->setFocus(Qt::ShortcutFocusReason);
    m_findBar->field()->selectAll();
}

void FindController::queryChanged(const QString &query)
{
    const QList<EventBoxGeometry> &boxes = m_timeline->boxes();
    m_matches = findMatches(boxes, query);
    m_hiddenMatches = countMatches(m_hidden, query);
    m_current = firstMatchFrom(boxes, m_matches, m_timeline->markerX().value_or(0.0));
    show();
}

void FindController::step(bool forward)
{
    if (!m_findBar || !m_findBar->isVisible()) {
        open();
        return;
    }
    if (!m_current)
        return;
    m_current = stepMatch(*m_current, m_matches.size(), forward);
    show();
}

void FindController::show()
{
    const bool finding = !m_findBar->field()->text().isEmpty();
    const std::optional<qsizetype> box =
        m_current ? std::optional(m_matches.at(*m_current)) : std::nullopt;
    m_timeline->setFindState(finding ? std::optional(m_matches) : std::nullopt, box);
    m_findBar->showCount(m_current.value_or(0), m_matches.size(), m_hiddenMatches);
    // The found box is the current one: the keys act on it once find is closed.
    if (box)
        m_timeline->setCurrentBox(*box);
}

void FindController::close()
{
    if (!m_findBar || !m_findBar->isVisible())
        return;
    m_findBar->hide();
    const bool found = m_current.has_value();
    m_matches.clear();
    m_current.reset();
    m_timeline->setFindState(std::nullopt, std::nullopt);
    // The keyboard goes back to the axis, on the box found; without one, the view is put back
    // as it was.
    m_timeline->setFocus(Qt::OtherFocusReason);
    if (found)
        m_scrollBeforeFind.reset();
    if (m_scrollBeforeFind) {
        m_sideways->horizontalScrollBar()->setValue(m_scrollBeforeFind->x());
        m_upright->verticalScrollBar()->setValue(m_scrollBeforeFind->y());
        m_scrollBeforeFind.reset();
    }
}

} // namespace eventtimer
