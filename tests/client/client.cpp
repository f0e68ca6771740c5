// Includes every installed header and checks that bytes above 0x7F come out the same whether this
// client's char is signed or not, and that library and client see one application object. The
// argument says which sign it should be.

#include <EveryHeader.h>

#include <QCoreApplication>

#include <cstdio>
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
    const QCoreApplication application(argc, argv);
    const bool isSeen = QCoreApplication::instance() == &application;
    const std::string sign = static_cast<char>(-1) < 0 ? "signed" : "unsigned", result = Run();
    // Latin-1 case mapping and the hash, -2122079644, were computed in Python.
    const char* const expected = "\xE4\x80\xE4rger \xFF\xC4RGER \xFF\xFE-2122079644+unsafe";
    if (argc == 2 && sign == argv[1] && isSeen && result == expected) {
        return 0;
    }
    std::fprintf(stderr, "client: %s char, application object %s, got %s\n", sign.c_str(),
                 isSeen ? "seen" : "not seen", result.c_str());
    return 1;
}
