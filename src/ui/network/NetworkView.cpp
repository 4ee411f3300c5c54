// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/network/NetworkView.h"

#include "base/Format.h"
#include "ui/Card.h"
#include "ui/CourseChart.h"
#include "ui/FigureTiles.h"
#include "ui/applications/ApplicationLooks.h"
#include "ui/applications/ExcludedButton.h"
#include "ui/applications/ExclusionQuestion.h"
#include "ui/network/LiveChart.h"
#include "ui/network/NetworkNotice.h"
#include "ui/network/TrafficTable.h"
#include "ui/network/WorldMap.h"

#include <QComboBox>
#include <QDateTime>
#include <QLabel>
#include <QMetaMethod>

namespace {

constexpr int TileCount = 5;
constexpr int LiveMs = 1000;
constexpr int ChartHeight = 208;
constexpr int TableHeight = 304;
constexpr int MapHeight = 400;

QString rateText(const std::optional<double>& rate)
{
    const Quantity quantity{.name = {}, .kind = Quantity::Kind::BytesPerSecond};
    return rate ? quantity.text(*rate) : QStringLiteral("–");
}

QString inFull(qint64 bytes)
{
    return NetworkView::tr("%1 bytes").arg(Format::count(bytes));
}

FigureTiles::Tile bytesTile(const QString& caption, qint64 bytes, const QString& note)
{
    return {.caption = caption,
            .figure = Format::bytes(static_cast<quint64>(bytes)),
            .note = note,
            .inFull = inFull(bytes)};
}

} // namespace

NetworkView::NetworkView(ViewContext context, QWidget* parent)
    : View(std::move(context), QStringLiteral("network"), tr("Network"), parent)
    , m_looks(new ApplicationLooks(this->context(), this))
    , m_course(new FiguresModel({FiguresModel::timeColumn(tr("Time")),
                                 FiguresModel::bytesColumn(tr("Downloaded")),
                                 FiguresModel::bytesColumn(tr("Uploaded"))},
                                this))
    , m_applications(new TrafficModel(NetworkTables::applicationColumns(), this))
    , m_services(new TrafficModel(NetworkTables::serviceColumns(), this))
    , m_countries(new TrafficModel(NetworkTables::countryColumns(), this))
    , m_interfaces(new TrafficModel(NetworkTables::interfaceColumns(), this))
{
    addFigures();
    addLive();
    addCourse();
    addCountries();
    addApplications();
    addServices();
    addInterfaces();
    m_liveTimer.setInterval(LiveMs);
    connect(&m_liveTimer, &QTimer::timeout, this, &NetworkView::followLive);
}

void NetworkView::addFigures()
{
    m_tiles = new FigureTiles(TileCount);
    m_tilesCard =
        addCard(new Card(QStringLiteral("networkTotals"), tr("Totals"), m_tiles, m_tiles->model()),
                {.row = 0, .stretch = 0, .narrowHeight = 0});
    m_tilesCard->setTableOrder(CountsModel::NoColumn, Qt::AscendingOrder);
}

void NetworkView::addLive()
{
    m_minute = new LiveChart(LiveChart::Span::Minute);
    m_hour = new LiveChart(LiveChart::Span::Hour);
    m_interface = new QComboBox;
    m_interface->setObjectName(QStringLiteral("liveInterface"));
    m_interface->setAccessibleName(tr("The interface that the last minute and hour show"));
    m_interface->addItem(tr("All interfaces"), QString());
    connect(m_interface, &QComboBox::currentIndexChanged, this, &NetworkView::followLive);
    auto* minute = addCard(
        new Card(QStringLiteral("lastMinute"), tr("Last minute"), m_minute, m_minute->model()),
        {.row = 1, .span = 3, .height = ChartHeight, .narrowHeight = ChartHeight});
    minute->setControl(m_interface);
    minute->setTableOrder(0, Qt::DescendingOrder);
    auto* hour = addCard(
        new Card(QStringLiteral("lastHour"), tr("Last hour"), m_hour, m_hour->model()),
        {.row = 1, .column = 3, .span = 3, .height = ChartHeight, .narrowHeight = ChartHeight});
    hour->setTableOrder(CountsModel::NoColumn, Qt::DescendingOrder);
}

