// Examples of the reference: strings and encodings.

#include "Require.h"

#include <BaseUtil.h>
#include <CQSString.h>
#include <CQWString.h>
#include <CStrConvertor.h>
#include <OrvoDebug.h>

#include <cstring>
#include <sstream>

namespace
{

void ByteString()
{
    //! [CQSString]
    CQSString line;
    line.SetData("name=Anna;age=30");
    CQSString name;
    line.GetSubString(name, "name=", ";", 0, false, false); // what stands between the two
    name.AppendChar('!');
    REQUIRE(name.Compare("Anna!") == 0); // not name == "Anna!", which compares addresses
    REQUIRE(line.Find("age") == 10);
    REQUIRE(line.ToINT() == 30); // the digits at the end
    //! [CQSString]
}

void WideString()
{
    //! [CQWString]
    CQWString path;
    path.SetData(L"C:\\Pictures\\anna.png");
    REQUIRE(path.Replace(L"\\", L"/") == 2);
    CQWString name;
    path.GetSubString(name, path.FindofLast(L'/') + 1, path.GetLength());
    REQUIRE(name.Compare(L"anna.png") == 0);
    REQUIRE(name.IsEndWithNoCase(L".PNG") == 1);
    const CQSString utf8(name); // UTF-8 and back
    REQUIRE(CQWString(utf8) == name);
    //! [CQWString]
}

void Convertor()
{
    //! [CStrConvertor]
    const wchar_t text[] = L"\u00E9\u4E2D";
    char bytes[6];
    int capacity = sizeof bytes;
    const int length = CStrConvertor::Unicode2Utf8(bytes, capacity, text, 2);
    REQUIRE(length == 5 && std::memcmp(bytes, "\xC3\xA9\xE4\xB8\xAD", 5) == 0);
    //! [CStrConvertor]
}

void Utilities()
{
    //! [CBaseUtil]
    CQSString path;
    CBaseUtil::FormatString(path, "%s\\%u.info", "D:\\accounts", 10001U);
    REQUIRE(path.Compare("D:/accounts/10001.info") == 0); // backslashes become slashes
    CQSString url;
    url.SetData("http://host/?id=7&name=anna");
    CQSString value;
    REQUIRE(CBaseUtil::GetArgumentFormURL(url, "id", value));
    REQUIRE(value.ToINT() == 7);
    //! [CBaseUtil]
}

void DebugText()
{
    //! [OrvoDebug]
    CQSString note;
    note.SetData("caf\xC3\xA9\n\xFF"); // the last byte is no text
    std::ostringstream message;
    message << note;
    REQUIRE(message.str() == "\"caf\xC3\xA9\\n\\xFF\"");
    //! [OrvoDebug]
}

} // namespace

int main()
{
    ByteString();
    WideString();
    Convertor();
    Utilities();
    DebugText();
}
