#include "CQFileNameUtil.h"

#include "BoundedImageRead.h"
#include "CQWString.h"
#include "PathText.h"
#include "TImageMIMETypes.h"

#include <QFileInfo>
#include <QMimeData>

#include <memory>
#include <string>

namespace
{

constexpr const char* clientImageTypes[] = {"image/bmp", "image/gif", "image/jp2", "image/jpeg",
                                            "image/png"};

bool IsImageType(const QString& mimeType)
{
    return mimeType.startsWith(QLatin1String("image/"));
}

} // namespace

void CQFileNameUtil::OrvoImageMIMETypesL(TImageMIMETypes& types)
{
    auto list = std::make_unique<QStringList>();
    for (const char* const type : clientImageTypes) {
        list->append(QLatin1String(type));
    }
    types.m_pArray = list.release();
}

void CQFileNameUtil::ImageMIMETypesL(TImageMIMETypes& types)
{
    auto list = std::make_unique<QStringList>();
    const QMimeData freshData;
    const QStringList formats = freshData.formats();
    for (const QString& format : formats) {
        if (IsImageType(format)) {
            types.m_ownedStrings.append(new QString(format));
            list->append(*types.m_ownedStrings.last());
        }
    }
    types.m_pArray = list.release();
}

bool CQFileNameUtil::IsImageFile(CQWString const& path)
{
    return !BoundedImageRead::FromFile(PathText::FromWide(path.GetDataPtr())).isNull();
}

void CQFileNameUtil::FindShortName(CQWString const& path, CQWString& name)
{
    PathText::Store(name,
                    QFileInfo(PathText::FromWide(path.GetDataPtr())).baseName().toStdWString());
}

void CQFileNameUtil::FindFileExtName(CQWString const& path, CQWString& ext)
{
    PathText::Store(
        ext, QFileInfo(PathText::FromWide(path.GetDataPtr())).completeSuffix().toStdWString());
}
