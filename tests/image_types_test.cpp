#include "TemporaryFiles.h"

#include <CQFileNameUtil.h>
#include <TImageMIMETypes.h>

#include <gtest/gtest.h>

TEST(ImageTypes, TheClientsTypesAreListedInOrderAndThePlatformHasNone)
{
    TImageMIMETypes types;
    EXPECT_EQ(nullptr, types.GetArray());
    CQFileNameUtil::OrvoImageMIMETypesL(types);
    EXPECT_EQ(QStringList({"image/bmp", "image/gif", "image/jp2", "image/jpeg", "image/png"}),
              *types.GetArray());
    TImageMIMETypes platformTypes;
    CQFileNameUtil::ImageMIMETypesL(platformTypes);
    ASSERT_NE(nullptr, platformTypes.GetArray());
    EXPECT_TRUE(platformTypes.GetArray()->isEmpty());
}

TEST(ImageTypes, NamesAreSplitAtTheFirstDot)
{
    const wchar_t* const cases[][3] = {
        {L"/pics/a.b.png", L"a", L"b.png"},
        {L"/pics.old/readme", L"readme", L""},
        {L".hidden", L"", L"hidden"},
        {L"dir\\a.gif", L"dir\\a", L"gif"},
        {L"/\U0001F600\U0001F601.jpg", L"\U0001F600\U0001F601", L"jpg"},
    };
    for (const auto& [path, name, extension] : cases) {
        CQWString text;
        text.SetData(path);
        CQWString part(QStringLiteral("before"));
        CQFileNameUtil::FindShortName(text, part);
        EXPECT_EQ(0, part.Compare(name));
        EXPECT_EQ(CQWString::SafeStrlen(name), part.GetLength());
        CQFileNameUtil::FindFileExtName(text, text);
        EXPECT_EQ(0, text.Compare(extension));
    }
}

TEST(ImageTypes, AnImageIsToldByItsContent)
{
    const TemporaryFiles files;
    EXPECT_TRUE(CQFileNameUtil::IsImageFile(files.Add("plain", Png(3, 2))));
    EXPECT_FALSE(CQFileNameUtil::IsImageFile(files.Add("x.png", "no picture")));
    EXPECT_FALSE(CQFileNameUtil::IsImageFile(files.Add("huge.bmp", HugeBitmap())));
    EXPECT_FALSE(CQFileNameUtil::IsImageFile(files.Path("missing")));
}
