// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/account/AccountView.h"

#include "base/Format.h"
#include "ui/Card.h"
#include "ui/CountsModel.h"
#include "ui/FiguresModel.h"
#include "ui/Icons.h"
#include "ui/PlainText.h"
#include "ui/account/AccountTables.h"
#include "ui/account/BackupPanel.h"
#include "ui/account/IdentityPanel.h"
#include "ui/account/ZurgePanel.h"
#include "ui/profiles/ActionTable.h"

#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>

#include <algorithm>

namespace {

constexpr int WideSpan = 4;
constexpr int NarrowSpan = 2;
constexpr int CountsHeight = 336;
constexpr int IdentityHeight = 240;
constexpr int ListHeight = 280;

} // namespace

AccountView::AccountView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("account"), tr("Account"), parent)
    , m_counts(new FiguresModel(AccountTables::countsColumns(), this))
    , m_zurges(new FiguresModel(AccountTables::zurgesColumns(), this))
{
    addCounts();
    addIdentity();
    addZurges();
    addBackups();
}

void AccountView::addCounts()
{
    m_zurge = new ZurgePanel(m_counts);
    connect(m_zurge, &ZurgePanel::zurgeRequested, this, &AccountView::zurgeRequested);
    auto* card = new Card(QStringLiteral("accountCounts"), tr("Counts"), m_zurge, m_counts);
    card->setExplanation(
        tr("A zurge sends to your account what was counted here since the last one"));
    card->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
    const int height = std::max(CountsHeight, card->minimumSizeHint().height());
    addCard(card, {.row = 0, .span = WideSpan, .height = height, .stretch = 0});
}

void AccountView::addIdentity()
{
    constexpr int lines = 4;
    m_identity = new IdentityPanel(lines);
    auto* signOut = new QPushButton(Icons::symbol(QStringLiteral("quit")), tr("Sign out…"));
    signOut->setObjectName(QStringLiteral("signOut"));
    connect(signOut, &QPushButton::clicked, this, &AccountView::confirmSignOut);
    auto* card = addCard(
        new Card(QStringLiteral("identity"), tr("Signed in"), m_identity, m_identity->model()),
        {.row = 0,
         .column = WideSpan,
         .span = NarrowSpan,
         .height = IdentityHeight,
         .stretch = 0,
         .narrowHeight = IdentityHeight});
    card->setControl(signOut);
    card->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void AccountView::addZurges()
{
    const QString title = tr("Last zurges");
    auto* table = new ActionTable(m_zurges, title);
    QHeaderView* header = table->table()->horizontalHeader();
    header->setSectionResizeMode(AccountTables::TimeColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(AccountTables::OutcomeColumn, QHeaderView::Stretch);
    // Why one has failed is read whole.
    table->table()->setWordWrap(true);
    QHeaderView* rows = table->table()->verticalHeader();
    rows->setMinimumSectionSize(rows->defaultSectionSize());
    rows->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(header, &QHeaderView::sectionResized, table->table(),
            &QTableView::resizeRowsToContents);
    m_zurgesCard =
        addCard(new Card(QStringLiteral("zurges"), title, table, m_zurges),
                {.row = 1, .span = WideSpan, .height = ListHeight, .narrowHeight = ListHeight});
    m_zurgesCard->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void AccountView::addBackups()
{
    m_backups = new BackupPanel;
    connect(m_backups, &BackupPanel::backupRequested, this, &AccountView::backupRequested);
    connect(m_backups, &BackupPanel::backupCancelled, this, &AccountView::backupCancelled);
    connect(m_backups, &BackupPanel::restoreRequested, this, &AccountView::restoreRequested);
    auto* card = addCard(new Card(QStringLiteral("backups"), tr("Backups of the database"),
                                  m_backups, m_backups->model()),
                         {.row = 1,
                          .column = WideSpan,
                          .span = NarrowSpan,
                          .height = ListHeight,
                          .narrowHeight = ListHeight});
    card->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void AccountView::setState(const AccountState& state)
{
    m_state = state;
    m_counts->setRows(AccountTables::counts(state.unzurged, state.totals, state.ranks));
    m_zurges->setRows(AccountTables::zurges(state.zurges));
    m_zurgesCard->setExplanation(state.zurges.isEmpty() ? tr("They appear here with their outcome")
                                                        : QString());
    m_zurge->setFacts(state.zurge);
    m_backups->setState(state.backup);
    showIdentity();
    if (isVisible()) {
        refresh();
    }
}

void AccountView::showIdentity()
{
    m_identity->setLines(
        {{tr("User"), m_state.userName},
         {tr("Email address"), m_state.email},
         {tr("This computer"), m_state.computer},
         {tr("Last zurge"),
          m_state.lastZurge.isValid() ? Format::moment(m_state.lastZurge) : tr("None yet")}});
}

bool AccountView::followsScope() const
{
    return false;
}

void AccountView::refresh()
{
    showAtOnce(m_state.zurge.isSignedIn);
}

void AccountView::onNoticeButton()
{
    Q_EMIT linkRequested();
}

std::optional<Notice::Content> AccountView::countingNotice() const
{
    return std::nullopt;
}

Notice::Content AccountView::emptyNotice() const
{
    return {.icon = QStringLiteral("account"),
            .title = tr("No account is linked"),
            .text = tr("An account adds up what all your computers count, ranks it among those of "
                       "everyone else, and keeps backups of your database. Your counts reach it by "
                       "zurges: a zurge sends what was counted since the last one. Without an "
                       "account nothing is sent, and everything is counted all the same."),
            .command = {},
            .button = tr("Link an account…")};
}

void AccountView::confirmSignOut()
{
    auto* box = new QMessageBox(
        QMessageBox::Question, tr("Sign out"),
        tr("Sign out of the account of %1?").arg(PlainText::breakable(m_state.userName)),
        QMessageBox::Cancel, this);
    box->setObjectName(QStringLiteral("confirmSignOut"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(
        tr("From then on nothing is sent. Counting goes on, and everything that was counted stays "
           "on this computer, also what was not sent yet. The account stays as it is, with its "
           "totals and its backups, and can be linked again at any time."));
    auto* button = box->addButton(tr("Sign out"), QMessageBox::DestructiveRole);
    button->setObjectName(QStringLiteral("confirm"));
    box->setDefaultButton(QMessageBox::Cancel);
    connect(button, &QPushButton::clicked, this, &AccountView::signOutRequested);
    box->open();
}
