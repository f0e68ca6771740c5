// Every allocation of every operation fails in turn, once and from there on: the operation gives
// its right result or one of its stated ways out, holds nothing afterwards, and works on the same
// object as soon as there is memory again. Where a number is given, so often memory is asked for.

#include "FailingAllocator.h"
#include "StringContent.h"
#include "TempDir.h"

#include <EveryHeader.h>

#include <QDebug>
#include <QImage>

#include <optional>
#include <sstream>

#include <fcntl.h>
#include <fnmatch.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

// A table row: an operation with a result, and one without.
#define OP(...) [&]([[maybe_unused]] auto& s) { return (__VA_ARGS__); }
#define DO(...) OP(__VA_ARGS__, 0)
using Patterns = std::vector<std::string>; // as fnmatch() takes them

// How often an operation asks for memory or, where no number is due, what it may leave behind
// without: something of the platform's, or a process that has ended or is locked.
enum Demand { LeavesNothing = -1, LeavesSomething = -2, LeavesAProcess = -3 };

// Allocations, and the lowest free descriptor.
std::pair<int, int> Held()
{
    const int descriptor = open("/dev/null", O_RDONLY);
    close(descriptor);
    return {liveAllocations, descriptor};
}

// The result of the operation, which alone meets the fault, and what became of its subject.
std::string Run(auto& subject, const auto& operation, AllocationFault fault = {})
{
    subject.Prepare();
    std::optional<int> value;
    currentFault = fault;
    try {
        value = operation(subject);
    } catch (const std::bad_alloc&) {
    }
    currentFault.isOn = false;
    std::string result = (value ? std::to_string(*value) : "bad_alloc") + ' ' + subject.Tell();
    std::replace(result.begin(), result.end(), '\0', '0'); // fnmatch() would end there
    return result;
}

// Whether it holds in a process of its own, or ends that.
bool IsTrueApart(const auto& claim)
{
    const pid_t child = fork();
    if (child == 0) {
        const bool isTrue = claim();
        _exit(testing::Test::HasFailure() ? 2 : isTrue ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) < 2);
    return WIFSIGNALED(status) || WEXITSTATUS(status) != 0;
}

// What becomes of a new subject. With memory again, the operation does what was expected.
template <class Subject>
bool Fail(const Patterns& waysOut, const auto& operation, const std::string& expected,
          AllocationFault fault, bool isUsedAgain)
{
    Subject subject;
    const std::string told = Run(subject, operation, fault);
    const bool hasHappened = currentFault.hasHappened;
    const bool isStated = std::any_of(waysOut.begin(), waysOut.end(), [&](const auto& way) {
        return hasHappened && fnmatch(way.c_str(), told.c_str(), 0) == 0;
    });
    EXPECT_TRUE(told == expected || isStated) << told << " for " << expected;
    EXPECT_TRUE(!isUsedAgain || Run(subject, operation) == expected) << expected;
    return hasHappened;
}

// Fails each allocation of each operation, until one has come to its end without it.
template <class Subject, int demand = LeavesNothing>
void Try(const Patterns& waysOut, const auto&... operations)
{
    const std::vector<std::function<int(Subject&)>> rows{operations...};
    for (const auto& row : rows) {
        const std::string expected = Run(*std::make_unique<Subject>(), row);
        AllocationFault fault;
        const auto fails = [&] {
            return Fail<Subject>(waysOut, row, expected, fault, demand != LeavesAProcess);
        };
        for (const bool isLasting : {false, true}) {
            auto before = Held();
            fault = {1, isLasting, true, false};
            for (; demand == LeavesAProcess ? IsTrueApart(fails) : fails(); ++fault.untilFailure) {
                if (demand >= LeavesNothing && before != Held()) {
                    before = Held(); // the platform keeps some things, once
                    fails();
                    EXPECT_EQ(before, Held()) << "left behind";
                }
                ASSERT_FALSE(testing::Test::HasFailure())
                    << "operation " << &row - rows.data() + 1 << (isLasting ? " from" : "")
                    << " allocation " << fault.untilFailure;
            }
            EXPECT_TRUE(demand < 0 || fault.untilFailure - 1 == demand)
                << "operation " << &row - rows.data() + 1 << ": " << fault.untilFailure - 1;
        }
    }
}

