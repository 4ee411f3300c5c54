// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/Card.h"

#include "base/Format.h"
#include "ui/CountsTable.h"
#include "ui/Icons.h"
#include "ui/TableText.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QSaveFile>
#include <QStackedLayout>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

Card::Card(const QString& name, const QString& title, QWidget* picture, QAbstractItemModel* model,
           QWidget* parent)
    : QFrame(parent)
    , m_name(name)
    , m_model(model)
    , m_title(new QLabel(title, this))
    , m_head(new QHBoxLayout)
    , m_explanation(new QLabel(this))
    , m_menuButton(new QToolButton(this))
    , m_pages(new QStackedLayout)
    , m_table(qobject_cast<CountsTable*>(picture))
{
    setObjectName(name);
    setAccessibleName(title);
    m_title->setObjectName(QStringLiteral("title"));
    m_explanation->setObjectName(QStringLiteral("explanation"));
    m_explanation->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_explanation->hide();
    m_pages->addWidget(picture);
    picture->setAccessibleName(title);

    m_head->setSpacing(Theme::Rhythm);
    m_head->addWidget(m_title, 1);
    m_head->addWidget(m_menuButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::Gap, Theme::Rhythm, Theme::Rhythm, Theme::Gap);
    layout->setSpacing(0);
    layout->addLayout(m_head);
    layout->addWidget(m_explanation);
    layout->addSpacing(Theme::Rhythm);
    auto* body = new QHBoxLayout;
    body->setContentsMargins(0, 0, Theme::Rhythm, 0);
    body->addLayout(m_pages);
    layout->addLayout(body, 1);
    buildMenu();
    if (m_table != nullptr) {
        m_tableAction->setVisible(false);
        m_menuButton->setToolTip(tr("Copy or save"));
        m_table->setTabOrderAfter(m_menuButton);
    }
    applyTheme();
}

void Card::buildMenu()
{
    auto* menu = new QMenu(m_menuButton);
    const auto add = [this, menu](const QString& icon, const QString& text, const QString& name) {
        QAction* action = menu->addAction(Icons::symbol(icon), text);
        action->setObjectName(name);
        return action;
    };
    connect(add(QStringLiteral("copy"), tr("Copy figures"), QStringLiteral("copy")),
            &QAction::triggered, this, &Card::copy);
    connect(add(QStringLiteral("picture"), tr("Save picture…"), QStringLiteral("savePicture")),
            &QAction::triggered, this, &Card::savePicture);
    connect(add(QStringLiteral("save"), tr("Export data…"), QStringLiteral("exportData")),
            &QAction::triggered, this, &Card::exportData);
    menu->addSeparator();
    m_tableAction = add(QStringLiteral("table"), tr("Show as table"), QStringLiteral("showTable"));
    connect(m_tableAction, &QAction::triggered, this, &Card::toggleTable);

    m_menuButton->setObjectName(QStringLiteral("menu"));
    m_menuButton->setIcon(Icons::symbol(QStringLiteral("more")));
    m_menuButton->setIconSize({Theme::Gap, Theme::Gap});
    m_menuButton->setAutoRaise(true);
    m_menuButton->setFocusPolicy(Qt::StrongFocus);
    m_menuButton->setPopupMode(QToolButton::InstantPopup);
    m_menuButton->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    m_menuButton->setToolTip(tr("Copy, save or show as table"));
    m_menuButton->setAccessibleName(tr("Menu of “%1”").arg(m_title->text()));
    m_menuButton->setMenu(menu);
}

void Card::setExplanation(const QString& text)
{
    m_explanation->setText(text);
    m_explanation->setToolTip(text);
    m_explanation->setVisible(!text.isEmpty());
}

void Card::setControl(QWidget* control)
{
    m_head->insertWidget(m_head->indexOf(m_menuButton), control);
    setTabOrder(control, m_menuButton);
}

void Card::setTitle(const QString& title)
{
    m_title->setText(title);
    setAccessibleName(title);
    m_pages->widget(0)->setAccessibleName(title);
    m_menuButton->setAccessibleName(tr("Menu of “%1”").arg(title));
}

void Card::setTableOrder(int column, Qt::SortOrder order)
{
    m_sortColumn = column;
    m_sortOrder = order;
}

bool Card::focusFilter()
{
    if (m_table == nullptr || m_pages->currentWidget() != m_table) {
        return false;
    }
    m_table->focusFilter();
    return true;
}

void Card::toggleTable()
{
    if (m_table == nullptr) {
        m_table = new CountsTable(m_model, m_title->text(), m_sortColumn, m_sortOrder, this);
        m_pages->addWidget(m_table);
        m_table->setTabOrderAfter(m_menuButton);
    }
    const bool showTable = m_pages->currentWidget() != m_table;
    m_pages->setCurrentIndex(showTable ? m_pages->indexOf(m_table) : 0);
    m_tableAction->setText(showTable ? tr("Show as picture") : tr("Show as table"));
    m_tableAction->setIcon(
        Icons::symbol(showTable ? QStringLiteral("chart") : QStringLiteral("table")));
}

void Card::copy() const
{
    QApplication::clipboard()->setText(TableText::tabbed(*m_model));
}

void Card::savePicture()
{
    askForFile(tr("Save picture"), tr("PNG pictures (*.png)"), QStringLiteral("png"),
               [this](const QString& file) {
                   QPixmap picture = grab();
                   QPainter(&picture).fillRect(m_menuButton->geometry(),
                                               Theme::colours(palette()).card);
                   QSaveFile target(file);
                   const bool saved = target.open(QIODevice::WriteOnly) &&
                                      picture.save(&target, "PNG") && target.commit();
                   return saved ? QString() : target.errorString();
               });
}

void Card::exportData()
{
    askForFile(tr("Export data"), tr("CSV tables (*.csv)"), QStringLiteral("csv"),
               [this](const QString& file) { return TableText::writeCsv(*m_model, file); });
}

QString Card::fileName(const QString& suffix) const
{
    return QStringLiteral("tallyvane-%1-%2.%3")
        .arg(m_name, Format::isoDay(QDate::currentDate()), suffix);
}

void Card::askForFile(const QString& title, const QString& filter, const QString& suffix,
                      const std::function<QString(const QString&)>& write)
{
    const QDir home(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    auto* dialog = new QFileDialog(this, title, home.path(), filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    dialog->selectFile(fileName(suffix));
    connect(dialog, &QFileDialog::fileSelected, this, [this, title, write](const QString& file) {
        const QString problem = write(file);
        if (!problem.isEmpty()) {
            auto* box = new QMessageBox(QMessageBox::Warning, title,
                                        tr("The file %1 was not written: %2. Choose another place.")
                                            .arg(QDir::toNativeSeparators(file), problem),
                                        QMessageBox::Ok, this);
            box->setAttribute(Qt::WA_DeleteOnClose);
            box->open();
        }
    });
    dialog->open();
}

void Card::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        applyTheme();
    }
    QFrame::changeEvent(event);
}

void Card::applyTheme()
{
    m_title->setFont(Theme::font(Theme::TextSize::Title));
    m_explanation->setFont(Theme::font(Theme::TextSize::Caption));
    m_explanation->setPalette(Theme::mutedPalette(palette()));
}

void Card::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Theme::drawCard(painter, rect(), palette());
}