void NetworkView::addCourse()
{
    m_chart = new CourseChart;
    m_direction = new QComboBox;
    m_direction->setObjectName(QStringLiteral("direction"));
    m_direction->setAccessibleName(tr("The direction that the chart shows"));
    m_direction->addItems({tr("Both directions"), tr("Downloaded"), tr("Uploaded")});
    connect(m_direction, &QComboBox::currentIndexChanged, this, &NetworkView::showCourse);
    m_chartCard = addCard(
        new Card(QStringLiteral("trafficOverTime"), tr("Traffic over time"), m_chart, m_course),
        {.row = 2, .height = ChartHeight, .narrowHeight = ChartHeight});
    m_chartCard->setControl(m_direction);
    m_chartCard->setTableOrder(0, Qt::DescendingOrder);
    connect(m_chart, &CourseChart::daysClicked, this, &View::daysRequested);
}

void NetworkView::addCountries()
{
    const QString title = tr("Traffic by country");
    m_countryLink = new QLabel;
    m_countryLink->setObjectName(QStringLiteral("countryDatabase"));
    m_countryLink->setTextInteractionFlags(Qt::LinksAccessibleByMouse |
                                           Qt::LinksAccessibleByKeyboard);
    m_countryLink->setText(
        QStringLiteral("<a href=\"download\">%1</a>").arg(tr("Download the country database")));
    m_countryLink->hide();
    connect(m_countryLink, &QLabel::linkActivated, this, &NetworkView::countryDatabaseWanted);
    m_map = new WorldMap;
    m_map->setEmptyText(tr("The countries that you exchange data with appear here."));
    m_mapCard = addCard(new Card(QStringLiteral("countryMap"), title, m_map, m_countries),
                        {.row = 3, .height = MapHeight, .stretch = 2, .narrowHeight = MapHeight});
    m_mapCard->setControl(m_countryLink);
    const QString tableTitle = tr("Countries");
    auto* table = new TrafficTable(*m_countries, tableTitle, NetworkTables::NamedDownload, {});
    m_countryCard =
        addCard(new Card(QStringLiteral("countryTraffic"), tableTitle, table, m_countries),
                {.row = 4, .span = 3, .height = TableHeight, .narrowHeight = TableHeight});
}

void NetworkView::addApplications()
{
    const QString title = tr("Traffic by application");
    auto* table =
        new TrafficTable(*m_applications, title, NetworkTables::NamedDownload,
                         {.exclude = tr("Exclude from counting…"), .include = tr("Count again")});
    m_applications->setIcons([this](const QString& path) {
        m_looks->want(path);
        return m_looks->icon(path);
    });
    m_applicationCard = addCard(
        new Card(QStringLiteral("applicationTraffic"), title, table, m_applications),
        {.row = 4, .column = 3, .span = 3, .height = TableHeight, .narrowHeight = TableHeight});
    connect(m_looks, &ApplicationLooks::found, this, &NetworkView::showApplications);
    connect(table, &TrafficTable::exclusionWanted, this, &NetworkView::confirmExclusion);
    connect(table, &TrafficTable::inclusionWanted, this, [this](const QStringList& paths) {
        for (const QString& path : paths) {
            Q_EMIT applicationExclusionRequested(path, false);
        }
    });
}

void NetworkView::addServices()
{
    const QString title = tr("Traffic by port");
    auto* table = new TrafficTable(*m_services, title, NetworkTables::ServiceDownload, {});
    m_serviceCard = addCard(new Card(QStringLiteral("portTraffic"), title, table, m_services),
                            {.row = 5, .height = TableHeight, .narrowHeight = TableHeight});
}

void NetworkView::addInterfaces()
{
    const QString title = tr("Network interfaces");
    auto* table = new TrafficTable(
        *m_interfaces, title, NetworkTables::InterfaceDownload,
        {.exclude = tr("Do not count this interface"), .include = tr("Count again")});
    m_interfaceCard =
        addCard(new Card(QStringLiteral("interfaces"), title, table, m_interfaces),
                {.row = 6, .height = ChartHeight, .stretch = 0, .narrowHeight = ChartHeight});
    m_excludedInterfaces =
        new ExcludedButton(tr("Excluded interfaces (%1)"),
                           tr("Interfaces that are no longer counted, to count them again"),
                           [this](const QString& key) { return interfaceName(key); });
    m_interfaceCard->setControl(m_excludedInterfaces);
    const auto request = [this](const QStringList& keys, bool excluded) {
        for (const QString& key : keys) {
            Q_EMIT interfaceExclusionRequested(key, excluded);
        }
    };
    connect(table, &TrafficTable::exclusionWanted, this,
            [request](const QStringList& keys) { request(keys, true); });
    connect(table, &TrafficTable::inclusionWanted, this,
            [request](const QStringList& keys) { request(keys, false); });
    connect(m_excludedInterfaces, &ExcludedButton::inclusionWanted, this,
            [request](const QString& key) { request({key}, false); });
}

