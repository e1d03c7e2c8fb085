#include "app/preferencesdialog.h"

#include "app/autostart.h"
#include "model/reminderchoices.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace eventtimer {

namespace {

QHBoxLayout *hintAndButton(QLabel *hint, QPushButton *button)
{
    auto *row = new QHBoxLayout;
    row->addWidget(hint, 1);
    row->addWidget(button, 0, Qt::AlignTop);
    return row;
}

} // namespace

PreferencesDialog::PreferencesDialog(ReminderChoices &choices, const Autostart &autostart,
                                     QWidget *parent)
    : QDialog(parent)
    , m_choices(choices)
    , m_autostart(autostart)
{
    setWindowTitle(u"Preferences"_s);
    auto *layout = new QVBoxLayout(this);

    auto *form = new QFormLayout;
    m_lead = new QSpinBox(this);
    m_lead->setRange(0, ReminderChoices::maxLeadMinutes);
    m_lead->setSuffix(u" min"_s);
    m_lead->setAccessibleName(u"Remind this many minutes before an event"_s);
    form->addRow(u"Remind me &before an event:"_s, m_lead);
    layout->addLayout(form);

    auto *listLabel = new QLabel(u"&Events to be reminded of:"_s, this);
    m_marked = new QListWidget(this);
    m_marked->setSelectionMode(QAbstractItemView::ExtendedSelection);
    listLabel->setBuddy(m_marked);
    auto *hint = new QLabel(
        u"Mark an event from its box's menu (right click), or with R on the focused box."_s, this);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    // Each list's button beside its hint, right under the list it acts on.
    m_remove = new QPushButton(u"&Remove"_s, this);
    layout->addWidget(listLabel);
    layout->addWidget(m_marked);
    layout->addLayout(hintAndButton(hint, m_remove));

    auto *hiddenLabel = new QLabel(u"&Hidden from the timetable:"_s, this);
    m_hidden = new QListWidget(this);
    m_hidden->setSelectionMode(QAbstractItemView::ExtendedSelection);
    hiddenLabel->setBuddy(m_hidden);
    m_showAgain = new QPushButton(u"Show &again"_s, this);
    m_showAgain->setEnabled(false);
    auto *hiddenHint = new QLabel(
        u"Hide a section or a category from its menu (right click on a box or a name)."_s, this);
    hiddenHint->setWordWrap(true);
    hiddenHint->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(hiddenLabel);
    layout->addWidget(m_hidden);
    layout->addLayout(hintAndButton(hiddenHint, m_showAgain));

    m_startAtLogin = new QCheckBox(u"&Start at login, without the window"_s, this);
    m_startAtLogin->setChecked(m_autostart.isEnabled());
    layout->addWidget(m_startAtLogin);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_lead, &QSpinBox::valueChanged, &m_choices, &ReminderChoices::setLeadMinutes);
    connect(m_remove, &QPushButton::clicked, this, [this] {
        const QList<QListWidgetItem *> selected = m_marked->selectedItems();
        QStringList names;
        for (const QListWidgetItem *item : selected)
            names.append(item->text());
        for (const QString &name : std::as_const(names))
            m_choices.setMarked(name, false);
    });
    connect(m_marked, &QListWidget::itemSelectionChanged, this,
            [this] { m_remove->setEnabled(!m_marked->selectedItems().isEmpty()); });
    connect(&m_choices, &ReminderChoices::changed, this, &PreferencesDialog::showChoices);
    connect(m_hidden, &QListWidget::itemSelectionChanged, this,
            [this] { m_showAgain->setEnabled(!m_hidden->selectedItems().isEmpty()); });
    connect(m_showAgain, &QPushButton::clicked, this, [this] {
        QList<std::pair<bool, QString>> shown;
        for (const QListWidgetItem *item : m_hidden->selectedItems())
            shown.append(
                {item->data(Qt::UserRole).toBool(), item->data(Qt::UserRole + 1).toString()});
        for (const auto &[category, name] : std::as_const(shown))
            Q_EMIT showAgainRequested(category, name);
    });
    connect(m_startAtLogin, &QCheckBox::clicked, this, [this](bool start) {
        Q_EMIT startAtLoginRequested(start);
        m_startAtLogin->setChecked(m_autostart.isEnabled());
    });
    showChoices();
}

void PreferencesDialog::setHidden(const QStringList &sections, const QStringList &categories)
{
    m_hidden->clear();
    for (const auto &[category, names] : {std::pair{false, sections}, {true, categories}})
        for (const QString &name : names) {
            auto *item =
                new QListWidgetItem((category ? u"Category: "_s : u"Section: "_s) + name, m_hidden);
            item->setData(Qt::UserRole, category);
            item->setData(Qt::UserRole + 1, name);
        }
    m_showAgain->setEnabled(false);
}

void PreferencesDialog::showEvent(QShowEvent *event)
{
    m_startAtLogin->setChecked(m_autostart.isEnabled());
    QDialog::showEvent(event);
}

void PreferencesDialog::showChoices()
{
    if (m_lead->value() != m_choices.leadMinutes())
        m_lead->setValue(m_choices.leadMinutes());
    m_marked->clear();
    m_marked->addItems(m_choices.marked());
    m_remove->setEnabled(false);
}

} // namespace eventtimer
