#include "ArchiveInput.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "Failure.h"
#include "Interrupt.h"
#include "NEBCore/NEBUtCrc32.h"
#include "path/ARXFmDir.h"

namespace
{
std::size_t constexpr s_pieceSize = 65536;
// The end of an archive (APPNOTE.TXT, 4.3.14 to 4.3.16).
std::size_t constexpr s_endRecordSize = 22;
std::size_t constexpr s_longestComment = 65535;
std::size_t constexpr s_locatorSize = 20;
std::size_t constexpr s_zip64RecordSize = 56;
std::size_t constexpr s_headerSize = 46;  // of an entry in the directory (4.3.12)
// Methods (4.4.5).
std::uint32_t constexpr s_stored = 0;
std::uint32_t constexpr s_deflated = 8;
// Encrypted, strongly encrypted, masked directory (APPNOTE.TXT, 4.4.4).
std::uint32_t constexpr s_encryptedFlags = 1u << 0 | 1u << 6 | 1u << 13;

std::string readAt(std::FILE* file, std::uint64_t offset, std::size_t size)
{
    std::string bytes(size, '\0');
    if (fseeko(file, static_cast<off_t>(offset), SEEK_SET) != 0)
        return {};
    bytes.resize(std::fread(bytes.data(), 1, size, file));
    return bytes;
}

std::uint64_t numberAt(std::string const& bytes, std::size_t offset, std::size_t size)
{
    std::uint64_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[offset + i]);
    return number;
}

std::string countOf(std::uint64_t part, std::uint64_t whole)
{
    return std::to_string(part) + " of " + std::to_string(whole);
}

// The central directory, as the end of the archive describes it.
struct Directory
{
    std::uint64_t m_count;  // of entries; 65535 may mean more
    std::uint64_t m_size;
    std::uint64_t m_end;  // its position
};

Directory findDirectory(std::FILE* file, std::string const& name)
{
    if (fseeko(file, 0, SEEK_END) != 0 || ftello(file) < 0)
        systemFailed(NEB_HERE, name);
    auto const size = static_cast<std::uint64_t>(ftello(file));
    auto const tailSize = static_cast<std::size_t>(
        std::min<std::uint64_t>(size, s_locatorSize + s_endRecordSize + s_longestComment));
    std::string const tail = readAt(file, size - tailSize, tailSize);
    std::size_t const end = tail.rfind("PK\5\6");
    if (std::ferror(file))
        systemFailed(NEB_HERE, name);
    if (end == std::string::npos || tail.size() - end < s_endRecordSize)
        failed(NEB_HERE, name, "is no zip archive, or is cut off");

    if (end >= s_locatorSize && tail.compare(end - s_locatorSize, 4, "PK\6\7") == 0)
    {
        std::uint64_t const position = numberAt(tail, end - s_locatorSize + 8, 8);
        std::string const record = readAt(file, position, s_zip64RecordSize);
        if (record.size() == s_zip64RecordSize && record.compare(0, 4, "PK\6\6") == 0)
            return {numberAt(record, 32, 8), numberAt(record, 40, 8), position};
    }
    return {numberAt(tail, end + 10, 2), numberAt(tail, end + 12, 4), size - tailSize + end};
}

// Counts the headers in a directory, and one more where it breaks off.
std::uint64_t countHeaders(std::string const& directory)
{
    std::uint64_t count = 0;
    std::size_t position = 0;
    while (position + s_headerSize <= directory.size() && directory.compare(position, 4, "PK\1\2") == 0)
    {
        std::size_t const header = position;
        position += s_headerSize;
        for (std::size_t const length : {28u, 30u, 32u})  // of its name, extra field and comment
            position += static_cast<std::size_t>(numberAt(directory, header + length, 2));
        ++count;
    }
    return position == directory.size() ? count : count + 1;
}

// The stream's walk ends alike at the last entry, in a broken directory, and where the end record counts too
// few.
std::uint64_t countEntries(std::FILE* file, std::string const& name)
{
    Directory const directory = findDirectory(file, name);
    if (directory.m_size > directory.m_end || directory.m_size >= std::string().max_size())
        failed(NEB_HERE, name, "is damaged: its directory has a wrong size");
    std::string const headers =
        readAt(file, directory.m_end - directory.m_size, static_cast<std::size_t>(directory.m_size));
    if (std::ferror(file))
        systemFailed(NEB_HERE, name);
    return std::max(directory.m_count, countHeaders(headers));
}
}  // namespace

ArchiveInput::ArchiveInput(std::string const& path) : m_name(path == "-" ? "standard input" : path)
{
    open(path);
    m_count = countEntries(m_file.get(), m_name);
    if (m_count != 0)
        m_stream = naming(m_name, [this] { return std::make_unique<ARXZipInputStream>(m_file.get()); });
}

ArchiveInput::~ArchiveInput() = default;