using U = CBaseUtil;

const auto wide = Make<CQWString>(" a1 a "), longWide = Make<CQWString>("too long for the buffer");
const auto bytes = Make<CQSString>(" a1 a "), longBytes = Make<CQSString>(std::string(30, 'b'));
unsigned char units[] = "four or more wide units of any kind";

template <class String>
std::string Quoted(const String& s)
{
    return s.GetDataPtr() == nullptr ? "none" : '\'' + Content(s) + '\'';
}

struct Texts {
    CQSString b;
    CQWString w;
    QString text;

    void Prepare()
    {
        b = bytes;
        w.Destroy(), w.SetData(wide.GetDataPtr());
        text = QStringLiteral("a%31\u00E4 b");
    }
    std::string Tell() const { return Quoted(b) + ' ' + Quoted(w) + ' ' + text.toStdString(); }
    // Shows, and frees, what was handed out.
    template <class Text>
    int Take(Text* out)
    {
        text = QString(*std::unique_ptr<Text>(out));
        return 0;
    }
};
const std::string rest = " a%31\u00E4 b", unchanged = "' a1 a ' ' a1 a '" + rest;
const std::string keptWide = "0 none ' a1 a '" + rest, keptBytes = "0 ' a1 a ' none" + rest;

struct Disk {
    std::optional<TempDir> dir;
    CQFile file;
    CQSaveFile save;
    CQZipFile zip;
    CQWString name;
    QByteArray block;
    int descriptor = 0; // the lowest free one

    void Prepare()
    {
        dir.reset();
        dir.emplace({"old", "sub/a.c", "sub/b.c", "sub/deep/"});
        dir->Put("zip", qCompress("block"));
        file.Close(), file.Open(L"old", 0), file.Close();
        zip.Open(L"zip"), zip.Close();
        name = wide;
        block = "untouched";
        descriptor = Held().second;
    }
    std::string Tell()
    {
        const auto zipped = qUncompress(QByteArray::fromStdString(dir->Get("zip")));
        QFile::remove("zip");
        return (Held().second == descriptor ? "" : "open ") +
               std::string(file.HasFailed() || zip.HasFailed() ? "failed " : "") + Quoted(name) +
               ' ' + block.toStdString() + " zip=" + zipped.toStdString() + ' ' + dir->All();
    }
    auto* Block() { return reinterpret_cast<unsigned char*>(block.data()); }
};
const std::string inDir = "old=x sub/ sub/a.c=x sub/b.c=x sub/deep/ ";
const std::string onDisk = "' a1 a ' untouched zip=block " + inDir;

} // namespace

