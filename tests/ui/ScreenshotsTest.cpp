// SPDX-License-Identifier: GPL-3.0-or-later
#include "UiDatabase.h"
#include "account/WindowMessages.h"
#include "support/TestRegistry.h"
#include "ui/DateRange.h"
#include "ui/HourChart.h"
#include "ui/MainWindow.h"
#include "ui/RangeControl.h"
#include "ui/Theme.h"
#include "ui/account/AccountView.h"
#include "ui/network/NetworkView.h"
#include "ui/profiles/ProfilesView.h"
#include "ui/settings/ClientApiState.h"
#include "ui/settings/SettingsDialog.h"
#include "ui/wizard/SetupWizard.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>

/// Saves pictures of the windows under "screenshots" in the build directory, to be looked at. With
/// TALLYVANE_HISTORY naming a directory that `tools/make-history` wrote, the views show that.
class ScreenshotsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void views_data();
    void views();
    void wizard_data();
    void wizard();
    void settings_data();
    void settings();
    void hoursOfShiftedDays_data();
    void hoursOfShiftedDays();
    void cleanup();

private:
    enum class Content
    {
        Empty,
        OneDay,
        History, ///< Made by tools/make-history.
    };

    static QString databaseWith(Content content, UiDatabase& database);
    static void fillProfiles(ProfilesView& view);
    static void fillAccount(AccountView& view);
    static QList<WindowMessage> messages();
    static QList<OnlineBackup> backups();
    static void fillNetwork(NetworkView& view, Content content);
    static void save(const QPixmap& picture);
};

void ScreenshotsTest::views_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<InputState>("state");
    QTest::addColumn<Content>("content");
    QTest::addColumn<DateRange::Preset>("range");
    constexpr std::array<const char*, 8> views{"overview", "keyboard", "mouse",    "applications",
                                               "network",  "uptime",   "profiles", "account"};
    for (const char* theme : {"light", "dark"}) {
        for (int view = 0; view < static_cast<int>(views.size()); ++view) {
            const auto row = [&](const char* name, const QSize& size, InputState state,
                                 Content content, DateRange::Preset range) {
                QTest::addRow("%s-%s-%s-%dx%d", views.at(static_cast<size_t>(view)), name, theme,
                              size.width(), size.height())
                    << view << QString::fromLatin1(theme) << size << state << content << range;
            };
            const QSize first(1100, 720);
            const QSize least(900, 600);
            const QSize large(1600, 1000);
            using enum Content;
            using Range = DateRange::Preset;
            row("empty", first, InputState::Reading, Empty, Range::Today);
            row("one-day", first, InputState::Reading, OneDay, Range::Today);
            row("today", first, InputState::Reading, History, Range::Today);
            row("90-days", least, InputState::Reading, History, Range::Days90);
            row("all-time", first, InputState::Reading, History, Range::AllTime);
            row("all-time", large, InputState::Reading, History, Range::AllTime);
            if (QLatin1String(views.at(static_cast<size_t>(view))) == QLatin1String("network")) {
                row("whole", QSize(1100, 1900), InputState::Reading, History, Range::AllTime);
                row("whole", QSize(900, 2900), InputState::Reading, History, Range::Days90);
            }
            if (view == 0) {
                row("no-permission", first, InputState::NoPermission, Empty, Range::Today);
                row("paused", first, InputState::Paused, History, Range::Days7);
            }
        }
    }
}

QString ScreenshotsTest::databaseWith(Content content, UiDatabase& database)
{
    if (content == Content::OneDay) {
        database.addBusyDay(QDate::currentDate());
        database.addTraffic(QDate::currentDate());
    }
    const QString made = qEnvironmentVariable("TALLYVANE_HISTORY");
    return content == Content::History && !made.isEmpty() ? made + QStringLiteral("/tallyvane.db")
                                                          : database.file();
}

