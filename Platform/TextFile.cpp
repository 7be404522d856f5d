#include "Platform.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Platform
{

namespace
{

constexpr std::size_t kReadChunk = std::size_t{64} * 1024;

/// The bytes from here to the end of the stream, or 0 when it is not a plain file.
std::size_t RemainingBytes(std::FILE *stream)
{
    if (std::fseek(stream, 0, SEEK_END) != 0)
        return 0;
    const long size = std::ftell(stream);
    std::rewind(stream);
    return size > 0 ? static_cast<std::size_t>(size) : 0;
}

/// Turns every pair of carriage return and line feed into one line feed, in place.
void JoinLineEnds(std::string &text)
{
    char *const begin = text.data();
    char *const end = begin + text.size();
    char *out = begin;
    char *in = begin;
    while (in != end)
    {
        void *const found = std::memchr(in, '\r', static_cast<std::size_t>(end - in));
        char *const pieceEnd = found ? static_cast<char *>(found) : end;
        const auto length = static_cast<std::size_t>(pieceEnd - in);
        if (out != in)
            std::memmove(out, in, length);
        out += length;
        in = pieceEnd;
        if (in != end)
        {
            if (in + 1 == end || in[1] != '\n')
                *out++ = '\r';
            ++in;
        }
    }
    text.resize(static_cast<std::size_t>(out - begin));
}

} // namespace

bool ReadBytes(std::FILE *stream, std::string &bytes)
{
    // One byte more than the file is said to hold, so that its end is seen without another round.
    std::size_t wanted = RemainingBytes(stream) + 1;
    std::size_t filled = 0;
    for (;;)
    {
        bytes.resize(filled + wanted);
        filled += std::fread(bytes.data() + filled, 1, wanted, stream);
        if (filled < bytes.size())
            break;
        wanted = std::max(kReadChunk, filled / 2);
    }
    bytes.resize(filled);
    return std::ferror(stream) == 0;
}

std::string_view WithoutByteOrderMark(std::string_view text)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    return text.starts_with(kMark) ? text.substr(kMark.size()) : text;
}

bool ReadTextFile(const std::string &path, std::string &text)
{
    const StreamOwner stream = OpenStream(path, "rb");
    std::string bytes;
    if (!stream || !ReadBytes(stream.get(), bytes))
        return false;
    JoinLineEnds(bytes);
    text = std::move(bytes);
    return true;
}

bool TextFileWriter::Open(const std::string &path)
{
    m_stream = OpenStream(path, "wb");
    return IsOpen();
}

bool WriteText(std::FILE *stream, std::string_view text)
{
    while (!text.empty())
    {
        const std::size_t lineLength = std::min(text.find('\n'), text.size());
        if (std::fwrite(text.data(), 1, lineLength, stream) != lineLength)
            return false;
        text.remove_prefix(lineLength);
        if (text.empty())
            break;
        if (std::fputs("\r\n", stream) < 0)
            return false;
        text.remove_prefix(1);
    }
    return true;
}

bool TextFileWriter::Write(std::string_view text)
{
    return m_stream && WriteText(m_stream.get(), text);
}

bool TextFileWriter::Close()
{
    return m_stream && std::fclose(m_stream.release()) == 0;
}

} // namespace Platform