TEST(OutOfMemory, ByteStrings)
{
    OrvoSetAssertHandler([](const char*, const char*, int) {});
    Try<Texts, 1>({keptWide}, DO(s.b.AllocBuffer(2)), DO(s.b.AllocCopy(s.b, 2, 1)),
                  OP(s.b.SetData("abc")), OP(s.b.SetData(units, 3)), DO(s.b = longBytes),
                  OP(s.b.AppendChar('c')), OP(s.b.AppendData(s.b.GetDataPtr())),
                  OP(s.b.AppendData(units, 3)), DO(s.b.TrimLeft(1, s.b)), DO(s.b.TrimRight(1, s.b)),
                  DO(s.b.TrimRightAndLeft(1, 1, s.b)), DO(s.b.GetSubString(s.b, 1, 2)),
                  OP(s.b.GetSubString(s.b, "a", "a", 0, 1, 0) * 0),
                  OP(s.b.GetSubString(s.b, ' ', ' ', 0, 0, 1) * 0), DO(s.b.ToString(-7)),
                  DO(s.b.ToString(7U)));
    Try<Texts>({keptWide}, DO(s.b.ToHashString(s.b)),
               DO(U::FormatString(s.b, "%d %.3f %p %zu", 1, 2.5, "", sizeof(int))),
               DO(U::FormatString(s.b, "%s %2000d", s.b.GetDataPtr(), 1)),
               DO(U::FormatString(s.b, "%s", "\xC3\xA4")), DO(CQPath::GetAppDataRoot(s.b)),
               DO(CQPath::GetMsgFilePath(s.b, "/\xC3\xA4/", 7)), DO(CQPath::GetConfigRoot(s.b)),
               DO(CQPath::GetCommanPhraseFileName(s.b)));
    Try<Texts, 1>({"0 " + unchanged}, OP(s.b.SetData(&wide)), DO(s.b = longWide),
                  DO(s.b.TrimLeft()), DO(s.b.TrimRight()), DO(s.b.TrimRightAndLeft()),
                  OP(s.b.Replace("a", "bc")), OP(CQSString(bytes).GetLength()),
                  OP(CQSString(wide).GetLength()), OP(CQSString(3).GetLength()));
    Try<Texts, 0>({}, OP(s.b.MakeUpper(), s.b.MakeLower(), s.b.Find("a")),
                  OP(s.b.ToHEX() + s.b.IsEndWith("a")), OP(CQSString(INT_MAX).GetLength()));
    EXPECT_EQ(0, CQSString(INT_MAX).GetLength()) << "one byte more than a 32-bit count tells";
    // Two steps, of which the second one leaves what the first one has made.
    const auto url = Make<CQSString>("x?key= v &b");
    Try<Texts, 2>({"0 none *", "0 " + unchanged, "0 '255' *", "0 'ab' *"},
                  OP(s.b.SetData("255") & s.b.ToHexString()),
                  OP(s.b.SetData("ab") & s.b.ToHexString()));
    Try<Texts>({"0 none *", "0 " + unchanged}, OP(U::GetArgumentFormURL(url, "key", s.b)));
    Try<Texts>({"0 " + unchanged, "0 '" + std::string(16, '?') + "' *"},
               OP(CQPath::EncodeFileName(s.b) & CQPath::DecodeFileName(s.b)));
}

