#include "PrivateBImageDecode.h"

#include "BoundedImageRead.h"
#include "CImgDecodeNotify.h"
#include "PathText.h"
#include "PictureName.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

// Puts an image in a slot. The one before it is deleted, unless a client holds it.
void Replace(QImage*& pSlot, bool& fetched, QImage* pImage)
{
    if (!fetched) {
        delete pSlot;
    }
    pSlot = pImage;
    fetched = false;
}

// The IEEE quotient of an image side above 0 and a screen side.
double Ratio(int imageSide, int screenSide)
{
    return screenSide != 0 ? static_cast<double>(imageSide) / screenSide
                           : std::numeric_limits<double>::infinity();
}

// The conversion truncates toward zero. The value is never NaN: sides are finite, and an infinite
// ratio only ever divides.
int Saturated(double value)
{
    return static_cast<int>(std::clamp<double>(value, std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

// Multiplies for a ratio below 1, where one would divide: it comes up only with a screen side
// below 0, an unset one above all.
int FitSide(int side, double ratio)
{
    return Saturated(ratio >= 1.0 ? side / ratio : side * ratio);
}

QImage ScaledWithinLimit(const QImage& image, const QSize& size)
{
    return BoundedImageRead::IsWithinLimit(size, image.depth())
               ? image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation)
               : QImage();
}

} // namespace

PrivateBImageDecode::PrivateBImageDecode(TDisplayMode displayMode)
    : m_pImage(nullptr), m_pMask(nullptr), m_bHasMask(false), m_nDisplayMode(displayMode),
      m_pNotify(nullptr), m_nId(0), m_bFitScreen(true), m_nState(stateIdle), m_nScreenWidth(-1),
      m_nScreenHeight(-1), m_bImageFetched(false), m_bMaskFetched(false)
{
}

PrivateBImageDecode::~PrivateBImageDecode() = default;

void PrivateBImageDecode::ConstructL(CImgDecodeNotify* notify)
{
    m_pNotify = notify;
}

int PrivateBImageDecode::DecodeImgFile(CQWString* path, int id, bool fitScreen)
{
    return DecodeWithSwitch(path, id, fitScreen, false);
}

int PrivateBImageDecode::DecodeImgFileSpecDispMode(CQWString& path, int id, bool fitScreen)
{
    return DecodeWithSwitch(&path, id, fitScreen, true);
}

int PrivateBImageDecode::DecodeWithSwitch(CQWString* path, int id, bool fitScreen,
                                          bool useDisplayMode)
{
    if (m_nState != stateIdle) {
        return 0;
    }
    m_bFitScreen = fitScreen;
    if (DecodeImgFileL(path, id, useDisplayMode) == 0) {
        m_nState = stateIdle;
        return 0;
    }
    return 1; // without another look at this object, which the notifier may have destroyed
}

// Of a masked file only the mask is kept, and the result is 0 without a notification: callers
// depend on both. The image in the target format, which the display mode would choose, would be
// deleted again before anybody sees it, so it is not made.
int PrivateBImageDecode::DecodeImgFileL(CQWString* path, int id, bool /*useDisplayMode*/)
{
    if (!NamesPicture(path)) {
        return 0;
    }
    const QString fileName = PathText::FromWide(path->GetDataPtr());
    m_nId = id;
    m_FileName = *path;
    SetImage(nullptr);
    SetMask(nullptr);
    QImage loaded = BoundedImageRead::FromFile(fileName);
    m_bHasMask =
        fileName.endsWith(QLatin1String(".png"), Qt::CaseInsensitive) || loaded.hasAlphaChannel();
    m_nState = stateDecoded;
    if (m_bHasMask) {
        SetMask(
            new QImage(BoundedImageRead::Converted(std::move(loaded), QImage::Format_Indexed8)));
        return 0;
    }
    SetImage(new QImage(std::move(loaded)));
    RunL();
    return 1;
}

void PrivateBImageDecode::SetImage(QImage* pImage)
{
    Replace(m_pImage, m_bImageFetched, pImage);
}

void PrivateBImageDecode::SetMask(QImage* pImage)
{
    Replace(m_pMask, m_bMaskFetched, pImage);
}

void PrivateBImageDecode::RunL()
{
    if (m_nState == stateDecoded && m_pMask == nullptr && m_bFitScreen &&
        ResizeImageToFitScreen(m_pImage) == 1) {
        return; // a resized image is not announced
    }
    const State state = std::exchange(m_nState, stateIdle);
    if (state != stateDecoded && state != stateResizing) {
        return;
    }
    // The last step: the notifier may start another decode, or destroy this object.
    if (m_pNotify != nullptr) {
        m_pNotify->OnImageDecoded(1, m_nId, m_bHasMask ? 1 : 0);
    }
}

void PrivateBImageDecode::DoCancel()
{
    m_nState = stateIdle;
}

void PrivateBImageDecode::SetScreenSize(const QSize& size)
{
    m_nScreenWidth = size.width();
    m_nScreenHeight = size.height();
}

int PrivateBImageDecode::GetFitScreenSize(QSize size, QSize& fit) const
{
    const int width = size.width();
    const int height = size.height();
    if (width < 1 || height < 1) {
        return 0;
    }
    if (width <= m_nScreenWidth) {
        fit = size; // whatever the height: lists show tall images in full width
        return 1;
    }
    const double widthRatio = Ratio(width, m_nScreenWidth);
    const double heightRatio = Ratio(height, m_nScreenHeight);
    if (widthRatio > heightRatio) {
        fit = QSize(m_nScreenWidth, FitSide(height, widthRatio));
    } else if (widthRatio == heightRatio) {
        fit = QSize(m_nScreenWidth, m_nScreenHeight);
    } else {
        fit = QSize(FitSide(width, heightRatio), m_nScreenHeight);
    }
    return 1;
}

int PrivateBImageDecode::ResizeImageToFitScreen(QImage* image)
{
    QSize fit(-1, -1);
    if (image == nullptr || GetFitScreenSize(image->size(), fit) == 0 || fit == image->size()) {
        return 0;
    }
    m_nState = stateResizing;
    const QImage scaled = ScaledWithinLimit(*image, fit);
    const QImage loaded = BoundedImageRead::FromBytes(
        reinterpret_cast<const char*>(scaled.constBits()), static_cast<int>(scaled.sizeInBytes()),
        image->sizeInBytes() + scaled.sizeInBytes());
    // Raw pixels seldom decode. Then the image keeps its content, and the result is 1 all the same.
    if (!loaded.isNull()) {
        *image = loaded;
    }
    m_nState = stateIdle;
    return 1;
}

QImage* PrivateBImageDecode::GetImage()
{
    m_bImageFetched = true;
    return m_pImage;
}

QImage* PrivateBImageDecode::GetMaskImage()
{
    if (!m_bHasMask) {
        return nullptr;
    }
    m_bMaskFetched = true;
    return m_pMask;
}

CQWString& PrivateBImageDecode::GetFileName()
{
    return m_FileName;
}
