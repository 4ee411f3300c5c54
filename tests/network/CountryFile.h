// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <array>
#include <string_view>
#include <vector>

/// Writes MaxMind DB files, as the format's public specification 2.0 tells, with one network after
/// another: what a test puts in. Its records are country/iso_code ones or flat country_code ones.
class CountryFile
{
public:
    enum class Layout
    {
        Nested,
        Flat,
    };

    /// `ipVersion` is 4 or 6; an IPv4 network lies in an IPv6 file at ::/96.
    CountryFile(int ipVersion, Layout layout)
        : m_ipVersion(ipVersion)
        , m_layout(layout)
    {
    }

    /// `bits` is the network's prefix, "1"s and "0"s.
    CountryFile& add(std::string_view bits, const QByteArray& code)
    {
        std::size_t node = 0;
        const auto side = [&bits](std::size_t i) { return bits[i] == '1' ? 1U : 0U; };
        for (std::size_t i = 0; i + 1 < bits.size(); ++i) {
            if (m_nodes[node][side(i)] == Empty) {
                m_nodes[node][side(i)] = static_cast<int>(m_nodes.size());
                m_nodes.push_back({Empty, Empty});
            }
            node = static_cast<std::size_t>(m_nodes[node][side(i)]);
        }
        m_nodes[node][side(bits.size() - 1)] = -2 - static_cast<int>(m_data.size());
        m_data += record(code);
        return *this;
    }

    QByteArray bytes() const
    {
        QByteArray tree;
        for (const auto& node : m_nodes) {
            for (const int target : node) {
                tree += bigEndian(recordOf(target), 3);
            }
        }
        return tree + QByteArray(16, '\0') + m_data + "\xab\xcd\xefMaxMind.com" + metadata();
    }

private:
    static constexpr int Empty = -1; ///< Below it: -2 less the offset of a record.

    static QByteArray bigEndian(quint64 value, int size)
    {
        QByteArray bytes;
        for (int i = size - 1; i >= 0; --i) {
            bytes += static_cast<char>(value >> (8 * i) & 0xff);
        }
        return bytes;
    }

    /// Control bytes: the type in the upper three bits, the size in the lower five.
    static QByteArray text(const QByteArray& value)
    {
        return static_cast<char>(2 << 5 | static_cast<int>(value.size())) + value;
    }

    static QByteArray map(int pairs) { return QByteArray(1, static_cast<char>(7 << 5 | pairs)); }

    static QByteArray number(int type, quint64 value, int size)
    {
        return static_cast<char>(type << 5 | size) + bigEndian(value, size);
    }

    QByteArray record(const QByteArray& code) const
    {
        return m_layout == Layout::Flat
                   ? map(1) + text("country_code") + text(code)
                   : map(1) + text("country") + map(1) + text("iso_code") + text(code);
    }

    quint64 recordOf(int target) const
    {
        const auto count = static_cast<quint64>(m_nodes.size());
        if (target >= 0) {
            return static_cast<quint64>(target);
        }
        return target == Empty ? count : count + 16 + static_cast<quint64>(-2 - target);
    }

    /// All that the reader asks for, the languages and the description being empty.
    QByteArray metadata() const
    {
        constexpr int short16 = 5;
        constexpr int long32 = 6;
        // Types beyond 7 stand, less 7, in a byte of their own.
        const QByteArray noLanguages("\0\4", 2);
        const QByteArray date("\1\2\1", 3);
        return map(9) + text("node_count") + number(long32, m_nodes.size(), 4) +
               text("record_size") + number(short16, 24, 2) + text("ip_version") +
               number(short16, static_cast<quint64>(m_ipVersion), 2) + text("database_type") +
               text("test") + text("languages") + noLanguages +
               text("binary_format_major_version") + number(short16, 2, 2) +
               text("binary_format_minor_version") + number(short16, 0, 2) + text("build_epoch") +
               date + text("description") + map(0);
    }

    int m_ipVersion;
    Layout m_layout;
    std::vector<std::array<int, 2>> m_nodes{{Empty, Empty}};
    QByteArray m_data;
};