TEST(OutOfMemory, WideStrings)
{
    const wchar_t* const longer = longWide.GetDataPtr();
    QString qtText = "longer than the buffer";
    const auto malformed = Make<CQSString>("\xFF");
    // Their buffers would pass what a 32-bit count tells.
    EXPECT_EQ(nullptr, CQWString(0x1FFFFFFF).GetDataPtr());
    EXPECT_EQ(0, CQWString().PrepareBufferToWrite(INT_MAX));
    Try<Texts, 0>({}, OP(s.w.SetData(L"short")), DO(s.w.TrimRightAndLeft()),
                  DO(s.w.MakeUpper(), s.w.MakeLower()), OP(s.w.ToHEX()),
                  OP(CQWString(0x1FFFFFFF).GetLength()), OP(s.w.PrepareBufferToWrite(INT_MAX)));
    Try<Texts, 1>({keptBytes}, DO(s.w.AllocBuffer(2)), OP(s.w.PrepareBufferToWrite(9)),
                  OP(s.w.SetData(longer)), OP(s.w.SetData(longer, 9)), OP(s.w.SetData(units, 8)),
                  OP(s.w.AppendData(longer)), OP(s.w.AppendData(units, 4)),
                  OP(s.w.AppendChar(L'b')), OP(s.w.AppendNum(-7)), DO(s.w = longWide),
                  DO(longWide.AllocCopy(s.w, 9, 1)), DO(longWide.GetSubString(s.w, 1, 9)),
                  DO(s.w.Destroy(), s.w.ToString(-7)), DO(s.w.Destroy(), s.w.ToString(7U)),
                  DO(s.w.Destroy(), s.w.ToStringEx(7)),
                  OP(s.w.Destroy(), wide.GetSubString(s.w, L"a", L"a", 0, 1, 0) * 0),
                  OP(s.w.Destroy(), wide.GetSubString(s.w, L' ', L'a', 0, 0, 1) * 0));
    Try<Texts, 1>({"0 " + unchanged}, OP(s.w.WCharToUtf16() != nullptr),
                  OP(s.w.Replace(L"a", L"bc")), OP(CQWString(wide).GetLength()),
                  OP(CQWString::EncryptStrToInt(s.w)), OP(CQWString(longBytes).GetLength()),
                  OP(CQWString(3).GetDataPtr() != nullptr));
    Try<Texts>({"0 " + unchanged}, OP(s.w.DeleteSubString(L"a")),
               OP(s.w.CompareNoCase(L"a") + s.w.IsEndWithNoCase(L"A")),
               OP(CQWString(malformed).GetLength()), OP(CQWString(qtText).GetLength()));
    // The last step of a setter makes the new buffer.
    Try<Texts, 2>({keptBytes, "0 " + unchanged}, DO(s.w = longBytes),
                  OP(s.w.SetUTF8Data(units, 22)), OP(s.w.SetUTF16Data(units, 11)));
    Try<Texts, 3>({keptBytes, "0 " + unchanged}, OP(s.w.SeASCIIData(units, 22)));
    Try<Texts>({keptBytes, "0 " + unchanged}, OP(s.w.SetGBKByteData(units, 22)),
               OP(s.w.SetByteData(units, 22) * 0), OP(s.w.SetData(qtText)));
    Try<Texts>({keptBytes, "0 ' a1 a ' ''" + rest},
               DO(U::FormatString(s.w, L"%s %d %.3f", "\xC3\xA4", 1, 2.5)),
               DO(U::FormatString(s.w, L"%2000d", 1)),
               DO(U::FormatStringArg(s.w, L"%1 %2", L"longer", L"than", nullptr)),
               DO(s.w = U::EscapeString(s.w, true)), DO(CQPath::GetBrowserTmpPic(s.w)),
               DO(CQPath::GetLastIMEIUploadLogFile(7, s.w)));
}

TEST(OutOfMemory, UtilitiesAndContainers)
{
    const auto cipher = [] {
        unsigned char text[64] = "text";
        const CCrypt crypt(text, 0, 0);
        int size = 0, length = 64;
        crypt.Encrypt(text, 4, text, size);
        return crypt.Decrypt(text, size, text, length) ? length : -2;
    };
    const auto buffer = [] {
        CMLDataBuf data;
        return data.Create(10) + data.Append(units[0]) + (data.GetBuf() == nullptr ? 0 : 1);
    };
    CQPlex* head = nullptr;
    const auto types = [] {
        TImageMIMETypes client, fresh;
        CQFileNameUtil::OrvoImageMIMETypesL(client);
        CQFileNameUtil::ImageMIMETypesL(fresh);
        return client.GetArray()->size();
    };
    char account[] = "account";
    QByteArray* encoded = nullptr;
    QString* decoded = nullptr;
    Try<Texts>({"0 " + unchanged}, OP(cipher()), OP(buffer()),
               OP((std::ostringstream() << bytes << wide).good()),
               OP(head = nullptr, Create(&head, 3, 8), head && (head->FreeDataChain(), 1)));
    Try<Texts>({"bad_alloc " + unchanged}, DO(U::DecodeCgi(&s.text)), OP(types()),
               OP(encoded = nullptr, U::UrlEncode(s.text, &encoded), s.Take(encoded)),
               OP(decoded = nullptr, U::UrlDecode("a%31", &decoded), s.Take(decoded)),
               OP(s.Take(CQFileUtils::Ext("/x/a.b"))),
               OP(s.Take(CQFileUtils::FileNameWithoutExt("/x/a.b"))),
               OP(CQFileUtils::ParseNextDir("/x\\a", 3)),
               DO(delete[] CCrypt::GetMd5Key(7, account)), DO(QDebug(&s.text) << bytes));
    int objects[2] = {}, calls = 0;
    const auto add = [&] {
        int* const object = &objects[++calls % 2];
        const bool isAdded = CQInstance::AddWithUid(object, 7) >= 0;
        return !isAdded ? -1 : CQInstance::RemoveByUid(7) == object ? 0 : -2;
    };
    for (int growth = 0; growth < 20; ++growth) {
        Try<Texts>({"bad_alloc " + unchanged, "-1 " + unchanged}, OP(add()));
    }
}

