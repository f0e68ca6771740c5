// Includes every installed header and checks that bytes above 0x7F come out the same whether this
// client's char is signed or not, and that library and client see one application object. The
// argument says which sign it should be.

#include <EveryHeader.h>

#include <QCoreApplication>

#include <cstdio>
#include <cstring>
#include <string>

static_assert(__cplusplus >= 201703L, "this client is built as C++17 or later");

namespace
{

// Gathers in memory what is written to it.
struct Sink : OrvoStream::COStream {
    void Close() override {}
    void SaveBuffer(char const* data, int len) override
    {
        written.append(data, static_cast<size_t>(len));
    }
    std::string written;
};

std::string Run()
{
    CQSString text;
    text.SetData("\xC4rger \xFF"); // Latin-1
    CQSString hash;
    text.ToHashString(hash);
    const bool ordered =
        text.Compare("z") > 0 && text.Find('\xFF') == 6 && !(text != CQSString(text));
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
    return sink.written;
}

} // namespace

int main(int argc, char** argv)
{
    const bool isSigned = static_cast<char>(-1) < 0;
    if (argc != 2 || isSigned != (std::strcmp(argv[1], "signed") == 0)) {
        std::fprintf(stderr, "client: built with %s char\n", isSigned ? "signed" : "unsigned");
        return 2;
    }
    const QCoreApplication application(argc, argv);
    if (QCoreApplication::instance() != &application) {
        std::fprintf(stderr, "client: the platform does not see the application object\n");
        return 1;
    }
    // Latin-1 case mapping and the hash, -2122079644, were computed in Python.
    const std::string expected = "\xE4\x80\xE4rger \xFF\xC4RGER \xFF\xFE-2122079644+unsafe";
    const std::string result = Run();
    if (result != expected) {
        std::fprintf(stderr, "client: got %s, not %s\n", result.c_str(), expected.c_str());
        return 1;
    }
    return 0;
}