void ScreenshotsTest::views()
{
    QFETCH(int, view);
    QFETCH(QString, theme);
    QFETCH(QSize, size);
    QFETCH(InputState, state);
    QFETCH(Content, content);
    QFETCH(DateRange::Preset, range);
    UiDatabase database;
    const QString file = databaseWith(content, database);
    if (content == Content::History && file == database.file()) {
        database.addBusyDay(QDate::currentDate());
        database.addBusyDay(QDate::currentDate().addDays(-1));
    }
    Theme::apply(theme);
    ViewContext context;
    context.applicationName = [](const QString& path) { return QFileInfo(path).baseName(); };
    MainWindow window(file, context);
    connect(&window, &MainWindow::viewMade, this, [content](View* made) {
        if (auto* profiles = qobject_cast<ProfilesView*>(made)) {
            fillProfiles(*profiles);
        } else if (auto* network = qobject_cast<NetworkView*>(made); network != nullptr) {
            fillNetwork(*network, content);
        } else if (auto* account = qobject_cast<AccountView*>(made);
                   account != nullptr && content != Content::Empty) {
            fillAccount(*account);
        }
    });
    window.setProfiles({{0, QStringLiteral("General")}, {1, QStringLiteral("Work")}});
    window.setInputState(state);
    if (size.width() >= 1600) {
        window.setMessages(messages());
    }
    window.resize(size);
    window.show();
    window.findChild<RangeControl*>()->select(range);
    window.showView(view);
    auto* page = window.findChild<QStackedWidget*>()->currentWidget();
    auto* notice = page->findChild<QWidget*>(QStringLiteral("notice"));
    auto* cards = page->findChild<QWidget*>(QStringLiteral("cards"));
    auto* veil = page->findChild<QWidget*>(QStringLiteral("busy"));
    constexpr int patienceMs = 120'000; // The sums of ten years are made at the first look.
    QTRY_VERIFY_WITH_TIMEOUT((notice->isVisible() || cards->isVisible()) && veil->isHidden(),
                             patienceMs);
    QTest::qWait(100);
    const QPixmap picture = window.grab();
    QCOMPARE(picture.size(), size * window.devicePixelRatio());
    save(picture);
}