TEST(OutOfMemory, Streams)
{
    using namespace OrvoStream;
    const CQWString oldPath = QString("old"), zipPath = QString("zip");
    const auto write = [&] {
        FileOutputStream out(oldPath);
        for (const char* const block : {"abc", "def"}) {
            out.Write(block, 3), out.Flush();
        }
        return out.Close(), out.HasFailed();
    };
    const auto writeItems = [&] {
        FileOutputStream file(oldPath);
        DataOutputStream out(file);
        out << 0x31313131 << 'c' << short{0x3232} << "text";
        out.Write(longBytes), out.Flush();
        return out.HasFailed();
    };
    const auto read = [&] {
        FileInputStream in(zipPath);
        char text[8] = {};
        const int count = in.Read(text, 8);
        return count == 0 && !in.HasFailed() ? -1 : count * text[3];
    };
    const auto readItems = [&] {
        FileInputStream file(zipPath);
        DataInputStream in(file);
        int length = 4;
        try {
            const int number = in.ReadInt();
            delete[] in.ReadBytes(length);
            return in.HasFailed() ? -1 : number * length + in.ReadShort();
        } catch (int) {
        } catch (const std::bad_alloc&) {
        }
        return in.HasFailed() ? 0 : -1;
    };
    Try<Disk>({"1 ' a1 a ' untouched zip=block old=* sub/ sub/a.c=x sub/b.c=x sub/deep/ "},
              OP(write()), OP(writeItems()));
    Try<Disk>({"0 " + onDisk}, OP(read()), OP(readItems()));
}

TEST(OutOfMemory, FileObjects)
{
    auto utf8 = Make<CQSString>("old");
    // Nothing but an open may throw.
    const auto open = [](auto operation) {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            return 0;
        }
    };
    const auto use = [&](CQFile& file) {
        char text[2] = {};
        open([&] { return file.Open(L"old", 2); });
        const int count = file.Read(text, 2);
        file.Seek(0, 0), file.Write("abc", 3), file.SetSize(1), file.Close();
        return count;
    };
    const auto useCached = [&](CQFile& file) {
        open([&] { return file.OpenWithWriteCache(L"old", 3, 4); });
        file.Write("abc", 3);
        const int written = file.Write("defgh", 5);
        file.Write("i", 1), file.Close();
        return written;
    };
    const auto neverClose = [](auto file) {
        return file->OpenWithWriteCache(L"new", 1, 4) + file->Write("abc", 3);
    };
    const std::string kept = "failed ' a1 a ' untouched zip=block *old=* sub/b.c=x *";
    Try<Disk>({"bad_alloc " + kept}, OP(s.file.Open(L"old", 0)), OP(s.file.Open(utf8, 0)),
              OP(s.file.Open(L"old", 1)), OP(s.file.Open(L"sub\\new\\file", 2)),
              OP(s.file.Open(L"old", 2) & s.file.Sync()));
    Try<Disk>({"*[0-9] " + kept}, OP(use(s.file)), OP(useCached(s.file)));
    Try<Disk>({"* untouched zip=block old=x *", "* untouched zip=block new= old=x *",
               "4 * zip=block new=abc old=x *"},
              OP(neverClose(std::make_unique<CQFile>())));
    const auto save = [&](CQSaveFile& file) {
        open([&] { return file.Open(L"old"); });
        file.Write("new", 3);
        return file.Commit();
    };
    // The last wait may be for a new content that has its name already; the platform may leave it
    // behind under another one, and Qt 5 its descriptor too.
    Try<Disk, LeavesSomething>({"0 * old=x *sub/ sub/a.c=x sub/b.c=x sub/deep/ ",
                                "0 * old=new sub/ sub/a.c=x sub/b.c=x sub/deep/ "},
                               OP(save(s.save)));
    Try<Disk>({"bad_alloc " + onDisk}, OP(CQSaveFile().Open(L"old")));
}

