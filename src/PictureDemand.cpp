#include "PictureDemand.h"

#include <QIODevice>
#include <QtEndian>

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

namespace
{

// Qt keeps a text several times over: as bytes, as a QString, and again in a description that
// grows by reallocation.
constexpr int copiesOfText = 8;
// What the JPEG reader keeps of a profile or of camera data, which it joins piece by piece.
constexpr int copiesOfProfile = 3;
// Of a colour of an XPM, which takes eight bytes in the file at least, a node of a map is kept.
constexpr int xpmGrowth = 8;

// The bytes of a picture, or of a part of it, read forward in small blocks.
class Bytes
{
public:
    explicit Bytes(QIODevice& device) : m_device(device), m_end(device.size()) {}

    qint64 GetPosition() const { return m_position; }
    qint64 GetEnd() const { return m_end; }
    qint64 GetLeft() const { return std::max<qint64>(m_end - m_position, 0); }
    void SetPosition(qint64 position) { m_position = position; }
    void SetEnd(qint64 end) { m_end = std::min(m_end, end); }
    void Skip(qint64 count) { m_position += count; }

    // Up to `count` bytes, at most a block, at the position, which stays; fewer at the end.
    std::string_view Peek(qint64 count)
    {
        count = std::min({count, GetLeft(), qint64{blockSize}});
        if (m_position < m_blockStart || m_position + count > m_blockStart + m_blockLength) {
            Load();
        }
        const qint64 offset = m_position - m_blockStart;
        return {m_block.data() + offset,
                static_cast<size_t>(std::clamp<qint64>(m_blockLength - offset, 0, count))};
    }

    // The same, and goes on behind them.
    std::string_view Take(qint64 count)
    {
        const std::string_view bytes = Peek(count);
        m_position += static_cast<qint64>(bytes.size());
        return bytes;
    }

    bool StartsWith(std::string_view text)
    {
        return Peek(static_cast<qint64>(text.size())) == text;
    }

    // A number at the position; 0 where the bytes end before it does.
    template <class Number>
    Number TakeBig()
    {
        return qFromBigEndian<Number>(TakeWhole<sizeof(Number)>().data());
    }
    template <class Number>
    Number TakeLittle()
    {
        return qFromLittleEndian<Number>(TakeWhole<sizeof(Number)>().data());
    }

private:
    static constexpr int blockSize = 512;

    template <size_t size>
    std::array<char, size> TakeWhole()
    {
        std::array<char, size> whole{};
        const std::string_view bytes = Take(size);
        if (bytes.size() == size) {
            std::copy(bytes.begin(), bytes.end(), whole.begin());
        }
        return whole;
    }

    void Load()
    {
        m_blockStart = m_position;
        m_blockLength = m_device.seek(m_position)
                            ? std::max<qint64>(m_device.read(m_block.data(), blockSize), 0)
                            : 0;
    }

