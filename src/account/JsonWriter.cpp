// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/JsonWriter.h"

#include "account/JsonReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Turns a tree into Qt's JSON values, down to the first thing that JSON cannot carry.
class Conversion
{
    Q_DECLARE_TR_FUNCTIONS(JsonWriter)

public:
    QJsonValue convert(const QVariant& value)
    {
        switch (value.typeId()) {
        case QMetaType::UnknownType:
        case QMetaType::Nullptr:
            return QJsonValue::Null;
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::QString:
            return value.toString();
        case QMetaType::QVariantMap:
            return object(value.toMap());
        case QMetaType::QVariantList:
        case QMetaType::QStringList:
            return array(value.toList());
        default:
            return number(value);
        }
    }

    QString error() const { return m_error; }

private:
    QJsonValue number(const QVariant& value)
    {
        switch (value.typeId()) {
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::Long:
        case QMetaType::LongLong:
            return value.toLongLong();
        case QMetaType::ULong:
        case QMetaType::ULongLong:
            return unsignedNumber(value.toULongLong());
        case QMetaType::Float:
        case QMetaType::Double:
            return fraction(value.toDouble());
        default:
            return fail(tr("a value of the type %1").arg(QLatin1String(value.metaType().name())));
        }
    }

    QJsonValue unsignedNumber(quint64 number)
    {
        constexpr auto largest = static_cast<quint64>(std::numeric_limits<qint64>::max());
        return number <= largest ? QJsonValue(static_cast<qint64>(number)) : failOnNumber();
    }

    QJsonValue fraction(double number)
    {
        constexpr double firstBeyond64Bits = 9223372036854775808.0; // 2^63
        return std::abs(number) < firstBeyond64Bits ? QJsonValue(number) : failOnNumber();
    }

    QJsonValue object(const QVariantMap& map)
    {
        QJsonObject result;
        if (!enter()) {
            return QJsonValue::Null;
        }
        for (auto member = map.begin(); member != map.end() && m_error.isEmpty(); ++member) {
            result.insert(member.key(), convert(member.value()));
        }
        --m_nesting;
        return result;
    }

    QJsonValue array(const QVariantList& list)
    {
        QJsonArray result;
        if (!enter()) {
            return QJsonValue::Null;
        }
        for (auto value = list.begin(); value != list.end() && m_error.isEmpty(); ++value) {
            result.append(convert(*value));
        }
        --m_nesting;
        return result;
    }

    bool enter()
    {
        if (++m_nesting > JsonReader::DeepestNesting) {
            fail(tr("nested too deep"));
            return false;
        }
        return true;
    }

    QJsonValue failOnNumber() { return fail(tr("number out of range")); }

    QJsonValue fail(const QString& error)
    {
        m_error = error;
        return QJsonValue::Null;
    }

    int m_nesting = 0;
    QString m_error;
};

/// Gives each level this many spaces instead of four. No line feed is within a string: those are
/// written as "\n".
QByteArray indented(const QByteArray& lines, int width)
{
    constexpr qsizetype qtWidth = 4;
    QByteArray result;
    for (const QByteArray& line : lines.trimmed().split('\n')) {
        const auto* const text =
            std::find_if(line.begin(), line.end(), [](char c) { return c != ' '; });
        const qsizetype spaces = text - line.begin();
        result += QByteArray(spaces / qtWidth * width, ' ') + line.sliced(spaces) + '\n';
    }
    return result;
}

} // namespace

bool JsonWriter::stringify(const QVariant& tree)
{
    m_result.clear();
    Conversion conversion;
    const QJsonValue root = conversion.convert(tree);
    m_error = conversion.error();
    if (m_error.isEmpty() && !root.isObject() && !root.isArray()) {
        m_error = tr("neither an object nor an array");
    }
    if (!m_error.isEmpty()) {
        return false;
    }
    const QJsonDocument document =
        root.isObject() ? QJsonDocument(root.toObject()) : QJsonDocument(root.toArray());
    m_result = QString::fromUtf8(m_autoFormatting ? indented(document.toJson(), m_indent)
                                                  : document.toJson(QJsonDocument::Compact));
    return true;
}

QString JsonWriter::result() const
{
    return m_result;
}

QString JsonWriter::errorString() const
{
    return m_error;
}

void JsonWriter::setAutoFormatting(bool enabled)
{
    m_autoFormatting = enabled;
}

void JsonWriter::setAutoFormattingIndent(int width)
{
    m_indent = std::max(width, 0);
}
