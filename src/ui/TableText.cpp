// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TableText.h"

#include "ui/CountsModel.h"

#include <QAbstractItemModel>
#include <QSaveFile>
#include <QStringList>

#include <functional>

namespace {

QString lines(const QAbstractItemModel& model, const QString& separator, const QString& lineEnd,
              const std::function<QString(const QModelIndex&)>& cellText,
              const std::function<QString(const QString&)>& quoted)
{
    QStringList header;
    for (int column = 0; column < model.columnCount(); ++column) {
        header.append(quoted(model.headerData(column, Qt::Horizontal).toString()));
    }
    QString text = header.join(separator) + lineEnd;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column) {
            cells.append(quoted(cellText(model.index(row, column))));
        }
        text += cells.join(separator) + lineEnd;
    }
    return text;
}

QString inOneCell(QString text)
{
    return text.replace(QLatin1Char('\t'), QLatin1Char(' '))
        .replace(QLatin1Char('\n'), QLatin1Char(' '));
}

QString csvCell(const QString& text)
{
    static const QString special = QStringLiteral(",\"\r\n");
    for (const QChar character : special) {
        if (text.contains(character)) {
            return QLatin1Char('"') +
                   QString(text).replace(QLatin1Char('"'), QLatin1String("\"\"")) +
                   QLatin1Char('"');
        }
    }
    return text;
}

} // namespace

QString TableText::tabbed(const QAbstractItemModel& model)
{
    return lines(
        model, QStringLiteral("\t"), QStringLiteral("\n"),
        [](const QModelIndex& index) { return index.data().toString(); }, inOneCell);
}

QString TableText::csv(const QAbstractItemModel& model)
{
    return lines(
        model, QStringLiteral(","), QStringLiteral("\r\n"),
        [](const QModelIndex& index) { return index.data(CountsModel::SortRole).toString(); },
        csvCell);
}

QString TableText::writeCsv(const QAbstractItemModel& model, const QString& file)
{
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly) || target.write(csv(model).toUtf8()) < 0 ||
        !target.commit()) {
        return target.errorString();
    }
    return {};
}
