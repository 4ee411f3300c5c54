// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/ZurgePanel.h"

#include "ui/Icons.h"
#include "ui/Theme.h"
#include "ui/account/AccountTables.h"
#include "ui/profiles/ActionTable.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>

#include <algorithm>

namespace {

constexpr qint64 TickMs = 1000;
constexpr int ButtonWidth = 128;
constexpr int Quantities = 7;

} // namespace

ZurgePanel::ZurgePanel(QAbstractItemModel* counts, QWidget* parent)
    : QWidget(parent)
    , m_button(new QPushButton(this))
    , m_hint(new QLabel(this))
    , m_table(new ActionTable(counts, tr("Counts"), this))
{
    m_button->setObjectName(QStringLiteral("zurge"));
    m_button->setIcon(Icons::symbol(QStringLiteral("zurge")));
    m_button->setMinimumSize(ButtonWidth, 4 * Theme::Rhythm);
    m_hint->setObjectName(QStringLiteral("zurgeHint"));
    m_hint->setWordWrap(true);
    m_table->table()->setSelectionMode(QAbstractItemView::ContiguousSelection);
    QTableView* table = m_table->table();
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // Every count is seen at once, whatever the font.
    table->setMinimumHeight(table->horizontalHeader()->sizeHint().height() +
                            Quantities * table->verticalHeader()->defaultSectionSize());
    auto* head = new QHBoxLayout;
    head->setSpacing(Theme::Gap);
    head->addWidget(m_button);
    head->addWidget(m_hint, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(Theme::Rhythm);
    layout->addLayout(head);
    layout->addWidget(m_table, 1);
    m_clock.setSingleShot(true);
    connect(&m_clock, &QTimer::timeout, this, &ZurgePanel::showStatus);
    connect(m_button, &QPushButton::clicked, this, &ZurgePanel::zurgeRequested);
    showStatus();
}

void ZurgePanel::setFacts(const ZurgeFacts& facts)
{
    m_facts = facts;
    showStatus();
}

void ZurgePanel::showStatus()
{
    m_status = ZurgeStatus(m_facts, QDateTime::currentDateTime());
    const bool isUnderWay = m_status.state() == ZurgeStatus::State::InProgress;
    m_button->setText(isUnderWay ? tr("Zurging…") : tr("Zurge"));
    // Offline, who refuses it tells what to do about that.
    m_button->setEnabled(m_status.canBegin() || m_status.state() == ZurgeStatus::State::Offline);
    // Where all is well, the card's explanation says it.
    m_hint->setText(m_status.state() == ZurgeStatus::State::Ready ? QString() : m_status.hint());
    m_button->setAccessibleDescription(m_status.hint());
    m_clock.stop();
    if (m_status.changesInMs() > 0) {
        m_clock.start(static_cast<int>(std::min(m_status.changesInMs(), TickMs)));
    }
}