TEST(OutOfMemory, CompressedFiles)
{
    const auto write = [](auto&& zip, const wchar_t* path) {
        int length = 3;
        unsigned char* place = units;
        return zip.Write(&place, &length, path);
    };
    int length = 0;
    unsigned char* place = nullptr;
    Try<Disk>({"0 *failed " + onDisk, "bad_alloc *failed " + onDisk}, OP(write(s.zip, L"zip")),
              OP(s.zip.Read(s.block, L"zip")),
              OP(place = s.Block(), s.zip.Read(&place, &length, L"zip")),
              OP(s.zip.Read(s.Block(), 9, &length, L"zip")), OP(s.zip.Open(L"zip") & s.zip.Sync()));
    // Qt 5 may keep the descriptor of what it leaves behind.
    Try<Disk, LeavesSomething>({"0 failed " + onDisk + "*", "0 failed *zip=fou " + inDir},
                               OP(s.zip.Replace(units, 3, L"zip")));
    Try<Disk>({"0 " + onDisk, "bad_alloc " + onDisk}, OP(write(CQZipFile(), L"zip")));
}

TEST(OutOfMemory, FileSystem)
{
    using F = CQFile;
    CQWString path = QString("a\\long.name.c"), here = QString("sub"), ext = QString("c"), all;
    Try<Disk>({"0 none untouched *"}, OP(F::GetFileName(&path, s.name)),
              OP(F::GetFileNameWithoutExtension(&path, s.name)));
    Try<Disk>({"bad_alloc " + onDisk}, OP(F::IsFileExist(L"old")), OP(F::GetFileLenght(L"old")),
              OP(F::GetFileLenght(path)), OP(F::GetFileLenght(L"sub/", L"a.c")),
              OP(F::DeleteFile(L"old")), OP(F::DeleteFile(L"sub\\", L"a.c")),
              OP(F::RenameFile(L"old", L"new")), OP(F::RenameFile(L"old", L"OLD")),
              OP(F::RenameDir(L"sub", L"new", 0)), OP(F::CreateDirectory(L"a\\b")),
              OP(F::MakeDir(s.dir->Absolute("a"))), OP(F::DelDir(L"sub/deep")));
    Try<Disk>({"0 * old=x sub/*", "bad_alloc * old=x sub/*"}, OP(F::RecursiveDelDir(L"sub")));
    // A copy is there whole or not at all, also where the platform throws behind it.
    Try<Disk>({"bad_alloc " + onDisk, "bad_alloc * zip=block new=x old=x sub/ *",
               "bad_alloc ' a1 a ' untouched zip=block " + inDir + "sub/deep/copy=x "},
              OP(F::CopyFile(L"old", L"new")),
              OP(F::CopyFile(L"sub/", L"a.c", L"sub/deep/", L"copy")));
    const auto list = [&](CQWString& filter, CQWString& last) {
        CQWString* names = &last;
        const int count = F::GetDirFileList(here, filter, true, &names);
        if (names == &last) {
            return -1;
        }
        const std::unique_ptr<CQWString[]> owner(names);
        last.SetData(names != nullptr ? names[count - 1].GetDataPtr() : L"none");
        return count;
    };
    // Without memory the platform may lose a descriptor.
    Try<Disk, LeavesSomething>({"0 *'none' *", "bad_alloc *" + onDisk}, OP(list(all, s.name)),
                               OP(list(ext, s.name)));
}

