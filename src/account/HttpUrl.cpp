// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/HttpUrl.h"

QUrl httpUrl(const QString& text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const bool isHttp =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    return url.isValid() && isHttp && !url.host().isEmpty() ? url : QUrl();
}
