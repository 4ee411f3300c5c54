// SPDX-License-Identifier: GPL-3.0-or-later
#include "account/PostBody.h"

#include <QBuffer>

#include <algorithm>
#include <utility>

namespace {

std::unique_ptr<QIODevice> bufferOf(const QByteArray& content)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(content);
    (void)buffer->open(QIODevice::ReadOnly);
    return buffer;
}

} // namespace

PostBody::PostBody(std::unique_ptr<QIODevice> source, QObject* parent)
    : QIODevice(parent)
    , m_source(std::move(source))
    , m_size(m_source->size())
{
    (void)open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

PostBody::PostBody(const QByteArray& content, QObject* parent)
    : PostBody(bufferOf(content), parent)
{
}

PostBody::~PostBody() = default;

qint64 PostBody::size() const
{
    return m_size;
}

bool PostBody::reset()
{
    const bool wasRead = pos() > 0;
    if (wasRead && !std::exchange(m_mayRestart, false)) {
        return false;
    }
    return m_source->reset() && QIODevice::reset();
}

void PostBody::permitRestart()
{
    m_mayRestart = pos() > 0;
}

qint64 PostBody::readData(char* data, qint64 longest)
{
    return m_source->read(data, std::min(longest, m_size - pos()));
}

qint64 PostBody::writeData(const char*, qint64)
{
    return -1;
}
