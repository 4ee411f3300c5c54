// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/ProfileFilter.h"

#include "ui/Icons.h"
#include "ui/Theme.h"

#include <QActionGroup>
#include <QMenu>

#include <algorithm>

ProfileFilter::ProfileFilter(QWidget* parent)
    : QPushButton(parent)
{
    setObjectName(QStringLiteral("profileFilter"));
    setIcon(Icons::symbol(QStringLiteral("profile")));
    setMinimumHeight(4 * Theme::Rhythm);
    setToolTip(tr("Whose counts are shown"));
    setMenu(new QMenu(this));
    hide();
}

void ProfileFilter::setProfiles(const QList<Entry>& profiles)
{
    if (profiles == m_profiles) {
        return;
    }
    m_profiles = profiles;
    rebuildMenu();
    setVisible(m_profiles.size() > 1);
    const bool isThere =
        !m_selected || std::any_of(m_profiles.cbegin(), m_profiles.cend(),
                                   [this](const Entry& entry) { return entry.id == *m_selected; });
    if (isThere) {
        showSelected();
    } else {
        select(std::nullopt);
    }
}

void ProfileFilter::rebuildMenu()
{
    menu()->clear();
    auto* group = new QActionGroup(menu());
    const auto add = [this, group](const QString& text, std::optional<int> id) {
        // A name is shown as it is: its ampersands name no key.
        QAction* action =
            menu()->addAction(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
        action->setCheckable(true);
        action->setData(id ? QVariant(*id) : QVariant());
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, id] { select(id); });
    };
    add(nameOf(std::nullopt), std::nullopt);
    menu()->addSeparator();
    for (const Entry& entry : std::as_const(m_profiles)) {
        add(entry.name, entry.id);
    }
}

void ProfileFilter::select(std::optional<int> profileId)
{
    const bool changes = profileId != m_selected;
    m_selected = profileId;
    showSelected();
    if (changes) {
        Q_EMIT profileChanged(m_selected);
    }
}

QString ProfileFilter::nameOf(std::optional<int> profileId) const
{
    const auto found =
        std::find_if(m_profiles.cbegin(), m_profiles.cend(),
                     [profileId](const Entry& entry) { return entry.id == profileId; });
    return found != m_profiles.cend() ? found->name : tr("All profiles");
}

void ProfileFilter::showSelected()
{
    constexpr int widest = 160;
    const QString name = nameOf(m_selected);
    setText(fontMetrics()
                .elidedText(name, Qt::ElideRight, widest)
                .replace(QLatin1Char('&'), QLatin1String("&&")));
    setAccessibleName(tr("Profile shown: %1").arg(name));
    const QVariant selected = m_selected ? QVariant(*m_selected) : QVariant();
    for (QAction* action : menu()->actions()) {
        action->setChecked(action->isCheckable() && action->data() == selected);
    }
}
