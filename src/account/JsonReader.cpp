// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/JsonReader.h"

#include <QByteArrayView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double FirstBeyond64Bits = 9223372036854775808.0; // 2^63

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isPartOfNumber(char c)
{
    return isDigit(c) || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// Where the string that begins at `start` has its closing quote.
qsizetype endOfString(QByteArrayView text, qsizetype start)
{
    qsizetype at = start + 1;
    while (at < text.size() && text[at] != '"') {
        at += text[at] == '\\' ? 2 : 1;
    }
    return at;
}

QByteArrayView numberAt(QByteArrayView text, qsizetype start)
{
    const auto* const end = std::find_if_not(text.begin() + start, text.end(), isPartOfNumber);
    return text.sliced(start, end - text.begin() - start);
}

/// True also for what is no number: that is left to the parser.
bool isInRange(QByteArrayView number)
{
    const QByteArrayView digits = number.sliced(number.front() == '-' ? 1 : 0);
    if (!digits.isEmpty() && std::all_of(digits.begin(), digits.end(), isDigit)) {
        bool fits = false;
        (void)number.toLongLong(&fits);
        return fits;
    }
    return std::abs(number.toDouble()) < FirstBeyond64Bits;
}

QVariant treeOf(const QJsonValue& value);

QVariantMap treeOf(const QJsonObject& object)
{
    QVariantMap tree;
    for (auto member = object.begin(); member != object.end(); ++member) {
        tree.insert(tree.cend(), member.key(), treeOf(member.value()));
    }
    return tree;
}

QVariantList treeOf(const QJsonArray& array)
{
    QVariantList tree;
    tree.reserve(array.size());
    for (const QJsonValue value : array) {
        tree.append(treeOf(value));
    }
    return tree;
}

QVariant treeOf(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Object:
        return treeOf(value.toObject());
    case QJsonValue::Array:
        return treeOf(value.toArray());
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return {};
    case QJsonValue::Bool:
    case QJsonValue::Double:
    case QJsonValue::String:
        return value.toVariant();
    }
    return {};
}

} // namespace

bool JsonReader::parse(const QString& text)
{
    return parse(text.toUtf8());
}

bool JsonReader::parse(const QByteArray& utf8)
{
    m_result = {};
    m_error.clear();
    if (!keepsLimits(utf8)) {
        return false;
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(utf8, &error);
    if (document.isNull()) {
        return fail(tr("%1 at byte %2").arg(error.errorString()).arg(error.offset));
    }
    m_result = document.isObject() ? QVariant(treeOf(document.object()))
                                   : QVariant(treeOf(document.array()));
    return true;
}

QVariant JsonReader::result() const
{
    return m_result;
}

QString JsonReader::errorString() const
{
    return m_error;
}

bool JsonReader::fail(const QString& error)
{
    m_error = error;
    return false;
}

/// Steps over the text once before anything is built from it.
bool JsonReader::keepsLimits(const QByteArray& utf8)
{
    if (utf8.size() > LargestInput) {
        return fail(tr("more than %1 bytes").arg(LargestInput));
    }
    int nesting = 0;
    for (qsizetype at = 0; at < utf8.size(); ++at) {
        const char c = utf8.at(at);
        if (c == '"') {
            at = endOfString(utf8, at);
        } else if (c == '{' || c == '[') {
            if (++nesting > DeepestNesting) {
                return fail(tr("nested too deep at byte %1").arg(at));
            }
        } else if (c == '}' || c == ']') {
            --nesting;
        } else if (c == '-' || isDigit(c)) {
            const QByteArrayView number = numberAt(utf8, at);
            if (!isInRange(number)) {
                return fail(tr("number out of range at byte %1").arg(at));
            }
            at += number.size() - 1;
        }
    }
    return true;
}
