// Includes every installed header as C++17, and checks that bytes above 0x7F come out the same
// whether this client's char is signed or not. The argument says which it should be.

#include <BaseUtil.h>
#include <ByteOrder.h>
#include <CCrypt.h>
#include <CIStream.h>
#include <CImgDecodeNotify.h>
#include <CLimitedCounter.h>
#include <COStream.h>
#include <CQActive.h>
#include <CQActiveScheduler.h>
#include <CQBImageDecode.h>
#include <CQBTreeUtil.h>
#include <CQFile.h>
#include <CQFileNameUtil.h>
#include <CQFileUtils.h>
#include <CQImageDecode.h>
#include <CQInstance.h>
#include <CQList.h>
#include <CQSString.h>
#include <CQSchedulerEvent.h>
#include <CQSchedulerInstance.h>
#include <CQTimer.h>
#include <CQTimerObserver.h>
#include <CQWString.h>
#include <CQZipFile.h>
#include <CStrConvertor.h>
#include <CSystemCall.h>
#include <CTimeOutTimer.h>
#include <DataInputStream.h>
#include <DataOutputStream.h>
#include <FileInputStream.h>
#include <FileOutputStream.h>
#include <ISerializable.h>
#include <MLDataBuf.h>
#include <MTimeOutNotifier.h>
#include <Orvo/CQPath.h>
#include <OrvoAssert.h>
#include <OrvoExport.h>
#include <TDisplayMode.h>
#include <TImageMIMETypes.h>
#include <TRTTIBase.h>

#include <cstdio>
#include <cstring>
#include <string>

static_assert(__cplusplus == 201703L, "this client is built as C++17");

namespace
{

// Gathers in memory what is written to it.
class Sink : public OrvoStream::COStream
{
public:
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        written.append(data, static_cast<size_t>(len));
    }
    std::string written;
};

std::string Hex(const std::string& bytes)
{
    std::string hex;
    for (const char c : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
        hex += digits;
    }
    return hex;
}

std::string Run()
{
    CQSString text;
    text.SetData("\xC4rger \xFF"); // Latin-1
    CQSString hash;
    text.ToHashString(hash);
    const bool ordered = text.Compare("z") > 0 && text.Find('\xFF') == 6;
    text.MakeLower();
    CQSString upper(text);
    upper.MakeUpper();

    Sink sink;
    DataOutputStream out(sink);
    out << '\xE4' << static_cast<unsigned char>(0x80) << text.GetDataPtr();
    out.Write(upper);
    out.Write('\xFE');
    out << hash.GetDataPtr() << (ordered ? "+" : "-");
    out << (CBaseUtil::IsCharSafe('\xE4') ? "safe" : "unsafe");
    out.Flush();
    return Hex(sink.written);
}

} // namespace

int main(int argc, char** argv)
{
    const bool isSigned = static_cast<char>(-1) < 0;
    if (argc != 2 || isSigned != (std::strcmp(argv[1], "signed") == 0)) {
        std::fprintf(stderr, "client: built with %s char\n", isSigned ? "signed" : "unsigned");
        return 2;
    }
    // Latin-1 case mapping and the hash, -2122079644, were computed in Python.
    const std::string expected = "e480"
                                 "e47267657220ff"
                                 "c45247455220ff"
                                 "fe"
                                 "2d32313232303739363434"
                                 "2b"
                                 "756e73616665";
    const std::string result = Run();
    if (result != expected) {
        std::fprintf(stderr, "client: got  %s\n        want %s\n", result.c_str(),
                     expected.c_str());
        return 1;
    }
    return 0;
}
