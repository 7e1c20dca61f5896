#include "bench/RawZip.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include "bench/BenchInput.h"

namespace
{
std::size_t constexpr s_largestFile = 22 << 20;

void require(bool holds, std::string const& what)
{
    if (!holds)
        throw std::system_error(errno, std::generic_category(), what);
}

void append(std::string& text, std::uint64_t value, int size)
{
    for (; size > 0; --size, value >>= 8)
        text += static_cast<char>(value);
}

std::uint32_t toDosDate(std::time_t time)
{
    std::tm const local = *std::localtime(&time);
    return static_cast<std::uint32_t>((local.tm_year - 80) << 25 | (local.tm_mon + 1) << 21 |
                                      local.tm_mday << 16 | local.tm_hour << 11 | local.tm_min << 5 |
                                      local.tm_sec / 2);
}

std::time_t fromDosDate(std::uint32_t date)
{
    std::tm local{};
    local.tm_year = static_cast<int>(date >> 25) + 80;
    local.tm_mon = static_cast<int>(date >> 21 & 15) - 1;
    local.tm_mday = static_cast<int>(date >> 16 & 31);
    local.tm_hour = static_cast<int>(date >> 11 & 31);
    local.tm_min = static_cast<int>(date >> 5 & 63);
    local.tm_sec = static_cast<int>(date & 31) * 2;
    local.tm_isdst = -1;
    return std::mktime(&local);
}

void writeAll(int file, char const* data, std::size_t size)
{
    require(::write(file, data, size) == static_cast<ssize_t>(size), "write");
}

class RawPacker
{
public:
    explicit RawPacker(std::string const& archive)
        : m_file(::open(archive.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600))
    {
        require(m_file >= 0, archive);
        deflateInit2(&m_stream, 6, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY);
    }
    ~RawPacker()
    {
        deflateEnd(&m_stream);
        ::close(m_file);
    }
    RawPacker(RawPacker const&) = delete;
    RawPacker& operator=(RawPacker const&) = delete;

    void add(std::string const& path, std::string const& name);
    void finish();

private:
    std::size_t deflateAll(std::size_t size);

    int m_file;
    z_stream m_stream{};
    std::unique_ptr<unsigned char[]> m_input{new unsigned char[s_largestFile]};
    std::unique_ptr<unsigned char[]> m_packed{new unsigned char[s_largestFile]};
    std::string m_directory;
    std::string m_pending;  // bytes for the archive, written when there are many
    std::uint64_t m_offset = 0;
    unsigned m_count = 0;
};

std::size_t RawPacker::deflateAll(std::size_t size)
{
    deflateReset(&m_stream);
    m_stream.next_in = m_input.get();
    m_stream.avail_in = static_cast<uInt>(size);
    m_stream.next_out = m_packed.get();
    m_stream.avail_out = static_cast<uInt>(s_largestFile);
    require(deflate(&m_stream, Z_FINISH) == Z_STREAM_END, "deflate");
    return m_stream.total_out;
}

void RawPacker::add(std::string const& path, std::string const& name)
{
    int const file = ::open(path.c_str(), O_RDONLY);
    struct stat status;
    require(file >= 0 && ::fstat(file, &status) == 0, path);
    auto const size = static_cast<std::size_t>(status.st_size);
    require(::read(file, m_input.get(), size) == status.st_size, path);
    ::close(file);

    std::size_t const packedSize = deflateAll(size);
    std::string header;  // what the local header and the directory share
    append(header, 20, 2);
    append(header, 0, 2);
    append(header, Z_DEFLATED, 2);
    append(header, toDosDate(status.st_mtime), 4);
    append(header, crc32(0, m_input.get(), static_cast<uInt>(size)), 4);
    append(header, packedSize, 4);
    append(header, size, 4);
    append(header, name.size(), 2);
    append(header, 0, 2);

    m_pending.append("PK\3\4").append(header).append(name);
    m_pending.append(reinterpret_cast<char const*>(m_packed.get()), packedSize);
    m_directory.append("PK\1\2\x14");
    append(m_directory, 0, 1);
    m_directory += header;
    append(m_directory, 0, 10);
    append(m_directory, m_offset, 4);
    m_directory += name;
    m_offset += 30 + name.size() + packedSize;
    ++m_count;
    if (m_pending.size() > 1 << 20)
    {
        writeAll(m_file, m_pending.data(), m_pending.size());
        m_pending.clear();
    }
}

void RawPacker::finish()
{
    std::size_t const directorySize = m_directory.size();
    m_pending.append(m_directory).append("PK\5\6");
    append(m_pending, 0, 4);
    append(m_pending, m_count, 2);
    append(m_pending, m_count, 2);
    append(m_pending, directorySize, 4);
    append(m_pending, m_offset, 4);
    append(m_pending, 0, 2);
    writeAll(m_file, m_pending.data(), m_pending.size());
}

void writeExtracted(std::string const& path, unsigned char const* data, ZipEntry const& entry)
{
    int const file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    require(file >= 0, path);
    writeAll(file, reinterpret_cast<char const*>(data), entry.m_size);
    timespec const times[2] = {{0, UTIME_OMIT}, {fromDosDate(entry.m_dosDate), 0}};
    require(::futimens(file, times) == 0, path);
    ::close(file);
}
}  // namespace

void packRaw(std::string const& archive, std::string const& folder)
{
    std::vector<std::string> files;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    RawPacker packer(archive);
    for (std::string const& file : files)
        packer.add(file, file.substr(folder.size() + 1));
    packer.finish();
}

void unpackRaw(std::string const& archive, std::string const& folder)
{
    std::string const bytes = readFile(archive);
    std::unique_ptr<unsigned char[]> const unpacked(new unsigned char[s_largestFile]);
    z_stream stream{};
    inflateInit2(&stream, -15);
    std::string lastFolder;
    for (ZipEntry const& entry : listEntries(bytes))
    {
        std::string const path = folder + "/" + entry.m_name;
        std::string const inFolder = path.substr(0, path.rfind('/'));
        if (inFolder != lastFolder)
            std::filesystem::create_directories(lastFolder = inFolder);

        inflateReset(&stream);
        stream.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data() + entry.m_offset));
        stream.avail_in = static_cast<uInt>(entry.m_packedSize);
        stream.next_out = unpacked.get();
        stream.avail_out = static_cast<uInt>(s_largestFile);
        require(inflate(&stream, Z_FINISH) == Z_STREAM_END &&
                    crc32(0, unpacked.get(), static_cast<uInt>(entry.m_size)) == entry.m_crc,
                entry.m_name);
        writeExtracted(path, unpacked.get(), entry);
    }
    inflateEnd(&stream);
}
