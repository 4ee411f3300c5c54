// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/settings/ClientApiPanel.h"

#include "storage/Settings.h"
#include "ui/Theme.h"
#include "ui/settings/AddressList.h"
#include "ui/settings/RemarkLine.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QUrl>

#include <algorithm>
#include <limits>

namespace {

constexpr int LeastWidth = 560;
constexpr int FieldHeight = 4 * Theme::Rhythm;
constexpr int PortWidth = 12 * Theme::Rhythm;
constexpr int RestMs = 600;
constexpr int LastPort = std::numeric_limits<quint16>::max();
constexpr qsizetype LongestAddress = 39;    ///< Characters, of IPv6.
constexpr qsizetype LongestEntryShown = 24; ///< Of what is no address.

using Panel = ClientApiPanel;

QString offText()
{
    return Panel::tr("Off.");
}

QString listeningText(int httpPort, int websocketPort)
{
    return Panel::tr("Listening on http://localhost:%1\nand ws://localhost:%2.")
        .arg(httpPort)
        .arg(websocketPort);
}

QString refusedText(int port)
{
    return Panel::tr("Off: port %1 is in use by another program or may not be used. Choose "
                     "another.")
        .arg(port);
}

QString openText()
{
    return Panel::tr("&Open the API's page");
}

QString tryAgainText()
{
    return Panel::tr("&Try again");
}

QString equalPortsText()
{
    return Panel::tr("The two ports must differ.\nThey are stored once they do.");
}

QString listText()
{
    return Panel::tr("IP addresses, separated by commas. Each is compared letter by letter.");
}

QString everyoneText()
{
    return Panel::tr("The list is empty, so every address is allowed: any computer that reaches "
                     "this one can read the figures and switch profiles.");
}

QString faultText(const AddressList::Fault& fault)
{
    const QString entry = fault.entry.size() > LongestEntryShown
                              ? fault.entry.first(LongestEntryShown) + QChar(0x2026)
                              : fault.entry;
    if (entry.isEmpty()) {
        return Panel::tr("There is a comma without an address before or after it.");
    }
    if (fault.writtenAs.isEmpty()) {
        return Panel::tr("“%1” is no IP address, so it allows nobody.").arg(entry);
    }
    return Panel::tr("“%1” allows nobody as it is written. Write “%2”.")
        .arg(entry, fault.writtenAs);
}

/// The longest that may stand below the list.
QStringList addressTexts()
{
    const QString entry(LongestEntryShown + 1, QLatin1Char('0'));
    const QString address(LongestAddress, QLatin1Char('0'));
    return {listText(), everyoneText(), faultText({.entry = entry, .writtenAs = {}}),
            faultText({.entry = entry, .writtenAs = address})};
}

QSpinBox* makePortField(const QString& name, const QString& accessibleName, QWidget* parent)
{
    auto* field = new QSpinBox(parent);
    field->setObjectName(name);
    field->setAccessibleName(accessibleName);
    field->setRange(1, LastPort);
    field->setKeyboardTracking(false); // Half a number is no port.
    field->setFixedWidth(PortWidth);
    field->setMinimumHeight(FieldHeight);
    return field;
}

/// What the field shows; or, where nobody touched it, what is stored and may be no port.
int chosenPort(const QSpinBox& field, int stored)
{
    return field.value() == std::clamp(stored, 1, LastPort) ? stored : field.value();
}

QLabel* makeLabel(const QString& text, QWidget* field)
{
    auto* label = new QLabel(text, field->parentWidget());
    label->setBuddy(field);
    return label;
}

} // namespace

ClientApiPanel::ClientApiPanel(QWidget* parent)
    : QFrame(parent)
    , m_title(new QLabel(tr("Client API"), this))
    , m_enabled(
          new QCheckBox(tr("&Let other programs read the statistics and switch profiles"), this))
    , m_explanation(new QLabel(this))
    , m_status(new RemarkLine(QStringLiteral("status"), Theme::TextSize::Body,
                              {listeningText(LastPort, LastPort), refusedText(LastPort)}, this))
    , m_action(new QPushButton(this))
    , m_httpPort(makePortField(QStringLiteral("httpPort"), tr("HTTP port"), this))
    , m_websocketPort(makePortField(QStringLiteral("websocketPort"), tr("WebSocket port"), this))
    , m_portProblem(new RemarkLine(QStringLiteral("portProblem"), Theme::TextSize::Caption,
                                   {equalPortsText()}, this))
    , m_addresses(new QLineEdit(this))
    , m_reset(new QPushButton(tr("&Reset"), this))
    , m_addressRemark(new RemarkLine(QStringLiteral("addressRemark"), Theme::TextSize::Caption,
                                     addressTexts(), this))
{
    setObjectName(QStringLiteral("clientApi"));
    setMinimumWidth(LeastWidth);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Gap, Theme::Gap, Theme::Gap);
    layout->setSpacing(Theme::Rhythm);
    buildHead(*layout);
    auto* form = new QGridLayout;
    form->setHorizontalSpacing(Theme::Gap);
    form->setVerticalSpacing(Theme::Rhythm);
    form->setColumnStretch(2, 1);
    buildPorts(*form);
    buildAddresses(*form);
    layout->addSpacing(Theme::Rhythm);
    layout->addLayout(form);
    m_rest.setSingleShot(true);
    m_rest.setInterval(RestMs);
    m_chosen = chosenInSettings();
    fill();
    showState();
    followFields();
    applyTheme();
}

