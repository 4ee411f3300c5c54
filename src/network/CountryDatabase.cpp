// SPDX-License-Identifier: GPL-3.0-or-later
#include "network/CountryDatabase.h"

#include "network/LocalNetwork.h"

#include <QFile>
#include <QFileInfo>

#include <arpa/inet.h>
#include <maxminddb.h>
#include <netinet/in.h>
#include <sys/mman.h>

#include <array>
#include <optional>

namespace {

/// Where a record keeps its code: as in MaxMind's own databases, and as in flat ones.
constexpr std::array<std::array<const char*, 3>, 2> CodePaths{
    {{"country", "iso_code", nullptr}, {"country_code", nullptr, nullptr}}};

constexpr qint64 MiB = 1 << 20;

/// The largest file that is taken into memory.
constexpr qint64 MostBytes = 256 * MiB;

/// Records looked at before a file is said to hold no countries.
constexpr int MostProbes = 256;

QString message(int status)
{
    return QString::fromUtf8(MMDB_strerror(status));
}

bool isCapital(char letter)
{
    return letter >= 'A' && letter <= 'Z';
}

/// Two capitals; nothing where the record has no such code.
std::optional<QString> codeOf(MMDB_entry_s entry)
{
    for (const auto& path : CodePaths) {
        MMDB_entry_data_s value{};
        const int status = MMDB_aget_value(&entry, &value, path.data());
        if (status == MMDB_SUCCESS && value.has_data && value.type == MMDB_DATA_TYPE_UTF8_STRING &&
            value.data_size == 2 && isCapital(value.utf8_string[0]) &&
            isCapital(value.utf8_string[1])) {
            return QString::fromLatin1(value.utf8_string, 2);
        }
    }
    return std::nullopt;
}

/// A copy of the file in memory that has no name, open for reading and writing; not open where that
/// fails. The reader maps what it reads: were that the file itself, cutting it short in place, as
/// `cp` does, would end the process at the next look-up (SIGBUS).
void copyToMemory(const QString& path, QFile& copy)
{
    QFile file(path);
    // A pipe would hold the caller until somebody writes to it.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const int descriptor = memfd_create("countries", MFD_CLOEXEC);
    if (descriptor < 0 || !copy.open(descriptor, QIODevice::ReadWrite | QIODevice::Unbuffered,
                                     QFileDevice::AutoCloseHandle)) {
        return;
    }
    for (QByteArray bytes = file.read(MiB); !bytes.isEmpty(); bytes = file.read(MiB)) {
        if (copy.pos() + bytes.size() > MostBytes || copy.write(bytes) != bytes.size()) {
            copy.close();
            return;
        }
    }
}

} // namespace

class CountryDatabase::Reader
{
public:
    Reader() = default;
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    ~Reader()
    {
        if (m_isOpen) {
            MMDB_close(&m_database);
        }
    }

    /// Returns the reader's status.
    int open(const QString& path)
    {
        QFile copy;
        copyToMemory(path, copy);
        if (!copy.isOpen()) {
            return MMDB_FILE_OPEN_ERROR;
        }
        const QByteArray name = "/proc/self/fd/" + QByteArray::number(copy.handle());
        const int status = MMDB_open(name.constData(), MMDB_MODE_MMAP, &m_database);
        m_isOpen = status == MMDB_SUCCESS;
        return status;
    }

    /// Whether one of the first records names a country.
    bool holdsCountries() const
    {
        int probes = 0;
        for (std::uint32_t number = 0; number < m_database.metadata.node_count; ++number) {
            MMDB_search_node_s node{};
            if (MMDB_read_node(&m_database, number, &node) != MMDB_SUCCESS) {
                return false;
            }
            for (const auto& [type, entry] :
                 {std::pair{node.left_record_type, node.left_record_entry},
                  std::pair{node.right_record_type, node.right_record_entry}}) {
                if (type != MMDB_RECORD_TYPE_DATA) {
                    continue;
                }
                if (codeOf(entry)) {
                    return true;
                }
                if (++probes == MostProbes) {
                    return false;
                }
            }
        }
        return false;
    }

    std::optional<QString> code(const IpAddress& address) const
    {
        int status = MMDB_SUCCESS;
        const MMDB_lookup_result_s result = lookUp(address, status);
        if (status != MMDB_SUCCESS || !result.found_entry) {
            return std::nullopt;
        }
        return codeOf(result.entry);
    }

private:
    MMDB_lookup_result_s lookUp(const IpAddress& address, int& status) const
    {
        if (address.isIpv4()) {
            sockaddr_in end{};
            end.sin_family = AF_INET;
            end.sin_addr.s_addr = htonl(address.ipv4());
            return MMDB_lookup_sockaddr(&m_database, reinterpret_cast<const sockaddr*>(&end),
                                        &status);
        }
        sockaddr_in6 end{};
        end.sin6_family = AF_INET6;
        std::memcpy(&end.sin6_addr, address.bytes.data(), address.bytes.size());
        return MMDB_lookup_sockaddr(&m_database, reinterpret_cast<const sockaddr*>(&end), &status);
    }

    MMDB_s m_database{};
    bool m_isOpen = false;
};

CountryDatabase::CountryDatabase() = default;
CountryDatabase::~CountryDatabase() = default;

QString CountryDatabase::unknownCode()
{
    return QStringLiteral("??");
}

QString CountryDatabase::localCode()
{
    return QStringLiteral("LAN");
}

QString CountryDatabase::open(const QString& path)
{
    m_reader.reset();
    auto reader = std::make_unique<Reader>();
    const int status = reader->open(path);
    if (status != MMDB_SUCCESS) {
        return message(status);
    }
    if (!reader->holdsCountries()) {
        return QStringLiteral("The database tells no countries");
    }
    m_reader = std::move(reader);
    return {};
}

bool CountryDatabase::isOpen() const
{
    return m_reader != nullptr;
}

QString CountryDatabase::countryCode(const IpAddress& address) const
{
    // The default address stands for a remote end that could not be told.
    if (address == IpAddress()) {
        return unknownCode();
    }
    if (isLocalOrMulticast(address)) {
        return localCode();
    }
    return m_reader ? m_reader->code(address).value_or(unknownCode()) : unknownCode();
}
