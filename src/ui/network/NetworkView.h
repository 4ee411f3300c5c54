// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "network/CaptureState.h"
#include "ui/View.h"
#include "ui/network/LiveTraffic.h"
#include "ui/network/NetworkTables.h"

#include <QSet>

class ApplicationLooks;
class CourseChart;
class ExcludedButton;
class FigureTiles;
class FiguresModel;
class LiveChart;
class QComboBox;
class QLabel;
class TrafficTable;
class WorldMap;

/// What crossed the network: now, over the chosen days, and by interface, application, country and
/// service. How it is watched and what is excluded from counting it is told; it only asks for
/// changes. Thread: main.
class NetworkView : public View
{
    Q_OBJECT

public:
    explicit NetworkView(ViewContext context, QWidget* parent = nullptr);

    /// Reads the traffic of the last hour from a second on, or all of it.
    using ReadRecent =
        std::function<std::optional<QList<SecondTraffic>>(std::optional<qint64> since)>;

    /// Where the live charts read, once a second while they are seen.
    void setRecent(ReadRecent read);

    /// How traffic is watched; nothing where it is not, by the user's wish.
    void setCapture(const std::optional<CaptureState>& state);

    enum class CountryLookup
    {
        Possible,
        NoDatabase,
    };

    void setCountryLookup(CountryLookup lookup);

    /// The rates of the last seconds, in bytes; nothing where no traffic is watched.
    void setRates(std::optional<double> download, std::optional<double> upload);

    /// Finds what a port is for.
    void setPortDescription(NetworkTables::PortDescription describe);

    /// Shows these, by MAC address and path, as excluded from counting.
    void setExcludedInterfaces(const QStringList& macAddresses);
    void setExcludedApplications(const QStringList& paths);

Q_SIGNALS:
    /// The user wants an interface excluded from counting, or counted again.
    void interfaceExclusionRequested(const QString& macAddress, bool excluded);

    /// As above of an application, by path; an exclusion was confirmed.
    void applicationExclusionRequested(const QString& path, bool excluded);

    /// The user wants the database of countries downloaded.
    void countryDatabaseWanted();

protected:
    void refresh() override;
    Notice::Content emptyNotice() const override;
    std::optional<Notice::Content> countingNotice() const override;
    bool keepsCards() const override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    enum class Direction
    {
        Both,
        Download,
        Upload,
    };

    void addFigures();
    void addLive();
    void addCourse();
    void addCountries();
    void addApplications();
    void addServices();
    void addInterfaces();
    bool showFigures(const NetworkFigures& figures);
    void showTiles();
    void showCourse();
    void showTables();
    void showApplications();
    void showServices();
    void showInterfaceChoice();
    void showExplanations();
    void followLive();
    void restartLive();
    QString interfaceName(const QString& macAddress) const;
    void confirmExclusion(const QStringList& paths);

    NetworkFigures m_figures;
    LiveTraffic m_live;
    ReadRecent m_readRecent;
    QTimer m_liveTimer;
    std::optional<double> m_downloadRate;
    std::optional<double> m_uploadRate;
    std::optional<CaptureState> m_capture;
    bool m_isCaptureKnown = false;
    CountryLookup m_lookup = CountryLookup::Possible;
    NetworkTables::PortDescription m_describe;
    ApplicationLooks* m_looks;
    FigureTiles* m_tiles = nullptr;
    Card* m_tilesCard = nullptr;
    LiveChart* m_minute = nullptr;
    LiveChart* m_hour = nullptr;
    QComboBox* m_interface = nullptr; ///< Of the live charts; all, or one.
    CourseChart* m_chart = nullptr;
    Card* m_chartCard = nullptr;
    QComboBox* m_direction = nullptr;
    FiguresModel* m_course;
    TrafficModel* m_applications;
    TrafficModel* m_services;
    TrafficModel* m_countries;
    TrafficModel* m_interfaces;
    Card* m_applicationCard = nullptr;
    Card* m_serviceCard = nullptr;
    WorldMap* m_map = nullptr;
    Card* m_mapCard = nullptr;
    Card* m_countryCard = nullptr;
    Card* m_interfaceCard = nullptr;
    QLabel* m_countryLink = nullptr;
    ExcludedButton* m_excludedInterfaces = nullptr;
};
