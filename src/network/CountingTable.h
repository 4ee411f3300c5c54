// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>

#include <algorithm>
#include <cstdint>
#include <vector>

/// A hash table for counting: values that are found, added to, and taken out all at once. It keeps
/// its memory when it is cleared, which Qt's hash does not, and allocates only to hold more keys
/// than ever before. One thread at a time.
///
/// The entries lie side by side in the order of their arrival; the slots, twice as many at least,
/// are probed one after the other and point to them. The hash carries Qt's seed of this process, so
/// that whoever chooses the keys cannot choose their slots.
template <typename Key, typename Value>
class CountingTable final
{
public:
    qsizetype size() const { return static_cast<qsizetype>(m_entries.size()); }

    bool contains(const Key& key) const { return !m_slots.empty() && m_slots[slotOf(key)] != Free; }

    /// The key's value, a new one where there was none; valid until the next key comes.
    Value& operator[](const Key& key)
    {
        if (m_entries.size() * 2 >= m_slots.size()) {
            resize(std::max(m_slots.size() * 2, SmallestSize));
        }
        std::uint32_t& slot = m_slots[slotOf(key)];
        if (slot == Free) {
            m_entries.push_back({key, {}});
            slot = static_cast<std::uint32_t>(m_entries.size());
        }
        return m_entries[slot - 1].value;
    }

    QHash<Key, Value> toHash() const
    {
        QHash<Key, Value> result;
        result.reserve(size());
        for (const Entry& entry : m_entries) {
            result.insert(entry.key, entry.value);
        }
        return result;
    }

    /// Keeps the memory; gives half of it back where little was used, so that the trace of a burst
    /// fades.
    void clear()
    {
        const bool large = m_entries.size() * 8 < m_slots.size() && m_slots.size() > SmallestSize;
        m_entries.clear();
        if (large) {
            resize(m_slots.size() / 2);
        } else {
            std::fill(m_slots.begin(), m_slots.end(), Free);
        }
    }

private:
    struct Entry
    {
        Key key;
        Value value;
    };

    static constexpr std::size_t SmallestSize = 16; ///< Of the slots; a power of two.
    static constexpr std::uint32_t Free = 0;

    /// Where the key is, or would be. There is always a free slot to end at.
    std::size_t slotOf(const Key& key) const
    {
        const std::size_t last = m_slots.size() - 1;
        std::size_t slot = qHash(key, m_seed) & last;
        while (m_slots[slot] != Free && !(m_entries[m_slots[slot] - 1].key == key)) {
            slot = (slot + 1) & last;
        }
        return slot;
    }

    void resize(std::size_t slotCount)
    {
        std::vector<Entry> entries;
        entries.reserve(slotCount / 2);
        entries.assign(m_entries.begin(), m_entries.end());
        m_entries = std::move(entries);
        m_slots = std::vector<std::uint32_t>(slotCount, Free);
        for (std::size_t index = 0; index < m_entries.size(); ++index) {
            m_slots[slotOf(m_entries[index].key)] = static_cast<std::uint32_t>(index + 1);
        }
    }

    std::size_t m_seed = QHashSeed::globalSeed();
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_slots; ///< An entry's index plus one, or `Free`.
};
