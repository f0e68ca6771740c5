#pragma once

#include "OrvoExport.h"

#include <QList>
#include <QString>
#include <QStringList>

/// Holder of a list of image MIME types, which CQFileNameUtil fills. Fill each holder once.
class ORVO_EXPORT TImageMIMETypes
{
public:
    /// A holder without a list.
    TImageMIMETypes();
    /// Frees the list and every string that was allocated for it.
    ~TImageMIMETypes();
    TImageMIMETypes(const TImageMIMETypes&) = delete;
    TImageMIMETypes& operator=(const TImageMIMETypes&) = delete;

    /// The list, or null until the holder is filled. The holder keeps ownership.
    QStringList* GetArray();

private:
    friend class CQFileNameUtil;

    QStringList* m_pArray;
    QList<QString*> m_ownedStrings;
};