void NetworkView::setRecent(ReadRecent read)
{
    m_readRecent = std::move(read);
    restartLive();
}

void NetworkView::setCapture(const std::optional<CaptureState>& state)
{
    if (m_isCaptureKnown && state == m_capture) {
        return;
    }
    m_capture = state;
    m_isCaptureKnown = true;
    showExplanations();
    showNotice();
}

void NetworkView::setCountryLookup(CountryLookup lookup)
{
    if (lookup == m_lookup) {
        return;
    }
    m_lookup = lookup;
    showExplanations();
}

void NetworkView::setRates(std::optional<double> download, std::optional<double> upload)
{
    m_downloadRate = download;
    m_uploadRate = upload;
    showTiles();
}

void NetworkView::setPortDescription(NetworkTables::PortDescription describe)
{
    m_describe = std::move(describe);
    showServices();
}

void NetworkView::setExcludedInterfaces(const QStringList& macAddresses)
{
    QSet<QString> keys;
    for (const QString& macAddress : macAddresses) {
        keys.insert(NetworkTables::interfaceKey(macAddress));
    }
    m_interfaces->setExcluded(keys);
    m_excludedInterfaces->setExcluded(keys.values());
}

void NetworkView::setExcludedApplications(const QStringList& paths)
{
    m_applications->setExcluded({paths.cbegin(), paths.cend()});
}

void NetworkView::refresh()
{
    ask<NetworkFigures>(
        [days = scope()](History& history) { return NetworkFigures::read(history, days); },
        [this](const NetworkFigures& figures) { return showFigures(figures); });
}

bool NetworkView::showFigures(const NetworkFigures& figures)
{
    m_figures = figures;
    showTiles();
    showCourse();
    showTables();
    showExplanations();
    showInterfaceChoice();
    return !figures.isEmpty();
}

void NetworkView::showTiles()
{
    const TrafficTotals sum = m_figures.sum();
    const auto days = static_cast<qint64>(m_figures.days.size());
    QList<FigureTiles::Tile> tiles{{.caption = tr("Downloading"),
                                    .figure = rateText(m_downloadRate),
                                    .note = tr("In the last seconds"),
                                    .inFull = {}},
                                   {.caption = tr("Uploading"),
                                    .figure = rateText(m_uploadRate),
                                    .note = tr("In the last seconds"),
                                    .inFull = {}},
                                   bytesTile(tr("Downloaded"), sum.download, {}),
                                   bytesTile(tr("Uploaded"), sum.upload, {})};
    if (days > 1) {
        tiles.append(bytesTile(tr("Both, per day"), sum.sum() / days,
                               tr("Mean of %1 days").arg(Format::count(days))));
    }
    m_tiles->setTiles(tiles);
}

void NetworkView::showCourse()
{
    const auto direction = static_cast<Direction>(m_direction->currentIndex());
    const auto valueOf = [direction](const TrafficTotals& traffic) {
        return static_cast<double>(direction == Direction::Both       ? traffic.sum()
                                   : direction == Direction::Download ? traffic.download
                                                                      : traffic.upload);
    };
    const Quantity quantity{.name = direction == Direction::Both ? tr("Traffic")
                                                                 : m_direction->currentText(),
                            .kind = Quantity::Kind::Bytes};
    QList<FiguresModel::Row> rows;
    if (m_figures.isOneDay) {
        QHash<int, double> byHour;
        for (const TrafficHour& hour : std::as_const(m_figures.hours)) {
            rows.append({hour.hour, hour.traffic.download, hour.traffic.upload});
            byHour.insert(hour.hour, valueOf(hour.traffic));
        }
        m_chart->setHours(m_figures.last, quantity, byHour);
    } else if (m_figures.first.isValid()) {
        QMap<QDate, double> byDay;
        for (const TrafficDay& day : std::as_const(m_figures.days)) {
            rows.append({day.day, day.traffic.download, day.traffic.upload});
            byDay.insert(day.day, valueOf(day.traffic));
        }
        m_chart->setDays(m_figures.first, m_figures.last, quantity, byDay);
    }
    m_course->setRows(rows);
}

void NetworkView::showTables()
{
    showApplications();
    showServices();
    m_countries->setRows(NetworkTables::countries(m_figures.countries));
    QList<CountryValue> values;
    for (const CountryTraffic& one : std::as_const(m_figures.countries)) {
        values.append({.code = one.country,
                       .download = static_cast<quint64>(one.traffic.download),
                       .upload = static_cast<quint64>(one.traffic.upload)});
    }
    m_map->setValues(values);
    m_interfaces->setRows(NetworkTables::interfaces(m_figures.interfaces));
}

