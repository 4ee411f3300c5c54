// SPDX-License-Identifier: GPL-3.0-or-later
#include "service/AuthorizationPage.h"

namespace {

QByteArray page(const QString& body)
{
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                          "<title>Tallyvane test service</title><style>"
                          ":root { color-scheme: light dark; font: 1.1rem/1.5 sans-serif; }"
                          "body { max-width: 32rem; margin: 4rem auto; padding: 0 1rem; }"
                          "label { display: block; margin: 1rem 0; }"
                          "input, button { font: inherit; padding: 0.3rem 0.6rem; }"
                          "</style></head><body>%1</body></html>\n")
        .arg(body)
        .toUtf8();
}

} // namespace

QByteArray AuthorizationPage::question(const QString& computer, const QStringList& userNames)
{
    QString options;
    for (const QString& name : userNames) {
        options += QStringLiteral("<option value=\"%1\">").arg(name.toHtmlEscaped());
    }
    const QString first = userNames.value(0, QStringLiteral("someone"));
    return page(QStringLiteral(
                    "<h1>Link this computer</h1>"
                    "<p>The client on <strong>%1</strong> wants to send its counts here. This is "
                    "a service for tests: an account needs no more than a name.</p>"
                    "<form method=\"post\"><label>Account <input name=\"username\" "
                    "value=\"%2\" list=\"accounts\" required></label>"
                    "<datalist id=\"accounts\">%3</datalist>"
                    "<input type=\"hidden\" name=\"computer\" value=\"%1\">"
                    "<button>Link this computer</button></form>")
                    .arg(computer.toHtmlEscaped(), first.toHtmlEscaped(), options));
}

QByteArray AuthorizationPage::thanks()
{
    return page(QStringLiteral("<h1>Linked</h1><p>The client will notice within seconds. This page "
                               "can be closed.</p>"));
}

QByteArray AuthorizationPage::unknownClient()
{
    return page(QStringLiteral("<h1>Nobody waits</h1><p>No client has asked for this page, or it "
                               "asked more than an hour ago. Begin again in the client.</p>"));
}
