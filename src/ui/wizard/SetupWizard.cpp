// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/wizard/SetupWizard.h"

#include "ui/PlainText.h"
#include "ui/Theme.h"
#include "ui/wizard/AuthorizationPage.h"
#include "ui/wizard/ChoicePage.h"
#include "ui/wizard/CountedPage.h"
#include "ui/wizard/DonePage.h"
#include "ui/wizard/PermissionsPage.h"
#include "ui/wizard/RestorePage.h"
#include "ui/wizard/WelcomePage.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>
#include <QUrl>

#include <algorithm>

namespace {

constexpr QSize FirstSize(680, 560);
constexpr QSize LeastSize(560, 400);
constexpr int ButtonWidth = 112;
constexpr int BarHeight = 8 * Theme::Rhythm;

} // namespace

SetupWizard::SetupWizard(const SetupFacts& facts, Start start, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , m_userName(facts.userName)
    , m_backups(facts.backups)
    , m_pages(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("setupWizard"));
    setWindowTitle(tr("Set up Tallyvane"));
    setMinimumSize(LeastSize);
    resize(FirstSize);
    buildPages(facts.databaseFile);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_pages, 1);
    layout->addWidget(buildButtons());
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    m_restore->setBackups(m_backups);
    showLinked();
    turnTo(start == Start::Account   ? static_cast<WizardPage*>(m_account)
           : start == Start::Restore ? static_cast<WizardPage*>(m_restore)
                                     : m_welcome,
           History::Forget);
}

void SetupWizard::buildPages(const QString& databaseFile)
{
    m_welcome = new WelcomePage;
    m_counted = new CountedPage(databaseFile);
    m_permissions = new PermissionsPage;
    m_account = new ChoicePage(
        QStringLiteral("accountPage"), tr("Link an account, or stay local"),
        {.name = QStringLiteral("link"), .icon = QStringLiteral("browser"), .text = {}},
        {.name = QStringLiteral("stayLocal"), .icon = QStringLiteral("computer"), .text = {}});
    const QPushButton* file = m_account->addAside(
        QStringLiteral("haveFile"), QStringLiteral("restore"), tr("Restore from a backup file…"));
    m_authorization = new AuthorizationPage;
    m_restore = new RestorePage;
    m_settings = new ChoicePage(QStringLiteral("settingsPage"), tr("Use your earlier settings?"),
                                {.name = QStringLiteral("useEarlier"),
                                 .icon = QStringLiteral("setup"),
                                 .text = tr("Use the earlier settings")},
                                {.name = QStringLiteral("keepPresent"),
                                 .icon = QStringLiteral("computer"),
                                 .text = tr("Keep the present settings")});
    m_settings->setQuestion(tr("Your account keeps the settings that Tallyvane had before. They "
                               "can take the place of those of this computer."));
    m_done = new DonePage;
    for (WizardPage* page :
         std::initializer_list<WizardPage*>{m_welcome, m_counted, m_permissions, m_account,
                                            m_authorization, m_restore, m_settings, m_done}) {
        m_pages->addWidget(page);
        connect(page, &WizardPage::changed, this, &SetupWizard::showButtons);
    }
    connect(m_permissions, &PermissionsPage::checkRequested, this,
            &SetupWizard::permissionCheckRequested);
    connect(m_account, &ChoicePage::activeChosen, this, &SetupWizard::beginLink);
    connect(m_account, &ChoicePage::quietChosen, this, [this] { goOnAfterAccount(); });
    connect(file, &QPushButton::clicked, this, [this] { turnTo(m_restore); });
    connect(m_authorization, &AuthorizationPage::againRequested, this, &SetupWizard::beginLink);
    connect(m_restore, &RestorePage::restoreRequested, this, &SetupWizard::restoreRequested);
    connect(m_restore, &RestorePage::fileRequested, this, &SetupWizard::restoreFromFileRequested);
    connect(m_restore, &RestorePage::cancelled, this, &SetupWizard::restoreCancelled);
    connect(m_settings, &ChoicePage::activeChosen, this, &SetupWizard::settingsRestoreRequested);
    connect(m_settings, &ChoicePage::activeChosen, this, &SetupWizard::finishUp);
    connect(m_settings, &ChoicePage::quietChosen, this, &SetupWizard::finishUp);
}

QWidget* SetupWizard::buildButtons()
{
    auto* bar = new QWidget(this);
    bar->setFixedHeight(BarHeight);
    m_back = new QPushButton(bar);
    m_next = new QPushButton(bar);
    m_back->setObjectName(QStringLiteral("back"));
    m_next->setObjectName(QStringLiteral("next"));
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(Theme::Gap, 0, Theme::Gap, 0);
    layout->addWidget(m_back);
    layout->addStretch();
    layout->addWidget(m_next);
    for (QPushButton* button : {m_back, m_next}) {
        button->setMinimumHeight(4 * Theme::Rhythm);
        button->setAutoDefault(true);
    }
    connect(m_back, &QPushButton::clicked, this, &SetupWizard::goBack);
    connect(m_next, &QPushButton::clicked, this, &SetupWizard::goOn);
    return bar;
}

WizardPage* SetupWizard::current() const
{
    return static_cast<WizardPage*>(m_pages->currentWidget());
}

