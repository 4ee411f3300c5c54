// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestRegistry.h"
#include "ui/MessageBanners.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <algorithm>

class MessageBannersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheNewestThree();
    void takesOverWhatChanged();
    void tabLeadsFromTopToBottom();
    void leadsOnAndGoesForGood();
    void showsForeignWordsAsTheyStand();

private:
    static QList<WindowMessage> messages(int count);
    static QStringList shown(const MessageBanners& banners);
};

QList<WindowMessage> MessageBannersTest::messages(int count)
{
    QList<WindowMessage> messages(count);
    for (int i = 0; i < count; ++i) {
        messages[i].id = i + 1;
        messages[i].text = QString::number(i + 1);
    }
    return messages;
}

QStringList MessageBannersTest::shown(const MessageBanners& banners)
{
    QStringList texts;
    QList<QLabel*> labels = banners.findChildren<QLabel*>(QStringLiteral("bannerText"));
    std::sort(labels.begin(), labels.end(), [&banners](const QLabel* one, const QLabel* other) {
        return one->mapTo(&banners, QPoint()).y() < other->mapTo(&banners, QPoint()).y();
    });
    for (const QLabel* label : std::as_const(labels)) {
        if (label->isVisible()) {
            texts += label->text();
        }
    }
    return texts;
}

void MessageBannersTest::showsTheNewestThree()
{
    QWidget window;
    MessageBanners banners(&window);
    window.resize(800, 600);
    window.show();
    banners.resize(800, 400);
    banners.setMessages({});
    QVERIFY(banners.isHidden());
    const auto show = [&banners](const QList<WindowMessage>& messages) {
        banners.setMessages(messages);
        QTest::qWait(0); // For the layout.
        return shown(banners).join(u' ');
    };
    QCOMPARE(show(messages(3)), QStringLiteral("3 2 1"));
    const auto* more = banners.findChild<QLabel*>(QStringLiteral("moreMessages"));
    QVERIFY(!more->isVisible());
    QCOMPARE(show(messages(5)), QStringLiteral("5 4 3"));
    QCOMPARE(more->text(), QStringLiteral("2 more"));
    QVERIFY(more->isVisible());

    // Where another one goes, the button in focus keeps it.
    QList<WindowMessage> left = messages(5);
    QPointer<QToolButton> focused =
        banners.findChildren<QToolButton*>(QStringLiteral("dismiss")).constFirst();
    left.removeAt(3);
    QCOMPARE(show(left), QStringLiteral("5 3 2"));
    QVERIFY(focused);
    QCOMPARE(show({}), QString());
    QVERIFY(banners.isHidden());
}

void MessageBannersTest::takesOverWhatChanged()
{
    MessageBanners banners;
    const QSignalSpy followed(&banners, &MessageBanners::linkRequested);
    QList<WindowMessage> changing = messages(1);
    banners.setMessages(changing);
    banners.show();
    changing.first().text = QStringLiteral("new");
    changing.first().buttonText = QStringLiteral("Read");
    changing.first().link = QUrl(QStringLiteral("https://tallyvane.example/new"));
    banners.setMessages(changing);
    QCOMPARE(shown(banners), QStringList{QStringLiteral("new")});
    banners.findChild<QPushButton*>(QStringLiteral("bannerLink"))->click();
    QCOMPARE(followed.constFirst(), QVariantList{changing.constFirst().link});
}

void MessageBannersTest::tabLeadsFromTopToBottom()
{
    QWidget window;
    auto* first = new QPushButton(&window);
    auto* banners = new MessageBanners(&window);
    auto* last = new QPushButton(&window);
    window.show();
    for (int count = 1; count <= 3; ++count) { // Each newer than those that are there.
        banners->setMessages(messages(count));
        banners->orderTabs(first);
    }
    QStringList order;
    for (const QWidget* next = first->nextInFocusChain(); next != last;
         next = next->nextInFocusChain()) {
        QVERIFY(next != first);
        if (next->objectName() == u"dismiss") {
            order += next->parent()->findChild<QLabel*>(QStringLiteral("bannerText"))->text();
        }
    }
    QCOMPARE(order.join(u' '), QStringLiteral("3 2 1"));
}

void MessageBannersTest::leadsOnAndGoesForGood()
{
    MessageBanners banners;
    const QSignalSpy dismissed(&banners, &MessageBanners::dismissed);
    const QSignalSpy followed(&banners, &MessageBanners::linkRequested);
    const QUrl page(QStringLiteral("https://tallyvane.example/a?b=1"));
    connect(&banners, &MessageBanners::dismissed, &banners,
            [&banners] { banners.setMessages({}); });
    WindowMessage message;
    message.id = 7;
    message.buttonText = QStringLiteral("Read");
    message.link = page;
    banners.setMessages({message});
    banners.show();
    auto* link = banners.findChild<QPushButton*>(QStringLiteral("bannerLink"));
    QVERIFY(link->isVisible());
    QTest::keyClick(link, Qt::Key_Space);
    QCOMPARE(followed.constFirst(), QVariantList{page});
    QTest::keyClick(banners.findChild<QToolButton*>(QStringLiteral("dismiss")), Qt::Key_Space);
    QCOMPARE(dismissed.constFirst(), QVariantList{qint64(7)});
    QVERIFY(banners.isHidden());
}

void MessageBannersTest::showsForeignWordsAsTheyStand()
{
    MessageBanners banners;
    WindowMessage message;
    message.text = QStringLiteral("<b>bold</b> & \n") + QString(5000, u'x');
    message.buttonText = QStringLiteral("No link");
    banners.setMessages({message});
    banners.resize(700, 200);
    banners.show();
    const auto* text = banners.findChild<QLabel*>(QStringLiteral("bannerText"));
    QCOMPARE(text->textFormat(), Qt::PlainText);
    QVERIFY(text->text().startsWith(QStringLiteral("<b>bold</b> & x")));
    constexpr QChar zeroWidthSpace(0x200b); // Where the long word may wrap.
    QVERIFY(text->text().contains(zeroWidthSpace));
    QVERIFY(text->text().remove(zeroWidthSpace).size() <= 400);
    QVERIFY(banners.minimumSizeHint().width() < 200);
    QVERIFY(!banners.findChild<QPushButton*>(QStringLiteral("bannerLink"))->isVisible());
}

REGISTER_TEST(MessageBannersTest);
#include "MessageBannersTest.moc"
