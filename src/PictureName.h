#pragma once

#include "CQWString.h"

/// The name that the client's data give to a picture that is not there.
inline bool IsPlaceholderPicture(const CQWString& path)
{
    return path.CompareNoCase(L"nopic.bmp") == 0;
}

/// True when \a path is not empty and not the placeholder: only then a decoder looks for a file.
inline bool NamesPicture(const CQWString* path)
{
    return path != nullptr && !path->IsEmpty() && !IsPlaceholderPicture(*path);
}