void SetupWizard::turnTo(WizardPage* page, History history)
{
    if (history == History::Keep) {
        m_past.append(current());
    }
    m_pages->setCurrentWidget(page);
    showButtons();
    if (m_next->isVisibleTo(this)) {
        m_next->setFocus();
    }
    page->takeFocus();
}

void SetupWizard::showButtons()
{
    if (m_next == nullptr) {
        return; // The pages are being made.
    }
    const QString next = current()->nextText();
    const QString back = current()->backText();
    m_next->setText(next);
    m_next->setVisible(!next.isEmpty());
    m_next->setEnabled(current()->canGoOn());
    m_back->setText(back);
    for (QPushButton* button : {m_back, m_next}) {
        button->setMinimumWidth(
            std::max(ButtonWidth, button->sizeHint().width() + 2 * Theme::Rhythm));
    }
    m_back->setVisible(!back.isEmpty() && !m_past.isEmpty());
}

void SetupWizard::goOn()
{
    if (current() == m_welcome) {
        turnTo(m_counted);
    } else if (current() == m_counted) {
        turnTo(m_permissions);
    } else if (current() == m_permissions) {
        turnTo(m_account);
    } else if (current() == m_restore) {
        goOnAfterRestore();
    } else {
        close();
    }
}

void SetupWizard::goBack()
{
    stopLink();
    turnTo(m_past.takeLast(), History::Forget);
}

void SetupWizard::goOnAfterAccount(History history)
{
    if (!m_backups.isEmpty()) {
        turnTo(m_restore, history);
    } else if (m_hasSettings) {
        turnTo(m_settings, history);
    } else {
        m_done->setOutcome(m_userName, DonePage::Restore::None);
        turnTo(m_done, history);
    }
}

void SetupWizard::goOnAfterRestore()
{
    // A backup brings its settings along.
    if (m_hasSettings && !m_restore->isStaged()) {
        turnTo(m_settings);
    } else {
        finishUp();
    }
}

void SetupWizard::finishUp()
{
    m_done->setOutcome(m_userName, m_restore->isStaged() ? DonePage::Restore::AtNextStart
                                                         : DonePage::Restore::None);
    turnTo(m_done);
}

void SetupWizard::showLinked()
{
    const QString purpose =
        tr("An account adds up what all your computers count, ranks it among those of everyone "
           "else, and keeps backups of your database. Your counts reach it by zurges: a zurge "
           "sends what was counted since the last one. Without an account nothing is sent, and "
           "everything is counted all the same.");
    if (m_userName.isEmpty()) {
        m_account->setQuestion(purpose);
        m_account->setAnswers(tr("Link an account in the browser"), tr("Stay local"));
        m_account->setRemark(tr("You can change your mind at any time, in the view “Account”."));
    } else {
        m_account->setQuestion(tr("This computer is linked to the account of %1.")
                                   .arg(PlainText::breakable(m_userName)));
        m_account->setAnswers(tr("Link another account"), tr("Keep this account"));
        m_account->setRemark({});
    }
}

void SetupWizard::setPermissions(InputState input, const std::optional<CaptureState>& capture)
{
    m_permissions->setPermissions(input, capture);
}

void SetupWizard::beginLink()
{
    m_authorization->showAsking();
    if (current() != m_authorization) {
        turnTo(m_authorization);
    }
    Q_EMIT linkRequested();
}

void SetupWizard::stopLink()
{
    if (current() == m_authorization && m_authorization->isUnderWay()) {
        Q_EMIT linkCancelled();
    }
}

void SetupWizard::showBrowserPage(const QUrl& url)
{
    m_authorization->showWaiting(url);
}

void SetupWizard::showLinkFailed(const QString& text)
{
    m_authorization->showFailed(text);
}

void SetupWizard::showAuthorized(const Authorization& authorization)
{
    m_userName = authorization.identity.userName;
    m_backups = authorization.backups;
    m_hasSettings = !authorization.clientSettings.isEmpty();
    m_restore->setBackups(m_backups);
    showLinked();
    if (current() == m_authorization) {
        goOnAfterAccount(History::Forget); // There is nothing to go back to there.
    }
}

void SetupWizard::showRestoreFetching(qint64 received, qint64 total)
{
    m_restore->showFetching(received, total);
}

void SetupWizard::showRestoreUnpacking(int percent)
{
    m_restore->showUnpacking(percent);
}

void SetupWizard::showRestoreChecking()
{
    m_restore->showChecking();
}

void SetupWizard::showRestoreCancelled()
{
    m_restore->showCancelled();
}

void SetupWizard::showRestoreFailed(const QString& text)
{
    m_restore->showFailed(text);
}

void SetupWizard::showRestoreStaged()
{
    m_restore->showStaged();
    m_next->setFocus();
}

void SetupWizard::closeEvent(QCloseEvent* event)
{
    stopLink();
    if (m_restore->isRunning() && !m_restore->isCancelling()) {
        Q_EMIT restoreCancelled();
    }
    event->accept();
    Q_EMIT finished();
}

/// What the control in focus has no use for scrolls the page, which takes no focus itself.
void SetupWizard::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_PageDown) {
        current()->scroll(QAbstractSlider::SliderPageStepAdd);
    } else if (event->key() == Qt::Key_PageUp) {
        current()->scroll(QAbstractSlider::SliderPageStepSub);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void SetupWizard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int line = height() - BarHeight;
    painter.setPen(Theme::colours(palette()).hairline);
    painter.drawLine(0, line, width(), line);
}
