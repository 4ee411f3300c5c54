// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QPainterPath>
#include <QSizeF>

#include <optional>

/// The outlines of the countries on a sheet, projected. Plain value. Any thread.
class WorldShapes
{
public:
    struct Country
    {
        QString code;         ///< Two capitals of ISO 3166-1.
        QPointF middle;       ///< Of its largest piece.
        QPainterPath outline; ///< Empty where a country is smaller than the sheet can show.
    };

    /// Those of the program's own resource, read when they are first asked for. Thread: main.
    static const WorldShapes& instance();

    /// Reads the form that the resource is written in, which its first lines describe. Nothing
    /// where a line is malformed, a country stands there twice or something lies off the sheet.
    static std::optional<WorldShapes> parse(QByteArrayView text);

    QSizeF size() const { return m_size; }

    const QList<Country>& countries() const { return m_countries; }

    /// The place of a code in `countries`; -1 where it has none.
    qsizetype indexOf(const QString& code) const { return m_places.value(code, -1); }

private:
    bool readSize(QByteArrayView line);
    bool readCountry(QByteArrayView line);

    QSizeF m_size;
    QList<Country> m_countries;
    QHash<QString, qsizetype> m_places;
};