void ClientApiPanel::buildHead(QVBoxLayout& layout)
{
    m_enabled->setObjectName(QStringLiteral("enabled"));
    m_explanation->setText(tr("Programs on this computer, such as a status bar or a control "
                              "surface, can then read the figures, zurge, open the window and "
                              "switch profiles. Off at first."));
    m_explanation->setWordWrap(true);
    m_enabled->setAccessibleDescription(m_explanation->text());
    m_action->setObjectName(QStringLiteral("act"));
    m_action->setAutoDefault(false);
    m_action->setMinimumHeight(FieldHeight);
    int width = 0;
    for (const QString& text : {openText(), tryAgainText()}) {
        m_action->setText(text);
        width = std::max(width, m_action->sizeHint().width());
    }
    m_action->setFixedWidth(width + 2 * Theme::Rhythm);
    QSizePolicy keepingItsPlace = m_action->sizePolicy();
    keepingItsPlace.setRetainSizeWhenHidden(true);
    m_action->setSizePolicy(keepingItsPlace);

    auto* status = new QHBoxLayout;
    status->setSpacing(Theme::Gap);
    status->addWidget(m_status, 1);
    status->addWidget(m_action, 0, Qt::AlignTop);
    auto* below = new QVBoxLayout; // Its text stands below that of the check box.
    below->setContentsMargins(style()->pixelMetric(QStyle::PM_IndicatorWidth) +
                                  style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing),
                              0, 0, 0);
    below->setSpacing(Theme::Gap);
    below->addWidget(m_explanation);
    below->addLayout(status);
    layout.addWidget(m_title);
    layout.addWidget(m_enabled);
    layout.addLayout(below);
}

void ClientApiPanel::buildPorts(QGridLayout& form)
{
    form.addWidget(makeLabel(tr("&HTTP port"), m_httpPort), 0, 0);
    form.addWidget(m_httpPort, 0, 1);
    form.addWidget(makeLabel(tr("&WebSocket port"), m_websocketPort), 1, 0);
    form.addWidget(m_websocketPort, 1, 1);
    form.addWidget(m_portProblem, 0, 2, 2, 2, Qt::AlignVCenter);
}

void ClientApiPanel::buildAddresses(QGridLayout& form)
{
    m_addresses->setObjectName(QStringLiteral("addresses"));
    m_addresses->setAccessibleName(tr("Allowed addresses"));
    m_addresses->setMinimumHeight(FieldHeight);
    m_reset->setObjectName(QStringLiteral("reset"));
    m_reset->setAutoDefault(false);
    m_reset->setMinimumHeight(FieldHeight);
    m_reset->setToolTip(tr("Allow the programs on this computer alone"));
    form.addWidget(makeLabel(tr("&Allowed addresses"), m_addresses), 2, 0);
    form.addWidget(m_addresses, 2, 1, 1, 2);
    form.addWidget(m_reset, 2, 3);
    form.addWidget(m_addressRemark, 3, 1, 1, 3);
}

void ClientApiPanel::followFields()
{
    connect(m_enabled, &QCheckBox::clicked, this, &ClientApiPanel::storeEnabled);
    connect(m_action, &QPushButton::clicked, this, &ClientApiPanel::act);
    connect(&m_rest, &QTimer::timeout, this, &ClientApiPanel::storePorts);
    for (const QSpinBox* port : {m_httpPort, m_websocketPort}) {
        connect(port, &QSpinBox::valueChanged, &m_rest, qOverload<>(&QTimer::start));
        connect(port, &QSpinBox::editingFinished, this, &ClientApiPanel::storePorts);
    }
    connect(m_addresses, &QLineEdit::textChanged, this, &ClientApiPanel::showAddressRemark);
    connect(m_addresses, &QLineEdit::editingFinished, this, &ClientApiPanel::storeAddresses);
    connect(m_reset, &QPushButton::clicked, this, &ClientApiPanel::resetAddresses);
}

ClientApiPanel::Chosen ClientApiPanel::chosenInSettings()
{
    const Settings& settings = Settings::instance();
    return {.isEnabled = settings.value(SettingsKeys::ClientApiHttpEnable),
            .httpPort = settings.value(SettingsKeys::ClientApiHttpPort),
            .websocketPort = settings.value(SettingsKeys::ClientApiWebsocketPort),
            .addresses = settings.value(SettingsKeys::ClientApiHttpAllowedIps)};
}