TEST(OutOfMemory, FileUtilities)
{
    using F = CQFileUtils;
    int code = 0;
    const auto make = [](auto opened) {
        return F::MkFile(*opened, "sub/deep", QFile::ReadOwner | QFile::WriteOwner) +
               opened->isOpen();
    };
    CQWString path = QString("a\\long.name.c");
    Try<Disk>({"bad_alloc " + onDisk}, OP(F::IsDir("sub")), OP(F::RmFile("old")),
              OP(F::RmFile("none")), OP(F::RmDir("sub\\deep")), OP(F::RmDir("none")),
              OP(code = -11, F::FileErrors(code, "sub/deep") + code),
              OP(code = -11, F::DirErrors(code, "old") + code));
    Try<Disk>({"bad_alloc *' a1 a ' untouched zip=block *sub/b.c=x *"}, OP(F::MkDir("old/new")),
              OP(F::EnsurePathExists("old/new/file")), OP(make(std::make_unique<QFile>())));
    Try<Disk>({"bad_alloc " + onDisk, "0 none *"}, DO(CQFileNameUtil::FindShortName(path, s.name)),
              DO(CQFileNameUtil::FindFileExtName(path, s.name)));
}

TEST(OutOfMemory, SystemCalls)
{
    using S = CSystemCall;
    double size = 0;
    Try<Texts>({keptBytes}, DO(s.w.Destroy(), S::FileSizeExchange(7, size, s.w, true)));
    // On a 32-bit host the platform's times take memory.
    Try<Texts>(sizeof(void*) < 8 ? Patterns{"bad_alloc " + unchanged} : Patterns{},
               OP(S::GetInstallDisc()), OP(S::GetCurrentTime() > 0),
               OP(S::GetCurrentTimeStamp() > 0), OP(S::GetCurrentTimeToInt() != 0),
               OP(S::GetSysTimeBymmSec() >= 0), OP(GetCurTime() > 0));
    Try<Texts, LeavesAProcess>({"bad_alloc " + unchanged}, OP(S::GetScreenSizeInPixel().width()));
}

// What the platform's timers and threads take may stay behind.
TEST(OutOfMemory, Events)
{
    struct : CQTimerObserver, MTimeOutNotifier {
        void OnPeriodTask() override {}
        void OnTimeOut() override {}
    } observer;
    struct Idle : CQActive {
        Idle() : CQActive(2) {}
        void DoCancel() override {}
        void RunL(int) override {}
    } idle;
    CQSchedulerInstance worker(nullptr);
    const auto after = [&] {
        const std::unique_ptr<CTimeOutTimer> timer(CTimeOutTimer::NewL(observer));
        timer->After(1000000);
        return timer->IsActive();
    };
    Try<Texts, LeavesSomething>({"bad_alloc " + unchanged},
                                DO(CQTimer().StartTimer(&observer, 1, 1000, 0)), OP(after()),
                                DO(worker.Add(&idle)));
}

struct Pictures {
    TempDir dir;
    std::unique_ptr<CQImageDecode> decoder{CQImageDecode::NewL(enFormat_RGB32, nullptr)};
    CQBImageDecode fitting{enFormat_RGB32};
    std::unique_ptr<QImage> image, mask;

    void Prepare()
    {
        QImage red(8, 6, QImage::Format_ARGB32);
        red.fill(Qt::red);
        red.save("a.png"), red.save("a.jpg"), red.save("a.bmp");
    }
    std::string Tell() const
    {
        return image == nullptr || image->isNull() ? "none" : std::to_string(image->pixel(3, 3));
    }
    int Take(int result)
    {
        QImage *first = nullptr, *second = nullptr;
        decoder->GetImageFromPng(&first, &second);
        image.reset(first != nullptr ? first : fitting.GetImage()), mask.reset(second);
        return result;
    }
};

TEST(OutOfMemory, Images)
{
    CQWString png = QString("a.png"), jpg = QString("a.jpg"), bmp = QString("a.bmp");
    Try<Pictures, LeavesAProcess>(
        {"1 none", "bad_alloc none", "0 none"}, OP(s.Take(s.decoder->DecodeImgFileL(&png, 1))),
        OP(s.Take(s.decoder->DecodePngFileL(&jpg, 1))),
        OP(s.Take(s.fitting.DecodeImgFile(&bmp, 1, false))), OP(CQFileNameUtil::IsImageFile(png)));
}
