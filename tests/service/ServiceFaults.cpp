// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/ServiceFaults.h"

#include <QMetaEnum>

#include <algorithm>
#include <array>

bool Fault::actsOnRequest() const
{
    return kind == Kind::None || (kind != Kind::Status && when == When::AfterActing);
}

void ServiceFaults::add(const Fault& fault)
{
    m_ordered.append(fault);
}

void ServiceFaults::soak(quint32 seed, double share)
{
    m_random.seed(seed);
    m_share = share;
}

void ServiceFaults::clear()
{
    m_ordered.clear();
    m_share = 0;
}

Fault ServiceFaults::take(const QString& requestType)
{
    const auto it =
        std::find_if(m_ordered.begin(), m_ordered.end(), [&requestType](const Fault& fault) {
            return fault.requestType.isEmpty() || fault.requestType == requestType;
        });
    if (it != m_ordered.end()) {
        Fault fault = *it;
        if (--it->times <= 0) {
            m_ordered.erase(it);
        }
        return fault;
    }
    return m_share > 0 && m_random.generateDouble() < m_share ? randomFault() : Fault();
}

Fault ServiceFaults::randomFault()
{
    static constexpr std::array Statuses{300, 301, 302, 303, 305, 306, 400, 500, 501, 600};
    static constexpr int LongestDelayMs = 2000;
    const QMetaEnum kinds = QMetaEnum::fromType<Fault::Kind>();
    Fault fault;
    fault.kind = static_cast<Fault::Kind>(kinds.value(m_random.bounded(kinds.keyCount())));
    fault.when = m_random.bounded(2) == 0 ? Fault::When::BeforeActing : Fault::When::AfterActing;
    fault.status =
        Statuses.at(static_cast<std::size_t>(m_random.bounded(static_cast<int>(Statuses.size()))));
    fault.delayMs = m_random.bounded(LongestDelayMs);
    return fault;
}