void NetworkView::showApplications()
{
    m_applications->setRows(NetworkTables::applications(
        m_figures.applications, [this](const ApplicationTraffic& application) {
            return m_looks->name(application.path, application.name);
        }));
    m_applications->touch(); // An icon may have been found.
}

void NetworkView::showServices()
{
    m_services->setRows(NetworkTables::services(m_figures.services, m_describe));
}

void NetworkView::showExplanations()
{
    const QString shared = scope().profileId
                               ? tr("Of all profiles: interfaces are not counted by profile")
                               : QString();
    for (Card* card : {m_tilesCard, m_chartCard, m_interfaceCard}) {
        card->setExplanation(shared);
    }
    const bool isLimited = m_capture && m_capture->backEnd == CaptureState::BackEnd::Counters;
    const QString missing = isLimited ? tr("Not counted now: packets cannot be captured. See the "
                                           "note above.")
                                      : QString();
    m_applicationCard->setExplanation(missing);
    m_serviceCard->setExplanation(missing);
    const bool lacksDatabase = m_lookup == CountryLookup::NoDatabase;
    m_mapCard->setExplanation(isLimited ? missing
                              : lacksDatabase
                                  ? tr("Statistics per country do not work without a country "
                                       "database")
                                  : QString());
    const bool isServed =
        isSignalConnected(QMetaMethod::fromSignal(&NetworkView::countryDatabaseWanted));
    m_countryLink->setVisible(lacksDatabase && isServed);
}

QString NetworkView::interfaceName(const QString& macAddress) const
{
    for (auto it = m_figures.known.cbegin(); it != m_figures.known.cend(); ++it) {
        if (NetworkTables::interfaceKey(it.key()) == NetworkTables::interfaceKey(macAddress) &&
            !it->description.isEmpty()) {
            return it->description;
        }
    }
    return macAddress;
}

void NetworkView::showInterfaceChoice()
{
    const QStringList interfaces = m_live.interfaces();
    for (int item = m_interface->count() - 1; item > 0; --item) {
        if (!interfaces.contains(m_interface->itemData(item).toString())) {
            m_interface->removeItem(item);
        }
    }
    for (const QString& macAddress : interfaces) {
        const int item = m_interface->findData(macAddress);
        if (item < 0) {
            m_interface->addItem(interfaceName(macAddress), macAddress);
        } else {
            m_interface->setItemText(item, interfaceName(macAddress));
        }
    }
}

void NetworkView::followLive()
{
    if (!isVisible() || !m_readRecent) {
        return;
    }
    const std::optional<QList<SecondTraffic>> recent = m_readRecent(m_live.newest());
    if (!recent) {
        m_liveTimer.stop(); // The reason is in the log, which need not repeat it.
        return;
    }
    m_live.take(*recent);
    showInterfaceChoice();
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QString macAddress = m_interface->currentData().toString();
    m_minute->setTraffic(m_live, now, macAddress);
    m_hour->setTraffic(m_live, now, macAddress);
}

void NetworkView::restartLive()
{
    m_live.clear();
    if (isVisible()) {
        m_liveTimer.start();
        followLive();
    }
}

void NetworkView::showEvent(QShowEvent* event)
{
    View::showEvent(event);
    restartLive();
}

void NetworkView::hideEvent(QHideEvent* event)
{
    m_liveTimer.stop();
    View::hideEvent(event);
}

std::optional<Notice::Content> NetworkView::countingNotice() const
{
    if (inputState() == InputState::Paused) {
        return NetworkNotice::paused();
    }
    if (inputState() == InputState::ReadOnly) {
        return NetworkNotice::readOnly();
    }
    if (!m_isCaptureKnown) {
        return std::nullopt;
    }
    return m_capture ? NetworkNotice::forCapture(*m_capture) : NetworkNotice::off();
}

bool NetworkView::keepsCards() const
{
    return !m_live.isEmpty();
}

Notice::Content NetworkView::emptyNotice() const
{
    return {.icon = QStringLiteral("network"),
            .title = tr("No traffic was counted on these days"),
            .text = tr("What you download and upload appears here, by interface, application, "
                       "country and port, within a minute of its start. If nothing appears, "
                       "choose other days above."),
            .command = {},
            .button = {}};
}

void NetworkView::confirmExclusion(const QStringList& paths)
{
    const QString name = paths.size() == 1 ? m_looks->name(paths.constFirst(), {}) : QString();
    ExclusionQuestion::ask(this, paths.size(), name, [this, paths] {
        for (const QString& path : paths) {
            Q_EMIT applicationExclusionRequested(path, true);
        }
    });
}