void ClientApiPanel::fill()
{
    m_enabled->setChecked(m_chosen.isEnabled);
    m_httpPort->setValue(m_chosen.httpPort);
    m_websocketPort->setValue(m_chosen.websocketPort);
    m_rest.stop(); // Nobody chose these just now.
    showPortProblem();
    m_addresses->setText(m_chosen.addresses);
    showAddressRemark();
}

void ClientApiPanel::setState(const ClientApiState& state)
{
    m_state = state;
    showState();
    const Chosen chosen = chosenInSettings();
    if (chosen != m_chosen) {
        m_chosen = chosen;
        fill();
    }
}

void ClientApiPanel::store(const Chosen& chosen)
{
    if (chosen == m_chosen) {
        return;
    }
    m_chosen = chosen;
    Settings& settings = Settings::instance();
    settings.setValue(SettingsKeys::ClientApiHttpEnable, chosen.isEnabled);
    settings.setValue(SettingsKeys::ClientApiHttpPort, chosen.httpPort);
    settings.setValue(SettingsKeys::ClientApiWebsocketPort, chosen.websocketPort);
    settings.setValue(SettingsKeys::ClientApiHttpAllowedIps, chosen.addresses);
    Q_EMIT settingsChanged();
}

void ClientApiPanel::storeEnabled()
{
    Chosen chosen = m_chosen;
    chosen.isEnabled = m_enabled->isChecked();
    store(chosen);
}

void ClientApiPanel::storePorts()
{
    m_rest.stop();
    Chosen chosen = m_chosen;
    chosen.httpPort = chosenPort(*m_httpPort, m_chosen.httpPort);
    chosen.websocketPort = chosenPort(*m_websocketPort, m_chosen.websocketPort);
    showPortProblem();
    if (chosen.httpPort != chosen.websocketPort) {
        store(chosen);
    }
}

void ClientApiPanel::storeAddresses()
{
    if (!m_addresses->isModified()) {
        return;
    }
    Chosen chosen = m_chosen;
    chosen.addresses = AddressList::stored(m_addresses->text());
    m_addresses->setText(chosen.addresses);
    m_addresses->setModified(false);
    showAddressRemark();
    store(chosen);
}

void ClientApiPanel::resetAddresses()
{
    m_addresses->setText(SettingsKeys::ClientApiHttpAllowedIps.fallback);
    m_addresses->setModified(true);
    storeAddresses();
}

void ClientApiPanel::act()
{
    if (m_state.refusedPort) {
        Q_EMIT settingsChanged(); // Which lets the server try.
    } else {
        Q_EMIT linkRequested(QUrl(QStringLiteral("http://localhost:%1/").arg(m_state.httpPort)));
    }
}

void ClientApiPanel::showState()
{
    if (m_state.refusedPort) {
        m_status->setRemark(refusedText(*m_state.refusedPort), QStringLiteral("warning"));
    } else if (m_state.httpPort != 0) {
        m_status->setRemark(listeningText(m_state.httpPort, m_state.websocketPort),
                            QStringLiteral("check"));
    } else {
        m_status->setRemark(offText(), QStringLiteral("off"));
    }
    m_action->setText(m_state.refusedPort ? tryAgainText() : openText());
    m_action->setVisible(m_state.refusedPort || m_state.httpPort != 0);
}

void ClientApiPanel::showPortProblem()
{
    const bool areEqual = m_httpPort->value() == m_websocketPort->value();
    const QString problem = areEqual ? equalPortsText() : QString();
    m_portProblem->setRemark(problem, areEqual ? QStringLiteral("warning") : QString());
    m_httpPort->setAccessibleDescription(problem);
    m_websocketPort->setAccessibleDescription(problem);
}

void ClientApiPanel::showAddressRemark()
{
    const bool isTyping = m_addresses->isModified();
    const QString list = isTyping ? AddressList::stored(m_addresses->text()) : m_addresses->text();
    // Half an address is no mistake yet.
    const auto fault = isTyping ? std::nullopt : AddressList::firstFault(list);
    const bool isWarning = list.isEmpty() || fault;
    const QString text = list.isEmpty() ? everyoneText() : fault ? faultText(*fault) : listText();
    m_addressRemark->setRemark(text, isWarning ? QStringLiteral("warning") : QString());
    m_addresses->setAccessibleDescription(text);
    m_reset->setEnabled(list != SettingsKeys::ClientApiHttpAllowedIps.fallback);
}

void ClientApiPanel::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QFrame::changeEvent(event);
}

void ClientApiPanel::applyTheme()
{
    m_title->setFont(Theme::font(Theme::TextSize::Title));
    m_explanation->setFont(Theme::font(Theme::TextSize::Caption));
    m_explanation->setPalette(Theme::mutedPalette(palette()));
    const QPalette field = Theme::fieldPalette(palette());
    m_enabled->setPalette(field);
    m_httpPort->setPalette(field);
    m_websocketPort->setPalette(field);
    m_addresses->setPalette(field);
}

void ClientApiPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Theme::drawCard(painter, rect(), palette());
}
