// SPDX-FileCopyrightText: 2026 The Echoprune developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "manifestreader.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonValue>

#include <istream>
#include <limits>
#include <nlohmann/json.hpp>
#include <streambuf>
#include <vector>

namespace epr {

namespace {

constexpr size_t blockSize = 65536;

class FileBuffer final : public std::streambuf {
public:
    explicit FileBuffer(QFile &file)
        : m_file(file)
        , m_block(blockSize)
    {
    }

private:
    int_type underflow() override
    {
        const qint64 got = m_file.read(m_block.data(), blockSize);
        if (got <= 0)
            return traits_type::eof();
        setg(m_block.data(), m_block.data(), m_block.data() + got);
        return traits_type::to_int_type(*gptr());
    }

    QFile &m_file;
    std::vector<char> m_block;
};

/// Is told of every value as it comes by. A manifest is an object (depth 1) that has the list of entries (depth 2), and
/// each of these is an object (depth 3). What anybody else wrote anywhere is passed over.
class ManifestHandler final : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit ManifestHandler(const ManifestEntryFn &each)
        : m_each(each)
    {
    }

    const UndoManifest &manifest() const { return m_manifest; }
    bool hasEntries() const { return m_hasEntries; }
    QString problem() const { return m_problem; }

    bool null() override { return take({}, 0); }
    bool boolean(bool /*value*/) override { return take({}, 0); }
    bool number_integer(number_integer_t value) override { return take({}, value); }
    bool number_unsigned(number_unsigned_t value) override
    {
        const bool fits = value <= static_cast<number_unsigned_t>(std::numeric_limits<qint64>::max());
        return take({}, fits ? static_cast<qint64>(value) : 0);
    }
    bool number_float(number_float_t value, const string_t & /*text*/) override
    {
        return take({}, QJsonValue(value).toInteger());
    }
    bool string(string_t &value) override { return take(QString::fromStdString(value), 0); }
    bool binary(binary_t & /*value*/) override { return take({}, 0); }

    bool start_object(size_t /*size*/) override { return open(false); }
    bool start_array(size_t /*size*/) override { return open(true); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t &name) override
    {
        m_text = nullptr;
        m_number = nullptr;
        if (m_depth == 1)
            return enterField(name);
        if (m_depth == 3 && m_isInEntries) {
            m_text = name == "from" ? &m_entry.from : name == "to" ? &m_entry.to : nullptr;
            m_number = name == "size" ? &m_entry.size : nullptr;
        }
        return true;
    }

    bool parse_error(size_t position, const std::string & /*token*/,
                     const nlohmann::json::exception & /*error*/) override
    {
        m_problem = QCoreApplication::translate("epr::Cleanup", "The file is damaged at byte %1").arg(position);
        return false;
    }

private:
    bool enterField(const string_t &name)
    {
        m_text = name == "createdAt"   ? &m_manifest.createdAt
            : name == "mode"           ? &m_manifest.mode
            : name == "quarantineRoot" ? &m_manifest.quarantineRoot
                                       : nullptr;
        m_isAtEntries = name == "entries";
        if (!m_isAtEntries || !m_hasEntries)
            return true;
        // Of two values for a key the later one counts, but what the earlier list had was handed over.
        m_problem = QCoreApplication::translate("epr::Cleanup", "The file has more than one list of entries");
        return false;
    }

    // A value of another type than the key should have counts as an empty text and as 0.
    bool take(const QString &text, qint64 number)
    {
        if (m_text)
            *m_text = text;
        if (m_number)
            *m_number = number;
        if (m_depth == 2 && m_isInEntries)
            m_each({});
        return true;
    }

    bool open(bool isArray)
    {
        if (m_depth == 2)
            m_entry = {};
        else
            take({}, 0);
        m_text = nullptr;
        m_number = nullptr;
        if (m_depth == 1 && isArray && m_isAtEntries)
            m_isInEntries = m_hasEntries = true;
        ++m_depth;
        return true;
    }

    bool close()
    {
        --m_depth;
        m_text = nullptr;
        m_number = nullptr;
        if (m_depth == 2 && m_isInEntries)
            m_each(m_entry.from.isEmpty() || m_entry.to.isEmpty() ? ManifestEntry() : m_entry);
        m_isInEntries = m_isInEntries && m_depth > 1;
        return true;
    }

    const ManifestEntryFn &m_each;
    UndoManifest m_manifest;
    ManifestEntry m_entry;
    QString *m_text = nullptr; ///< where the value goes if it is a text
    qint64 *m_number = nullptr; ///< and if it is a number
    qint64 m_depth = 0; ///< objects and arrays that are open
    bool m_isAtEntries = false;
    bool m_isInEntries = false;
    bool m_hasEntries = false;
    QString m_problem;
};

} // namespace

Result<UndoManifest> parseManifest(const QString &path, const ManifestEntryFn &each)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return failure(file.errorString());
    FileBuffer buffer(file);
    std::istream stream(&buffer);
    ManifestHandler handler(each);
    const bool parsed = nlohmann::json::sax_parse(stream, &handler);
    if (file.error() != QFileDevice::NoError)
        return failure(file.errorString());
    if (!parsed)
        return failure(handler.problem());
    if (!handler.hasEntries())
        return failure(QCoreApplication::translate("epr::Cleanup", "The file has no list of entries"));
    return handler.manifest();
}

} // namespace epr