void ArchiveInput::open(std::string const& path)
{
    struct stat status;
    bool const isFound = path == "-" ? fstat(STDIN_FILENO, &status) == 0 : stat(path.c_str(), &status) == 0;
    if (isFound && S_ISREG(status.st_mode))
        m_file.reset(path == "-" ? stdin : std::fopen(path.c_str(), "rbe"));
    else  // opened only once: a second open would wait for another writer
    {
        readFile(path, [this](char const* data, std::size_t size) { m_bytes.append(data, size); });
        m_file.reset(fmemopen(m_bytes.data(), m_bytes.size(), "rb"));
    }
    if (!m_file)
        systemFailed(NEB_HERE, m_name);
}

bool ArchiveInput::toNext()
{
    stopIfInterrupted();
    bool const isEntry = m_stream && (m_seen == 0 ? m_stream->getFirstEntry() : m_stream->getNextEntry());
    if (!isEntry && std::ferror(m_file.get()))
        systemFailed(NEB_HERE, m_name);
    if (!isEntry && m_seen < m_count)
        failed(NEB_HERE, m_name,
               "is damaged: its directory breaks off after entry " + std::to_string(m_seen));
    m_seen += isEntry ? 1 : 0;
    return isEntry;
}

ArchiveInput::Entry ArchiveInput::readEntry()
{
    Entry entry{};
    if (!m_stream->getCurrentEntryInfo(entry))
        failed(NEB_HERE, "is damaged");
    return entry;
}

void ArchiveInput::copyEntry(Entry const& entry, Sink const& sink)
{
    if ((entry.flag & s_encryptedFlags) != 0)
        failed(NEB_HERE, "is encrypted");
    if (entry.compressionMethod != s_stored && entry.compressionMethod != s_deflated)
        failed(NEB_HERE, "is packed by another method than deflate");
    if (entry.compressedSize == UINT32_MAX || entry.uncompressedSize == UINT32_MAX)
        failed(NEB_HERE, "has sizes of 64 bits, which are not read");
    if (!m_stream->openCurrentEntry())
        failed(NEB_HERE, "is damaged");

    std::vector<char> piece(s_pieceSize);
    std::uint64_t size = 0;
    std::uint32_t crc = 0;
    std::size_t count = 0;
    while ((count = m_stream->read(piece.data(), piece.size())) != OJDInputStream::s_end)
    {
        stopIfInterrupted();
        size += count;
        crc = NEBUtCrc32::crc32(crc, piece.data(), count);
        sink(piece.data(), count);
    }
    if (std::ferror(m_file.get()))
        systemFailed(NEB_HERE, "can't be read");
    if (size != entry.uncompressedSize)
        failed(NEB_HERE, "is damaged: only " + countOf(size, entry.uncompressedSize) + " bytes can be read");
    if (crc != entry.crc)
        failed(NEB_HERE, "is damaged: its checksum is wrong");
}

std::uint64_t ArchiveInput::visitEntries(std::function<void(Entry const&)> const& visit)
{
    std::uint64_t failures = 0;
    while (toNext())
    {
        std::string name = "entry " + std::to_string(m_seen);
        try
        {
            Entry const entry = readEntry();
            if (entry.szFileName[0] != '\0')
                name = entry.szFileName;
            visit(entry);
        }
        catch (NEBThrowable const& error)
        {
            printError(name + ": " + reasonOf(error));
            ++failures;
        }
    }
    if (failures != 0)
        failed(NEB_HERE, m_name, countOf(failures, m_seen) + " entries failed");
    return m_seen;
}

bool ArchiveInput::isSameFile(std::string const& path) const
{
    struct stat archive;
    struct stat other;
    return m_bytes.empty() && fstat(fileno(m_file.get()), &archive) == 0 && stat(path.c_str(), &other) == 0 &&
           archive.st_dev == other.st_dev && archive.st_ino == other.st_ino;
}

void ArchiveInput::Close::operator()(std::FILE* file) const
{
    std::fclose(file);
}

std::optional<std::tm> dateOf(ArchiveInput::Entry const& entry)
{
    auto const bits = [&entry](unsigned first, unsigned mask)
    { return static_cast<int>(entry.dosDate >> first & mask); };
    std::tm date{};
    date.tm_year = bits(25, 0x7F) + 80;
    date.tm_mon = bits(21, 0xF) - 1;
    date.tm_mday = bits(16, 0x1F);
    date.tm_hour = bits(11, 0x1F);
    date.tm_min = bits(5, 0x3F);
    date.tm_sec = bits(0, 0x1F) * 2;
    std::tm normal = date;
    timegm(&normal);  // carries what is too much for a field into the next
    auto const fields = [](std::tm const& each)
    { return std::make_tuple(each.tm_mon, each.tm_mday, each.tm_hour, each.tm_min, each.tm_sec); };
    return fields(normal) == fields(date) ? std::make_optional(date) : std::nullopt;
}

std::string relativePath(std::string const& entryName)
{
    if (entryName.empty())
        failed(NEB_HERE, "has no name");
    std::string path;
    ARXFmDir::getNormalizedPath("./" + entryName, path);
    bool const isOutside = ARXFmDir::isAbsolutePath(entryName.c_str()) ||
                           ARXFmDir::hasDriveLetter(entryName.c_str()) || path == ".." ||
                           path.compare(0, 3, "../") == 0;
    if (isOutside)
        failed(NEB_HERE, "leads outside the folder, by \"..\", an absolute path or a drive letter");
    return path;
}