void ScreenshotsTest::fillProfiles(ProfilesView& view)
{
    const QDateTime added(QDate(2020, 5, 4), QTime(9, 0));
    view.setProfiles({{.id = 0, .name = QStringLiteral("General"), .isActive = false},
                      {.id = 1, .name = QStringLiteral("Work"), .isActive = true, .created = added},
                      {.id = 2, .name = QStringLiteral("Games"), .created = added}});
    MilestoneEntry keys{.id = 1,
                        .name = QStringLiteral("A million keys"),
                        .type = QStringLiteral("Keys"),
                        .amount = 1'000'000,
                        .lastHit = added,
                        .base = 41'000'123,
                        .total = 41'730'456};
    MilestoneEntry uptime{.id = 2,
                          .name = QStringLiteral("A week of uptime"),
                          .type = QStringLiteral("Uptime in Minutes"),
                          .amount = 10'080,
                          .isActive = false,
                          .total = 1'234};
    view.setMilestones({keys, uptime}, {{.name = keys.name,
                                         .time = added,
                                         .type = keys.type,
                                         .amount = keys.amount,
                                         .total = keys.base}});
}

void ScreenshotsTest::fillAccount(AccountView& view)
{
    const QDateTime now = QDateTime::currentDateTime();
    AccountState state;
    state.userName = QStringLiteral("ann.example");
    state.email = QStringLiteral("ann.example-with-a-long-name@mail.tallyvane.example");
    state.computer = QStringLiteral("Workshop");
    state.totals = {.keys = 41'730'456,
                    .clicks = 7'204'311,
                    .download = 8'812'345,
                    .upload = 912'345,
                    .uptime = 81'234'567,
                    .scrolls = 9'812'001,
                    .distanceMiles = 412.6};
    state.ranks = {.keys = 1'204,
                   .clicks = 987,
                   .download = 12'077,
                   .upload = 4'010,
                   .uptime = 96,
                   .scrolls = 2'311,
                   .distance = 1'790};
    state.unzurged = {.keys = 12'403,
                      .clicks = 2'210,
                      .download = 1'234'567'890,
                      .upload = 45'678'901,
                      .uptime = 21'600'000,
                      .scrolls = 5'120,
                      .distanceInches = 21'330};
    state.zurge = {.isSignedIn = true, .hasCounts = true};
    state.lastZurge = now.addSecs(-7200);
    const QString problem = QStringLiteral("Internal server error. Please try again later.");
    state.zurges = {{.time = state.lastZurge, .keys = 8'204, .clicks = 1'102},
                    {.time = now.addSecs(-9000),
                     .outcome = ZurgeRecord::Outcome::Failed,
                     .keys = 7'911,
                     .clicks = 1'008,
                     .message = problem},
                    {.time = now.addDays(-1),
                     .origin = ZurgeRecord::Origin::Automatic,
                     .keys = 10'000,
                     .clicks = 2'345}};
    state.backup.lastTried = now.addDays(-3);
    state.backup.kept = backups();
    view.setState(state);
}

QList<OnlineBackup> ScreenshotsTest::backups()
{
    QList<OnlineBackup> backups(3);
    for (int i = 0; i < backups.size(); ++i) {
        backups[i].createdAt = QDateTime(QDate(2026, 11, 18 - 7 * i), QTime(14, 3));
        backups[i].bytes = 412'345'678 - 1'234'567 * i;
    }
    return backups;
}

QList<WindowMessage> ScreenshotsTest::messages()
{
    WindowMessage plain;
    plain.text = QStringLiteral("The website moves on Sunday.");
    WindowMessage archived;
    archived.id = 1;
    archived.title = QStringLiteral("Computer Management");
    archived.text =
        QStringLiteral("This computer is archived, and isn't able to connect to your account.");
    archived.buttonText = QStringLiteral("Manage computers");
    archived.link = QUrl(QStringLiteral("https://tallyvane.example/"));
    QList<WindowMessage> messages(4, plain);
    for (int i = 0; i < messages.size(); ++i) {
        messages[i].id = 2 + i;
    }
    messages.append(archived);
    return messages;
}

void ScreenshotsTest::wizard_data()
{
    QTest::addColumn<QString>("theme");
    for (const char* theme : {"light", "dark"}) {
        QTest::newRow(theme) << QString::fromLatin1(theme);
    }
}

/// Walks through every page and state.
void ScreenshotsTest::wizard()
{
    QFETCH(QString, theme);
    Theme::apply(theme);
    SetupWizard wizard(
        {.databaseFile = QStringLiteral("/home/ann/.local/share/Tallyvane/tallyvane.db")});
    wizard.show();
    QVERIFY(QTest::qWaitForWindowExposed(&wizard));
    QPixmap pictures(QSize(4 * wizard.width(), 3 * wizard.height()) * wizard.devicePixelRatio());
    pictures.setDevicePixelRatio(wizard.devicePixelRatio());
    QPainter painter(&pictures);
    int pages = 0;
    const auto shoot = [&] {
        QTest::qWait(50);
        painter.drawPixmap(QPoint(pages % 4 * wizard.width(), pages / 4 * wizard.height()),
                           wizard.grab());
        ++pages;
    };
    const auto press = [&wizard](const char* name) {
        wizard.findChild<QPushButton*>(QLatin1String(name))->click();
    };
    shoot();
    press("next");
    shoot();
    press("next");
    wizard.setPermissions(
        InputState::NoPermission,
        CaptureState{.reason = QStringLiteral("Packets may not be captured by this program."),
                     .command = QStringLiteral("sudo setcap cap_net_raw+ep /usr/bin/tallyvane")});
    shoot();
    wizard.setPermissions(InputState::Reading,
                          CaptureState{.backEnd = CaptureState::BackEnd::PacketRing});
    shoot();
    press("next");
    shoot();
    press("link");
    wizard.showBrowserPage(QUrl(QStringLiteral(
        "https://tallyvane.example/dashboard/my/client/5f0c?id=5f0c&name=Workshop")));
    shoot();
    wizard.showLinkFailed(QStringLiteral(
        "Our server is currently in maintenance, please check back in a few minutes. Sorry!"));
    shoot();
    Authorization answer;
    answer.identity.userName = QStringLiteral("ann.example");
    answer.backups = backups();
    answer.clientSettings.insert(QStringLiteral("theme"), theme);
    wizard.showAuthorized(answer);
    shoot();
    press("restore");
    wizard.showRestoreFetching(123'456'789, 412'345'678);
    shoot();
    wizard.showRestoreFailed(QStringLiteral("The archive is damaged."));
    shoot();
    press("next");
    shoot();
    press("keepPresent");
    shoot();
    save(pictures);
}

void ScreenshotsTest::settings_data()
{
    wizard_data();
}

/// Off, on, a port in use, and all that can be amiss with what was typed.
void ScreenshotsTest::settings()
{
    QFETCH(QString, theme);
    const UiDatabase database;
    Theme::apply(theme);
    QPointer<SettingsDialog> dialog = new SettingsDialog;
    dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    QPixmap pictures(2 * dialog->size() * dialog->devicePixelRatio());
    pictures.setDevicePixelRatio(dialog->devicePixelRatio());
    QPainter painter(&pictures);
    const QSize size = dialog->size();
    const auto shoot = [&](int column, int row) {
        QTest::qWait(50);
        QCOMPARE(dialog->size(), size);
        painter.drawPixmap(QPoint(column * size.width(), row * size.height()), dialog->grab());
    };
    shoot(0, 0);
    Settings::instance().setValue(SettingsKeys::ClientApiHttpEnable, true);
    dialog->setClientApiState({.httpPort = 3490, .websocketPort = 3489});
    shoot(1, 0);
    auto* addresses = dialog->findChild<QLineEdit*>(QStringLiteral("addresses"));
    addresses->selectAll();
    addresses->insert({});
    dialog->setClientApiState({.refusedPort = 3490});
    shoot(0, 1);
    addresses->insert(QStringLiteral("192.168.0.0/24,127.0.0.1"));
    dialog->findChild<QSpinBox*>(QStringLiteral("httpPort"))->setValue(3489);
    QTest::keyClick(addresses, Qt::Key_Return);
    QTest::keyClick(dialog->findChild<QSpinBox*>(QStringLiteral("httpPort")), Qt::Key_Return);
    shoot(1, 1);
    dialog->close();
    save(pictures);
}

void ScreenshotsTest::fillNetwork(NetworkView& view, Content content)
{
    view.setPortDescription([](int port, Utils::TrafficType) {
        return port == 443  ? QStringLiteral("http protocol over TLS/SSL")
               : port == 53 ? QStringLiteral("Domain Name Server")
               : port == 22 ? QStringLiteral("The Secure Shell (SSH) Protocol")
                            : QString();
    });
    if (content == Content::Empty) {
        view.setCapture(CaptureState{
            .reason = QStringLiteral("Packets may not be captured by this program."),
            .command = QStringLiteral("sudo setcap cap_net_raw+ep /usr/bin/tallyvane")});
        return;
    }
    view.setRates(1'234'567, 45'678);
    view.setRecent([](std::optional<qint64>) {
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        constexpr int seconds = 40 * 60;
        QList<SecondTraffic> traffic;
        QRandomGenerator random(1);
        for (qint64 second = now - seconds; second < now; ++second) {
            const qint64 wave = 400'000 + 390'000 * (second / 9 % 5 - 2) / 2;
            traffic.append({.second = second,
                            .macAddress = QStringLiteral("02:4F:1C:A0:5E:11"),
                            .traffic = {wave + random.bounded(100'000), random.bounded(90'000)}});
        }
        return std::optional(traffic);
    });
}

void ScreenshotsTest::hoursOfShiftedDays_data()
{
    QTest::addColumn<QDate>("day");
    QTest::newRow("23") << QDate(2026, 3, 29);
    QTest::newRow("25") << QDate(2026, 10, 25);
}

void ScreenshotsTest::hoursOfShiftedDays()
{
    QFETCH(QDate, day);
    Theme::apply(QStringLiteral("light"));
    HourChart chart;
    chart.setAutoFillBackground(true);
    chart.resize(560, 240);
    QHash<int, double> keys;
    for (int hour = 0; hour < 24; ++hour) {
        keys.insert(hour, 100 + 10 * hour);
    }
    chart.setDay(day, {.name = QStringLiteral("Keys")}, keys, day.addDays(1).startOfDay());
    chart.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chart));
    save(chart.grab());
}

void ScreenshotsTest::save(const QPixmap& picture)
{
    const QDir directory(QStringLiteral(TALLYVANE_BUILD_DIR "/screenshots"));
    QVERIFY(directory.mkpath(QStringLiteral(".")));
    const QString name = QStringLiteral("%1-%2-scale%3.png")
                             .arg(QLatin1String(QTest::currentTestFunction()),
                                  QLatin1String(QTest::currentDataTag()))
                             .arg(picture.devicePixelRatio());
    QVERIFY(picture.save(directory.filePath(name)));
}

void ScreenshotsTest::cleanup()
{
    Theme::apply(QStringLiteral("light"));
}

REGISTER_TEST(ScreenshotsTest);
#include "ScreenshotsTest.moc"
