// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/TableText.h"

#include "ui/CountsModel.h"

#include <QAbstractItemModel>
#include <QSaveFile>
#include <QStringList>

namespace {

/// How a table is written.
struct Form
{
    QString separator;
    QString lineEnd;
    int role; ///< Of the cells' values.
    QString (*quoted)(const QString& text);
};

QString line(const QStringList& cells, const Form& form)
{
    QStringList quoted;
    for (const QString& cell : cells) {
        quoted.append(form.quoted(cell));
    }
    return quoted.join(form.separator) + form.lineEnd;
}

QString rowText(const QAbstractItemModel& model, int row, const Form& form)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column) {
        cells.append(model.index(row, column).data(form.role).toString());
    }
    return line(cells, form);
}

QString tableText(const QAbstractItemModel& model, const Form& form)
{
    QStringList header;
    for (int column = 0; column < model.columnCount(); ++column) {
        const QVariant own = model.headerData(column, Qt::Horizontal, form.role);
        header.append((own.isValid() ? own : model.headerData(column, Qt::Horizontal)).toString());
    }
    QString text = line(header, form);
    for (int row = 0; row < model.rowCount(); ++row) {
        text += rowText(model, row, form);
    }
    return text;
}

QString inOneCell(const QString& text)
{
    return QString(text)
        .replace(QLatin1Char('\t'), QLatin1Char(' '))
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

Form tabbedForm()
{
    return {QStringLiteral("\t"), QStringLiteral("\n"), Qt::DisplayRole, &inOneCell};
}

} // namespace

QString TableText::tabbed(const QAbstractItemModel& model)
{
    return tableText(model, tabbedForm());
}

QString TableText::tabbedRow(const QAbstractItemModel& model, int row)
{
    return rowText(model, row, tabbedForm());
}

QString TableText::csv(const QAbstractItemModel& model)
{
    return tableText(
        model, {QStringLiteral(","), QStringLiteral("\r\n"), CountsModel::SortRole, &csvCell});
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