    QIODevice& m_device;
    qint64 m_position = 0;
    qint64 m_end;
    qint64 m_blockStart = 0;
    qint64 m_blockLength = 0;
    std::array<char, blockSize> m_block;
};

// Length of what the deflated rest of \a bytes inflates to: nothing is kept of it. Ends at an
// error, and once the length is known to pass `limit`.
qint64 InflatedLength(Bytes& bytes, qint64 limit)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        return limit + 1; // no memory even to look
    }
    std::array<Bytef, 16384> output;
    qint64 length = 0;
    for (int code = Z_OK; code == Z_OK && length <= limit;) {
        std::string_view input;
        if (stream.avail_in == 0) {
            input = bytes.Take(bytes.GetLeft());
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
            stream.avail_in = static_cast<uInt>(input.size());
        }
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
        code = inflate(&stream, Z_NO_FLUSH); // an error when there is no more input
        length += static_cast<qint64>(output.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    return length;
}

// Leaves \a bytes behind the zero that ends a text.
void SkipText(Bytes& bytes)
{
    for (std::string_view c = bytes.Take(1); !c.empty() && c[0] != 0;) {
        c = bytes.Take(1);
    }
}

// Parts of a PNG that Qt and its PNG reader keep, compressed or not.
bool IsKept(std::string_view chunk)
{
    constexpr std::string_view kept[] = {"tEXt", "zTXt", "iTXt", "iCCP", "sPLT", "eXIf"};
    return std::find(std::begin(kept), std::end(kept), chunk) != std::end(kept);
}

// Length of the compressed part of a chunk that \a data holds, once inflated; 0 without one.
qint64 InflatedChunkLength(std::string_view chunk, Bytes data, qint64 limit)
{
    if (chunk != "zTXt" && chunk != "iTXt" && chunk != "iCCP") {
        return 0;
    }
    SkipText(data); // the keyword
    if (chunk == "iTXt") {
        if (data.TakeBig<quint8>() == 0) {
            return 0; // not compressed
        }
        data.Skip(1); // the method
        SkipText(data);
        SkipText(data); // the language and the keyword in it
    } else {
        data.Skip(1);
    }
    return InflatedLength(data, limit);
}

constexpr std::string_view pngSignature = "\x89PNG\r\n\x1a\n";

// Bytes that the chunks of a PNG expand to, as they are kept. Qt reads them all, those behind the
// pixels too.
qint64 ExpandedPngLength(Bytes bytes, qint64 limit)
{
    qint64 expanded = 0;
    bytes.Skip(static_cast<qint64>(pngSignature.size()));
    while (bytes.GetLeft() > 0 && expanded <= limit) {
        const auto length = bytes.TakeBig<quint32>();
        const std::string chunk(bytes.Take(4));
        if (IsKept(chunk)) {
            Bytes data(bytes);
            data.SetEnd(bytes.GetPosition() + length);
            const qint64 stored = data.GetLeft();
            expanded += copiesOfText * (stored + InflatedChunkLength(chunk, data, limit));
        }
        if (chunk == "IEND") {
            break;
        }
        bytes.Skip(qint64{length} + 4); // and the checksum
    }
    return expanded;
}

// An icon is read from the first entry of its directory. The entry may hold a whole PNG, whatever
// size the directory says, or a bitmap, whose own size counts where the directory says 0.
PictureDemand DemandOfIcon(Bytes bytes, qint64 maxExpanded)
{
    PictureDemand demand;
    demand.nWorkingBytesPerPixel = 6; // premultiplied anew, with the mask in eight bits
    bytes.SetPosition(6);
    const auto width = bytes.TakeLittle<quint8>();
    const auto height = bytes.TakeLittle<quint8>();
    bytes.Skip(6);
    const auto size = bytes.TakeLittle<quint32>();
    bytes.SetPosition(bytes.TakeLittle<quint32>());
    if (bytes.StartsWith(pngSignature)) {
        demand.nExpanded = size; // read into one block, of which the file may lack most
        bytes.SetEnd(bytes.GetPosition() + size);
        demand.nExpanded += ExpandedPngLength(bytes, maxExpanded);
        bytes.Skip(16);
        demand.nWidth = bytes.TakeBig<quint32>();
        demand.nHeight = bytes.TakeBig<quint32>();
        demand.nDepth = bytes.TakeBig<quint8>() == 16 ? 64 : 32;
    } else {
        bytes.Skip(4);
        const qint64 bitmapWidth = bytes.TakeLittle<qint32>();
        const qint64 bitmapHeight = bytes.TakeLittle<qint32>();
        demand.nWidth = width != 0 ? width : std::abs(bitmapWidth);
        demand.nHeight = height != 0 ? height : std::abs(bitmapHeight) / 2;
    }
    return demand;
}

enum JpegMarker : uchar {
    markerTEM = 0x01,
    markerSOF0 = 0xC0,
    markerSOF2 = 0xC2,
    markerSOF9 = 0xC9,
    markerSOF10 = 0xCA,
    markerRST0 = 0xD0,
    markerSOI = 0xD8,
    markerEOI = 0xD9,
    markerSOS = 0xDA,
    markerAPP1 = 0xE1,
    markerAPP2 = 0xE2,
    markerCOM = 0xFE
};

// The next marker, wherever it stands, as the reader of JPEGs looks for it; EOI at the end.
uchar TakeJpegMarker(Bytes& bytes)
{
    while (bytes.GetLeft() > 1) {
        if (bytes.TakeBig<quint8>() != 0xFF) {
            continue;
        }
        auto code = bytes.TakeBig<quint8>();
        while (code == 0xFF && bytes.GetLeft() > 0) {
            code = bytes.TakeBig<quint8>();
        }
        if (code != 0) {
            return code;
        }
    }
    return markerEOI;
}

// A picture that comes in several scans is kept as coefficients, of two bytes each, until it is
// whole. Behind the first scan no more than the file holds can be added.
PictureDemand DemandOfJpeg(Bytes bytes)
{
    PictureDemand demand;
    demand.nWorking = bytes.GetEnd();
    int components = 0;
    bool progressive = false;
    bytes.Skip(2);
    for (;;) {
        const uchar marker = TakeJpegMarker(bytes);
        if (marker == markerEOI || marker == markerSOI) {
            return demand;
        }
        if (marker == markerTEM || (marker >= markerRST0 && marker < markerSOI)) {
            continue; // nothing follows it
        }
        const auto length = bytes.TakeBig<quint16>();
        Bytes segment(bytes);
        if (marker == markerSOS) {
            const bool inOneScan = !progressive && segment.TakeBig<quint8>() >= components;
            demand.nWorkingBytesPerPixel = inOneScan ? 0 : 2 * components;
            return demand;
        }
        if (marker == markerCOM) {
            demand.nWorking += copiesOfText * qint64{length};
        } else if (marker == markerAPP1 || marker == markerAPP2) {
            demand.nWorking += copiesOfProfile * qint64{length};
        } else if ((marker >= markerSOF0 && marker <= markerSOF2) || marker == markerSOF9 ||
                   marker == markerSOF10) {
            segment.Skip(5); // precision, height and width
            components = segment.TakeBig<quint8>();
            progressive = marker == markerSOF2 || marker == markerSOF10;
        }
        bytes.Skip(std::max<qint64>(length, 2) - 2);
    }
}

PictureDemand DemandOf(Bytes bytes, qint64 maxExpanded)
{
    PictureDemand demand;
    if (bytes.StartsWith(pngSignature)) {
        demand.nExpanded = ExpandedPngLength(bytes, maxExpanded);
    } else if (bytes.StartsWith("\xFF\xD8")) {
        demand = DemandOfJpeg(bytes);
    } else if (bytes.StartsWith("GIF8")) {
        demand.nWorkingBytesPerPixel = 4; // what stood under a frame may be kept
    } else if (bytes.StartsWith("/* XPM")) {
        demand.nWorking = xpmGrowth * bytes.GetEnd();
    } else if (bytes.StartsWith({"\0\0\1\0", 4}) || bytes.StartsWith({"\0\0\2\0", 4})) {
        demand = DemandOfIcon(bytes, maxExpanded);
    }
    return demand;
}

} // namespace

PictureDemand PictureDemand::Of(QIODevice& device, qint64 nMaxExpanded)
{
    const PictureDemand demand = DemandOf(Bytes(device), nMaxExpanded);
    device.seek(0);
    return demand;
}
